#include "Format.h"

#include <cstdio>
#include <vector>

namespace Strokeset {

std::string formatNumber(const char* format, double value) {
    const int length = std::snprintf(nullptr, 0, format, value);
    if (length < 0) {
        return {};
    }
    std::vector<char> text(static_cast<std::size_t>(length) + 1);
    std::snprintf(text.data(), text.size(), format, value);
    return std::string(text.data(), static_cast<std::size_t>(length));
}

} // namespace Strokeset
