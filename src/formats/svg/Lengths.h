#pragma once

#include <optional>
#include <string_view>

#include "Affine.h"

// SVG lengths with units, and the map from a root element's user units to millimetres.
namespace LibStrokeset::Formats::Svg {

constexpr double kMillimetresPerPixel = 25.4 / 96.0;

/// A length in user units (px at 96 per inch); a percentage is taken of `reference`.
/// Nothing when the text is not a length, or is a percentage without a reference.
std::optional<double> parseLength(std::string_view text,
                                  std::optional<double> reference = std::nullopt);

/// The same length in millimetres, exact for lengths given in mm.
std::optional<double> parseLengthInMillimetres(std::string_view text);

struct SViewBox {
    double x = 0.0, y = 0.0, width = 0.0, height = 0.0;
};

/// A viewBox of four numbers with a positive width and height.
std::optional<SViewBox> parseViewBox(std::string_view text);

/// The map of viewBox onto a viewport of the given size, placed as preserveAspectRatio says
/// ("xMidYMid meet" when it is empty or not understood).
SAffine viewBoxTransform(const SViewBox& box, double width, double height,
                         std::string_view preserveAspectRatio);

/// The attributes of the root element that place the drawing on its page.
struct SRootSize {
    std::string_view width, height, viewBox, preserveAspectRatio;
};

/// Millimetres on the page from the root's user units: the viewBox mapped onto width and
/// height; without a size the viewBox is taken in px, without either the user units are.
SAffine userUnitsToMillimetres(const SRootSize& root);

} // namespace LibStrokeset::Formats::Svg
