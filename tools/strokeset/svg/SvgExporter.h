#pragma once

#include <cstddef>
#include <string>

#include <LibStrokeset/CStrokeset.h>

#include "SvgImporter.h"

// Writes a drawing as SVG for other plotting software: a layer per pen, a path per sub-path.
namespace Strokeset::Svg {

struct SExport {
    std::string svg;
    std::size_t paths = 0, dots = 0, layers = 0;
    /// Sub-paths and dots left out for a coordinate that is not a finite number.
    std::size_t skipped = 0;
};

/// One Inkscape layer per pen in the order the pens first draw, holding that pen's sub-paths
/// in drawing order; dots are zero-length closed paths, which round caps draw as dots. The
/// page (in mm, or in px for user units) spans the drawing and the origin. Coordinates keep
/// every bit of their floats, so that importing in user units gives the same points back;
/// z is not kept.
SExport exportSvg(const LibStrokeset::CStrokeset& drawing, EUnits units);

} // namespace Strokeset::Svg
