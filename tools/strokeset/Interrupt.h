#pragma once

namespace LibStrokeset {
class CStrokeset;
}

// Ctrl-C handling. The first SIGINT only raises a flag (and asks a running optimize to stop),
// so that the command can leave its output untouched; a second one ends the program at once.
namespace Strokeset {

void installInterruptHandler();
bool interrupted();

/// The document whose optimize a Ctrl-C should stop; null when none is running.
void setOptimizationToAbort(LibStrokeset::CStrokeset* document);

} // namespace Strokeset
