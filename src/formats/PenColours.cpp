#include <LibStrokeset/Formats/PenColours.h>

#include <LibStrokeset/CDrawingElement.h>

namespace LibStrokeset::Formats {

std::string colourOfPen(unsigned short pen) {
    if (pen == LibStrokeset::CDrawingElement::noPen) {
        return "#000000";
    }
    static const char* const palette[] = {"#1f77b4", "#ff7f0e", "#2ca02c", "#d62728", "#9467bd",
                                          "#8c564b", "#e377c2", "#17becf", "#bcbd22", "#393b79"};
    return palette[pen % 10];
}

} // namespace LibStrokeset::Formats
