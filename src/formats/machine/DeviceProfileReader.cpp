#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include <toml++/toml.h>

#include <LibStrokeset/Formats/DeviceProfile.h>

namespace LibStrokeset::Formats {

namespace {

/// Reads one key's value into the profile; an empty result when the type fits.
using FieldReader = std::function<std::string(const toml::node&, SDeviceProfile&)>;

std::string typeName(const toml::node& node) {
    switch (node.type()) {
    case toml::node_type::string: return "a string";
    case toml::node_type::integer: return "a whole number";
    case toml::node_type::floating_point: return "a number";
    case toml::node_type::boolean: return "true or false";
    case toml::node_type::array: return "an array";
    case toml::node_type::table: return "a table";
    default: return "a date or time";
    }
}

std::string expected(const char* what, const toml::node& node) {
    return std::string("must be ") + what + ", not " + typeName(node);
}

FieldReader number(double SDeviceProfile::*field) {
    return [field](const toml::node& node, SDeviceProfile& profile) -> std::string {
        if (!node.is_number()) {
            return expected("a number", node);
        }
        profile.*field = node.value<double>().value_or(0.0);
        return {};
    };
}

FieldReader text(std::string SDeviceProfile::*field) {
    return [field](const toml::node& node, SDeviceProfile& profile) -> std::string {
        if (!node.is_string()) {
            return expected("a string", node);
        }
        profile.*field = *node.value<std::string>();
        return {};
    };
}

FieldReader flag(bool SDeviceProfile::*field) {
    return [field](const toml::node& node, SDeviceProfile& profile) -> std::string {
        if (!node.is_boolean()) {
            return expected("true or false", node);
        }
        profile.*field = *node.value<bool>();
        return {};
    };
}

/// A whole number from `low` to `high`.
std::string wholeNumber(const toml::node& node, std::int64_t low, std::int64_t high,
                        std::int64_t& out) {
    if (!node.is_integer()) {
        return expected("a whole number", node);
    }
    out = *node.value<std::int64_t>();
    if (out < low || out > high) {
        return "must be from " + std::to_string(low) + " to " + std::to_string(high);
    }
    return {};
}

std::string readFormat(const toml::node& node, SDeviceProfile& profile) {
    const std::optional<std::string> name = node.value<std::string>();
    if (!node.is_string() || (*name != "gcode" && *name != "hpgl")) {
        return "must be \"gcode\" or \"hpgl\"";
    }
    profile.language = *name == "gcode" ? EMachineLanguage::eGcode : EMachineLanguage::eHpgl;
    return {};
}

std::string readDecimals(const toml::node& node, SDeviceProfile& profile) {
    std::int64_t value = 0;
    std::string problem = wholeNumber(node, 0, 6, value);
    profile.decimals = static_cast<int>(value);
    return problem;
}

std::string readPenCount(const toml::node& node, SDeviceProfile& profile) {
    std::int64_t value = 0;
    std::string problem = wholeNumber(node, 0, 65534, value);
    profile.penCount = static_cast<unsigned int>(value);
    return problem;
}

std::string readPenPower(const toml::node& node, SDeviceProfile& profile) {
    const toml::array* powers = node.as_array();
    if (powers == nullptr) {
        return expected("an array of numbers", node);
    }
    profile.penPower.clear();
    for (const toml::node& power : *powers) {
        if (!power.is_number()) {
            return "must hold numbers only, not " + typeName(power);
        }
        profile.penPower.push_back(power.value<double>().value_or(0.0));
    }
    return {};
}

const std::map<std::string, FieldReader>& fieldReaders() {
    static const std::map<std::string, FieldReader> readers = {
        {"name", text(&SDeviceProfile::name)},
        {"format", readFormat},
        {"units", text(&SDeviceProfile::units)},
        {"scale", number(&SDeviceProfile::scale)},
        {"decimals", readDecimals},
        {"origin_x", number(&SDeviceProfile::originX)},
        {"origin_y", number(&SDeviceProfile::originY)},
        {"flip_x", flag(&SDeviceProfile::flipX)},
        {"flip_y", flag(&SDeviceProfile::flipY)},
        {"bed_width", number(&SDeviceProfile::bedWidth)},
        {"bed_height", number(&SDeviceProfile::bedHeight)},
        {"clip", flag(&SDeviceProfile::clip)},
        {"draw_feed", number(&SDeviceProfile::drawFeed)},
        {"travel_feed", number(&SDeviceProfile::travelFeed)},
        {"pen_seconds", number(&SDeviceProfile::penSeconds)},
        {"tool_change_seconds", number(&SDeviceProfile::toolChangeSeconds)},
        {"pen_count", readPenCount},
        {"pen_up", text(&SDeviceProfile::penUp)},
        {"pen_down", text(&SDeviceProfile::penDown)},
        {"tool_change", text(&SDeviceProfile::toolChange)},
        {"power", number(&SDeviceProfile::power)},
        {"pen_power", readPenPower},
        {"header", text(&SDeviceProfile::header)},
        {"footer", text(&SDeviceProfile::footer)}};
    return readers;
}

const char* const kRequiredKeys[] = {"format", "scale", "decimals", "draw_feed", "travel_feed"};

/// Parses TOML without letting its exception out; the error names the line.
std::optional<toml::table> parse(const std::string& text, const std::string& source,
                                 std::string& error) {
    try {
        return toml::parse(text, source);
    } catch (const toml::parse_error& failure) {
        error = source + ":" + std::to_string(failure.source().begin.line) + ": " +
                std::string(failure.description());
        return std::nullopt;
    }
}

/// Puts "key=value" into the table: the value as TOML, or else as a string.
std::string applyOverride(const std::string& assignment, toml::table& table) {
    const std::size_t equals = assignment.find('=');
    if (equals == std::string::npos || equals == 0) {
        return "--set wants KEY=VALUE, not \"" + assignment + "\"";
    }
    const std::string key = assignment.substr(0, equals);
    const std::string value = assignment.substr(equals + 1);
    if (fieldReaders().count(key) == 0) {
        return "--set " + key + ": no profile has that key";
    }
    std::string ignored;
    std::optional<toml::table> parsed = parse("value = " + value, "--set", ignored);
    if (!parsed || parsed->size() != 1) {
        parsed = toml::table{{"value", value}};
    }
    table.insert_or_assign(key, *parsed->get("value"));
    return {};
}

} // namespace

SProfileReading readDeviceProfile(const std::string& toml,
                                  const std::vector<std::string>& overrides,
                                  const std::string& source) {
    SProfileReading reading;
    std::optional<toml::table> table = parse(toml, source, reading.error);
    for (std::size_t i = 0; table && i < overrides.size() && reading.ok(); ++i) {
        reading.error = applyOverride(overrides[i], *table);
    }
    if (!reading.ok()) {
        return reading;
    }
    for (const char* key : kRequiredKeys) {
        if (!table->contains(key)) {
            reading.error = source + ": the key " + key + " is missing";
            return reading;
        }
    }
    for (auto&& [key, node] : *table) {
        const std::string name(key.str());
        const auto reader = fieldReaders().find(name);
        const std::string line = node.source().begin.line > 0
                                     ? ":" + std::to_string(node.source().begin.line)
                                     : std::string();
        if (reader == fieldReaders().end()) {
            reading.error = source + line + ": unknown key " + name;
            return reading;
        }
        const std::string problem = reader->second(node, reading.profile);
        if (!problem.empty()) {
            reading.error = source + line + ": " + name + " " + problem;
            return reading;
        }
    }
    const std::string problem = checkDeviceProfile(reading.profile);
    if (!problem.empty()) {
        reading.error = source + ": " + problem;
    }
    return reading;
}

} // namespace LibStrokeset::Formats
