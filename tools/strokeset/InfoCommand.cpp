// strokeset info: what a drawing holds, as text or JSON.

#include <cmath>
#include <cstdio>
#include <iostream>
#include <memory>
#include <vector>
#include <string>

#include <LibStrokeset/CDrawingElement.h>
#include <LibStrokeset/Formats/DrawingSummary.h>
#include <LibStrokeset/Formats/MachineExport.h>

#include "Commands.h"
#include "DeviceProfiles.h"
#include "ExitCodes.h"
#include "Files.h"
#include "Format.h"

namespace Strokeset {

namespace {

using LibStrokeset::CDrawingElement;
using LibStrokeset::Formats::SDrawingSummary;
using Point = Eigen::RowVector3f;

struct SInfoOptions {
    bool salvage = false;
    std::string file;
    bool json = false;
    SProfileChoice profile;
};

/// The machine estimate under the chosen profile, when one was chosen.
struct SMachineFigures {
    bool wanted = false;
    LibStrokeset::Formats::SDeviceProfile profile;
    LibStrokeset::Formats::SMachineExport run;
};

std::string penList(const std::vector<unsigned short>& pens, bool json) {
    std::string text;
    for (unsigned short pen : pens) {
        text += text.empty() ? "" : ", ";
        text += !json && pen == CDrawingElement::noPen ? "none" : std::to_string(pen);
    }
    return json ? "[" + text + "]" : (text.empty() ? "-" : text);
}

void printText(const SInfoOptions& options, const SDrawingSummary& f, const SCutRecord& cut,
               const SMachineFigures& machine) {
    const auto fixed = [](double value) { return formatNumber("%.3f", value); };
    std::cout << "File             " << options.file << '\n';
    if (cut.present) {
        std::cout << "Cut record       at word " << cut.word << ", " << cut.unreadWords
                  << " words not read\n";
    }
    std::cout << "Collections      "
              << f.subPathCollections + f.dotCollections + f.recordCollections << " ("
              << f.subPathCollections << " sub-paths, " << f.dotCollections << " dot runs, "
              << f.recordCollections << " unsupported)\n"
              << "Points           " << f.points << '\n'
              << "Sub-paths        " << f.subPaths << " (" << f.lines << " lines)\n"
              << "Dots             " << f.dots << '\n'
              << "Unsupported      " << f.records << (f.records == 1 ? " record\n" : " records\n")
              << "Pens             " << penList(f.pens, false) << '\n'
              << "Pen changes      " << f.penChanges << '\n';
    std::cout << "Bounding box     ";
    if (f.hasBox) {
        std::cout << "x " << fixed(f.low.x()) << " .. " << fixed(f.high.x()) << ", y "
                  << fixed(f.low.y()) << " .. " << fixed(f.high.y()) << ", z " << fixed(f.low.z())
                  << " .. " << fixed(f.high.z()) << '\n';
    } else {
        std::cout << "-\n";
    }
    std::cout << "Drawn length     " << fixed(f.drawnLength) << '\n'
              << "Pen-up travel    " << fixed(f.travelLength) << '\n';
    if (machine.wanted) {
        if (machine.run.ok()) {
            printEstimate(std::cout, machine.profile, machine.run.estimate);
        } else {
            std::cout << "Machine          " << machine.profile.name << ": " << machine.run.error
                      << '\n';
        }
    }
}

/// JSON has no NaN or infinity: those become null.
std::string jsonNumber(double value) {
    return std::isfinite(value) ? formatNumber("%.10g", value) : "null";
}

std::string jsonString(const std::string& text) {
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned int>(c));
            quoted += escape;
        } else {
            quoted += c;
        }
    }
    return quoted + "\"";
}

std::string jsonPoint(const Point& p) {
    return "[" + jsonNumber(p.x()) + ", " + jsonNumber(p.y()) + ", " + jsonNumber(p.z()) + "]";
}

std::string jsonMachine(const SMachineFigures& machine) {
    if (!machine.wanted) {
        return "null";
    }
    const LibStrokeset::Formats::SMachineEstimate& e = machine.run.estimate;
    return "{\"profile\": " + jsonString(machine.profile.name) +
           ", \"error\": " + (machine.run.ok() ? "null" : jsonString(machine.run.error)) +
           ", \"drawLength\": " + jsonNumber(e.drawLength) +
           ", \"travelLength\": " + jsonNumber(e.travelLength) +
           ", \"penLifts\": " + std::to_string(e.penLifts) +
           ", \"toolChanges\": " + std::to_string(e.toolChanges) +
           ", \"seconds\": " + jsonNumber(e.seconds) + "}";
}

void printJson(const SInfoOptions& options, const SDrawingSummary& f, const SCutRecord& cut,
               const SMachineFigures& machine) {
    std::cout << "{\n  \"file\": " << jsonString(options.file) << ",\n"
              << "  \"cutRecord\": "
              << (cut.present ? "{\"word\": " + std::to_string(cut.word) +
                                    ", \"unreadWords\": " + std::to_string(cut.unreadWords) + "}"
                              : std::string("null"))
              << ",\n"
              << "  \"collections\": {\"subPaths\": " << f.subPathCollections
              << ", \"dots\": " << f.dotCollections << ", \"unsupported\": " << f.recordCollections
              << "},\n"
              << "  \"points\": " << f.points << ",\n"
              << "  \"subPaths\": " << f.subPaths << ",\n"
              << "  \"lines\": " << f.lines << ",\n"
              << "  \"dots\": " << f.dots << ",\n"
              << "  \"unsupportedRecords\": " << f.records << ",\n"
              << "  \"pens\": " << penList(f.pens, true) << ",\n"
              << "  \"penChanges\": " << f.penChanges << ",\n"
              << "  \"boundingBox\": "
              << (f.hasBox
                      ? "{\"min\": " + jsonPoint(f.low) + ", \"max\": " + jsonPoint(f.high) + "}"
                      : std::string("null"))
              << ",\n"
              << "  \"drawnLength\": " << jsonNumber(f.drawnLength) << ",\n"
              << "  \"travelLength\": " << jsonNumber(f.travelLength) << ",\n"
              << "  \"machine\": " << jsonMachine(machine) << "\n}\n";
}

int runInfo(const SInfoOptions& options) {
    LibStrokeset::CStrokeset drawing;
    SCutRecord cut;
    if (!loadDrawing(options.file, options.salvage, drawing, &cut)) {
        return exitBadInput;
    }
    SMachineFigures machine;
    machine.wanted = !options.profile.profile.empty() || !options.profile.overrides.empty();
    if (machine.wanted) {
        if (!loadProfile(options.profile, "gcode-servo", machine.profile)) {
            return exitBadInput;
        }
        machine.run = LibStrokeset::Formats::exportMachine(drawing, machine.profile);
    }
    const SDrawingSummary figures = LibStrokeset::Formats::summarizeDrawing(drawing);
    if (options.json) {
        printJson(options, figures, cut, machine);
    } else {
        printText(options, figures, cut, machine);
    }
    return exitOk;
}

} // namespace

void addInfoCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SInfoOptions>();
    CLI::App* command =
        app.add_subcommand("info", "Show what a drawing holds: kinds, points, pens, size, lengths");
    command->footer(R"(Reports collections by kind, points, sub-paths, dots, unsupported records,
the pens used and the pen changes written between them, the bounding box,
the drawn length and the pen-up travel (the jumps between paths and dots in
drawing order). With --profile (or --set), also what a machine run takes
under that device profile: drawing and travel length, pen lifts, tool changes
and the estimated time, as export reports them. With --salvage, a file whose last record is cut short is
read up to that record, and the cut is reported.)");
    command->add_option("FILE", options->file, "Stk file to inspect")->required();
    addSalvageFlag(*command, options->salvage);
    command->add_flag("--json", options->json, "Print the same figures as JSON");
    addProfileOptions(*command, options->profile);
    command->callback([options, &job] { job = [options] { return runInfo(*options); }; });
}

} // namespace Strokeset
