#pragma once

#include <functional>

#include <CLI/CLI.hpp>

// Every sub-command adds itself to the application. Parsing only picks the job; main runs it
// after the whole command line was accepted, and the job returns the exit status.
namespace Strokeset {

using Job = std::function<int()>;

void addInfoCommand(CLI::App& app, Job& job);
void addOptimizeCommand(CLI::App& app, Job& job);
void addRenderCommand(CLI::App& app, Job& job);
void addSimplifyCommand(CLI::App& app, Job& job);
void addShuffleCommand(CLI::App& app, Job& job);
void addImportCommand(CLI::App& app, Job& job);
void addExportCommand(CLI::App& app, Job& job);

/// Checks that a tolerance is a positive, finite number.
std::string checkTolerance(const std::string& text);
/// Validates a time limit in seconds: a finite number, 0 or more.
std::string checkSeconds(const std::string& text);

/// The --salvage flag every sub-command that reads a drawing offers.
void addSalvageFlag(CLI::App& command, bool& salvage);

} // namespace Strokeset
