#pragma once

// The tool's exit statuses, shared by every sub-command.
namespace Strokeset {

constexpr int exitOk = 0;
/// The output could not be written, or the library failed unexpectedly.
constexpr int exitFailed = 1;
/// Bad command line or an input file the library could not read.
constexpr int exitBadInput = 2;
/// Stopped by Ctrl-C; 128 + SIGINT, as shells report it.
constexpr int exitInterrupted = 130;

} // namespace Strokeset
