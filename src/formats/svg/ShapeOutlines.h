#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "PathData.h"

// The basic shapes of SVG written as the paths they are equivalent to.
namespace LibStrokeset::Formats::Svg {

/// A rectangle, with its corners rounded by (rx, ry) when given; a missing radius takes the
/// other's value and both are limited to half the sides. Empty for a side of 0 or less.
std::vector<SSegment> rectangleOutline(double x, double y, double width, double height,
                                       std::optional<double> rx, std::optional<double> ry);

std::vector<SSegment> lineOutline(SVec2 from, SVec2 to);

/// The points of a polyline or polygon ("0,0 10,0 10 10"), closed for a polygon. An odd
/// number or a bad token ends the list there, and `complete` is set to false.
std::vector<SSegment> pointsOutline(std::string_view points, bool closed, bool& complete);

} // namespace LibStrokeset::Formats::Svg
