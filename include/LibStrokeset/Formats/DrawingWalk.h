#pragma once

#include <Eigen/Core>

#include <LibStrokeset/CDot.h>
#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/CSubPath.h>
#include <LibStrokeset/CUnsupportedElement.h>
#include <LibStrokeset/Formats/FormatsExport.h>

namespace LibStrokeset::Formats {

/// What walkDrawing reports, in the order a machine draws it.
class LIBSTROKESET_FORMATS_API IDrawingVisitor {
public:
    virtual ~IDrawingVisitor() = default;
    /// A sub-path with at least one line.
    virtual void onPath(const CSubPath& path) = 0;
    /// A dot.
    virtual void onDot(const CDot& dot) = 0;
    /// An unsupported record, in its place among the paths and dots.
    virtual void onRecord(const CUnsupportedElement& record) = 0;
    /// A pen-up move from where the last path or dot ended to where the next one starts.
    virtual void onJump(const Eigen::RowVector3f& from, const Eigen::RowVector3f& to) = 0;
};

/// Visits the collections in document order: every dot on its own, sub-paths without lines
/// skipped, and a jump before every path or dot but the first. Writers and estimates share it,
/// so that they agree on what the pen-up travel is.
LIBSTROKESET_FORMATS_API void walkDrawing(const CStrokeset& drawing, IDrawingVisitor& visitor);

/// The length of all the jumps of walkDrawing, summed in double.
LIBSTROKESET_FORMATS_API double penUpTravel(const CStrokeset& drawing);

} // namespace LibStrokeset::Formats
