#pragma once

#include <string>

// Numbers as files carry them: in the C locale whatever the host's locale is, and never an
// exponent where a machine expects plain decimals.
namespace LibStrokeset::Formats {

/// Nine significant digits, which bring every float back exactly ("%.9g").
std::string significantDigits(double value);

/// `value` rounded to `decimals` digits after the point (0 to 6), always in plain decimals:
/// no exponent at any size, and no "-0" (a value that rounds to zero is written unsigned).
/// `value` must be finite.
std::string fixedDecimals(double value, int decimals);

/// Like fixedDecimals, without the zeros that end the decimals (and without a point that
/// ends the number): "1000" rather than "1000.000" for a feed or a power.
std::string shortDecimals(double value, int decimals);

} // namespace LibStrokeset::Formats
