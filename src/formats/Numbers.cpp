#include "Numbers.h"

#include <charconv>

namespace LibStrokeset::Formats {

std::string significantDigits(double value) {
    char text[32];
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, 9);
    return std::string(text, end.ptr);
}

} // namespace LibStrokeset::Formats
