#pragma once

#include <string>
#include <vector>

#include <LibStrokeset/Formats/FormatsExport.h>

namespace LibStrokeset::Formats {

/// The language a machine reads.
enum class EMachineLanguage {
    eGcode, ///< G-code: G0 travels, G1 strokes
    eHpgl   ///< HPGL: PU travels, PD strokes, SP pen changes
};

/// How a drawing is placed on a machine and driven there. A drawing point (x, y) becomes
/// the machine point scale * (±x + originX, ±y + originY), a minus where the axis is flipped;
/// so flipping y with originY set to the page height turns a page whose y runs down into a
/// bed whose y runs up. Lengths, the bed and the feed rates are in drawing units.
struct SDeviceProfile {
    std::string name;                                     ///< shown to users
    EMachineLanguage language = EMachineLanguage::eGcode; ///< what the machine reads
    /// G-code only: "mm" writes G21, "in" writes G20, "" writes neither; scale must match.
    std::string units = "mm";
    double scale = 1.0;             ///< machine units per drawing unit (HPGL: 40 per mm)
    int decimals = 3;               ///< digits after the decimal point, 0 to 6
    double originX = 0.0;           ///< added to x after the flip, in drawing units
    double originY = 0.0;           ///< added to y after the flip, in drawing units
    bool flipX = false;             ///< mirror x before adding the origin
    bool flipY = false;             ///< mirror y before adding the origin
    double bedWidth = 0.0;          ///< the machine's reach in x from 0; 0 for no limit
    double bedHeight = 0.0;         ///< the machine's reach in y from 0; 0 for no limit
    bool clip = false;              ///< cut strokes at the bed's edge instead of warning
    double drawFeed = 1000.0;       ///< pen-down speed, drawing units per minute
    double travelFeed = 3000.0;     ///< pen-up speed, drawing units per minute
    double penSeconds = 0.0;        ///< time one pen lift or drop takes, for the estimate
    double toolChangeSeconds = 0.0; ///< time one tool change takes, for the estimate
    /// Highest pen number the machine has (HPGL plotters: 8); higher pens wrap round, pen 0
    /// becomes pen 1. 0 for no limit.
    unsigned int penCount = 0;
    /// Lines written to lift the pen, lower it and change to another pen. They may hold
    /// {pen} (the machine's pen number) and {power}; several lines are separated by "\n".
    std::string penUp;
    std::string penDown;          ///< see penUp
    std::string toolChange;       ///< see penUp
    double power = 0.0;           ///< {power} for pens without an entry in penPower
    std::vector<double> penPower; ///< {power} of pen 1, 2, ... (a laser's power or speed)
    std::string header;           ///< lines written first
    std::string footer;           ///< lines written last
};

/// Checks a profile: finite positive scale and feed rates, decimals from 0 to 6, no negative
/// bed, times or powers, and templates holding no placeholder but {pen} and {power}. Empty
/// when it is usable, otherwise the first problem.
LIBSTROKESET_FORMATS_API std::string checkDeviceProfile(const SDeviceProfile& profile);

/// What readDeviceProfile made of a profile file.
struct SProfileReading {
    /// Not empty when the profile cannot be used: where and why, one line.
    std::string error;
    /// The profile read; meaningful only without an error.
    SDeviceProfile profile;
    /// True when the profile can be used.
    bool ok() const { return error.empty(); }
};

/// Reads a profile written in TOML, one key per field in snake case: format ("gcode" or
/// "hpgl"), scale, decimals, draw_feed and travel_feed are required; units, name, origin_x,
/// origin_y, flip_x, flip_y, bed_width, bed_height, clip, pen_seconds, tool_change_seconds,
/// pen_count, pen_up, pen_down, tool_change, power, pen_power, header and footer are
/// optional. Each of `overrides` ("key=value", the value in TOML, or else taken as a string)
/// replaces or adds a key before the profile is checked. An unknown key, a value of the wrong
/// type and anything checkDeviceProfile refuses give an error naming the key; messages start
/// with `source`.
LIBSTROKESET_FORMATS_API SProfileReading
readDeviceProfile(const std::string& toml, const std::vector<std::string>& overrides = {},
                  const std::string& source = "profile");

/// Reads the profile a user names: the built-in profile of that name, or else (and also when a
/// file of that name exists) the TOML file at that path, with `overrides` as readDeviceProfile
/// takes them. A profile without a name of its own is given `nameOrFile`. An error when
/// there is neither such a file nor such a built-in profile, when the file cannot be read,
/// and whatever readDeviceProfile refuses.
LIBSTROKESET_FORMATS_API SProfileReading
loadDeviceProfile(const std::string& nameOrFile, const std::vector<std::string>& overrides = {});
/// The names of the profiles built into the library, sorted.
LIBSTROKESET_FORMATS_API std::vector<std::string> builtInDeviceProfiles();

/// The TOML text of a built-in profile; empty when there is none of that name.
LIBSTROKESET_FORMATS_API std::string builtInDeviceProfileText(const std::string& name);

} // namespace LibStrokeset::Formats
