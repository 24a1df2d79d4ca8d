#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Flattener.h"
#include "PenTable.h"

// Reads an SVG document into strokes: polylines and dots in output units, each with a pen.
namespace Strokeset::Svg {

enum class EUnits { eMillimetres, eUser };
/// Pens by top-level layer, by stroke colour, or none at all.
enum class EPens { eLayer, eStroke, eNone };

struct SImportOptions {
    double tolerance = 0.01;
    EUnits units = EUnits::eMillimetres;
    EPens pens = EPens::eLayer;
    /// Bounds the memory a tiny tolerance on a huge curve can take.
    std::size_t pointLimit = 5000000;
    /// Elements visited, each use of a referenced element counted again.
    std::size_t elementLimit = 10000000;
};

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

/// Imports the SVG document held in `text`.
SImport importSvg(const std::string& text, const SImportOptions& options);

} // namespace Strokeset::Svg
