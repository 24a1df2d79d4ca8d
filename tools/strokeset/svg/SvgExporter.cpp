#include "SvgExporter.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "../DrawingWalk.h"
#include "../Format.h"
#include "../PenColours.h"

namespace Strokeset::Svg {

namespace {

using Point = Eigen::RowVector3f;

/// Nine significant digits bring every float back exactly.
std::string number(double value) { return formatNumber("%.9g", value); }

std::string pair(const Point& p) {
    return number(static_cast<double>(p.x())) + " " + number(static_cast<double>(p.y()));
}

bool finite(const Point& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

/// Gathers path data per pen, pens in the order they first draw.
struct SLayers : IDrawingVisitor {
    std::vector<unsigned short> order;
    std::map<unsigned short, std::string> paths;
    double low[2] = {0.0, 0.0}, high[2] = {0.0, 0.0}; // the origin is always on the page
    SExport* result = nullptr;

    void add(unsigned short pen, const std::string& data) {
        if (paths.find(pen) == paths.end()) {
            order.push_back(pen);
        }
        paths[pen] += "<path d=\"" + data + "\"/>\n";
    }
    void include(const Point& p) {
        for (int i = 0; i < 2; ++i) {
            low[i] = std::min(low[i], static_cast<double>(p[i]));
            high[i] = std::max(high[i], static_cast<double>(p[i]));
        }
    }
    void onPath(const LibStrokeset::CSubPath& path) override {
        std::string data = "M" + pair(path.getFirstPosition()) + " L";
        for (const LibStrokeset::CLine& line : path) {
            if (!finite(line.getPosition()) || !finite(line.getEndPosition())) {
                ++result->skipped;
                return;
            }
            include(line.getPosition());
            data += (data.back() == 'L' ? "" : " ") + pair(line.getEndPosition());
        }
        include(path.getLastPosition());
        add(path.begin()->getEndPenNumber(), data); // a line-to draws with its own pen
        ++result->paths;
    }
    void onDot(const LibStrokeset::CDot& dot) override {
        if (!finite(dot.getPosition())) {
            ++result->skipped;
            return;
        }
        include(dot.getPosition());
        add(dot.getPenNumber(), "M" + pair(dot.getPosition()) + " Z");
        ++result->dots;
    }
    void onRecord(const LibStrokeset::CUnsupportedElement&) override {}
    void onJump(const Point&, const Point&) override {}
};

std::string layerHeader(unsigned short pen, const std::string& strokeWidth) {
    const bool none = pen == LibStrokeset::CDrawingElement::noPen;
    const std::string id = none ? "nopen" : "pen" + std::to_string(pen);
    const std::string label = none ? "No pen" : "Pen " + std::to_string(pen);
    return "<g id=\"" + id + "\" inkscape:groupmode=\"layer\" inkscape:label=\"" + label +
           "\" fill=\"none\" stroke=\"" + colourOfPen(pen) + "\" stroke-width=\"" + strokeWidth +
           "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
}

} // namespace

SExport exportSvg(const LibStrokeset::CStrokeset& drawing, EUnits units) {
    SExport result;
    SLayers layers;
    layers.result = &result;
    walkDrawing(drawing, layers);
    const double width = layers.high[0] > layers.low[0] ? layers.high[0] - layers.low[0] : 1.0;
    const double height = layers.high[1] > layers.low[1] ? layers.high[1] - layers.low[1] : 1.0;
    const bool mm = units == EUnits::eMillimetres;
    const std::string unit = mm ? "mm" : "";
    result.svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" "
                 "xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" width=\"" +
                 number(width) + unit + "\" height=\"" + number(height) + unit + "\" viewBox=\"" +
                 number(layers.low[0]) + " " + number(layers.low[1]) + " " + number(width) + " " +
                 number(height) + "\">\n";
    for (unsigned short pen : layers.order) {
        result.svg += layerHeader(pen, mm ? "0.3" : "1") + layers.paths[pen] + "</g>\n";
    }
    result.svg += "</svg>\n";
    result.layers = layers.order.size();
    return result;
}

} // namespace Strokeset::Svg
