// Writes decoded drawings (odd values included: NaN, infinities, 1e30, -0, subnormals) as
// G-code and HPGL with a built-in profile whose keys the bytes change, sometimes to values no
// profile may hold. Stops when a refused export still wrote something, or a written file
// holds a coordinate that is not plain decimals with the profile's number of digits (an
// exponent, "-0", NaN, infinity). Bytes are also read as a profile file: no crash.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sstream>
#include <string>

#include <LibStrokeset/Formats/DeviceProfile.h>
#include <LibStrokeset/Formats/MachineExport.h>

#include "DrawingDecoder.h"

namespace {

using namespace LibStrokeset::Formats;

void fail(const char* what, const std::string& text) {
    std::fprintf(stderr, "machine export: %s\n%s\n", what, text.c_str());
    std::abort();
}

/// Plain decimals with exactly `decimals` digits after the point, and no minus on a zero.
bool plain(const std::string& number, int decimals) {
    std::size_t at = number.size() > 0 && number[0] == '-' ? 1 : 0;
    const std::size_t point = number.find('.');
    const std::size_t digits = (point == std::string::npos ? number.size() : point) - at;
    if (digits == 0 || (digits > 1 && number[at] == '0')) return false;
    if (decimals == 0 ? point != std::string::npos
                      : point == std::string::npos ||
                            number.size() - point - 1 != static_cast<std::size_t>(decimals)) {
        return false;
    }
    for (std::size_t i = at; i < number.size(); ++i) {
        if (i != point && (number[i] < '0' || number[i] > '9')) return false;
    }
    return at == 0 || number.find_first_not_of("-0.") != std::string::npos;
}

/// Every coordinate of the moves the writer itself spells (the profile's own lines, a footer
/// that parks the pen at "G0 X0 Y0" say, are the profile's business).
void checkNumbers(const std::string& text, const SDeviceProfile& profile) {
    const std::string own = profile.header + "\n" + profile.footer + "\n" + profile.penUp + "\n" +
                            profile.penDown + "\n" + profile.toolChange + "\n";
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (own.find(line + "\n") != std::string::npos) continue;
        std::vector<std::string> numbers;
        if (line.rfind("G0 X", 0) == 0 || line.rfind("G1 X", 0) == 0) {
            std::istringstream words(line.substr(3));
            for (std::string word; words >> word;) {
                if (word[0] == 'X' || word[0] == 'Y') numbers.push_back(word.substr(1));
            }
        } else if ((line.rfind("PU", 0) == 0 || line.rfind("PD", 0) == 0) && line.size() > 3) {
            std::istringstream pairs(line.substr(2, line.size() - 3));
            for (std::string number; std::getline(pairs, number, ',');) {
                numbers.push_back(number);
            }
        }
        for (const std::string& number : numbers) {
            if (!plain(number, profile.decimals)) fail("a malformed number", line);
        }
    }
}

double pick(test::ByteSource& source, std::initializer_list<double> values) {
    const unsigned choice = source.byte() % (values.size() + 1);
    return choice < values.size() ? values.begin()[choice] : source.rawFloat();
}

SDeviceProfile decodeProfile(test::ByteSource& source) {
    const std::vector<std::string> names = builtInDeviceProfiles();
    SDeviceProfile profile =
        readDeviceProfile(builtInDeviceProfileText(names[source.byte() % names.size()])).profile;
    const unsigned changes = source.byte();
    if (changes & 1) profile.scale = pick(source, {40.0, 1.0 / 25.4, 1e-30, 1e30, 0.0, -1.0});
    if (changes & 2) profile.decimals = static_cast<int>(source.byte() % 9) - 1;
    if (changes & 4) {
        profile.flipX = source.byte() & 1;
        profile.flipY = source.byte() & 1;
        profile.originX = pick(source, {0.0, 297.0, -1e30});
        profile.originY = pick(source, {0.0, 0.5, 1e30});
    }
    if (changes & 8) {
        profile.bedWidth = pick(source, {0.0, 1.0, 420.0});
        profile.bedHeight = pick(source, {0.0, 2.0, 297.0});
        profile.clip = source.byte() & 1;
    }
    if (changes & 16) profile.penCount = source.byte() % 10;
    if (changes & 32) profile.drawFeed = pick(source, {1.0, 0.0, -5.0, 1e300});
    if (changes & 64) profile.penPower = {pick(source, {0.0, 1e-9}), pick(source, {2.5})};
    return profile;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::ByteSource source(data, size);
    if (source.byte() == 0x54) { // 'T': the rest is a profile file and two overrides
        const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
        const SProfileReading reading =
            readDeviceProfile(text, {"decimals=" + text.substr(0, 3), text.substr(0, 12)});
        if (reading.ok() && !checkDeviceProfile(reading.profile).empty()) {
            fail("a profile read that does not pass the check", text);
        }
        return 0;
    }
    const SDeviceProfile profile = decodeProfile(source);
    const test::DecodedRun input = test::DrawingDecoder(source).decode();
    LibStrokeset::CStrokeset document(input.words);
    for (unsigned int index : input.emptied) {
        document.deletePoint(index);
    }
    const SMachineExport result = exportMachine(document, profile);
    if (!result.ok()) {
        if (!result.text.empty()) fail("a refused export wrote text", result.error);
        return 0;
    }
    if (!checkDeviceProfile(profile).empty()) fail("an unusable profile was used", "");
    for (const char* word : {"nan", "inf", "e+", "e-"}) {
        if (result.text.find(word) != std::string::npos)
            fail("a number that is not plain", result.text);
    }
    checkNumbers(result.text, profile);
    return 0;
}
