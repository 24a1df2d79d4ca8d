#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <LibStrokeset/CDrawingElement.h>

namespace LibStrokeset {

class CSerializationState;

/// A single point of the drawing.
class LIBSTROKESET_API CDot : public CDrawingElement {
public:
    /// A dot at the position, drawn with the pen, under the opcode index.
    CDot(Eigen::RowVector3f position, unsigned short penNumber, unsigned int opcodeIndex);

    /// Writes the dot as a new opcode (pen change when needed, then the 2D or 3D dot record);
    /// nothing enters an index map and the dot keeps its index.
    void copy(CSerializationState& state) const;
    /// Writes the dot as copy does, hands the writer its index as the old one and takes the
    /// new index the writer gives it.
    void serialize(CSerializationState& state);
};

} // namespace LibStrokeset
