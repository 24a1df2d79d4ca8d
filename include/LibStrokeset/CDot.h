#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <LibStrokeset/CDrawingElement.h>

namespace LibStrokeset {

class CSerializationState;

/// A single point of the drawing.
class LIBSTROKESET_API CDot : public CDrawingElement {
public:
    CDot(Eigen::RowVector3f position, unsigned short penNumber, unsigned int opcodeIndex);

    /// Writes the dot as a new opcode; the dot keeps its index.
    void copy(CSerializationState& state) const;
    /// Writes the dot and takes the new index the writer gives it.
    void serialize(CSerializationState& state);
};

} // namespace LibStrokeset
