#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <LibStrokeset/CDrawingElement.h>

namespace LibStrokeset {

class CSerializationState;

/// One segment of a sub-path: the inherited fields describe its start point (position, pen,
/// opcode index), the end fields its end point. Within a sub-path the start of every line
/// but the first is a second copy of the end of the line before it.
class LIBSTROKESET_API CLine : public CDrawingElement {
public:
    /// A line from start to end, each point with its pen and opcode index.
    CLine(Eigen::RowVector3f startPosition, Eigen::RowVector3f endPosition,
          unsigned short startPenNumber, unsigned short endPenNumber, unsigned int startOpcodeIndex,
          unsigned int endOpcodeIndex);

    /// Position of the end point.
    const Eigen::RowVector3f& getEndPosition() const;
    /// Pen of the end point; 65535 means no pen.
    unsigned short getEndPenNumber() const;
    /// Opcode index of the end point; 4294967295 when it has none.
    unsigned int getEndOpcodeIndex() const;
    /// Replaces the pen of the end point.
    void setEndPenNumber(unsigned short penNumber);
    /// Replaces the opcode index of the end point.
    void setEndOpcodeIndex(unsigned int opcodeIndex);

    /// Replaces the end position and keeps the end opcode index.
    void setEndPoint(Eigen::RowVector3f position);
    /// Replaces the end position and the end opcode index.
    void setEndPoint(Eigen::RowVector3f position, unsigned int opcodeIndex);

    /// The end point is 3D exactly when its z compares unequal to 0, as is3D() for the start.
    bool isEnd3D() const;

    /// Exchanges start and end positions and indices; the pens stay in their fields.
    void reverse();

    /// Writes the start point as a move-to (pen change when needed, 2D or 3D form) as a new
    /// opcode: nothing enters an index map and the line keeps its indices.
    void copyMoveTo(CSerializationState& state) const;
    /// Writes the end point as a line-to, as a new opcode, like copyMoveTo.
    void copyLineTo(CSerializationState& state) const;
    /// Writes the start point as a move-to; the start index becomes the writer's new index.
    void serializeStartPointAsMoveTo(CSerializationState& state);
    /// Writes the start point as a line-to; the start index becomes the writer's new index.
    void serializeStartPointAsLineTo(CSerializationState& state);
    /// Writes the end point as a line-to; the end index becomes the writer's new index. The
    /// start index first becomes that of the opcode written just before, the line's start.
    void serializeEndPointAsLineTo(CSerializationState& state);

private:
    Eigen::RowVector3f m_endPosition;
    unsigned short m_endPenNumber;
    unsigned int m_endOpcodeIndex;
};

} // namespace LibStrokeset
