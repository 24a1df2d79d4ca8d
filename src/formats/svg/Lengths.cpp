#include "Lengths.h"

#include <cctype>
#include <cmath>
#include <string>

#include "Scanner.h"

namespace LibStrokeset::Formats::Svg {

namespace {

struct SUnit {
    std::string_view name;
    double pixels, millimetres;
};

// "em" and "ex" follow a 16 px font, as browsers default to.
constexpr SUnit kUnits[] = {
    {"", 1.0, kMillimetresPerPixel},
    {"px", 1.0, kMillimetresPerPixel},
    {"mm", 96.0 / 25.4, 1.0},
    {"cm", 96.0 / 2.54, 10.0},
    {"in", 96.0, 25.4},
    {"pt", 96.0 / 72.0, 25.4 / 72.0},
    {"pc", 16.0, 25.4 / 6.0},
    {"q", 96.0 / 101.6, 0.25},
    {"em", 16.0, 16.0 * kMillimetresPerPixel},
    {"ex", 8.0, 8.0 * kMillimetresPerPixel},
};

struct SLength {
    double value = 0.0;
    const SUnit* unit = nullptr; ///< null for a percentage
};

std::optional<SLength> splitLength(std::string_view text) {
    CScanner scanner(text);
    scanner.skipSpace();
    SLength length;
    if (!scanner.number(length.value)) {
        return std::nullopt;
    }
    const bool percent = scanner.accept('%');
    std::string name(percent ? std::string_view() : scanner.word());
    for (char& c : name) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    scanner.skipSpace();
    if (!scanner.atEnd()) {
        return std::nullopt;
    }
    if (percent) {
        return length;
    }
    for (const SUnit& unit : kUnits) {
        if (unit.name == name) {
            length.unit = &unit;
            return length;
        }
    }
    return std::nullopt;
}

/// Where the viewBox sits in the room left over: 0, 1/2 or 1 of it.
double alignment(std::string_view align, std::string_view min, std::string_view mid) {
    return align.substr(0, 4) == min ? 0.0 : align.substr(0, 4) == mid ? 0.5 : 1.0;
}

} // namespace

std::optional<double> parseLength(std::string_view text, std::optional<double> reference) {
    const std::optional<SLength> length = splitLength(text);
    if (!length) {
        return std::nullopt;
    }
    if (length->unit == nullptr) {
        return reference ? std::optional<double>(length->value / 100.0 * *reference) : std::nullopt;
    }
    return length->value * length->unit->pixels;
}

std::optional<double> parseLengthInMillimetres(std::string_view text) {
    const std::optional<SLength> length = splitLength(text);
    if (!length || length->unit == nullptr) {
        return std::nullopt;
    }
    return length->value * length->unit->millimetres;
}

std::optional<SViewBox> parseViewBox(std::string_view text) {
    CScanner scanner(text);
    double v[4];
    scanner.skipSpace();
    for (double& value : v) {
        if (!scanner.number(value)) {
            return std::nullopt;
        }
        scanner.skipSeparator();
    }
    if (!scanner.atEnd() || !(v[2] > 0.0) || !(v[3] > 0.0) || !std::isfinite(v[2] * v[3])) {
        return std::nullopt;
    }
    return SViewBox{v[0], v[1], v[2], v[3]};
}

SAffine viewBoxTransform(const SViewBox& box, double width, double height,
                         std::string_view preserveAspectRatio) {
    CScanner scanner(preserveAspectRatio);
    scanner.skipSpace();
    std::string_view align = scanner.word();
    if (align == "defer") {
        scanner.skipSpace();
        align = scanner.word();
    }
    scanner.skipSpace();
    const bool slice = scanner.word() == "slice";
    double sx = width / box.width, sy = height / box.height;
    double tx = 0.0, ty = 0.0;
    if (align != "none") {
        if (align.size() != 8) {
            align = "xMidYMid";
        }
        sx = sy = slice ? std::fmax(sx, sy) : std::fmin(sx, sy);
        tx = (width - box.width * sx) * alignment(align.substr(0, 4), "xMin", "xMid");
        ty = (height - box.height * sy) * alignment(align.substr(4), "YMin", "YMid");
    }
    return {sx, 0.0, 0.0, sy, tx - box.x * sx, ty - box.y * sy};
}

SAffine userUnitsToMillimetres(const SRootSize& root) {
    const std::optional<SViewBox> box = parseViewBox(root.viewBox);
    std::optional<double> width = parseLengthInMillimetres(root.width);
    std::optional<double> height = parseLengthInMillimetres(root.height);
    if (!box) {
        return SAffine::scaling(kMillimetresPerPixel, kMillimetresPerPixel);
    }
    // A missing (or relative) side follows the viewBox's proportions, or its size in px.
    if (!width && !height) {
        width = box->width * kMillimetresPerPixel;
        height = box->height * kMillimetresPerPixel;
    } else if (!width) {
        width = *height * box->width / box->height;
    } else if (!height) {
        height = *width * box->height / box->width;
    }
    return viewBoxTransform(*box, *width, *height, root.preserveAspectRatio);
}

} // namespace LibStrokeset::Formats::Svg
