// strokeset shuffle: a random drawing order, to see what optimize makes of a bad one.

#include <memory>
#include <string>

#include "Commands.h"
#include "ExitCodes.h"
#include "Files.h"
#include "Interrupt.h"

namespace Strokeset {

namespace {

struct SShuffleOptions {
    bool salvage = false;
    std::string input, output;
};

int runShuffle(const SShuffleOptions& options) {
    installInterruptHandler();
    LibStrokeset::CStrokeset drawing;
    if (!loadDrawing(options.input, options.salvage, drawing)) {
        return exitBadInput;
    }
    drawing.shuffle();
    return saveDrawing(options.output, drawing);
}

} // namespace

void addShuffleCommand(CLI::App& app, Job& job) {
    auto options = std::make_shared<SShuffleOptions>();
    CLI::App* command = app.add_subcommand("shuffle", "Put the paths and dots into a random order");
    command->footer("A different order each run: a worst case to try optimize on.");
    command->add_option("IN", options->input, "Stk file to shuffle")->required();
    addSalvageFlag(*command, options->salvage);
    command->add_option("OUT", options->output, "Stk file to write (may be IN)")->required();
    command->callback([options, &job] { job = [options] { return runShuffle(*options); }; });
}

} // namespace Strokeset
