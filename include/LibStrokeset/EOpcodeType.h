#pragma once

namespace LibStrokeset {

/// Kind of the element that holds an opcode index.
enum EOpcodeType {
    eUnsupported = 0,  ///< an opaque record carried through unchanged
    eSubPathStart = 1, ///< first point of a sub-path (its move-to)
    eSubPathPoint = 2, ///< inner point of a sub-path
    eSubPathEnd = 3,   ///< last point of a sub-path
    eDot = 4,          ///< a dot
    eNone = 5          ///< no element holds the index
};

} // namespace LibStrokeset
