#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/Formats/FormatsExport.h>

/// SVG in and out: a drawing's words from an SVG document, and an SVG for other plotting
/// software from a drawing.
namespace LibStrokeset::Formats {

/// What one drawing unit is.
enum class ESvgUnits {
    eMillimetres, ///< a millimetre on the page the SVG describes
    eUser         ///< the SVG's own user unit (a px)
};

/// Where an import's pen numbers come from.
enum class ESvgPens {
    eLayer,  ///< a pen per top-level layer
    eStroke, ///< a pen per stroke colour
    eNone    ///< no pen changes at all
};

/// How an SVG is read.
struct SSvgImportOptions {
    /// Largest distance of a flattened curve from the true one, in drawing units.
    double tolerance = 0.01;
    /// What a drawing unit is.
    ESvgUnits units = ESvgUnits::eMillimetres;
    /// Where pen numbers come from.
    ESvgPens pens = ESvgPens::eLayer;
    /// Bounds the memory a tiny tolerance on a huge curve can take.
    std::size_t pointLimit = 5000000;
    /// Elements visited, each use of a referenced element counted again.
    std::size_t elementLimit = 10000000;
};

/// A pen an import numbered, and the layer name or colour it stands for.
struct SPenName {
    unsigned short pen = 0; ///< the pen number in the drawing
    std::string name;       ///< the layer's label or the stroke colour
};

/// What importSvg read.
struct SSvgImport {
    /// Not empty when the input cannot be used at all; nothing else is filled in then.
    std::string error;
    /// Things skipped or repaired, one line each.
    std::vector<std::string> warnings;
    /// The drawing as a stream: a pen change wherever the pen changes, a move-to and
    /// line-tos per polyline, a dot per dot, all with z = 0.
    std::vector<unsigned short> words;
    /// The pens in the order they were numbered; empty with ESvgPens::eNone.
    std::vector<SPenName> pens;
    std::size_t paths = 0;  ///< polylines in `words`
    std::size_t dots = 0;   ///< dots in `words`
    std::size_t points = 0; ///< points of the polylines and dots together
    /// True when the input could be used.
    bool ok() const { return error.empty(); }
};

/// Reads the SVG document held in `text`: paths, basic shapes, groups, uses and transforms,
/// curves flattened within the tolerance. Hidden elements are left out; text and images are
/// skipped with a warning. Never throws; a document that cannot be used gives an error.
LIBSTROKESET_FORMATS_API SSvgImport importSvg(const std::string& text,
                                              const SSvgImportOptions& options = {});

/// What exportSvg wrote.
struct SSvgExport {
    std::string svg;         ///< the document
    std::size_t paths = 0;   ///< sub-paths written
    std::size_t dots = 0;    ///< dots written
    std::size_t layers = 0;  ///< layers written
    std::size_t skipped = 0; ///< sub-paths and dots left out for a coordinate that is not finite
};

/// Writes a drawing as SVG: one Inkscape layer per run of a pen in drawing order, its id naming
/// the pen, a path per sub-path; dots are zero-length closed paths, which round caps draw as
/// dots. The page (in mm, or in px for user units) spans the drawing and the origin.
/// Coordinates keep every bit of their floats, so that importing in the same units gives the
/// same points, order and pens back; z and unsupported records are not kept.
LIBSTROKESET_FORMATS_API SSvgExport exportSvg(const CStrokeset& drawing,
                                              ESvgUnits units = ESvgUnits::eMillimetres);

} // namespace LibStrokeset::Formats
