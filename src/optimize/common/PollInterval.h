#pragma once

#include <cstddef>

namespace LibStrokeset {

/// How many items the indexed engine's preparing loops (hashing, filing, building) handle
/// between two looks at the abort flag: often enough that an abort stops even a run over a
/// million collections within milliseconds, seldom enough to cost nothing.
constexpr std::size_t pollEvery = 1024;

} // namespace LibStrokeset
