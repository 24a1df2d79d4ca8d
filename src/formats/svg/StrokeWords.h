#pragma once

#include <vector>

#include "SvgImporter.h"

namespace LibStrokeset::Formats::Svg {

/// The stream of an import: a pen change wherever the pen changes (none for 65535), then a
/// move-to and line-tos per polyline and a dot record per dot, all 2D.
std::vector<unsigned short> strokeWords(const SImport& import);

} // namespace LibStrokeset::Formats::Svg
