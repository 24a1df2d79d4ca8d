// strokeset export: an Stk drawing as an SVG for other plotting software, or as G-code or HPGL
// for a machine, driven by a device profile.

#include <cctype>
#include <iostream>
#include <map>
#include <memory>
#include <string>

#include <LibStrokeset/Formats/MachineExport.h>
#include <LibStrokeset/Formats/Svg.h>

#include "Commands.h"
#include "DeviceProfiles.h"
#include "ExitCodes.h"
#include "Files.h"
#include "Interrupt.h"

namespace Strokeset {

namespace {

namespace Formats = LibStrokeset::Formats;

enum class EOutput { eByExtension, eSvg, eGcode, eHpgl };

struct SExportOptions {
    std::string input, output;
    EOutput format = EOutput::eByExtension;
    Formats::ESvgUnits units = Formats::ESvgUnits::eMillimetres;
    SProfileChoice profile;
    bool clip = false;
    bool salvage = false;
};

/// The format the output's name asks for; eByExtension when it names none.
EOutput formatOfName(const std::string& path) {
    const std::size_t dot = path.rfind('.');
    std::string extension = dot == std::string::npos ? "" : path.substr(dot + 1);
    for (char& c : extension) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    static const std::map<std::string, EOutput> extensions = {
        {"svg", EOutput::eSvg},   {"gcode", EOutput::eGcode}, {"nc", EOutput::eGcode},
        {"ngc", EOutput::eGcode}, {"gc", EOutput::eGcode},    {"hpgl", EOutput::eHpgl},
        {"hpg", EOutput::eHpgl},  {"plt", EOutput::eHpgl}};
    const auto found = extensions.find(extension);
    return found == extensions.end() ? EOutput::eByExtension : found->second;
}

int writeSvg(const SExportOptions& options, const LibStrokeset::CStrokeset& drawing) {
    const Formats::SSvgExport result = Formats::exportSvg(drawing, options.units);
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

int writeMachine(const SExportOptions& options, EOutput format,
                 const LibStrokeset::CStrokeset& drawing) {
    Formats::SDeviceProfile profile;
    if (!loadProfile(options.profile, format == EOutput::eHpgl ? "hpgl-plotter" : "gcode-servo",
                     profile)) {
        return exitBadInput;
    }
    const bool hpgl = format == EOutput::eHpgl;
    if ((profile.language == Formats::EMachineLanguage::eHpgl) != hpgl) {
        printError(options.output, "the profile " + profile.name + " writes " +
                                       (hpgl ? "G-code" : "HPGL") + ", not " +
                                       (hpgl ? "HPGL" : "G-code"));
        return exitBadInput;
    }
    profile.clip = profile.clip || options.clip;
    const Formats::SMachineExport result = Formats::exportMachine(drawing, profile);
    if (!result.ok()) {
        printError(options.input, result.error);
        return exitBadInput;
    }
    for (const std::string& warning : result.warnings) {
        printError(options.input, "warning: " + warning +
                                      (result.pointsOutside > 0 &&
                                               warning.find("outside the bed") != std::string::npos
                                           ? " (--clip cuts them off)"
                                           : ""));
    }
    const int status = saveText(options.output, result.text);
    if (status == exitOk) {
        std::cout << "Strokes          " << result.strokes << " (" << result.dots << " dots)\n";
        printEstimate(std::cout, profile, result.estimate);
    }
    return status;
}

int runExport(const SExportOptions& options) {
    installInterruptHandler();
    // Names that tell no machine format stay SVG, as export always wrote.
    const EOutput format = options.format != EOutput::eByExtension ? options.format
                           : formatOfName(options.output) == EOutput::eByExtension
                               ? EOutput::eSvg
                               : formatOfName(options.output);
    LibStrokeset::CStrokeset drawing;
    if (!loadDrawing(options.input, options.salvage, drawing)) {
        return exitBadInput;
    }
    return format == EOutput::eSvg ? writeSvg(options, drawing)
                                   : writeMachine(options, format, drawing);
}

} // namespace

void addExportCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SExportOptions>();
    CLI::App* command = app.add_subcommand(
        "export", "Write a drawing as SVG for other software, or as G-code or HPGL for a machine");
    command->add_option("IN", options->input, "Stk file to read")->required();
    command->add_option("OUT", options->output, "File to write (.svg, .gcode, .nc, .hpgl, .plt)")
        ->required();
    command
        ->add_option("--format", options->format,
                     "svg, gcode or hpgl (default: from OUT's extension, else svg)")
        ->transform(CLI::CheckedTransformer(std::map<std::string, EOutput>{
            {"svg", EOutput::eSvg}, {"gcode", EOutput::eGcode}, {"hpgl", EOutput::eHpgl}}));
    command
        ->add_option("--units", options->units,
                     "SVG: what a drawing unit is on the page, mm or user (an SVG px)")
        ->transform(CLI::CheckedTransformer(std::map<std::string, Formats::ESvgUnits>{
            {"mm", Formats::ESvgUnits::eMillimetres}, {"user", Formats::ESvgUnits::eUser}}))
        ->default_str("mm");
    addProfileOptions(*command, options->profile);
    command->add_flag("--clip", options->clip,
                      "G-code, HPGL: cut strokes off at the bed's edge instead of warning");
    addSalvageFlag(*command, options->salvage);
    command->footer(R"(SVG: one path per sub-path in drawing order, dots as zero-length paths with
round caps, in Inkscape layers: a new layer wherever the pen changes, its id
naming the pen (pen3, then pen3-1 for the next run of pen 3). Coordinates are
written in full, so that 'strokeset import OUT.svg --units user' gives the same
points, order and pens back; z is dropped, unsupported records are left out,
and a path drawn with several pens is written in the pen of its first segment.

G-code and HPGL: the drawing in its own order (optimize it first), every
sub-path one pen-down stroke, every dot a plunge, pen changes as the profile's
tool change; unsupported records are left out with a warning. The profile
(default gcode-servo or hpgl-plotter) places the drawing on the bed and sets
speeds, pen commands and decimals; the end of the run prints the drawing and
travel lengths, pen lifts and the estimated time. A drawing with a coordinate
that is not a finite number is not written (exit status 2).)");
    command->callback([options, &job] { job = [options] { return runExport(*options); }; });
}

} // namespace Strokeset
