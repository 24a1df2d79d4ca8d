#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <LibStrokeset/CDrawingElement.h>

namespace LibStrokeset {

class CSerializationState;

/// One segment of a sub-path: the inherited fields describe its start point.
class LIBSTROKESET_API CLine : public CDrawingElement {
public:
    CLine(Eigen::RowVector3f startPosition, Eigen::RowVector3f endPosition,
          unsigned short startPenNumber, unsigned short endPenNumber, unsigned int startOpcodeIndex,
          unsigned int endOpcodeIndex);

    const Eigen::RowVector3f& getEndPosition() const;
    unsigned short getEndPenNumber() const;
    unsigned int getEndOpcodeIndex() const;
    void setEndPenNumber(unsigned short penNumber);
    void setEndOpcodeIndex(unsigned int opcodeIndex);

    /// Replaces the end position and keeps the end opcode index.
    void setEndPoint(Eigen::RowVector3f position);
    /// Replaces the end position and the end opcode index.
    void setEndPoint(Eigen::RowVector3f position, unsigned int opcodeIndex);

    bool isEnd3D() const;

    /// Exchanges start and end positions and indices; the pens stay in their fields.
    void reverse();

    void copyMoveTo(CSerializationState& state) const;
    void copyLineTo(CSerializationState& state) const;
    void serializeStartPointAsMoveTo(CSerializationState& state);
    void serializeStartPointAsLineTo(CSerializationState& state);
    void serializeEndPointAsLineTo(CSerializationState& state);

private:
    Eigen::RowVector3f m_endPosition;
    unsigned short m_endPenNumber;
    unsigned int m_endOpcodeIndex;
};

} // namespace LibStrokeset
