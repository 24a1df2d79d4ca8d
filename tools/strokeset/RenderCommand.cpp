// strokeset render: an SVG picture of a drawing, a colour per pen, optionally with travel.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ostream>
#include <sstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <LibStrokeset/Formats/DrawingWalk.h>
#include <LibStrokeset/Formats/PenColours.h>

#include "Commands.h"
#include "ExitCodes.h"
#include "Files.h"
#include "Format.h"
#include "Interrupt.h"

namespace Strokeset {

namespace {

using LibStrokeset::Formats::colourOfPen;
using LibStrokeset::Formats::IDrawingVisitor;
using LibStrokeset::Formats::walkDrawing;

using Point = Eigen::RowVector3f;

struct SRenderOptions {
    bool salvage = false;
    std::string input, output;
    bool travel = false;
    int width = 800;
};

bool finite(const Point& p) { return std::isfinite(p.x()) && std::isfinite(p.y()); }

// The picture keeps the drawing's axes as SVG has them, y pointing down, so that a drawing
// imported from SVG looks as it did in a browser.
std::string svgX(const Point& p) { return formatNumber("%.3f", static_cast<double>(p.x())); }
std::string svgY(const Point& p) { return formatNumber("%.3f", static_cast<double>(p.y())); }
std::string coordinates(const Point& p) { return svgX(p) + " " + svgY(p); }

/// Collects the picture as SVG path data, one path per pen, in one walk of the drawing.
struct SPicture : IDrawingVisitor {
    std::map<unsigned short, std::string> strokes;
    std::map<unsigned short, std::vector<Point>> dots;
    std::string travel;
    Point low = Point::Constant(INFINITY), high = Point::Constant(-INFINITY);

    void onPath(const LibStrokeset::CSubPath& path) override {
        bool penDown = false; // whether the last segment ended where the next one starts
        unsigned short lastPen = 0;
        for (const LibStrokeset::CLine& line : path) {
            const unsigned short pen = line.getEndPenNumber(); // a line-to draws with its pen
            if (!finite(line.getPosition()) || !finite(line.getEndPosition())) {
                penDown = false;
                continue;
            }
            std::string& data = strokes[pen];
            if (!penDown || pen != lastPen) {
                data += "M" + coordinates(line.getPosition());
                include(line.getPosition());
            }
            data += "L" + coordinates(line.getEndPosition());
            include(line.getEndPosition());
            penDown = true;
            lastPen = pen;
        }
    }
    void onDot(const LibStrokeset::CDot& dot) override {
        if (finite(dot.getPosition())) {
            dots[dot.getPenNumber()].push_back(dot.getPosition());
            include(dot.getPosition());
        }
    }
    void onRecord(const LibStrokeset::CUnsupportedElement&) override {}
    void onJump(const Point& from, const Point& to) override {
        if (finite(from) && finite(to)) {
            travel += "M" + coordinates(from) + "L" + coordinates(to);
        }
    }
    void include(const Point& p) {
        low = low.cwiseMin(p);
        high = high.cwiseMax(p);
    }
};

/// Sizes that look the same whatever the drawing's extent.
struct SScale {
    double left, top, width, height, line;
};

SScale scaleOf(const SPicture& picture) {
    if (!(picture.low.x() <= picture.high.x())) {
        return {0.0, 0.0, 1.0, 1.0, 0.001}; // nothing drawn
    }
    const double width = static_cast<double>(picture.high.x() - picture.low.x());
    const double height = static_cast<double>(picture.high.y() - picture.low.y());
    const double extent = std::max({width, height, 1e-3});
    const double margin = extent * 0.02;
    return {picture.low.x() - margin, picture.low.y() - margin, width + 2 * margin,
            height + 2 * margin, extent / 1000.0};
}

void writeDots(std::ostream& svg, const SPicture& picture, double radius) {
    for (const auto& [pen, centres] : picture.dots) {
        svg << "<g fill=\"" << colourOfPen(pen) << "\">\n";
        for (const Point& centre : centres) {
            svg << "<circle cx=\"" << svgX(centre) << "\" cy=\"" << svgY(centre) << "\" r=\""
                << radius << "\"/>\n";
        }
        svg << "</g>\n";
    }
}

void writeSvg(std::ostream& svg, const SPicture& picture, const SRenderOptions& options) {
    const SScale s = scaleOf(picture);
    svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << options.width << "\" height=\""
        << std::lround(options.width * s.height / s.width) << "\" viewBox=\"" << s.left << ' '
        << s.top << ' ' << s.width << ' ' << s.height << "\">\n"
        << "<rect x=\"" << s.left << "\" y=\"" << s.top << "\" width=\"" << s.width
        << "\" height=\"" << s.height << "\" fill=\"white\"/>\n"
        << "<g fill=\"none\" stroke-width=\"" << s.line
        << "\" stroke-linecap=\"round\" stroke-linejoin=\"round\">\n";
    for (const auto& [pen, data] : picture.strokes) {
        svg << "<path stroke=\"" << colourOfPen(pen) << "\" d=\"" << data << "\"/>\n";
    }
    svg << "</g>\n";
    writeDots(svg, picture, s.line * 2.0);
    if (options.travel && !picture.travel.empty()) {
        svg << "<path class=\"travel\" fill=\"none\" stroke=\"#808080\" stroke-width=\""
            << s.line / 2.0 << "\" stroke-dasharray=\"" << s.line * 4.0 << ' ' << s.line * 3.0
            << "\" d=\"" << picture.travel << "\"/>\n";
    }
    svg << "</svg>\n";
}

int runRender(const SRenderOptions& options) {
    installInterruptHandler();
    LibStrokeset::CStrokeset drawing;
    if (!loadDrawing(options.input, options.salvage, drawing)) {
        return exitBadInput;
    }
    SPicture picture;
    walkDrawing(drawing, picture);
    std::ostringstream svg;
    writeSvg(svg, picture, options);
    return saveText(options.output, svg.str());
}

} // namespace

void addRenderCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SRenderOptions>();
    CLI::App* command =
        app.add_subcommand("render", "Draw a drawing as an SVG picture, a colour per pen");
    command->footer(R"(Paths are drawn in their pen's colour and dots as small circles. With
--travel, a drawing before and after optimize can be compared by eye.)");
    command->add_option("IN", options->input, "Stk file to draw")->required();
    addSalvageFlag(*command, options->salvage);
    command->add_option("OUT", options->output, "SVG file to write")->required();
    command->add_flag("--travel", options->travel,
                      "Also draw the pen-up jumps between paths as thin dashed lines");
    command->add_option("--width", options->width, "Width of the picture in pixels")
        ->check(CLI::Range(16, 100000).description(""))
        ->capture_default_str();
    command->callback([options, &job] { job = [options] { return runRender(*options); }; });
}

} // namespace Strokeset
