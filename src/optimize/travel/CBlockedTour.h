#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <Eigen/Core>

#include "optimize/travel/CTravelTour.h"

namespace LibStrokeset {

/// The tour of CTravelTour, with the same positions after every call, held in blocks of
/// about the square root of its size, each of which may be read backwards. A reversal or a
/// move then splits a few blocks and reorders whole ones: it costs about the square root of
/// the size, where the array of CTravelTour shifts every item in between. Reading an item
/// at a position looks its block up instead of indexing.
///
/// Positions are those of a cycle that starts at m_offset in the blocks' order, so that a
/// range of positions that wraps round can be made one run of blocks by turning the cycle,
/// which moves no position.
class CBlockedTour {
public:
    using SStep = CTravelTour::SStep;

    CBlockedTour(std::vector<Eigen::RowVector3f> starts, std::vector<Eigen::RowVector3f> ends,
                 const std::vector<SStep>& path, const Eigen::RowVector3f* origin);

    std::size_t size() const { return m_size; }
    std::uint32_t gap() const { return m_gap; }
    std::uint32_t itemAt(std::size_t position) const;
    std::size_t positionOf(std::uint32_t item) const;
    bool isReversed(std::uint32_t item) const {
        return m_reversed[item] != m_blocks[m_blockOf[item]].reversed;
    }
    const Eigen::RowVector3f* entry(std::uint32_t item) const {
        return entryOf(item, isReversed(item));
    }
    const Eigen::RowVector3f* exit(std::uint32_t item) const {
        return exitOf(item, isReversed(item));
    }
    const Eigen::RowVector3f& start(std::uint32_t item) const { return m_starts[item]; }
    const Eigen::RowVector3f& end(std::uint32_t item) const { return m_ends[item]; }

    double jumpAfter(std::size_t position) const;
    double length() const;

    /// As CTravelTour::reverse and CTravelTour::move, position for position.
    void reverse(std::size_t first, std::size_t last);
    void move(std::size_t first, std::size_t count, std::size_t after, bool reversed);

    std::vector<SStep> path() const;

    void startJournal();
    void rollBack();
    void keepChanges();

private:
    struct SBlock {
        std::vector<std::uint32_t> items;
        bool reversed = false;
    };
    /// One change as the journal keeps it: a range reversed, or two neighbouring ranges
    /// swapped (either turned round).
    struct SChange {
        bool swap;
        std::size_t position, firstCount, secondCount;
        bool turnFirst, turnSecond;
    };

    /// Where a read finds a position: the index in m_order of its block, and its place
    /// there in reading order.
    struct SRead {
        std::size_t index;
        std::size_t k;
    };
    SRead readAt(std::size_t position) const;
    /// Where the position after a read lies.
    SRead following(SRead read) const;
    /// The item a read finds, and whether it is reversed.
    std::pair<std::uint32_t, bool> readItem(SRead read) const;
    const Eigen::RowVector3f* entryOf(std::uint32_t item, bool reversed) const;
    const Eigen::RowVector3f* exitOf(std::uint32_t item, bool reversed) const;

    std::size_t wrap(std::size_t position) const {
        return position < m_size ? position : position - m_size;
    }
    /// Where a position lies in the blocks' order, and back.
    std::size_t inner(std::size_t position) const { return wrap(position + m_size - m_offset); }
    /// The index in m_order of the block holding an inner index.
    std::size_t blockIndexAt(std::size_t innerIndex) const;
    /// Makes an inner index the first of a block.
    void split(std::size_t innerIndex);
    /// Turns the cycle so that `count` positions from `position` are one run of inner indices.
    void unwrap(std::size_t position, std::size_t count);
    void reverseRange(std::size_t position, std::size_t count);
    /// X (firstCount from position) then Y becomes Y then X, each turned round if asked.
    void swapRanges(std::size_t position, std::size_t firstCount, std::size_t secondCount,
                    bool turnFirst, bool turnSecond);
    /// Recomputes where the blocks from..to in m_order start.
    void renumber(std::size_t from, std::size_t to);
    /// Blocks of m_blockSize for the items in inner order.
    void layOut(const std::vector<std::uint32_t>& items);
    /// Stores a block's items in reading order.
    void normalize(std::uint32_t block);
    /// New blocks of even size when splits have made too many.
    void rebuildIfCrowded();

    std::vector<Eigen::RowVector3f> m_starts;
    std::vector<Eigen::RowVector3f> m_ends;
    std::uint32_t m_gap;
    std::size_t m_size;
    bool m_hasOrigin;
    Eigen::RowVector3f m_origin;
    std::size_t m_blockSize;
    std::size_t m_offset = 0;
    std::vector<SBlock> m_blocks;
    std::vector<std::uint32_t> m_order;    // block numbers in inner order
    std::vector<std::size_t> m_orderStart; // the first inner index of each, in that order
    std::vector<std::size_t> m_startOf;    // the same by block number
    std::vector<std::uint32_t> m_blockOf;  // by item
    std::vector<std::uint32_t> m_slot;     // by item: its place in its block's items
    std::vector<bool> m_reversed;          // by item, as stored; its block may turn it
    std::size_t m_bucketShift = 3;         // m_blockSize is 1 << m_bucketShift
    std::vector<std::size_t> m_bucket;     // by inner index >> m_bucketShift: a block index
    bool m_bucketsValid = false;
    mutable std::size_t m_lastIndex = 0; // the block of the last item read
    bool m_journaling = false;
    std::vector<SChange> m_journal;
};

} // namespace LibStrokeset
