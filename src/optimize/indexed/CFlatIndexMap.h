#pragma once

#include <cstdint>
#include <vector>

namespace LibStrokeset {

/// A hash map from 64-bit keys to 32-bit values with open addressing: one flat array, no
/// allocation per key, for the millions of lookups of the indexed scans. The key
/// 0xFFFFFFFFFFFFFFFF marks a free slot and cannot be stored.
class CFlatIndexMap {
public:
    static constexpr std::uint64_t freeKey = ~std::uint64_t(0);
    static constexpr std::uint32_t missing = ~std::uint32_t(0);

    /// Makes room for `count` keys without growing.
    explicit CFlatIndexMap(std::size_t count);

    /// The value stored under `key`; stores `value` there first when the key is new.
    std::uint32_t insert(std::uint64_t key, std::uint32_t value);
    /// The value stored under `key`, or `missing`.
    std::uint32_t find(std::uint64_t key) const;

private:
    std::size_t slotOf(std::uint64_t key) const;

    std::vector<std::uint64_t> m_keys;
    std::vector<std::uint32_t> m_values;
    std::size_t m_mask;
};

} // namespace LibStrokeset
