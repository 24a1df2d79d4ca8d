#pragma once

#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include <Eigen/Core>

namespace LibStrokeset {

/// An open pen path through items that each have an entry and an exit point (a path, which
/// may be run backwards, or a dot), held as a cycle with one extra item, the gap: its one
/// side is where the pen comes from (when the tour has an origin) and its other side is free,
/// so the jumps next to it cost nothing. Being a cycle, a reversal can always turn the
/// shorter side; the path is read from the gap in whichever direction leaves it by its
/// origin side.
///
/// Positions are cyclic: position n is position 0. Jumps are measured in double.
class CTravelTour {
public:
    /// One item placed on the path: its number and whether it runs from its end to its start.
    struct SStep {
        std::uint32_t item;
        bool reversed;
    };

    /// `starts` and `ends` are the items' points as stored; `path` the initial order. With
    /// `origin` null the path starts free, otherwise the first jump comes from *origin.
    CTravelTour(std::vector<Eigen::RowVector3f> starts, std::vector<Eigen::RowVector3f> ends,
                const std::vector<SStep>& path, const Eigen::RowVector3f* origin);

    /// Items plus the gap.
    std::size_t size() const { return m_tour.size(); }
    std::uint32_t gap() const { return m_gap; }
    std::uint32_t itemAt(std::size_t position) const { return m_tour[wrap(position)]; }
    std::size_t positionOf(std::uint32_t item) const { return m_position[item]; }
    bool isReversed(std::uint32_t item) const { return m_reversed[item]; }
    /// The point at which the pen enters or leaves an item as it now lies; null on the free
    /// side of the gap.
    const Eigen::RowVector3f* entry(std::uint32_t item) const;
    const Eigen::RowVector3f* exit(std::uint32_t item) const;
    /// Where item's stored start and end are (they differ from entry and exit when it runs
    /// backwards).
    const Eigen::RowVector3f& start(std::uint32_t item) const { return m_starts[item]; }
    const Eigen::RowVector3f& end(std::uint32_t item) const { return m_ends[item]; }
    /// Moves both ends of an item to p (a closed path entered elsewhere).
    void setEnds(std::uint32_t item, const Eigen::RowVector3f& p);

    /// The jump between two points in double; 0 when either is null (the free side).
    /// Inline: the moves' evaluations are mostly jumps.
    static double jump(const Eigen::RowVector3f* from, const Eigen::RowVector3f* to) {
        if (from == nullptr || to == nullptr) {
            return 0.0;
        }
        const double dx = static_cast<double>(to->x()) - from->x();
        const double dy = static_cast<double>(to->y()) - from->y();
        const double dz = static_cast<double>(to->z()) - from->z();
        return std::sqrt(dx * dx + dy * dy + dz * dz);
    }
    /// The jump from the item at `position` to the one after it.
    double jumpAfter(std::size_t position) const;
    /// The whole pen-up travel of the path.
    double length() const;

    /// Reverses the items of positions first .. last (cyclic, inclusive), or the rest of the
    /// cycle when that is shorter, which gives the same path.
    void reverse(std::size_t first, std::size_t last);
    /// The positions reverse(first, last) turns: the first of them and how many.
    std::pair<std::size_t, std::size_t> reversedBlock(std::size_t first, std::size_t last) const;
    /// Where an item comes on the path: 0 for the first after the gap.
    std::size_t rankOf(std::uint32_t item) const;
    /// Moves the `count` items from position `first` on to between positions `after` and
    /// after + 1 (which must lie outside them), turned around when `reversed`.
    void move(std::size_t first, std::size_t count, std::size_t after, bool reversed);

    /// The items in path order, from the gap's origin side.
    std::vector<SStep> path() const;

    /// Records every change from now on, so that they can be taken back together.
    void startJournal();
    /// Undoes every change since startJournal and stops recording.
    void rollBack();
    /// Stops recording and keeps the changes.
    void keepChanges();

private:
    /// Callers mostly step one cycle past the end at most: that needs no division.
    std::size_t wrap(std::size_t position) const {
        const std::size_t n = m_tour.size();
        return position < n ? position : position < 2 * n ? position - n : position % n;
    }
    /// Writes `items` from `position` on, cyclically.
    void place(std::size_t position, const std::vector<std::uint32_t>& items);
    /// The only two writes to the order, so that the journal sees them all.
    void put(std::size_t position, std::uint32_t item);
    void flip(std::uint32_t item);

    std::vector<Eigen::RowVector3f> m_starts;
    std::vector<Eigen::RowVector3f> m_ends;
    std::vector<std::uint32_t> m_tour;
    std::vector<std::size_t> m_position;
    std::vector<bool> m_reversed;
    std::uint32_t m_gap;
    bool m_hasOrigin;
    Eigen::RowVector3f m_origin;
    std::vector<std::uint32_t> m_scratch;
    bool m_journaling = false;
    std::vector<std::pair<std::size_t, std::uint32_t>> m_written; // slot, item it held
    std::vector<std::uint32_t> m_flipped;
};

} // namespace LibStrokeset
