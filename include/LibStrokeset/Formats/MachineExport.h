#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/Formats/DeviceProfile.h>
#include <LibStrokeset/Formats/FormatsExport.h>

namespace LibStrokeset::Formats {

/// What a machine run of a drawing takes, from the profile's speeds.
struct SMachineEstimate {
    double drawLength = 0.0;     ///< pen-down length, drawing units
    double travelLength = 0.0;   ///< pen-up length between strokes, drawing units
    std::size_t penLifts = 0;    ///< times the pen goes up after drawing
    std::size_t toolChanges = 0; ///< pen changes, the first pen included
    double seconds = 0.0;        ///< drawing and travel at the feed rates, plus pen and tool time
};

/// What exportMachine wrote.
struct SMachineExport {
    /// Not empty when nothing could be written: a coordinate that is not a finite number
    /// (the message names the first such point by its opcode index) or a profile that is
    /// not usable. `text` is empty then.
    std::string error;
    /// What a user should know: records left out, points outside the bed, pens wrapped.
    std::vector<std::string> warnings;
    std::string text;               ///< the machine file
    std::size_t strokes = 0;        ///< pen-down strokes written, dots included
    std::size_t dots = 0;           ///< dots written
    std::size_t skippedRecords = 0; ///< unsupported records left out
    std::size_t pointsOutside = 0;  ///< points beyond the bed (without clip)
    SMachineEstimate estimate;      ///< of what was written
    /// True when the file was written.
    bool ok() const { return error.empty(); }
};

/// Writes the drawing in its own order for a machine: every sub-path as one pen-down stroke,
/// every dot as a plunge (pen down and up at the point), pen changes as the machine's tool
/// change; unsupported records are left out and counted. Numbers have the profile's fixed
/// decimals, never an exponent and never "-0".
LIBSTROKESET_FORMATS_API SMachineExport exportMachine(const CStrokeset& drawing,
                                                      const SDeviceProfile& profile);
} // namespace LibStrokeset::Formats
