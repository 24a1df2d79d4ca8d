#include "StrokeWords.h"

#include <cstdint>
#include <cstring>

namespace LibStrokeset::Formats::Svg {

namespace {

constexpr unsigned short kPenChange = 0x240A, kMoveTo = 0x5416, kLineTo = 0x5417, kDot = 0x541A;
constexpr unsigned short kNoPen = 65535;

/// A point record: the opcode, then x and y as floats, high half of each first.
void point(std::vector<unsigned short>& words, unsigned short opcode, SVec2 p) {
    words.push_back(opcode);
    for (const double coordinate : {p.x, p.y}) {
        const float value = toFloat(coordinate);
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        words.push_back(static_cast<unsigned short>(bits >> 16));
        words.push_back(static_cast<unsigned short>(bits & 0xFFFF));
    }
}

} // namespace

std::vector<unsigned short> strokeWords(const SImport& import) {
    std::vector<unsigned short> words;
    unsigned short pen = kNoPen;
    for (std::size_t i = 0; i < import.strokes.size(); ++i) {
        if (import.pens[i] != pen && import.pens[i] != kNoPen) {
            pen = import.pens[i];
            words.insert(words.end(), {kPenChange, pen});
        }
        const std::vector<SVec2>& points = import.strokes[i].points;
        if (import.strokes[i].isDot()) {
            point(words, kDot, points.front());
            continue;
        }
        point(words, kMoveTo, points.front());
        for (std::size_t j = 1; j < points.size(); ++j) {
            point(words, kLineTo, points[j]);
        }
    }
    return words;
}

} // namespace LibStrokeset::Formats::Svg

namespace LibStrokeset::Formats {

SSvgImport importSvg(const std::string& text, const SSvgImportOptions& options) {
    const Svg::SImport strokes = Svg::importStrokes(text, options);
    SSvgImport result;
    result.error = strokes.error;
    result.warnings = strokes.warnings;
    if (!result.ok()) {
        return result;
    }
    result.words = Svg::strokeWords(strokes);
    for (const Svg::CPenTable::SPen& pen : strokes.penTable) {
        result.pens.push_back({pen.number, pen.name});
    }
    for (const Svg::SStroke& stroke : strokes.strokes) {
        (stroke.isDot() ? result.dots : result.paths) += 1;
        result.points += stroke.points.size();
    }
    return result;
}

} // namespace LibStrokeset::Formats
