#pragma once

#include <string>

namespace Strokeset {

/// The colour that pictures and exported layers give a pen: ten that tell apart well,
/// repeating; black for no pen.
std::string colourOfPen(unsigned short pen);

} // namespace Strokeset
