#pragma once

#include <Eigen/Core>

#include "elements/Geometry.h"
#include "stream/CSerializationState.h"

namespace LibStrokeset {

/// Writes one point record in the order every emitter follows: pen change if needed, the
/// 2D or 3D opcode, x, y and, for 3D, z. Returns the new index.
inline unsigned int writePoint(CSerializationState& state, unsigned short opcode2D,
                               unsigned short opcode3D, const Eigen::RowVector3f& position,
                               unsigned short pen, unsigned int oldIndex) {
    const bool is3D = isPoint3D(position);
    state.writePenNumber(pen);
    const unsigned int newIndex = state.writeOpcode(is3D ? opcode3D : opcode2D, oldIndex);
    state.writeFloat(position.x());
    state.writeFloat(position.y());
    if (is3D) {
        state.writeFloat(position.z());
    }
    return newIndex;
}

} // namespace LibStrokeset
