// strokeset simplify: drops the points that stray less than the tolerance from their path.

#include <iostream>
#include <memory>
#include <string>

#include "Commands.h"
#include "DrawingCounts.h"
#include "ExitCodes.h"
#include "Files.h"
#include "Interrupt.h"

namespace Strokeset {

namespace {

struct SSimplifyOptions {
    bool salvage = false;
    std::string input, output;
    float tolerance = 0.0f;
};

int runSimplify(const SSimplifyOptions& options) {
    installInterruptHandler();
    LibStrokeset::CStrokeset drawing;
    if (!loadDrawing(options.input, options.salvage, drawing)) {
        return exitBadInput;
    }
    const unsigned int before = drawnPointCount(drawing);
    drawing.simplify(options.tolerance);
    const unsigned int after = drawnPointCount(drawing);
    const int status = saveDrawing(options.output, drawing);
    if (status == exitOk) {
        std::cout << "Points " << before << " -> " << after << '\n';
    }
    return status;
}

} // namespace

void addSimplifyCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SSimplifyOptions>();
    CLI::App* command = app.add_subcommand(
        "simplify", "Drop path points that stray less than a tolerance from the line");
    command->add_option("IN", options->input, "Stk file to simplify")->required();
    addSalvageFlag(*command, options->salvage);
    command->add_option("OUT", options->output, "Stk file to write (may be IN)")->required();
    command->add_option("--tolerance", options->tolerance, "Largest deviation, in drawing units")
        ->required()
        ->check(checkTolerance);
    command->callback([options, &job] { job = [options] { return runSimplify(*options); }; });
}

} // namespace Strokeset
