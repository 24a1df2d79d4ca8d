#include "Style.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

#include "Scanner.h"

namespace LibStrokeset::Formats::Svg {

namespace {

std::string_view trim(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string lower(std::string_view text) {
    std::string result(text);
    for (char& c : result) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return result;
}

std::string hex(int r, int g, int b) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", r & 0xFF, g & 0xFF, b & 0xFF);
    return text;
}

/// "rgb(255, 0, 0)" or "rgb(100%, 0%, 0%)"; empty when it is not one.
std::string rgbFunction(std::string_view value) {
    CScanner scanner(value.substr(4));
    int channels[3];
    for (int& channel : channels) {
        scanner.skipSeparator();
        double number = 0.0;
        if (!scanner.number(number)) {
            return {};
        }
        if (scanner.accept('%')) {
            number *= 2.55;
        }
        channel = static_cast<int>(std::lround(std::fmin(std::fmax(number, 0.0), 255.0)));
    }
    scanner.skipSpace();
    return scanner.accept(')') ? hex(channels[0], channels[1], channels[2]) : std::string();
}

struct SNamedColour {
    const char* name;
    const char* hex;
};

// The colours of HTML 4, which plotting drawings use most.
constexpr SNamedColour kNamedColours[] = {
    {"black", "#000000"},   {"silver", "#c0c0c0"},  {"gray", "#808080"},  {"grey", "#808080"},
    {"white", "#ffffff"},   {"maroon", "#800000"},  {"red", "#ff0000"},   {"purple", "#800080"},
    {"fuchsia", "#ff00ff"}, {"magenta", "#ff00ff"}, {"green", "#008000"}, {"lime", "#00ff00"},
    {"olive", "#808000"},   {"yellow", "#ffff00"},  {"navy", "#000080"},  {"blue", "#0000ff"},
    {"teal", "#008080"},    {"aqua", "#00ffff"},    {"cyan", "#00ffff"},  {"orange", "#ffa500"},
};

} // namespace

std::string normaliseColour(std::string_view value) {
    const std::string text = lower(trim(value));
    const bool hexDigits =
        text.size() > 1 && text.find_first_not_of("0123456789abcdef", 1) == std::string::npos;
    if (text[0] == '#' && hexDigits && text.size() == 4) {
        return {'#', text[1], text[1], text[2], text[2], text[3], text[3]};
    }
    if (text[0] == '#' && hexDigits && text.size() == 7) {
        return text;
    }
    if (text.rfind("rgb(", 0) == 0) {
        const std::string rgb = rgbFunction(text);
        if (!rgb.empty()) {
            return rgb;
        }
    }
    for (const SNamedColour& named : kNamedColours) {
        if (text == named.name) {
            return named.hex;
        }
    }
    return text;
}

void SStyle::set(std::string_view property, std::string_view value) {
    value = trim(value);
    if (value.empty() || value == "inherit") {
        return;
    }
    if (property == "display") {
        displayed = value != "none";
    } else if (property == "visibility") {
        visible = value == "visible";
    } else if (property == "stroke") {
        stroke = normaliseColour(value);
    } else if (property == "fill") {
        fill = normaliseColour(value);
    } else if (property == "stroke-linecap") {
        capsDrawDots = value == "round" || value == "square";
    }
}

void SStyle::applyDeclarations(std::string_view declarations) {
    while (!declarations.empty()) {
        const std::size_t end = std::min(declarations.find(';'), declarations.size());
        const std::string_view declaration = declarations.substr(0, end);
        const std::size_t colon = declaration.find(':');
        if (colon != std::string_view::npos) {
            std::string_view value = declaration.substr(colon + 1);
            const std::size_t important = value.find('!');
            set(trim(declaration.substr(0, colon)), value.substr(0, important));
        }
        declarations.remove_prefix(std::min(end + 1, declarations.size()));
    }
}

} // namespace LibStrokeset::Formats::Svg
