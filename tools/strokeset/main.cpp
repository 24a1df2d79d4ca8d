// strokeset: import, inspect, optimize, simplify, shuffle, draw and export Stk drawings from the
// command line.

#include <cmath>
#include <exception>
#include <iostream>
#include <string>

#include "Commands.h"
#include "ExitCodes.h"

namespace Strokeset {

std::string checkTolerance(const std::string& text) {
    float value = 0.0f;
    if (!CLI::detail::lexical_cast(text, value) || !std::isfinite(value) || !(value > 0.0f)) {
        return "the tolerance must be a positive number, not " + text;
    }
    return {};
}

std::string checkSeconds(const std::string& text) {
    double value = 0.0;
    if (!CLI::detail::lexical_cast(text, value) || !std::isfinite(value) || !(value >= 0.0)) {
        return "a number of seconds, 0 or more (for example 10), not " + text;
    }
    return {};
}

void addSalvageFlag(CLI::App& command, bool& salvage) {
    command.add_flag("--salvage", salvage,
                     "Load a file whose last record is cut short: warn and use the records "
                     "before it");
}

namespace {

/// The sub-command the parser had got to, for the usage printed with an error.
CLI::App* deepestCommand(CLI::App& app) {
    for (CLI::App* sub : app.get_subcommands()) {
        return deepestCommand(*sub);
    }
    return &app;
}

/// CLI11 exits with its own codes; a bad command line gets 2 and the usage here.
int parseFailed(CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
        return app.exit(error); // --help
    }
    // A sub-command's usage names the program in front of it; the program's own does not.
    CLI::App* command = deepestCommand(app);
    std::cerr << "strokeset: " << error.what() << "\n\n"
              << (command == &app ? app.help() : command->help(app.get_name()));
    return exitBadInput;
}

} // namespace

} // namespace Strokeset

int main(int argc, char** argv) {
    using namespace Strokeset;
    CLI::App app("Import, inspect, optimize, draw and export Stk drawings for plotters, cutters\n"
                 "and markers.",
                 "strokeset");
    app.require_subcommand(1);
    Job job;
    addInfoCommand(app, job);
    addOptimizeCommand(app, job);
    addRenderCommand(app, job);
    addSimplifyCommand(app, job);
    addShuffleCommand(app, job);
    addImportCommand(app, job);
    addExportCommand(app, job);
    // Set after the sub-commands, which would otherwise inherit it.
    app.footer(R"(Examples:
  strokeset import drawing.svg drawing.stk
  strokeset info examples/sample.stk
  strokeset optimize examples/sample.stk optimized.stk --tolerance 0.1
  strokeset render optimized.stk optimized.svg --travel
  strokeset export optimized.stk for-plotting.svg

Run 'strokeset COMMAND --help' for the options of a command.
Exit status: 0 done, 1 output not written, 2 bad command line or input file,
130 interrupted by Ctrl-C (nothing is written then).)");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return parseFailed(app, error);
    }
    try {
        return job();
    } catch (const std::exception& error) {
        std::cerr << "strokeset: " << error.what() << '\n';
    } catch (const char* error) { // the library's stream writer reports corruption this way
        std::cerr << "strokeset: " << error << '\n';
    }
    return exitFailed;
}
