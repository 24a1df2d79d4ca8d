#pragma once

namespace LibStrokeset {

// The opcode words the library knows. The top four bits of each give the record's length.
namespace Opcode {
constexpr unsigned short penChange = 0x240A;
constexpr unsigned short moveTo2D = 0x5416;
constexpr unsigned short moveTo3D = 0x7426;
constexpr unsigned short lineTo2D = 0x5417;
constexpr unsigned short lineTo3D = 0x7427;
constexpr unsigned short dot2D = 0x541A;
constexpr unsigned short dot3D = 0x742A;
} // namespace Opcode

} // namespace LibStrokeset
