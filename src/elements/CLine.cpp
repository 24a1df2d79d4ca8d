#include <LibStrokeset/CLine.h>

#include "elements/Geometry.h"
#include "elements/PointWriter.h"
#include "stream/Opcodes.h"

namespace LibStrokeset {

CLine::CLine(Eigen::RowVector3f startPosition, Eigen::RowVector3f endPosition,
             unsigned short startPenNumber, unsigned short endPenNumber,
             unsigned int startOpcodeIndex, unsigned int endOpcodeIndex)
    : CDrawingElement(startPosition, startPenNumber, startOpcodeIndex), m_endPosition(endPosition),
      m_endPenNumber(endPenNumber), m_endOpcodeIndex(endOpcodeIndex) {}

const Eigen::RowVector3f& CLine::getEndPosition() const { return m_endPosition; }

unsigned short CLine::getEndPenNumber() const { return m_endPenNumber; }

unsigned int CLine::getEndOpcodeIndex() const { return m_endOpcodeIndex; }

void CLine::setEndPenNumber(unsigned short penNumber) { m_endPenNumber = penNumber; }

void CLine::setEndOpcodeIndex(unsigned int opcodeIndex) { m_endOpcodeIndex = opcodeIndex; }

void CLine::setEndPoint(Eigen::RowVector3f position) { m_endPosition = position; }

void CLine::setEndPoint(Eigen::RowVector3f position, unsigned int opcodeIndex) {
    m_endPosition = position;
    m_endOpcodeIndex = opcodeIndex;
}

bool CLine::isEnd3D() const { return isPoint3D(m_endPosition); }

void CLine::reverse() {
    const Eigen::RowVector3f start = getPosition();
    const unsigned int startIndex = getOpcodeIndex();
    setPoint(m_endPosition, false);
    setOpcodeIndex(m_endOpcodeIndex);
    m_endPosition = start;
    m_endOpcodeIndex = startIndex;
}

void CLine::copyMoveTo(CSerializationState& state) const {
    writePoint(state, Opcode::moveTo2D, Opcode::moveTo3D, getPosition(), getPenNumber(), noIndex);
}

void CLine::copyLineTo(CSerializationState& state) const {
    writePoint(state, Opcode::lineTo2D, Opcode::lineTo3D, m_endPosition, m_endPenNumber, noIndex);
}

void CLine::serializeStartPointAsMoveTo(CSerializationState& state) {
    setOpcodeIndex(writePoint(state, Opcode::moveTo2D, Opcode::moveTo3D, getPosition(),
                              getPenNumber(), getOpcodeIndex()));
}

void CLine::serializeStartPointAsLineTo(CSerializationState& state) {
    setOpcodeIndex(writePoint(state, Opcode::lineTo2D, Opcode::lineTo3D, getPosition(),
                              getPenNumber(), getOpcodeIndex()));
}

void CLine::serializeEndPointAsLineTo(CSerializationState& state) {
    // The line starts at the point written just before.
    setOpcodeIndex(state.getOpcodeCounter() - 1);
    m_endOpcodeIndex = writePoint(state, Opcode::lineTo2D, Opcode::lineTo3D, m_endPosition,
                                  m_endPenNumber, m_endOpcodeIndex);
}

} // namespace LibStrokeset
