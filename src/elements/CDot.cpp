#include <LibStrokeset/CDot.h>

#include "elements/PointWriter.h"
#include "stream/Opcodes.h"

namespace LibStrokeset {

CDot::CDot(Eigen::RowVector3f position, unsigned short penNumber, unsigned int opcodeIndex)
    : CDrawingElement(position, penNumber, opcodeIndex) {}

void CDot::copy(CSerializationState& state) const {
    writePoint(state, Opcode::dot2D, Opcode::dot3D, getPosition(), getPenNumber(), noIndex);
}

void CDot::serialize(CSerializationState& state) {
    setOpcodeIndex(writePoint(state, Opcode::dot2D, Opcode::dot3D, getPosition(), getPenNumber(),
                              getOpcodeIndex()));
}

} // namespace LibStrokeset
