#pragma once

#include <Eigen/Core>

#include <LibStrokeset/CDot.h>
#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/CSubPath.h>
#include <LibStrokeset/CUnsupportedElement.h>

// Visits a drawing as a machine would draw it, so that info and render agree on what the
// pen-up travel is.
namespace Strokeset {

class IDrawingVisitor {
public:
    virtual ~IDrawingVisitor() = default;
    /// A sub-path with at least one line.
    virtual void onPath(const LibStrokeset::CSubPath& path) = 0;
    virtual void onDot(const LibStrokeset::CDot& dot) = 0;
    virtual void onRecord(const LibStrokeset::CUnsupportedElement& record) = 0;
    /// A pen-up move from where the last path or dot ended to where the next one starts.
    virtual void onJump(const Eigen::RowVector3f& from, const Eigen::RowVector3f& to) = 0;
};

/// The points of the sub-paths and the dots; the document's own count includes the opaque
/// records too.
unsigned int drawnPointCount(LibStrokeset::CStrokeset& drawing);

/// The collections a reader finds in the words the drawing writes: emptied ones write
/// nothing, and neighbouring runs of dots (or of unsupported records) read back as one.
unsigned int writtenCollectionCount(const LibStrokeset::CStrokeset& drawing);

/// The length of all the jumps of walkDrawing.
double penUpTravel(const LibStrokeset::CStrokeset& drawing);

/// Visits the collections in document order: every dot on its own, sub-paths without lines
/// skipped, and a jump before every path or dot but the first.
void walkDrawing(const LibStrokeset::CStrokeset& drawing, IDrawingVisitor& visitor);

} // namespace Strokeset
