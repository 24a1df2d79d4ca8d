#include <cmath>
#include <string>
#include <vector>

#include <LibStrokeset/Formats/DeviceProfile.h>

namespace LibStrokeset::Formats {

namespace {

/// The first placeholder in `text` other than {pen} and {power}, or an empty string.
std::string unknownPlaceholder(const std::string& text) {
    for (std::size_t at = text.find('{'); at != std::string::npos; at = text.find('{', at + 1)) {
        const std::size_t close = text.find('}', at);
        const std::string name = text.substr(at, close == std::string::npos ? 1 : close - at + 1);
        if (name != "{pen}" && name != "{power}") {
            return name;
        }
    }
    return {};
}

} // namespace

std::string checkDeviceProfile(const SDeviceProfile& profile) {
    // Keys as the profile files name them, so that a message points at the line to fix.
    const struct {
        const char* key;
        double value;
        bool zeroAllowed;
    } numbers[] = {{"scale", profile.scale, false},
                   {"draw_feed", profile.drawFeed, false},
                   {"travel_feed", profile.travelFeed, false},
                   {"bed_width", profile.bedWidth, true},
                   {"bed_height", profile.bedHeight, true},
                   {"pen_seconds", profile.penSeconds, true},
                   {"tool_change_seconds", profile.toolChangeSeconds, true},
                   {"power", profile.power, true}};
    for (const auto& number : numbers) {
        if (!std::isfinite(number.value) || number.value < 0.0 ||
            (!number.zeroAllowed && number.value == 0.0)) {
            return std::string(number.key) + " must be a finite number " +
                   (number.zeroAllowed ? "of 0 or more" : "above 0");
        }
    }
    if (!std::isfinite(profile.drawFeed * profile.scale)) { // the feed a G1 carries
        return "draw_feed times scale is beyond any machine number";
    }
    if (!std::isfinite(profile.originX) || !std::isfinite(profile.originY)) {
        return "origin_x and origin_y must be finite numbers";
    }
    for (const double power : profile.penPower) {
        if (!std::isfinite(power) || power < 0.0) {
            return "pen_power must hold finite numbers of 0 or more";
        }
    }
    if (profile.decimals < 0 || profile.decimals > 6) {
        return "decimals must be a whole number from 0 to 6";
    }
    if (profile.language == EMachineLanguage::eGcode && profile.units != "mm" &&
        profile.units != "in" && !profile.units.empty()) {
        return "units must be \"mm\", \"in\" or \"\"";
    }
    const struct {
        const char* key;
        const std::string& text;
    } templates[] = {{"pen_up", profile.penUp},
                     {"pen_down", profile.penDown},
                     {"tool_change", profile.toolChange},
                     {"header", profile.header},
                     {"footer", profile.footer}};
    for (const auto& lines : templates) {
        const std::string unknown = unknownPlaceholder(lines.text);
        if (!unknown.empty()) {
            return std::string(lines.key) + " holds " + unknown +
                   ": only {pen} and {power} are filled in";
        }
    }
    return {};
}

} // namespace LibStrokeset::Formats
