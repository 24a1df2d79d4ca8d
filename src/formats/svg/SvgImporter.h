#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <LibStrokeset/Formats/Svg.h>

#include "Flattener.h"
#include "PenTable.h"

// Reads an SVG document into strokes: polylines and dots in output units, each with a pen.
namespace LibStrokeset::Formats::Svg {

using EUnits = ESvgUnits;
using EPens = ESvgPens;
using SImportOptions = SSvgImportOptions;

struct SImport {
    /// Not empty when the input cannot be used at all; nothing else is filled in then.
    std::string error;
    /// Things skipped or repaired, one line each.
    std::vector<std::string> warnings;
    std::vector<SStroke> strokes;
    /// The pen of each stroke; 65535 with EPens::eNone.
    std::vector<unsigned short> pens;
    std::vector<CPenTable::SPen> penTable;
};

/// Imports the SVG document held in `text` as strokes; importSvg makes them words.
SImport importStrokes(const std::string& text, const SImportOptions& options);

} // namespace LibStrokeset::Formats::Svg
