#pragma once

#include <LibStrokeset/Formats/FormatsExport.h>

#include <vector>

#include <Eigen/Core>

#include <LibStrokeset/CStrokeset.h>

/// What a drawing holds, in the figures a user asks about first: its kinds, pens, size and
/// lengths.
namespace LibStrokeset::Formats {

/// The figures of summarizeDrawing.
struct SDrawingSummary {
    unsigned int subPathCollections = 0; ///< collections that are sub-paths
    unsigned int dotCollections = 0;     ///< collections of dots
    unsigned int recordCollections = 0;  ///< collections of unsupported records
    /// Points of the sub-paths and the dots; records are not counted.
    unsigned int points = 0;
    unsigned int subPaths = 0; ///< sub-paths with at least one line
    unsigned int lines = 0;    ///< lines of those sub-paths
    unsigned int dots = 0;     ///< dots
    unsigned int records = 0;  ///< unsupported records
    /// Every pen a point is drawn with, ascending; 65535 stands for points without a pen.
    std::vector<unsigned short> pens;
    /// Pen change records serialize would write.
    unsigned int penChanges = 0;
    /// Whether the drawing has a point, and so a bounding box.
    bool hasBox = false;
    /// Least coordinates of the points; a NaN coordinate does not widen the box.
    Eigen::RowVector3f low = Eigen::RowVector3f::Zero();
    /// Greatest coordinates of the points, as low.
    Eigen::RowVector3f high = Eigen::RowVector3f::Zero();
    /// Length of every line, summed in double.
    double drawnLength = 0.0;
    /// Pen-up travel as penUpTravel measures it.
    double travelLength = 0.0;
};

/// Counts and measures the drawing in one walk; the drawing is not changed (the counts it
/// asks the document for are not const members).
LIBSTROKESET_FORMATS_API SDrawingSummary summarizeDrawing(CStrokeset& drawing);

} // namespace LibStrokeset::Formats
