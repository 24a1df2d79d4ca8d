// strokeset export: an Stk drawing as an SVG for other plotting software.

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

struct SExportOptions {
    std::string input, output;
    LibStrokeset::Formats::ESvgUnits units = LibStrokeset::Formats::ESvgUnits::eMillimetres;
    bool salvage = false;
};

int runExport(const SExportOptions& options) {
    installInterruptHandler();
    LibStrokeset::CStrokeset drawing;
    if (!loadDrawing(options.input, options.salvage, drawing)) {
        return exitBadInput;
    }
    const LibStrokeset::Formats::SSvgExport result =
        LibStrokeset::Formats::exportSvg(drawing, options.units);
    if (result.skipped > 0) {
        printError(options.input, "warning: left out " + std::to_string(result.skipped) +
                                      " sub-paths and dots with coordinates that are not numbers");
    }
    const int status = saveText(options.output, result.svg);
    if (status == exitOk) {
        std::cout << "Layers      " << result.layers << "\nSub-paths   " << result.paths
                  << "\nDots        " << result.dots << '\n';
    }
    return status;
}

} // namespace

void addExportCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SExportOptions>();
    CLI::App* command =
        app.add_subcommand("export", "Write a drawing as an SVG for other plotting software");
    command->add_option("IN", options->input, "Stk file to read")->required();
    command->add_option("OUT", options->output, "SVG file to write")->required();
    command
        ->add_option("--units", options->units,
                     "What a drawing unit is on the page: mm, or user (an SVG px)")
        ->transform(CLI::CheckedTransformer(std::map<std::string, LibStrokeset::Formats::ESvgUnits>{
            {"mm", LibStrokeset::Formats::ESvgUnits::eMillimetres},
            {"user", LibStrokeset::Formats::ESvgUnits::eUser}}))
        ->default_str("mm");
    addSalvageFlag(*command, options->salvage);
    command->footer(R"(One path per sub-path in drawing order, dots as zero-length paths with round
caps, in Inkscape layers: a new layer wherever the pen changes, its id naming
the pen (pen3, then pen3-1 for the next run of pen 3). Coordinates are written
in full, so that 'strokeset import OUT.svg --units user' gives the same points,
order and pens back; z is dropped, unsupported records are left out, and a path
drawn with several pens is written in the pen of its first segment.)");
    command->callback([options, &job] { job = [options] { return runExport(*options); }; });
}

} // namespace Strokeset
