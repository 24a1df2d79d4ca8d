#pragma once

#include <string>

// Numbers as files carry them: in the C locale whatever the host's locale is, and never an
// exponent where a machine expects plain decimals.
namespace LibStrokeset::Formats {

/// Nine significant digits, which bring every float back exactly ("%.9g").
std::string significantDigits(double value);

} // namespace LibStrokeset::Formats
