#include "optimize/travel/CTravelTour.h"

#include <algorithm>
#include <cmath>

namespace LibStrokeset {

CTravelTour::CTravelTour(std::vector<Eigen::RowVector3f> starts,
                         std::vector<Eigen::RowVector3f> ends, const std::vector<SStep>& path,
                         const Eigen::RowVector3f* origin)
    : m_starts(std::move(starts)), m_ends(std::move(ends)),
      m_gap(static_cast<std::uint32_t>(m_starts.size())), m_hasOrigin(origin != nullptr),
      m_origin(origin != nullptr ? *origin : Eigen::RowVector3f::Zero()) {
    m_tour.reserve(path.size() + 1);
    m_tour.push_back(m_gap);
    m_position.assign(m_starts.size() + 1, 0);
    m_reversed.assign(m_starts.size() + 1, false);
    for (const SStep& step : path) {
        m_position[step.item] = m_tour.size();
        m_reversed[step.item] = step.reversed;
        m_tour.push_back(step.item);
    }
}

const Eigen::RowVector3f* CTravelTour::entry(std::uint32_t item) const {
    if (item == m_gap) {
        return m_reversed[item] && m_hasOrigin ? &m_origin : nullptr;
    }
    return m_reversed[item] ? &m_ends[item] : &m_starts[item];
}

const Eigen::RowVector3f* CTravelTour::exit(std::uint32_t item) const {
    if (item == m_gap) {
        return !m_reversed[item] && m_hasOrigin ? &m_origin : nullptr;
    }
    return m_reversed[item] ? &m_starts[item] : &m_ends[item];
}

void CTravelTour::setEnds(std::uint32_t item, const Eigen::RowVector3f& p) {
    m_starts[item] = p;
    m_ends[item] = p;
}

double CTravelTour::jumpAfter(std::size_t position) const {
    return jump(exit(itemAt(position)), entry(itemAt(position + 1)));
}

double CTravelTour::length() const {
    double total = 0.0;
    const std::vector<SStep> steps = path();
    const Eigen::RowVector3f* from = m_hasOrigin ? &m_origin : nullptr;
    for (const SStep& step : steps) {
        total += jump(from, step.reversed ? &m_ends[step.item] : &m_starts[step.item]);
        from = step.reversed ? &m_starts[step.item] : &m_ends[step.item];
    }
    return total;
}

std::pair<std::size_t, std::size_t> CTravelTour::reversedBlock(std::size_t first,
                                                               std::size_t last) const {
    const std::size_t n = m_tour.size();
    first = wrap(first);
    last = wrap(last);
    const std::size_t count = (last + n - first) % n + 1;
    if (2 * count > n) { // the rest of the cycle is shorter
        return {wrap(last + 1), n - count};
    }
    return {first, count};
}

std::size_t CTravelTour::rankOf(std::uint32_t item) const {
    const std::size_t n = m_tour.size();
    const std::size_t gap = m_position[m_gap], at = m_position[item];
    return m_reversed[m_gap] ? (gap + n - at) % n - 1 : (at + n - gap) % n - 1;
}

void CTravelTour::reverse(std::size_t first, std::size_t last) {
    const auto [from, count] = reversedBlock(first, last);
    first = from;
    for (std::size_t k = 0; k < count; ++k) {
        flip(m_tour[wrap(first + k)]);
    }
    for (std::size_t k = 0; k < count / 2; ++k) {
        const std::size_t a = wrap(first + k);
        const std::size_t b = wrap(first + count - 1 - k);
        const std::uint32_t itemA = m_tour[a];
        put(a, m_tour[b]);
        put(b, itemA);
    }
}

void CTravelTour::move(std::size_t first, std::size_t count, std::size_t after, bool reversed) {
    const std::size_t n = m_tour.size();
    first = wrap(first);
    after = wrap(after);
    // The cycle reads S B X from `first`: S the moved items, B up to `after`, X the rest.
    // The result B S X is written over S B, or, as S X B, over X S, whichever is shorter.
    const std::size_t between = (after + n - first) % n + 1 - count;
    const std::size_t rest = n - count - between;
    std::vector<std::uint32_t> moved(count);
    for (std::size_t k = 0; k < count; ++k) {
        moved[k] = m_tour[wrap(first + k)];
        if (reversed) {
            flip(moved[k]);
        }
    }
    if (reversed) {
        std::reverse(moved.begin(), moved.end());
    }
    m_scratch.clear();
    if (between <= rest) {
        for (std::size_t k = 0; k < between; ++k) {
            m_scratch.push_back(m_tour[wrap(first + count + k)]);
        }
        m_scratch.insert(m_scratch.end(), moved.begin(), moved.end());
        place(first, m_scratch);
    } else {
        m_scratch = moved;
        for (std::size_t k = 0; k < rest; ++k) {
            m_scratch.push_back(m_tour[wrap(after + 1 + k)]);
        }
        place(after + 1, m_scratch);
    }
}

void CTravelTour::place(std::size_t position, const std::vector<std::uint32_t>& items) {
    for (std::size_t k = 0; k < items.size(); ++k) {
        put(wrap(position + k), items[k]);
    }
}

void CTravelTour::put(std::size_t position, std::uint32_t item) {
    if (m_journaling) {
        m_written.emplace_back(position, m_tour[position]);
    }
    m_tour[position] = item;
    m_position[item] = position;
}

void CTravelTour::flip(std::uint32_t item) {
    if (m_journaling) {
        m_flipped.push_back(item);
    }
    m_reversed[item] = !m_reversed[item];
}

void CTravelTour::startJournal() {
    m_journaling = true;
    m_written.clear();
    m_flipped.clear();
}

void CTravelTour::keepChanges() {
    m_journaling = false;
    m_written.clear();
    m_flipped.clear();
}

void CTravelTour::rollBack() {
    // Undone latest first, so that each slot and each item ends where it was at the start.
    for (auto it = m_written.rbegin(); it != m_written.rend(); ++it) {
        m_tour[it->first] = it->second;
        m_position[it->second] = it->first;
    }
    for (std::uint32_t item : m_flipped) {
        m_reversed[item] = !m_reversed[item];
    }
    keepChanges();
}

std::vector<CTravelTour::SStep> CTravelTour::path() const {
    const std::size_t n = m_tour.size();
    const bool backwards = m_reversed[m_gap];
    std::vector<SStep> steps;
    steps.reserve(n - 1);
    for (std::size_t k = 1; k < n; ++k) {
        const std::size_t at =
            backwards ? wrap(m_position[m_gap] + n - k) : wrap(m_position[m_gap] + k);
        const std::uint32_t item = m_tour[at];
        steps.push_back({item, m_reversed[item] != backwards});
    }
    return steps;
}

} // namespace LibStrokeset
