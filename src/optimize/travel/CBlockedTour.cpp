#include "optimize/travel/CBlockedTour.h"

#include <algorithm>
#include <cmath>

namespace LibStrokeset {

namespace {
constexpr std::size_t smallestBlock = 8; // a power of two
} // namespace

CBlockedTour::CBlockedTour(std::vector<Eigen::RowVector3f> starts,
                           std::vector<Eigen::RowVector3f> ends, const std::vector<SStep>& path,
                           const Eigen::RowVector3f* origin)
    : m_starts(std::move(starts)), m_ends(std::move(ends)),
      m_gap(static_cast<std::uint32_t>(m_starts.size())), m_size(path.size() + 1),
      m_hasOrigin(origin != nullptr),
      m_origin(origin != nullptr ? *origin : Eigen::RowVector3f::Zero()),
      m_blockSize(smallestBlock) {
    // Blocks of about the square root of the size, a power of two so that a position finds
    // its bucket by a shift.
    while (m_blockSize * m_blockSize < m_size) {
        m_blockSize *= 2;
        ++m_bucketShift;
    }
    m_blockOf.assign(m_starts.size() + 1, 0);
    m_slot.assign(m_starts.size() + 1, 0);
    m_reversed.assign(m_starts.size() + 1, false);
    std::vector<std::uint32_t> items{m_gap};
    for (const SStep& step : path) {
        items.push_back(step.item);
        m_reversed[step.item] = step.reversed;
    }
    layOut(items);
}

void CBlockedTour::layOut(const std::vector<std::uint32_t>& items) {
    m_blocks.clear();
    m_order.clear();
    for (std::size_t first = 0; first < items.size(); first += m_blockSize) {
        const auto block = static_cast<std::uint32_t>(m_blocks.size());
        m_blocks.emplace_back();
        for (std::size_t k = first; k < std::min(items.size(), first + m_blockSize); ++k) {
            m_blockOf[items[k]] = block;
            m_slot[items[k]] = static_cast<std::uint32_t>(m_blocks.back().items.size());
            m_blocks.back().items.push_back(items[k]);
        }
        m_order.push_back(block);
    }
    m_orderStart.assign(m_order.size(), 0);
    m_startOf.assign(m_blocks.size(), 0);
    renumber(0, m_order.size());
}

std::size_t CBlockedTour::blockIndexAt(std::size_t innerIndex) const {
    if (!m_bucketsValid) { // in the middle of a change
        const auto it = std::upper_bound(m_orderStart.begin(), m_orderStart.end(), innerIndex);
        return static_cast<std::size_t>(it - m_orderStart.begin()) - 1;
    }
    std::size_t index = m_bucket[innerIndex >> m_bucketShift];
    while (index + 1 < m_order.size() && m_orderStart[index + 1] <= innerIndex) {
        ++index;
    }
    return index;
}

CBlockedTour::SRead CBlockedTour::readAt(std::size_t position) const {
    const std::size_t at = inner(position < 2 * m_size ? wrap(position) : position % m_size);
    // Reads come in runs near one position: the block of the last read is tried first.
    std::size_t index = m_lastIndex;
    if (index >= m_order.size() || m_orderStart[index] > at ||
        (index + 1 < m_order.size() && m_orderStart[index + 1] <= at)) {
        index = m_lastIndex = blockIndexAt(at);
    }
    return {index, at - m_orderStart[index]};
}

CBlockedTour::SRead CBlockedTour::following(SRead read) const {
    if (++read.k < m_blocks[m_order[read.index]].items.size()) {
        return read;
    }
    return {read.index + 1 < m_order.size() ? read.index + 1 : 0, 0};
}

std::pair<std::uint32_t, bool> CBlockedTour::readItem(SRead read) const {
    const SBlock& block = m_blocks[m_order[read.index]];
    const std::uint32_t item =
        block.items[block.reversed ? block.items.size() - 1 - read.k : read.k];
    return {item, m_reversed[item] != block.reversed};
}

std::uint32_t CBlockedTour::itemAt(std::size_t position) const {
    return readItem(readAt(position)).first;
}

std::size_t CBlockedTour::positionOf(std::uint32_t item) const {
    const std::uint32_t number = m_blockOf[item];
    const SBlock& block = m_blocks[number];
    const std::size_t k = m_slot[item];
    return wrap(m_startOf[number] + (block.reversed ? block.items.size() - 1 - k : k) + m_offset);
}

const Eigen::RowVector3f* CBlockedTour::entryOf(std::uint32_t item, bool reversed) const {
    if (item == m_gap) {
        return reversed && m_hasOrigin ? &m_origin : nullptr;
    }
    return reversed ? &m_ends[item] : &m_starts[item];
}

const Eigen::RowVector3f* CBlockedTour::exitOf(std::uint32_t item, bool reversed) const {
    if (item == m_gap) {
        return !reversed && m_hasOrigin ? &m_origin : nullptr;
    }
    return reversed ? &m_starts[item] : &m_ends[item];
}

double CBlockedTour::jumpAfter(std::size_t position) const {
    // The item after is most often in the same block: one look-up serves both.
    const SRead here = readAt(position);
    const auto [from, fromReversed] = readItem(here);
    const auto [to, toReversed] = readItem(following(here));
    return CTravelTour::jump(exitOf(from, fromReversed), entryOf(to, toReversed));
}

double CBlockedTour::length() const {
    double total = 0.0;
    const Eigen::RowVector3f* from = m_hasOrigin ? &m_origin : nullptr;
    for (const SStep& step : path()) {
        total += CTravelTour::jump(from, step.reversed ? &m_ends[step.item] : &m_starts[step.item]);
        from = step.reversed ? &m_starts[step.item] : &m_ends[step.item];
    }
    return total;
}

void CBlockedTour::reverse(std::size_t first, std::size_t last) {
    first %= m_size;
    last %= m_size;
    std::size_t count = (last + m_size - first) % m_size + 1;
    if (2 * count > m_size) { // the rest of the cycle is shorter, as CTravelTour decides
        first = wrap(last + 1);
        count = m_size - count;
    }
    reverseRange(first, count);
    if (m_journaling) {
        m_journal.push_back({false, first, count, 0, false, false});
    }
    rebuildIfCrowded();
}

void CBlockedTour::move(std::size_t first, std::size_t count, std::size_t after, bool reversed) {
    first %= m_size;
    after %= m_size;
    // S B X from `first`, as CTravelTour::move: S B becomes B S, or X S becomes S X.
    const std::size_t between = (after + m_size - first) % m_size + 1 - count;
    const std::size_t rest = m_size - count - between;
    const SChange change = between <= rest
                               ? SChange{true, first, count, between, reversed, false}
                               : SChange{true, wrap(after + 1), rest, count, false, reversed};
    swapRanges(change.position, change.firstCount, change.secondCount, change.turnFirst,
               change.turnSecond);
    if (m_journaling) {
        m_journal.push_back(change);
    }
    rebuildIfCrowded();
}

std::vector<CBlockedTour::SStep> CBlockedTour::path() const {
    const bool backwards = isReversed(m_gap);
    const std::size_t gapAt = positionOf(m_gap);
    std::vector<SStep> steps;
    steps.reserve(m_size - 1);
    for (std::size_t k = 1; k < m_size; ++k) {
        const std::uint32_t item = itemAt(backwards ? wrap(gapAt + m_size - k) : wrap(gapAt + k));
        steps.push_back({item, isReversed(item) != backwards});
    }
    return steps;
}

void CBlockedTour::startJournal() {
    m_journaling = true;
    m_journal.clear();
}

void CBlockedTour::keepChanges() {
    m_journaling = false;
    m_journal.clear();
}

void CBlockedTour::rollBack() {
    m_journaling = false;
    for (auto it = m_journal.rbegin(); it != m_journal.rend(); ++it) {
        if (it->swap) { // Y X back to X Y, each turned back
            swapRanges(it->position, it->secondCount, it->firstCount, it->turnSecond,
                       it->turnFirst);
        } else {
            reverseRange(it->position, it->firstCount);
        }
        rebuildIfCrowded();
    }
    m_journal.clear();
}

void CBlockedTour::normalize(std::uint32_t number) {
    SBlock& block = m_blocks[number];
    if (!block.reversed) {
        return;
    }
    std::reverse(block.items.begin(), block.items.end());
    for (std::size_t k = 0; k < block.items.size(); ++k) {
        m_slot[block.items[k]] = static_cast<std::uint32_t>(k);
        m_reversed[block.items[k]] = !m_reversed[block.items[k]];
    }
    block.reversed = false;
}

void CBlockedTour::split(std::size_t innerIndex) {
    if (innerIndex == 0 || innerIndex >= m_size) {
        return;
    }
    const std::size_t index = blockIndexAt(innerIndex);
    if (m_orderStart[index] == innerIndex) {
        return;
    }
    const std::uint32_t number = m_order[index];
    normalize(number);
    const std::size_t keep = innerIndex - m_orderStart[index];
    const auto added = static_cast<std::uint32_t>(m_blocks.size());
    m_blocks.emplace_back();
    SBlock& from = m_blocks[number];
    SBlock& to = m_blocks.back();
    to.items.assign(from.items.begin() + static_cast<std::ptrdiff_t>(keep), from.items.end());
    from.items.resize(keep);
    for (std::size_t k = 0; k < to.items.size(); ++k) {
        m_blockOf[to.items[k]] = added;
        m_slot[to.items[k]] = static_cast<std::uint32_t>(k);
    }
    m_bucketsValid = false; // block indices after this one move up
    m_order.insert(m_order.begin() + static_cast<std::ptrdiff_t>(index + 1), added);
    m_orderStart.insert(m_orderStart.begin() + static_cast<std::ptrdiff_t>(index + 1), innerIndex);
    m_startOf.push_back(innerIndex);
}

void CBlockedTour::unwrap(std::size_t position, std::size_t count) {
    const std::size_t at = inner(position);
    if (at + count <= m_size) {
        return;
    }
    split(at);
    const std::size_t index = blockIndexAt(at);
    std::rotate(m_order.begin(), m_order.begin() + static_cast<std::ptrdiff_t>(index),
                m_order.end());
    m_offset = position;
    renumber(0, m_order.size());
}

void CBlockedTour::renumber(std::size_t from, std::size_t to) {
    std::size_t start =
        from == 0 ? 0 : m_orderStart[from - 1] + m_blocks[m_order[from - 1]].items.size();
    for (std::size_t index = from; index < to; ++index) {
        m_orderStart[index] = start;
        m_startOf[m_order[index]] = start;
        start += m_blocks[m_order[index]].items.size();
    }
    // Each bucket of m_blockSize inner indices names the block its first one lies in.
    m_bucket.resize((m_size >> m_bucketShift) + 1);
    std::size_t at = 0;
    for (std::size_t bucket = 0; bucket < m_bucket.size(); ++bucket) {
        while (at + 1 < m_order.size() && m_orderStart[at + 1] <= (bucket << m_bucketShift)) {
            ++at;
        }
        m_bucket[bucket] = at;
    }
    m_bucketsValid = true;
}

void CBlockedTour::reverseRange(std::size_t position, std::size_t count) {
    if (count == 0) {
        return;
    }
    unwrap(position, count);
    const std::size_t at = inner(position);
    split(at);
    split(at + count);
    const std::size_t lo = blockIndexAt(at);
    const std::size_t hi = at + count < m_size ? blockIndexAt(at + count) : m_order.size();
    std::reverse(m_order.begin() + static_cast<std::ptrdiff_t>(lo),
                 m_order.begin() + static_cast<std::ptrdiff_t>(hi));
    for (std::size_t index = lo; index < hi; ++index) {
        m_blocks[m_order[index]].reversed = !m_blocks[m_order[index]].reversed;
    }
    renumber(lo, hi);
}

void CBlockedTour::swapRanges(std::size_t position, std::size_t firstCount, std::size_t secondCount,
                              bool turnFirst, bool turnSecond) {
    const std::size_t count = firstCount + secondCount;
    if (firstCount == 0 || secondCount == 0) { // only a turn, in place
        if (turnFirst || turnSecond) {
            reverseRange(position, count);
        }
        return;
    }
    unwrap(position, count);
    const std::size_t at = inner(position);
    split(at);
    split(at + firstCount);
    split(at + count);
    const std::size_t lo = blockIndexAt(at);
    const std::size_t mid = blockIndexAt(at + firstCount);
    const std::size_t hi = at + count < m_size ? blockIndexAt(at + count) : m_order.size();
    const auto begin = m_order.begin();
    std::vector<std::uint32_t> first(begin + static_cast<std::ptrdiff_t>(lo),
                                     begin + static_cast<std::ptrdiff_t>(mid));
    std::vector<std::uint32_t> second(begin + static_cast<std::ptrdiff_t>(mid),
                                      begin + static_cast<std::ptrdiff_t>(hi));
    for (const auto& [blocks, turn] :
         {std::pair(&first, turnFirst), std::pair(&second, turnSecond)}) {
        if (turn) {
            std::reverse(blocks->begin(), blocks->end());
            for (std::uint32_t number : *blocks) {
                m_blocks[number].reversed = !m_blocks[number].reversed;
            }
        }
    }
    std::copy(second.begin(), second.end(), begin + static_cast<std::ptrdiff_t>(lo));
    std::copy(first.begin(), first.end(), begin + static_cast<std::ptrdiff_t>(lo + second.size()));
    renumber(lo, hi);
}

void CBlockedTour::rebuildIfCrowded() {
    if (m_order.size() <= 2 * (m_size / m_blockSize) + 8) {
        return;
    }
    std::vector<std::uint32_t> items;
    items.reserve(m_size);
    for (std::uint32_t number : m_order) {
        normalize(number);
        items.insert(items.end(), m_blocks[number].items.begin(), m_blocks[number].items.end());
    }
    layOut(items);
}

} // namespace LibStrokeset
