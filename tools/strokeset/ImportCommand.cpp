// strokeset import: an SVG drawing as an Stk drawing, curves flattened, a pen per layer or colour.

#include <iostream>
#include <map>
#include <memory>
#include <string>

#include <LibStrokeset/Formats/Svg.h>

#include "Commands.h"
#include "ExitCodes.h"
#include "Files.h"
#include "Interrupt.h"

namespace Strokeset {

namespace {

using namespace LibStrokeset::Formats;

struct SImportCommandOptions {
    std::string input, output;
    SSvgImportOptions import;
};

/// More warnings than this are summed up in one line.
constexpr std::size_t kWarningLines = 20;

void printWarnings(const std::string& input, const std::vector<std::string>& warnings) {
    for (std::size_t i = 0; i < warnings.size() && i < kWarningLines; ++i) {
        printError(input, "warning: " + warnings[i]);
    }
    if (warnings.size() > kWarningLines) {
        printError(input, "warning: " + std::to_string(warnings.size() - kWarningLines) +
                              " more warnings like these");
    }
}

void printSummary(const SSvgImport& import, ESvgPens pens) {
    if (pens == ESvgPens::eNone || import.pens.empty()) {
        std::cout << "Pens        none\n";
    } else {
        std::cout << "Pen  " << (pens == ESvgPens::eLayer ? "Layer" : "Colour") << '\n';
        for (const SPenName& pen : import.pens) {
            const std::string number = std::to_string(pen.pen);
            std::cout << number << std::string(5 - std::min<std::size_t>(number.size(), 4), ' ')
                      << pen.name << '\n';
        }
    }
    std::cout << "Sub-paths   " << import.paths << "\nDots        " << import.dots
              << "\nPoints      " << import.points << '\n';
}

int runImport(const SImportCommandOptions& options) {
    installInterruptHandler();
    std::string text;
    if (!readWholeFile(options.input, text)) {
        return exitBadInput;
    }
    const SSvgImport import = importSvg(text, options.import);
    if (!import.error.empty()) {
        printError(options.input, import.error);
        return exitBadInput;
    }
    printWarnings(options.input, import.warnings);
    LibStrokeset::CStrokeset drawing(import.words);
    const int status = saveDrawing(options.output, drawing);
    if (status == exitOk) {
        printSummary(import, options.import.pens);
    }
    return status;
}

} // namespace

void addImportCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SImportCommandOptions>();
    CLI::App* command = app.add_subcommand("import", "Turn an SVG drawing into an Stk drawing");
    command->add_option("IN", options->input, "SVG file to read")->required();
    command->add_option("OUT", options->output, "Stk file to write")->required();
    command
        ->add_option("--tolerance", options->import.tolerance,
                     "Largest distance of a flattened curve from the true one, in output units")
        ->check(checkTolerance)
        ->capture_default_str();
    command
        ->add_option("--units", options->import.units,
                     "mm: millimetres on the page the SVG describes; user: the SVG's own units")
        ->transform(CLI::CheckedTransformer(std::map<std::string, ESvgUnits>{
            {"mm", ESvgUnits::eMillimetres}, {"user", ESvgUnits::eUser}}))
        ->default_str("mm");
    command
        ->add_option("--pens", options->import.pens,
                     "layer: a pen per top-level layer; stroke: a pen per stroke colour; none")
        ->transform(CLI::CheckedTransformer(std::map<std::string, ESvgPens>{
            {"layer", ESvgPens::eLayer}, {"stroke", ESvgPens::eStroke}, {"none", ESvgPens::eNone}}))
        ->default_str("layer");
    command->footer(R"(Draws paths, lines, polylines, polygons, rectangles, circles and ellipses,
through groups, nested svg elements, uses and transforms. Hidden elements are
left out; text and images are skipped with a warning. Layers are the top-level
groups marked as Inkscape layers, else all top-level groups; pens are numbered
from 1 in the order they first draw, and the table of pens is printed. When
every layer's id names a pen, as export writes them (pen3, pen3-1, nopen),
those pen numbers are kept.
An SVG that draws nothing gives a warning and an empty drawing.)");
    command->callback([options, &job] { job = [options] { return runImport(*options); }; });
}

} // namespace Strokeset
