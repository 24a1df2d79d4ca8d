// Machine files read back by real interpreters: every test SVG imported, optimized and
// exported with every built-in profile, then run through the HPGL interpreter (hp2xx) or the
// RS274/NGC interpreter (rs274). What they draw must be our strokes, point for point, within
// the file's resolution, in the same order and with the same pens. Skipped, saying so, where
// the interpreters are not installed.

#include <array>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

#include <gtest/gtest.h>

#include <LibStrokeset/Formats/Formats.h>
#include <LibStrokeset/LibStrokeset.h>

namespace {

namespace fs = std::filesystem;
using namespace LibStrokeset::Formats;
using Point = std::array<double, 2>;

/// A pen-down stroke as a machine draws it; one point for a plunge.
struct SStroke {
    int pen = -1; ///< -1 where the interpreter does not tell
    std::vector<Point> points;
};

std::string slurp(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

bool installed(const char* program) {
    return std::system(("command -v " + std::string(program) + " >/dev/null 2>&1").c_str()) == 0;
}

/// Our strokes in machine units, each point rounded as the file writes it (ties to even) and
/// repeats dropped, as the machine cannot tell them apart.
std::vector<SStroke> expectedStrokes(const LibStrokeset::CStrokeset& drawing,
                                     const SDeviceProfile& profile) {
    struct SCollect : IDrawingVisitor {
        const SDeviceProfile* profile = nullptr;
        std::vector<SStroke> strokes;
        unsigned short pen = 0;
        void add(unsigned short drawn, const Eigen::RowVector3f& p) {
            const double unit = std::pow(10.0, profile->decimals);
            const auto machine = [&](double v, bool flip, double origin) {
                return std::nearbyint(((flip ? -v : v) + origin) * profile->scale * unit) / unit;
            };
            const Point point = {machine(p.x(), profile->flipX, profile->originX),
                                 machine(p.y(), profile->flipY, profile->originY)};
            SStroke& stroke = strokes.back();
            if (stroke.points.empty() || stroke.points.back() != point) {
                stroke.points.push_back(point);
            }
            const unsigned count = profile->penCount;
            stroke.pen = drawn == 65535 ? -1
                         : count == 0   ? drawn
                         : drawn == 0   ? 1
                                        : (drawn - 1) % count + 1;
        }
        void onPath(const LibStrokeset::CSubPath& path) override {
            // A segment draws in the pen of its end; a new pen lifts and starts a new stroke.
            for (const LibStrokeset::CLine& line : path) {
                if (&line == &*path.begin() || line.getEndPenNumber() != pen) {
                    pen = line.getEndPenNumber();
                    strokes.emplace_back();
                    add(pen, line.getPosition());
                }
                add(pen, line.getEndPosition());
            }
        }
        void onDot(const LibStrokeset::CDot& dot) override {
            strokes.emplace_back();
            add(dot.getPenNumber(), dot.getPosition());
        }
        void onRecord(const LibStrokeset::CUnsupportedElement&) override {}
        void onJump(const Eigen::RowVector3f&, const Eigen::RowVector3f&) override {}
    } collect;
    collect.profile = &profile;
    walkDrawing(drawing, collect);
    return collect.strokes;
}

/// Adds a point to the open stroke unless the interpreter repeats where it already is.
void extend(SStroke& stroke, const Point& p, double same) {
    if (stroke.points.empty() || std::abs(stroke.points.back()[0] - p[0]) > same ||
        std::abs(stroke.points.back()[1] - p[1]) > same) {
        stroke.points.push_back(p);
    }
}

/// The strokes in hp2xx's own HPGL listing: "SPn;", "PA;PUx,y;" and "PDx,y;", shifted by the
/// lowest coordinate, which its log names. A plunge comes back as a segment of 0.01.
std::vector<SStroke> hp2xxStrokes(const std::string& listing, const std::string& log) {
    std::smatch range;
    EXPECT_TRUE(
        std::regex_search(log, range, std::regex(R"(Coordinate range: \(([^,]+), ([^)]+)\))")))
        << log;
    const double dx = range.empty() ? 0.0 : std::stod(range[1]);
    const double dy = range.empty() ? 0.0 : std::stod(range[2]);
    std::vector<SStroke> strokes;
    int pen = 1;
    bool open = false;
    Point at = {0.0, 0.0};
    const std::regex command(R"(([A-Z]{2})([^;]*);)");
    for (auto it = std::sregex_iterator(listing.begin(), listing.end(), command);
         it != std::sregex_iterator(); ++it) {
        const std::string name = (*it)[1], arguments = (*it)[2];
        if (name == "SP") {
            pen = std::stoi(arguments);
            open = false;
        } else if (name == "PU" || name == "PD") {
            const bool down = name == "PD";
            if (arguments.empty()) {
                continue;
            }
            const std::size_t comma = arguments.find(',');
            const Point p = {std::stod(arguments.substr(0, comma)) + dx,
                             std::stod(arguments.substr(comma + 1)) + dy};
            if (down && !open) {
                strokes.push_back({pen, {}});
                extend(strokes.back(), at, 0.02);
            }
            if (down) {
                extend(strokes.back(), p, 0.02);
            }
            open = down;
            at = p;
        }
    }
    return strokes;
}

/// What tells a profile's pen is down in rs274's canonical calls.
enum class EPenSignal { eServoAngle, eZAxis, eLaser };

/// The strokes in rs274's canonical calls: positions while the pen is down.
std::vector<SStroke> rs274Strokes(const std::string& calls, EPenSignal signal) {
    std::vector<SStroke> strokes;
    bool down = false;
    Point at = {0.0, 0.0};
    int pen = -1;
    const std::regex move(
        R"((STRAIGHT_TRAVERSE|STRAIGHT_FEED)\((-?[\d.]+), (-?[\d.]+), (-?[\d.]+),)");
    const std::regex comment(R"re(COMMENT\("put in pen (\d+)"\))re");
    std::istringstream lines(calls);
    for (std::string line; std::getline(lines, line);) {
        std::smatch m;
        bool wasDown = down;
        if (std::regex_search(line, m, move)) {
            at = {std::stod(m[2]), std::stod(m[3])};
            if (signal == EPenSignal::eZAxis) {
                down = std::stod(m[4]) <= 0.0;
            }
        } else if (std::regex_search(line, m, comment)) {
            pen = std::stoi(m[1]);
        } else if (signal == EPenSignal::eServoAngle &&
                   line.find("SET_SPINDLE_SPEED(0, ") != std::string::npos) {
            down = line.find("(0, 90.0000)") != std::string::npos;
        } else if (signal == EPenSignal::eLaser &&
                   line.find("START_SPINDLE_COUNTERCLOCKWISE") != std::string::npos) {
            down = true;
        } else if (signal == EPenSignal::eLaser &&
                   line.find("STOP_SPINDLE_TURNING") != std::string::npos) {
            down = false;
        } else {
            continue;
        }
        if (down && !wasDown) {
            strokes.push_back({pen, {}});
        }
        if (down) {
            extend(strokes.back(), at, 1e-9);
        }
    }
    return strokes;
}

/// The strokes with every one that starts where the one before ended, in the same pen, joined
/// to it: hp2xx lifts and lowers its pen in place every few points, so only the lines drawn
/// can be compared, not where the pen went up between them.
std::vector<SStroke> joined(const std::vector<SStroke>& strokes, double tolerance) {
    std::vector<SStroke> result;
    for (const SStroke& stroke : strokes) {
        if (!result.empty() && result.back().pen == stroke.pen) {
            const Point& end = result.back().points.back();
            const Point& start = stroke.points.front();
            if (std::abs(end[0] - start[0]) <= tolerance &&
                std::abs(end[1] - start[1]) <= tolerance) {
                result.back().points.insert(result.back().points.end(), stroke.points.begin() + 1,
                                            stroke.points.end());
                continue;
            }
        }
        result.push_back(stroke);
    }
    return result;
}

void expectSameStrokes(std::vector<SStroke> ours, std::vector<SStroke> theirs, double tolerance,
                       bool pens, bool joinTouching) {
    if (!pens) { // a machine that changes no pens draws every stroke with the one it has
        for (SStroke& stroke : ours) {
            stroke.pen = -1;
        }
        for (SStroke& stroke : theirs) {
            stroke.pen = -1;
        }
    }
    if (joinTouching) {
        ours = joined(ours, tolerance);
        theirs = joined(theirs, tolerance);
    }
    ASSERT_EQ(theirs.size(), ours.size());
    for (std::size_t i = 0; i < ours.size(); ++i) {
        ASSERT_EQ(theirs[i].points.size(), ours[i].points.size()) << "stroke " << i;
        if (ours[i].pen >= 0) {
            ASSERT_EQ(theirs[i].pen, ours[i].pen) << "stroke " << i;
        }
        for (std::size_t j = 0; j < ours[i].points.size(); ++j) {
            for (int k = 0; k < 2; ++k) {
                ASSERT_NEAR(theirs[i].points[j][k], ours[i].points[j][k], tolerance)
                    << "stroke " << i << " point " << j;
            }
        }
    }
}

class Interpreters : public ::testing::Test {
protected:
    void SetUp() override { fs::create_directories(m_folder); }
    void TearDown() override { fs::remove_all(m_folder); }

    /// Every test SVG and the example, imported and optimized as a user would.
    static std::vector<std::pair<std::string, LibStrokeset::CStrokeset>> drawings() {
        std::vector<fs::path> files = {fs::path(LIBSTROKESET_EXAMPLES_DIR) / "two_layers_a4.svg"};
        for (const auto& entry : fs::directory_iterator(LIBSTROKESET_SVG_DIR)) {
            files.push_back(entry.path());
        }
        std::vector<std::pair<std::string, LibStrokeset::CStrokeset>> result;
        for (const fs::path& file : files) {
            const SSvgImport svg = importSvg(slurp(file));
            EXPECT_TRUE(svg.ok()) << file << ": " << svg.error;
            LibStrokeset::CStrokeset drawing(svg.words);
            LibStrokeset::COptimizationResults results;
            drawing.optimize(LibStrokeset::COptimizationParameters(0.05f, true, true, true, true,
                                                                   true, true, false),
                             results, [](int, float) {});
            result.emplace_back(file.filename().string(), std::move(drawing));
        }
        return result;
    }
    /// A built-in profile that keeps every point (no clipping), so that each one comes back.
    static SDeviceProfile profile(const std::string& name) {
        const SProfileReading reading =
            readDeviceProfile(builtInDeviceProfileText(name), {"clip=false"}, name);
        EXPECT_TRUE(reading.ok()) << reading.error;
        return reading.profile;
    }
    std::string write(const std::string& name, const std::string& text) {
        const fs::path file = m_folder / name;
        std::ofstream(file, std::ios::binary) << text;
        return file.string();
    }

    const fs::path m_folder =
        fs::temp_directory_path() / ("strokeset-interpreters-" + std::to_string(getpid()));
};

TEST_F(Interpreters, Hp2xxDrawsOurHpglStrokesWithinOnePlotterUnit) {
    if (!installed("hp2xx")) {
        GTEST_SKIP() << "hp2xx is not installed (apt-get install hp2xx)";
    }
    for (const char* name : {"hpgl-plotter", "hpgl-cutter"}) {
        const SDeviceProfile device = profile(name);
        for (const auto& [file, drawing] : drawings()) {
            SCOPED_TRACE(std::string(name) + " " + file);
            const SMachineExport result = exportMachine(drawing, device);
            ASSERT_TRUE(result.ok()) << result.error;
            const std::string in = write("in.hpgl", result.text);
            const std::string out = (m_folder / "out.txt").string();
            const std::string log = (m_folder / "log.txt").string();
            const int status = std::system(
                ("hp2xx -m hpgl -t -x 0 -y 0 -X 1 -Y 1 -f " + out + " " + in + " 2> " + log)
                    .c_str());
            ASSERT_EQ(status, 0);
            const std::string said = slurp(log);
            for (const char* complaint : {"Error", "Warning", ": ignored", "nan"}) {
                EXPECT_EQ(said.find(complaint), std::string::npos) << said;
            }
            EXPECT_NE(said.find("HPGL command(s) ignored: 0"), std::string::npos) << said;
            if (result.strokes == 0) {
                continue; // nothing drawn: hp2xx names no coordinate range
            }
            expectSameStrokes(expectedStrokes(drawing, device), hp2xxStrokes(slurp(out), said), 1.0,
                              device.toolChange.find("SP") != std::string::npos, true);
        }
    }
}

TEST_F(Interpreters, Rs274ReadsOurGcodeAndFeedsAlongOurStrokes) {
    if (!installed("rs274")) {
        GTEST_SKIP() << "rs274 is not installed (apt-get install linuxcnc-uspace)";
    }
    const std::pair<const char*, EPenSignal> profiles[] = {{"gcode-servo", EPenSignal::eServoAngle},
                                                           {"gcode-z", EPenSignal::eZAxis},
                                                           {"gcode-laser", EPenSignal::eLaser}};
    // rs274 keeps a tool table in its home: one of our own, never shared with a parallel run.
    const fs::path home = m_folder / "home";
    fs::create_directories(home);
    for (const auto& [name, signal] : profiles) {
        const SDeviceProfile device = profile(name);
        for (const auto& [file, drawing] : drawings()) {
            SCOPED_TRACE(std::string(name) + " " + file);
            const SMachineExport result = exportMachine(drawing, device);
            ASSERT_TRUE(result.ok()) << result.error;
            const std::string in = write("in.ngc", result.text);
            const std::string out = (m_folder / "out.txt").string();
            const std::string errors = (m_folder / "errors.txt").string();
            const int status = std::system(("HOME=" + home.string() + " rs274 -g " + in + " " +
                                            out + " < /dev/null 2> " + errors)
                                               .c_str());
            ASSERT_EQ(status, 0) << slurp(errors);
            EXPECT_EQ(slurp(errors), "executing\n");
            const std::string calls = slurp(out);
            EXPECT_NE(calls.find("PROGRAM_END()"), std::string::npos);
            // rs274 writes four decimals of our three.
            expectSameStrokes(expectedStrokes(drawing, device), rs274Strokes(calls, signal),
                              0.00051, signal != EPenSignal::eLaser, false);
        }
    }
}

} // namespace
