#include "DeviceProfiles.h"

#include <cmath>
#include <cstdio>

#include "Files.h"
#include "Format.h"

namespace Strokeset {

namespace {

std::string builtInNames() {
    std::string names;
    for (const std::string& name : LibStrokeset::Formats::builtInDeviceProfiles()) {
        names += (names.empty() ? "" : ", ") + name;
    }
    return names;
}

} // namespace

void addProfileOptions(CLI::App& command, SProfileChoice& choice) {
    command.add_option("--profile", choice.profile,
                       "Device profile: a built-in name (" + builtInNames() + ") or a TOML file");
    command
        .add_option("--set", choice.overrides,
                    "Override a profile key, KEY=VALUE (repeatable), e.g. --set draw_feed=1500")
        ->allow_extra_args(false);
}

bool loadProfile(const SProfileChoice& choice, const std::string& fallback,
                 LibStrokeset::Formats::SDeviceProfile& profile) {
    const LibStrokeset::Formats::SProfileReading reading = LibStrokeset::Formats::loadDeviceProfile(
        choice.profile.empty() ? fallback : choice.profile, choice.overrides);
    if (!reading.ok()) {
        printError("profile", reading.error);
        return false;
    }
    profile = reading.profile;
    return true;
}

std::string clockTime(double seconds) {
    if (!(seconds < 1e15)) { // beyond what a clock shows (and what llround takes)
        return formatNumber("%.3g s", seconds);
    }
    const long long whole = std::llround(seconds);
    char text[48];
    std::snprintf(text, sizeof text, "%lld:%02lld:%02lld", whole / 3600, whole / 60 % 60,
                  whole % 60);
    return text;
}

void printEstimate(std::ostream& out, const LibStrokeset::Formats::SDeviceProfile& profile,
                   const LibStrokeset::Formats::SMachineEstimate& estimate) {
    out << "Machine          " << profile.name << '\n'
        << "Drawing length   " << formatNumber("%.3f", estimate.drawLength) << '\n'
        << "Travel length    " << formatNumber("%.3f", estimate.travelLength) << '\n'
        << "Pen lifts        " << estimate.penLifts << '\n'
        << "Tool changes     " << estimate.toolChanges << '\n'
        << "Estimated time   " << clockTime(estimate.seconds) << '\n';
}

} // namespace Strokeset
