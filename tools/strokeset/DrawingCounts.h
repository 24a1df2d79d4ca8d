#pragma once

#include <LibStrokeset/CStrokeset.h>

// What info, optimize and simplify count in a drawing.
namespace Strokeset {

/// The points of the sub-paths and the dots; the document's own count includes the opaque
/// records too.
unsigned int drawnPointCount(LibStrokeset::CStrokeset& drawing);

/// The collections a reader finds in the words the drawing writes: emptied ones write
/// nothing, and neighbouring runs of dots (or of unsupported records) read back as one.
unsigned int writtenCollectionCount(const LibStrokeset::CStrokeset& drawing);

} // namespace Strokeset
