#include "optimize/indexed/CFlatIndexMap.h"

namespace LibStrokeset {

CFlatIndexMap::CFlatIndexMap(std::size_t count) {
    // At most half full, so that probe runs stay short.
    std::size_t capacity = 16;
    while (capacity < 2 * count) {
        capacity *= 2;
    }
    m_keys.assign(capacity, freeKey);
    m_values.assign(capacity, missing);
    m_mask = capacity - 1;
}

std::size_t CFlatIndexMap::slotOf(std::uint64_t key) const {
    // Cell keys and hashes alike are spread over all bits by a final mix (SplitMix64's).
    std::uint64_t z = key;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return static_cast<std::size_t>(z ^ (z >> 31)) & m_mask;
}

std::uint32_t CFlatIndexMap::insert(std::uint64_t key, std::uint32_t value) {
    std::size_t slot = slotOf(key);
    while (m_keys[slot] != freeKey) {
        if (m_keys[slot] == key) {
            return m_values[slot];
        }
        slot = (slot + 1) & m_mask;
    }
    m_keys[slot] = key;
    m_values[slot] = value;
    return value;
}

std::uint32_t CFlatIndexMap::find(std::uint64_t key) const {
    std::size_t slot = slotOf(key);
    while (m_keys[slot] != freeKey) {
        if (m_keys[slot] == key) {
            return m_values[slot];
        }
        slot = (slot + 1) & m_mask;
    }
    return missing;
}

} // namespace LibStrokeset
