#pragma once

#include <string>
#include <string_view>

// The few style properties that decide whether and with which colour a shape is drawn.
namespace LibStrokeset::Formats::Svg {

struct SStyle {
    bool displayed = true; ///< display is not inherited, but "none" hides everything below
    bool visible = true;
    std::string stroke = "none"; ///< normalised, see normaliseColour
    std::string fill = "#000000";
    /// Round and square caps draw a zero-length sub-path as a dot; butt caps draw nothing.
    bool capsDrawDots = false;

    /// The style of a child: inherits from this one, then applies the element's
    /// presentation attributes and its style attribute, which wins.
    /// `attribute` returns an attribute's value, empty when absent.
    template <typename Attribute> SStyle child(const Attribute& attribute) const {
        SStyle style = *this;
        style.displayed = true;
        for (const char* name : {"display", "visibility", "stroke", "fill", "stroke-linecap"}) {
            style.set(name, attribute(name));
        }
        style.applyDeclarations(attribute("style"));
        return style;
    }

    /// A shape is drawn when it is displayed, visible and has a stroke or a fill.
    bool draws() const { return displayed && visible && (stroke != "none" || fill != "none"); }
    /// The colour that names the shape's pen: its stroke, else its fill.
    const std::string& colour() const { return stroke != "none" ? stroke : fill; }

    void set(std::string_view property, std::string_view value);
    /// "stroke: red; display: none" as in a style attribute.
    void applyDeclarations(std::string_view declarations);
};

/// One spelling per colour: "#rgb", "#RRGGBB", rgb() and the basic names become "#rrggbb";
/// anything else is kept in lower case.
std::string normaliseColour(std::string_view value);

} // namespace LibStrokeset::Formats::Svg
