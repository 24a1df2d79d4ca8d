#include "Interrupt.h"

#include <atomic>
#include <csignal>

#include <LibStrokeset/CStrokeset.h>

namespace Strokeset {

namespace {

volatile std::sig_atomic_t g_interrupted = 0;
// Lock-free, so reading it from the signal handler is allowed.
std::atomic<LibStrokeset::CStrokeset*> g_optimizing{nullptr};
static_assert(std::atomic<LibStrokeset::CStrokeset*>::is_always_lock_free);

extern "C" void onInterrupt(int) {
    g_interrupted = 1;
    if (LibStrokeset::CStrokeset* document = g_optimizing.load()) {
        document->setOptimizationAborted(); // an atomic store, safe here
    }
}

} // namespace

void installInterruptHandler() {
    struct sigaction action = {};
    action.sa_handler = onInterrupt;
    sigemptyset(&action.sa_mask);
    // SA_RESETHAND: a second Ctrl-C gets the default action and ends the program.
    action.sa_flags = SA_RESETHAND;
    sigaction(SIGINT, &action, nullptr);
}

bool interrupted() { return g_interrupted != 0; }

void setOptimizationToAbort(LibStrokeset::CStrokeset* document) { g_optimizing.store(document); }

} // namespace Strokeset
