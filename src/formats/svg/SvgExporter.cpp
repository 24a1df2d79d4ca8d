#include <LibStrokeset/Formats/Svg.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include <LibStrokeset/Formats/DrawingWalk.h>
#include <LibStrokeset/Formats/PenColours.h>

#include "../Numbers.h"

namespace LibStrokeset::Formats {

namespace {

using Point = Eigen::RowVector3f;

/// Nine significant digits bring every float back exactly.
std::string number(double value) { return significantDigits(value); }

std::string pair(const Point& p) {
    return number(static_cast<double>(p.x())) + " " + number(static_cast<double>(p.y()));
}

bool finite(const Point& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

/// A layer of the export: a run of paths and dots drawn with one pen, in drawing order.
struct SLayer {
    unsigned short pen;
    /// Runs of this pen before it, for an id of its own.
    std::size_t run;
    std::string paths;
};

/// Gathers path data in drawing order, a new layer whenever the pen changes, so that an import
/// finds the drawing's order and pens again.
struct SLayers : IDrawingVisitor {
    std::vector<SLayer> layers;
    std::map<unsigned short, std::size_t> runsOfPen;
    double low[2] = {0.0, 0.0}, high[2] = {0.0, 0.0}; // the origin is always on the page
    SSvgExport* result = nullptr;

    void add(unsigned short pen, const std::string& data) {
        if (layers.empty() || layers.back().pen != pen) {
            layers.push_back({pen, runsOfPen[pen]++, {}});
        }
        layers.back().paths += "<path d=\"" + data + "\"/>\n";
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

std::string layerHeader(const SLayer& layer, const std::string& strokeWidth) {
    const unsigned short pen = layer.pen;
    const bool none = pen == LibStrokeset::CDrawingElement::noPen;
    // The id carries the pen number, which import takes back; later runs of a pen add theirs.
    const std::string id = (none ? "nopen" : "pen" + std::to_string(pen)) +
                           (layer.run > 0 ? "-" + std::to_string(layer.run) : "");
    const std::string label = none ? "No pen" : "Pen " + std::to_string(pen);
    return "<g id=\"" + id + "\" inkscape:groupmode=\"layer\" inkscape:label=\"" + label +
           "\" fill=\"none\" stroke=\"" + colourOfPen(pen) + "\" stroke-width=\"" + strokeWidth +
           "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
}

} // namespace

SSvgExport exportSvg(const CStrokeset& drawing, ESvgUnits units) {
    SSvgExport result;
    SLayers layers;
    layers.result = &result;
    walkDrawing(drawing, layers);
    const double width = layers.high[0] > layers.low[0] ? layers.high[0] - layers.low[0] : 1.0;
    const double height = layers.high[1] > layers.low[1] ? layers.high[1] - layers.low[1] : 1.0;
    const bool mm = units == ESvgUnits::eMillimetres;
    const std::string unit = mm ? "mm" : "";
    result.svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<svg xmlns=\"http://www.w3.org/2000/svg\" "
                 "xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\" width=\"" +
                 number(width) + unit + "\" height=\"" + number(height) + unit + "\" viewBox=\"" +
                 number(layers.low[0]) + " " + number(layers.low[1]) + " " + number(width) + " " +
                 number(height) + "\">\n";
    for (const SLayer& layer : layers.layers) {
        result.svg += layerHeader(layer, mm ? "0.3" : "1") + layer.paths + "</g>\n";
    }
    result.svg += "</svg>\n";
    result.layers = layers.layers.size();
    return result;
}

} // namespace LibStrokeset::Formats
