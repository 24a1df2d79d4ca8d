#pragma once

#include <string>

// Numbers as the sub-commands print them.
namespace Strokeset {

/// The value printed with a printf format that takes one double ("%.3f", "%+.1f%%"), at any
/// size: the largest double in %.3f has over 300 digits.
std::string formatNumber(const char* format, double value);

} // namespace Strokeset
