#include "Numbers.h"

#include <charconv>

namespace LibStrokeset::Formats {

std::string significantDigits(double value) {
    char text[32];
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::general, 9);
    return std::string(text, end.ptr);
}

std::string fixedDecimals(double value, int decimals) {
    // The largest double has 309 digits before the point.
    char text[400];
    const std::to_chars_result end =
        std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    std::string written(text, end.ptr);
    if (written.front() == '-' && written.find_first_not_of("-0.") == std::string::npos) {
        written.erase(0, 1);
    }
    return written;
}

std::string shortDecimals(double value, int decimals) {
    std::string written = fixedDecimals(value, decimals);
    if (written.find('.') != std::string::npos) {
        written.erase(written.find_last_not_of('0') + 1);
        if (written.back() == '.') {
            written.pop_back();
        }
    }
    return written;
}

} // namespace LibStrokeset::Formats
