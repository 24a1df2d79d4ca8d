#pragma once

#include <ostream>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <LibStrokeset/Formats/DeviceProfile.h>
#include <LibStrokeset/Formats/MachineExport.h>

// The device profile a sub-command drives a machine with: a built-in name or a TOML file,
// with keys overridden on the command line.
namespace Strokeset {

struct SProfileChoice {
    std::string profile; ///< a built-in name or a file; empty for the format's default
    std::vector<std::string> overrides;
};

/// --profile and --set.
void addProfileOptions(CLI::App& command, SProfileChoice& choice);

/// Reads the chosen profile, `fallback` when none was chosen. On failure prints why and
/// returns false; the caller exits with exitBadInput.
bool loadProfile(const SProfileChoice& choice, const std::string& fallback,
                 LibStrokeset::Formats::SDeviceProfile& profile);

/// The lines of a machine estimate, under the profile's name.
void printEstimate(std::ostream& out, const LibStrokeset::Formats::SDeviceProfile& profile,
                   const LibStrokeset::Formats::SMachineEstimate& estimate);

/// Seconds as h:mm:ss.
std::string clockTime(double seconds);

} // namespace Strokeset
