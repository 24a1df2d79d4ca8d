// Machine output: G-code and HPGL text of small drawings, numbers, placement and clipping,
// pens, the estimate, and what a profile or a drawing must not hold.

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <vector>
#include <string>

#include <gtest/gtest.h>

#include <LibStrokeset/Formats/DeviceProfile.h>
#include <LibStrokeset/Formats/MachineExport.h>

#include "Numbers.h"
#include "StreamBuilder.h"

namespace {

using namespace LibStrokeset::Formats;
using test::StreamBuilder;

SDeviceProfile servoPlotter() {
    SDeviceProfile profile;
    profile.units = "mm";
    profile.decimals = 2;
    profile.drawFeed = 1200.0;
    profile.travelFeed = 6000.0;
    profile.penUp = "M3 S30";
    profile.penDown = "M3 S90\nG4 P0.1";
    profile.toolChange = "M0 (pen {pen})";
    profile.header = "(start)";
    profile.footer = "G0 X0 Y0\nM2";
    return profile;
}

SDeviceProfile hpglPlotter() {
    SDeviceProfile profile;
    profile.language = EMachineLanguage::eHpgl;
    profile.scale = 40.0;
    profile.decimals = 0;
    profile.penCount = 8;
    profile.toolChange = "SP{pen};";
    profile.header = "IN;";
    profile.footer = "PU;SP0;";
    return profile;
}

/// Two pens, a path, a dot, an opaque record between them.
LibStrokeset::CStrokeset smallDrawing() {
    StreamBuilder words;
    words.pen(1).moveTo(0, 0).lineTo(10, 0).lineTo(10, 5.125f).raw({0x3001, 0xAAAA, 0xBBBB});
    words.pen(2).dot(-1, 2);
    return LibStrokeset::CStrokeset(words.words());
}

TEST(MachineText, GcodeAndHpglOfASmallDrawing) {
    const SMachineExport gcode = exportMachine(smallDrawing(), servoPlotter());
    ASSERT_TRUE(gcode.ok()) << gcode.error;
    EXPECT_EQ(gcode.text, "(start)\nG21\nG90\nM3 S30\n"
                          "M0 (pen 1)\nG0 X0.00 Y0.00\nM3 S90\nG4 P0.1\n"
                          "G1 X10.00 Y0.00 F1200\nG1 X10.00 Y5.12\nM3 S30\n" // 5.125: ties to even
                          "M0 (pen 2)\nG0 X-1.00 Y2.00\nM3 S90\nG4 P0.1\nM3 S30\n"
                          "G0 X0 Y0\nM2\n");
    EXPECT_EQ(gcode.strokes, 2u);
    EXPECT_EQ(gcode.dots, 1u);
    EXPECT_EQ(gcode.skippedRecords, 1u);
    ASSERT_EQ(gcode.warnings.size(), 1u);
    EXPECT_NE(gcode.warnings[0].find("1 unsupported record"), std::string::npos);

    const SMachineExport hpgl = exportMachine(smallDrawing(), hpglPlotter());
    ASSERT_TRUE(hpgl.ok()) << hpgl.error;
    EXPECT_EQ(hpgl.text, "IN;\nSP1;\nPU0,0;\nPD400,0,400,205;\nPU;\n"
                         "SP2;\nPU-40,80;\nPD;\nPU;\nPU;SP0;\n");
}

TEST(MachineText, LongStrokesSplitTheirPointsOverSeveralCommands) {
    StreamBuilder words;
    words.moveTo(0, 0);
    for (int i = 1; i <= 40; ++i) {
        words.lineTo(static_cast<float>(i), 0);
    }
    const SMachineExport hpgl =
        exportMachine(LibStrokeset::CStrokeset(words.words()), hpglPlotter());
    // 40 points drawn: 32 in one command, then 8; no pen change for a drawing without pens.
    EXPECT_EQ(hpgl.text.find("SP"), hpgl.text.rfind("SP0;"));
    const std::size_t second = hpgl.text.find(";\nPD1320,0,");
    ASSERT_NE(second, std::string::npos) << hpgl.text;
    EXPECT_EQ(hpgl.text.find("PD", second + 3), std::string::npos);
}

TEST(MachineNumbers, PlainDecimalsAtAnySizeAndNeverMinusZero) {
    EXPECT_EQ(fixedDecimals(-0.0004, 3), "0.000");
    EXPECT_EQ(fixedDecimals(-0.0, 0), "0");
    EXPECT_EQ(fixedDecimals(-0.4, 0), "0");
    EXPECT_EQ(fixedDecimals(-0.0005001, 3), "-0.001");
    EXPECT_EQ(fixedDecimals(1e-7, 6), "0.000000");
    EXPECT_EQ(fixedDecimals(2.5, 0), "2"); // ties to even, as the conversion rounds
    const std::string huge = fixedDecimals(3.4e38 * 40.0, 2);
    EXPECT_EQ(huge.find_first_of("eE"), std::string::npos);
    EXPECT_EQ(huge.size(), 44u); // 41 digits, the point and two decimals
    EXPECT_EQ(shortDecimals(1000.0, 3), "1000");
    EXPECT_EQ(shortDecimals(0.25, 3), "0.25");
    EXPECT_EQ(shortDecimals(-0.0001, 3), "0");
}

TEST(MachinePlacement, FlipsMovesScalesAndClipsAtTheBedsEdge) {
    SDeviceProfile profile = hpglPlotter();
    profile.flipY = true;
    profile.originY = 100.0; // a page whose y runs down, on a bed whose y runs up
    profile.bedWidth = 50.0;
    profile.bedHeight = 100.0;
    StreamBuilder words;
    words.moveTo(40, 10).lineTo(60, 10).lineTo(60, 30).lineTo(40, 30); // leaves and comes back
    words.dot(70, 70).dot(5, 5);
    const LibStrokeset::CStrokeset drawing(words.words());

    const SMachineExport warned = exportMachine(drawing, profile);
    EXPECT_EQ(warned.pointsOutside, 3u);
    EXPECT_NE(warned.text.find("PU1600,3600;\nPD2400,3600,2400,2800,1600,2800;"), std::string::npos)
        << warned.text;
    ASSERT_EQ(warned.warnings.size(), 1u);
    EXPECT_NE(warned.warnings[0].find("3 points lie outside the bed of 50 x 100"),
              std::string::npos);

    profile.clip = true;
    const SMachineExport clipped = exportMachine(drawing, profile);
    EXPECT_EQ(clipped.pointsOutside, 0u);
    EXPECT_TRUE(clipped.warnings.empty());
    EXPECT_NE(clipped.text.find("PU1600,3600;\nPD2000,3600;\nPU;\nPU2000,2800;\nPD1600,2800;"),
              std::string::npos)
        << clipped.text;
    EXPECT_EQ(clipped.text.find("PU2800,1200;"), std::string::npos); // the dot off the bed
    EXPECT_NE(clipped.text.find("PU200,3800;\nPD;"), std::string::npos);
    EXPECT_EQ(clipped.strokes, 3u);
}

TEST(MachinePens, ChangesInsideAPathWrapsAndDrawingsWithoutPens) {
    StreamBuilder words;
    words.pen(3).moveTo(0, 0).lineTo(1, 0).pen(11).lineTo(2, 0).pen(0).lineTo(3, 0);
    const SMachineExport hpgl =
        exportMachine(LibStrokeset::CStrokeset(words.words()), hpglPlotter());
    ASSERT_TRUE(hpgl.ok());
    EXPECT_EQ(hpgl.text, "IN;\nSP3;\nPU0,0;\nPD40,0;\nPU;\nPU40,0;\nPD80,0;\nPU;\n"
                         "SP1;\nPU80,0;\nPD120,0;\nPU;\nPU;SP0;\n");
    EXPECT_EQ(hpgl.estimate.toolChanges, 2u); // pen 11 wraps to 3, which is in the holder
    ASSERT_EQ(hpgl.warnings.size(), 1u);
    EXPECT_NE(hpgl.warnings[0].find("pens 1 to 8"), std::string::npos);

    SDeviceProfile laser = servoPlotter();
    laser.penDown = "M4 S{power}";
    laser.penUp = "M5";
    laser.power = 100.0;
    laser.penPower = {250.0, 500.5};
    StreamBuilder two;
    two.pen(2).dot(0, 0).pen(5).dot(1, 1);
    const SMachineExport burned = exportMachine(LibStrokeset::CStrokeset(two.words()), laser);
    EXPECT_NE(burned.text.find("M4 S500.5"), std::string::npos) << burned.text;
    EXPECT_NE(burned.text.find("M4 S100\n"), std::string::npos) << burned.text;

    StreamBuilder none;
    none.moveTo(0, 0).lineTo(1, 1);
    const SMachineExport plain = exportMachine(LibStrokeset::CStrokeset(none.words()), laser);
    EXPECT_EQ(plain.text.find("M0"), std::string::npos);
    EXPECT_EQ(plain.estimate.toolChanges, 0u);
}

TEST(MachineEstimate, LengthsLiftsAndTimeFromTheFeeds) {
    SDeviceProfile profile = servoPlotter();
    profile.drawFeed = 600.0;    // 10 per second
    profile.travelFeed = 1200.0; // 20 per second
    profile.penSeconds = 0.5;
    profile.toolChangeSeconds = 10.0;
    StreamBuilder words;
    words.pen(1).moveTo(0, 0).lineTo(30, 40).pen(2).moveTo(30, 0).lineTo(30, 10).dot(30, 30);
    const SMachineExport result = exportMachine(LibStrokeset::CStrokeset(words.words()), profile);
    EXPECT_DOUBLE_EQ(result.estimate.drawLength, 60.0);
    EXPECT_DOUBLE_EQ(result.estimate.travelLength, 60.0);
    EXPECT_EQ(result.estimate.penLifts, 3u);
    EXPECT_EQ(result.estimate.toolChanges, 2u);
    EXPECT_DOUBLE_EQ(result.estimate.seconds, 6.0 + 3.0 + 3.0 + 20.0);
}

TEST(MachineRefusals, NonFiniteCoordinatesAndUnusableProfilesWriteNothing) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    StreamBuilder words;
    words.moveTo(0, 0).lineTo(1, 1).dot(2, std::numeric_limits<float>::infinity()).dot(nan, 0);
    const SMachineExport bad =
        exportMachine(LibStrokeset::CStrokeset(words.words()), servoPlotter());
    EXPECT_FALSE(bad.ok());
    EXPECT_TRUE(bad.text.empty());
    EXPECT_NE(bad.error.find("opcode index 2 (2, inf)"), std::string::npos) << bad.error;

    SDeviceProfile huge = servoPlotter();
    huge.scale = 1e300;
    StreamBuilder far;
    far.dot(3e38f, 0);
    const SMachineExport overflow = exportMachine(LibStrokeset::CStrokeset(far.words()), huge);
    EXPECT_NE(overflow.error.find("beyond any machine coordinate"), std::string::npos);

    const auto refused = [](void (*change)(SDeviceProfile&), const char* key) {
        SDeviceProfile profile = servoPlotter();
        change(profile);
        const std::string message = checkDeviceProfile(profile);
        EXPECT_NE(message.find(key), std::string::npos) << key << ": " << message;
        EXPECT_FALSE(exportMachine(smallDrawing(), profile).ok()) << key;
    };
    refused([](SDeviceProfile& p) { p.drawFeed = -5.0; }, "draw_feed");
    refused([](SDeviceProfile& p) { p.travelFeed = 0.0; }, "travel_feed");
    refused([](SDeviceProfile& p) { p.scale = std::nan(""); }, "scale");
    refused([](SDeviceProfile& p) { p.decimals = 7; }, "decimals");
    refused(
        [](SDeviceProfile& p) {
            p.scale = 1e300;
            p.drawFeed = 1e300;
        },
        "draw_feed times scale");
    refused([](SDeviceProfile& p) { p.bedWidth = -1.0; }, "bed_width");
    refused([](SDeviceProfile& p) { p.penPower = {1.0, -2.0}; }, "pen_power");
    refused([](SDeviceProfile& p) { p.units = "cm"; }, "units");
    refused([](SDeviceProfile& p) { p.penDown = "M3 S{powr}"; }, "pen_down holds {powr}");
    EXPECT_EQ(checkDeviceProfile(servoPlotter()), "");
}

} // namespace

namespace {

using namespace LibStrokeset::Formats;

const char* const kMinimalProfile = "format = \"gcode\"\nscale = 1\ndecimals = 3\n"
                                    "draw_feed = 1000\ntravel_feed = 2000.5\n";

TEST(MachineProfiles, BuiltInProfilesReadAndOverridesReplaceKeys) {
    const std::vector<std::string> names = builtInDeviceProfiles();
    EXPECT_EQ(names, (std::vector<std::string>{"gcode-laser", "gcode-servo", "gcode-z",
                                               "hpgl-cutter", "hpgl-plotter"}));
    for (const std::string& name : names) {
        const SProfileReading reading = readDeviceProfile(builtInDeviceProfileText(name), {}, name);
        EXPECT_TRUE(reading.ok()) << reading.error;
        EXPECT_EQ(reading.profile.language == EMachineLanguage::eHpgl, name.rfind("hpgl", 0) == 0);
    }
    EXPECT_EQ(builtInDeviceProfileText("no-such-machine"), "");
    const SProfileReading plotter = readDeviceProfile(builtInDeviceProfileText("hpgl-plotter"));
    EXPECT_EQ(plotter.profile.scale, 40.0);
    EXPECT_EQ(plotter.profile.penCount, 8u);
    EXPECT_EQ(plotter.profile.toolChange, "SP{pen};");

    const SProfileReading minimal = readDeviceProfile(kMinimalProfile);
    ASSERT_TRUE(minimal.ok()) << minimal.error;
    EXPECT_EQ(minimal.profile.travelFeed, 2000.5);
    EXPECT_EQ(minimal.profile.penUp, "");

    const SProfileReading changed = readDeviceProfile(
        kMinimalProfile, {"draw_feed=250", "pen_up=M5", "pen_down=\"M3 S{power}\"",
                          "pen_power=[1, 2.5]", "flip_y=true", "decimals=0"});
    ASSERT_TRUE(changed.ok()) << changed.error;
    EXPECT_EQ(changed.profile.drawFeed, 250.0);
    EXPECT_EQ(changed.profile.penUp, "M5");
    EXPECT_EQ(changed.profile.penDown, "M3 S{power}");
    EXPECT_EQ(changed.profile.penPower, (std::vector<double>{1.0, 2.5}));
    EXPECT_TRUE(changed.profile.flipY);
    EXPECT_EQ(changed.profile.decimals, 0);
}

TEST(MachineProfiles, LoadingByNameOrFile) {
    const SProfileReading builtIn = loadDeviceProfile("hpgl-cutter", {"decimals=1"});
    ASSERT_TRUE(builtIn.ok()) << builtIn.error;
    EXPECT_EQ(builtIn.profile.language, EMachineLanguage::eHpgl);
    EXPECT_EQ(builtIn.profile.decimals, 1);

    const std::string path = ::testing::TempDir() + "plotter.toml";
    std::ofstream(path) << kMinimalProfile;
    const SProfileReading fromFile = loadDeviceProfile(path);
    ASSERT_TRUE(fromFile.ok()) << fromFile.error;
    EXPECT_EQ(fromFile.profile.travelFeed, 2000.5);
    EXPECT_EQ(fromFile.profile.name, path); // the file names no profile of its own
    std::remove(path.c_str());

    const SProfileReading missing = loadDeviceProfile(path);
    EXPECT_NE(missing.error.find(path + ": no such profile file"), std::string::npos);
    EXPECT_NE(missing.error.find("hpgl-plotter"), std::string::npos); // lists what there is
    EXPECT_NE(loadDeviceProfile("gcode-z", {"scale=-1"}).error.find("scale"), std::string::npos);
}

TEST(MachineProfiles, MissingMistypedNegativeAndUnknownKeysAreNamed) {
    const auto error = [](const std::string& text, std::vector<std::string> overrides = {}) {
        const SProfileReading reading = readDeviceProfile(text, overrides, "my.toml");
        EXPECT_FALSE(reading.ok()) << text;
        return reading.error;
    };
    const std::string minimal = kMinimalProfile;
    EXPECT_EQ(error("format = \"gcode\"\nscale = 1\ndecimals = 3\ndraw_feed = 1000\n"),
              "my.toml: the key travel_feed is missing");
    EXPECT_EQ(error(minimal + "pen_up = 5\n"),
              "my.toml:6: pen_up must be a string, not a whole number");
    EXPECT_EQ(error(minimal + "clip = \"yes\"\n"),
              "my.toml:6: clip must be true or false, not a string");
    EXPECT_EQ(error(minimal, {"draw_feed=fast"}),
              "my.toml: draw_feed must be a number, not a string");
    EXPECT_EQ(error(minimal, {"draw_feed=-3"}),
              "my.toml: draw_feed must be a finite number above 0");
    EXPECT_EQ(error(minimal, {"decimals=2.5"}),
              "my.toml: decimals must be a whole number, not a number");
    EXPECT_EQ(error(minimal, {"decimals=9"}), "my.toml: decimals must be from 0 to 6");
    EXPECT_EQ(error(minimal, {"format=svg"}), "my.toml: format must be \"gcode\" or \"hpgl\"");
    EXPECT_EQ(error(minimal, {"pen_power=[1, \"a\"]"}),
              "my.toml: pen_power must hold numbers only, not a string");
    EXPECT_EQ(error(minimal + "feed = 3\n"), "my.toml:6: unknown key feed");
    EXPECT_EQ(error(minimal, {"feed=3"}), "--set feed: no profile has that key");
    EXPECT_EQ(error(minimal, {"draw_feed"}), "--set wants KEY=VALUE, not \"draw_feed\"");
    EXPECT_EQ(error(minimal + "pen_down = \"M3 {speed}\"\n"),
              "my.toml: pen_down holds {speed}: only {pen} and {power} are filled in");
    const std::string broken = error("format = \"gcode\"\nscale = = 1\n");
    EXPECT_EQ(broken.rfind("my.toml:2: ", 0), 0u) << broken;
}

} // namespace
