#pragma once

#include <string>

#include <LibStrokeset/Formats/FormatsExport.h>

namespace LibStrokeset::Formats {

/// The colour that pictures and exported layers give a pen ("#rrggbb"): ten that tell apart
/// well, repeating; black for no pen.
LIBSTROKESET_FORMATS_API std::string colourOfPen(unsigned short pen);

} // namespace LibStrokeset::Formats
