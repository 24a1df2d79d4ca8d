// Runs the strokeset tool as a user would, on small files good and bad, and checks what it
// prints, the files it leaves and its exit statuses.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <LibStrokeset/LibStrokeset.h>

#include "SampleDrawing.h"
#include "StreamBuilder.h"

extern char** environ;

namespace {

namespace fs = std::filesystem;
using test::StreamBuilder;
using test::Words;

/// What a run of the tool left: its exit status (minus the signal number when a signal ended
/// it, so that dying of SIGINT is not mistaken for exiting with 130) and what it printed.
struct SRun {
    int status = -1;
    std::string out, err;
};

class ToolTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string pattern = (fs::temp_directory_path() / "strokeset-test-XXXXXX").string();
        ASSERT_NE(mkdtemp(pattern.data()), nullptr);
        m_root = pattern;
        fs::create_directory(m_root / "work");
    }
    void TearDown() override { fs::remove_all(m_root); }

    /// A path in the folder the tool works in; its logs live elsewhere.
    std::string path(const std::string& name) const { return (m_root / "work" / name).string(); }

    void writeWords(const std::string& name, Words words) {
        std::string error;
        ASSERT_TRUE(LibStrokeset::CStrokeset::writeStkFile(path(name), words, error)) << error;
    }
    void writeText(const std::string& name, const std::string& text) {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    std::string readText(const std::string& name) const {
        std::ifstream file(path(name), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    std::vector<std::string> files() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(m_root / "work")) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }
    /// Loads a file the tool wrote.
    void load(const std::string& name, LibStrokeset::CStrokeset& drawing) {
        Words words;
        std::string error;
        ASSERT_TRUE(LibStrokeset::CStrokeset::readStkFile(path(name), words, error)) << error;
        drawing.setBinaryStrokesetData(words);
    }

    pid_t start(const std::vector<std::string>& arguments) {
        std::vector<std::string> argv{STROKESET_TOOL};
        argv.insert(argv.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        for (std::string& argument : argv) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, (m_root / "out.log").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_addopen(&actions, 2, (m_root / "err.log").c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0644);
        pid_t pid = -1;
        const int failed =
            posix_spawn(&pid, argv[0].c_str(), &actions, nullptr, pointers.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        EXPECT_EQ(failed, 0) << "cannot start " << argv[0];
        return failed == 0 ? pid : -1;
    }
    std::string log(const char* name) const {
        std::ifstream file(m_root / name);
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    SRun finish(pid_t pid) {
        SRun run;
        int status = 0;
        if (pid > 0 && waitpid(pid, &status, 0) == pid) {
            run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        }
        run.out = log("out.log");
        run.err = log("err.log");
        return run;
    }
    SRun run(const std::vector<std::string>& arguments) { return finish(start(arguments)); }

    fs::path m_root;
};

/// A sub-path (0,0) (3,0) (3,4) with pen 1, a dot at (10,0) with pen 2, an opaque record.
Words smallDrawing() {
    return StreamBuilder().pen(1).moveTo(0, 0).lineTo(3, 0).lineTo(3, 4).pen(2).dot(10, 0).raw(
        {0x4001, 0x0102, 0x0304, 0x0506});
}

/// Work for every phase with a tolerance of 0.05: a duplicate and a reversed duplicate, a
/// pair to join end to start and one end to end, an almost closed outline and a path with
/// a line shorter than the tolerance.
Words phaseDrawing() {
    StreamBuilder b;
    b.pen(1);
    for (int copy = 0; copy < 2; ++copy) {
        b.moveTo(0, 0).lineTo(10, 0).lineTo(10, 10);
    }
    b.moveTo(0, 20).lineTo(10, 20).lineTo(10, 30);
    b.moveTo(10, 30).lineTo(10, 20).lineTo(0, 20);
    b.moveTo(20, 0).lineTo(30, 0);
    b.moveTo(30.01f, 0).lineTo(30, 10);
    b.moveTo(40, 0).lineTo(50, 0);
    b.moveTo(50, 10).lineTo(50.01f, 0);
    b.moveTo(60, 0).lineTo(70, 0).lineTo(70, 10).lineTo(60, 10).lineTo(60, 0.02f);
    b.moveTo(80, 0).lineTo(90, 0).lineTo(90.001f, 0).lineTo(90, 10);
    return b;
}

/// The value of a row of the results table ("Joined paths   2" gives "2").
std::string row(const std::string& table, const std::string& label) {
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(label + "  ", 0) == 0) {
            return line.substr(line.find_first_not_of(' ', label.size()));
        }
    }
    return "(no row " + label + ")";
}

/// The line of a JSON report that holds the key, without its indent.
std::string jsonLine(const std::string& json, const std::string& key) {
    const std::size_t at = json.find("\n  \"" + key + "\":");
    return at == std::string::npos ? "" : json.substr(at + 3, json.find('\n', at + 1) - at - 3);
}

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t n = 0;
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++n;
    }
    return n;
}

// --- The command line -------------------------------------------------------------------

TEST_F(ToolTest, HelpNamesEverySubCommandAndEachHasItsOwn) {
    const SRun help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char* command : {"info", "optimize", "render", "simplify", "shuffle"}) {
        EXPECT_NE(help.out.find(std::string("\n  ") + command + " "), std::string::npos) << command;
        const SRun own = run({command, "--help"});
        EXPECT_EQ(own.status, 0) << command;
        EXPECT_NE(own.out.find(std::string("Usage: strokeset ") + command), std::string::npos);
    }
}

TEST_F(ToolTest, BadCommandLinesGiveUsageAndStatusTwo) {
    writeWords("in.stk", smallDrawing());
    const std::vector<std::vector<std::string>> bad = {
        {},
        {"frobnicate"},
        {"info"},
        {"optimize", path("in.stk")},
        {"optimize", path("in.stk"), path("out.stk"), "--bogus"},
        {"optimize", path("in.stk"), path("out.stk"), "--tolerance=-1"},
        {"optimize", path("in.stk"), path("out.stk"), "--tolerance", "0"},
        {"optimize", path("in.stk"), path("out.stk"), "--tolerance", "nan"},
        {"optimize", path("in.stk"), path("out.stk"), "--tolerance", "wide"},
        {"simplify", path("in.stk"), path("out.stk")},
        {"render", path("in.stk"), path("out.svg"), "--width", "0"},
    };
    for (const auto& arguments : bad) {
        const SRun result = run(arguments);
        const std::string shown = arguments.empty() ? "(none)" : arguments.back();
        EXPECT_EQ(result.status, 2) << shown;
        EXPECT_NE(result.err.find("Usage: strokeset"), std::string::npos) << shown;
        EXPECT_EQ(result.out, "") << shown;
    }
    EXPECT_EQ(files(), std::vector<std::string>{"in.stk"});
}

TEST_F(ToolTest, AnUnknownOptionShowsTheUsageOfItsSubCommand) {
    writeWords("in.stk", smallDrawing());
    const SRun result = run({"render", path("in.stk"), path("out.svg"), "--colour"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.err.find("--colour"), std::string::npos);
    EXPECT_NE(result.err.find("Usage: strokeset render"), std::string::npos);
}

// --- Bad input files --------------------------------------------------------------------

TEST_F(ToolTest, UnloadableInputGivesTheLibrarysMessageAndStatusTwo) {
    writeText("odd.stk", std::string("\x54\x16\x00", 3));
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"missing.stk", "File could not be opened!"},
        {"odd.stk", "File has wrong length!"},
    };
    for (const auto& [name, message] : cases) {
        for (const char* command : {"info", "optimize", "render", "simplify", "shuffle"}) {
            std::vector<std::string> arguments{command, path(name)};
            if (std::string(command) != "info") {
                arguments.push_back(path("out"));
            }
            if (std::string(command) == "simplify") {
                arguments.insert(arguments.end(), {"--tolerance", "1"});
            }
            const SRun result = run(arguments);
            EXPECT_EQ(result.status, 2) << command << ' ' << name;
            EXPECT_NE(result.err.find(path(name) + ": " + message), std::string::npos)
                << command << ' ' << name << ": " << result.err;
        }
    }
    EXPECT_EQ(files(), std::vector<std::string>{"odd.stk"});
}

TEST_F(ToolTest, AFolderIsBadInput) {
    fs::create_directory(path("folder.stk"));
    const SRun folder = run({"info", path("folder.stk")});
    EXPECT_EQ(folder.status, 2);
    EXPECT_EQ(folder.err.rfind("strokeset: " + path("folder.stk") + ": File ", 0), 0u)
        << folder.err;
}

TEST_F(ToolTest, AFileWithoutReadPermissionIsBadInput) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root reads files whatever their mode";
    }
    writeWords("secret.stk", smallDrawing());
    fs::permissions(path("secret.stk"), fs::perms::none);
    const SRun secret = run({"info", path("secret.stk")});
    EXPECT_EQ(secret.status, 2);
    EXPECT_NE(secret.err.find("File could not be opened!"), std::string::npos) << secret.err;
}

// --- Writing outputs --------------------------------------------------------------------

TEST_F(ToolTest, AFailedRunLeavesAnExistingOutputAlone) {
    writeText("out.stk", "keep me");
    EXPECT_EQ(run({"optimize", path("missing.stk"), path("out.stk")}).status, 2);
    EXPECT_EQ(run({"optimize", path("missing.stk"), path("out.stk"), "--bogus"}).status, 2);
    EXPECT_EQ(readText("out.stk"), "keep me");
    EXPECT_EQ(files(), std::vector<std::string>{"out.stk"});
}

TEST_F(ToolTest, AnOutputThatCannotBeWrittenGivesStatusOneAndLeavesNoTrace) {
    writeWords("in.stk", smallDrawing());
    fs::create_directory(path("taken"));
    writeText("taken/file", "x");
    for (const std::string& output : {path("no/such/folder/out.stk"), path("taken")}) {
        const SRun result = run({"shuffle", path("in.stk"), output});
        EXPECT_EQ(result.status, 1) << output;
        EXPECT_NE(result.err.find("strokeset: " + output + ": "), std::string::npos) << result.err;
    }
    EXPECT_EQ(files(), (std::vector<std::string>{"in.stk", "taken"}));
    EXPECT_EQ(readText("taken/file"), "x");
}

TEST_F(ToolTest, OptimizingInPlaceReplacesTheFileAndLeavesNoTemporaryFile) {
    writeWords("drawing.stk", phaseDrawing());
    const SRun result = run({"optimize", path("drawing.stk"), path("drawing.stk")});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(files(), std::vector<std::string>{"drawing.stk"});
    LibStrokeset::CStrokeset drawing;
    load("drawing.stk", drawing);
    EXPECT_EQ(drawing.getCollections().size(), 6u);
}

// --- info -------------------------------------------------------------------------------

TEST_F(ToolTest, InfoCountsMeasuresAndListsPens) {
    writeWords("small.stk", smallDrawing());
    const SRun text = run({"info", path("small.stk")});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_NE(text.out.find("Collections      3 (1 sub-paths, 1 dot runs, 1 unsupported)"),
              std::string::npos)
        << text.out;
    EXPECT_NE(text.out.find("Points           4\n"), std::string::npos);
    EXPECT_NE(text.out.find("Pens             1, 2\n"), std::string::npos);
    EXPECT_NE(text.out.find("x 0.000 .. 10.000, y 0.000 .. 4.000"), std::string::npos);
    EXPECT_NE(text.out.find("Drawn length     7.000\n"), std::string::npos);
    EXPECT_NE(text.out.find("Pen-up travel    8.062\n"), std::string::npos); // (3,4) to (10,0)

    const SRun json = run({"info", "--json", path("small.stk")});
    EXPECT_EQ(json.status, 0) << json.err;
    EXPECT_EQ(jsonLine(json.out, "collections"),
              R"("collections": {"subPaths": 1, "dots": 1, "unsupported": 1},)");
    EXPECT_EQ(jsonLine(json.out, "lines"), R"("lines": 2,)");
    EXPECT_EQ(jsonLine(json.out, "unsupportedRecords"), R"("unsupportedRecords": 1,)");
    EXPECT_EQ(jsonLine(json.out, "pens"), R"("pens": [1, 2],)");
    EXPECT_EQ(jsonLine(json.out, "boundingBox"),
              R"("boundingBox": {"min": [0, 0, 0], "max": [10, 4, 0]},)");
    EXPECT_EQ(jsonLine(json.out, "travelLength"), R"("travelLength": 8.062257748)");
}

TEST_F(ToolTest, InfoJsonStaysValidForOddDrawings) {
    // No pen change, a NaN coordinate, a quote in the file name; and an empty drawing.
    writeWords("a \"quoted\" name.stk",
               StreamBuilder().moveTo(0, 0).lineTo(std::nanf(""), 1).dot(2, 2, 5));
    const SRun odd = run({"info", "--json", path("a \"quoted\" name.stk")});
    EXPECT_EQ(odd.status, 0) << odd.err;
    EXPECT_NE(odd.out.find(R"(name.stk",)"), std::string::npos);
    EXPECT_NE(odd.out.find(R"(a \"quoted\" name)"), std::string::npos) << odd.out;
    EXPECT_EQ(jsonLine(odd.out, "pens"), R"("pens": [65535],)");
    EXPECT_EQ(jsonLine(odd.out, "drawnLength"), R"("drawnLength": null,)");
    EXPECT_EQ(jsonLine(odd.out, "boundingBox"),
              R"("boundingBox": {"min": [0, 0, 0], "max": [2, 2, 5]},)");

    writeWords("empty.stk", {});
    const SRun empty = run({"info", "--json", path("empty.stk")});
    EXPECT_EQ(empty.status, 0) << empty.err;
    EXPECT_EQ(jsonLine(empty.out, "boundingBox"), R"("boundingBox": null,)");
    EXPECT_EQ(jsonLine(empty.out, "pens"), R"("pens": [],)");
}

// --- optimize ---------------------------------------------------------------------------

TEST_F(ToolTest, OptimizeRunsEveryPhaseAndReportsIt) {
    writeWords("in.stk", phaseDrawing());
    const SRun result = run({"optimize", path("in.stk"), path("out.stk")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, ""); // no progress bar when standard error is no terminal
    EXPECT_EQ(row(result.out, "Removed duplicated paths"), "2");
    EXPECT_EQ(row(result.out, "Joined paths"), "2");
    EXPECT_EQ(row(result.out, "Removed degenerate lines"), "1");
    EXPECT_EQ(row(result.out, "Closed paths"), "1");
    EXPECT_EQ(row(result.out, "Collections").substr(0, 6), "10 -> ");
    // The travel figures are the whole drawing's, as info measures them.
    const std::string travelIn = row(run({"info", path("in.stk")}).out, "Pen-up travel");
    const std::string travelOut = row(run({"info", path("out.stk")}).out, "Pen-up travel");
    EXPECT_EQ(row(result.out, "Pen-up travel").rfind(travelIn + " -> " + travelOut + "  (-", 0), 0u)
        << result.out << travelIn << ' ' << travelOut;

    LibStrokeset::CStrokeset drawing;
    load("out.stk", drawing);
    int closed = 0;
    for (LibStrokeset::CCollection* collection : drawing) {
        auto* path = dynamic_cast<LibStrokeset::CSubPath*>(collection);
        ASSERT_NE(path, nullptr);
        closed += path->isClosed() ? 1 : 0;
    }
    EXPECT_EQ(drawing.getCollections().size(), 6u);
    EXPECT_EQ(drawing.getPointsCount(), 20u);
    EXPECT_EQ(closed, 1);
}

struct SPhaseCase {
    const char* flag;
    const char* label;
    const char* value;
};

void PrintTo(const SPhaseCase& phase, std::ostream* out) { *out << phase.flag; }

class PhaseSwitchTest : public ToolTest, public ::testing::WithParamInterface<SPhaseCase> {};

TEST_P(PhaseSwitchTest, EachNoFlagSwitchesOffItsOwnPhase) {
    writeWords("in.stk", phaseDrawing());
    const SRun result = run({"optimize", path("in.stk"), path("out.stk"), GetParam().flag});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(row(result.out, GetParam().label), GetParam().value) << result.out;
}

INSTANTIATE_TEST_SUITE_P(
    Optimize, PhaseSwitchTest,
    ::testing::Values(SPhaseCase{"--no-duplicates", "Removed duplicated paths", "1"},
                      SPhaseCase{"--no-reversed-duplicates", "Removed duplicated paths", "1"},
                      SPhaseCase{"--no-join", "Joined paths", "1"},
                      SPhaseCase{"--no-reversed-join", "Joined paths", "1"},
                      SPhaseCase{"--no-degenerate", "Removed degenerate lines", "0"},
                      SPhaseCase{"--no-close", "Closed paths", "0"},
                      SPhaseCase{"--no-ordering", "Travel in ordering phase", "off"}),
    [](const ::testing::TestParamInfo<SPhaseCase>& info) {
        // "--no-reversed-join" is named "no_reversed_join".
        std::string name = std::string(info.param.flag).substr(2);
        std::replace(name.begin(), name.end(), '-', '_');
        return name;
    });

TEST_F(ToolTest, OptimizeJoinsWithinTheToleranceAsked) {
    // Ends 0.2 apart: beyond the default tolerance, within 0.5.
    writeWords("in.stk", StreamBuilder().moveTo(0, 0).lineTo(10, 0).moveTo(10.2f, 0).lineTo(20, 5));
    const SRun usual = run({"optimize", path("in.stk"), path("out.stk")});
    EXPECT_EQ(row(usual.out, "Joined paths"), "0");
    const SRun wide = run({"optimize", path("in.stk"), path("out.stk"), "--tolerance", "0.5"});
    EXPECT_EQ(row(wide.out, "Joined paths"), "1");
    LibStrokeset::CStrokeset drawing;
    load("out.stk", drawing);
    EXPECT_EQ(drawing.getCollections().size(), 1u);
}

TEST_F(ToolTest, CtrlCStopsOptimizeWritesNothingAndExits130) {
    LibStrokeset::Sample::SOptions options;
    options.collections = 20000; // far longer to optimize than the wait for the first report
    writeWords("big.stk", LibStrokeset::Sample::makeDrawing(options));
    const pid_t pid = start({"optimize", path("big.stk"), path("out.stk"), "--progress"});
    ASSERT_GT(pid, 0);
    // The first progress report shows that the run is under way.
    while (log("err.log").find("stage ") == std::string::npos) {
        int status = 0;
        ASSERT_EQ(waitpid(pid, &status, WNOHANG), 0) << "ended before it could be interrupted";
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_EQ(kill(pid, SIGINT), 0);
    const SRun result = finish(pid);
    EXPECT_EQ(result.status, 130) << result.err;
    EXPECT_NE(result.err.find("interrupted"), std::string::npos);
    // Stopped where it was: the ordering phase, which reports as soon as it begins, never ran.
    EXPECT_EQ(result.err.find("stage 4/4"), std::string::npos) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(files(), std::vector<std::string>{"big.stk"});
}

// --- render -----------------------------------------------------------------------------

TEST_F(ToolTest, RenderDrawsAColourPerPenDotsAndOptionallyTravel) {
    // Pen 1 then pen 2 within one path, two dots, and a jump from (3,4) to the first dot.
    writeWords(
        "in.stk",
        StreamBuilder().pen(1).moveTo(0, 0).lineTo(3, 0).pen(2).lineTo(3, 4).dot(10, 0).dot(10, 2));
    ASSERT_EQ(run({"render", path("in.stk"), path("plain.svg")}).status, 0);
    ASSERT_EQ(run({"render", path("in.stk"), path("travel.svg"), "--travel"}).status, 0);
    const std::string plain = readText("plain.svg");
    const std::string travel = readText("travel.svg");

    EXPECT_EQ(plain.rfind("<?xml", 0), 0u);
    EXPECT_EQ(plain.substr(plain.size() - 7), "</svg>\n");
    EXPECT_EQ(count(plain, "<path stroke=\"#ff7f0e\" d=\"M0.000 0.000L3.000 0.000\""), 1u);
    EXPECT_EQ(count(plain, "<path stroke=\"#2ca02c\" d=\"M3.000 0.000L3.000 -4.000\""), 1u);
    EXPECT_EQ(count(plain, "<circle"), 2u);
    EXPECT_EQ(count(plain, "<g fill=\"#2ca02c\">"), 1u); // the dots have pen 2
    EXPECT_EQ(count(plain, "stroke-dasharray"), 0u);
    EXPECT_EQ(count(travel, "stroke-dasharray"), 1u);
    EXPECT_NE(travel.find("M3.000 -4.000L10.000 0.000M10.000 0.000L10.000 -2.000\""),
              std::string::npos);
}

TEST_F(ToolTest, RenderOfAnEmptyDrawingIsStillAPicture) {
    writeWords("empty.stk", StreamBuilder().raw({0x4001, 0x0102, 0x0304, 0x0506}));
    ASSERT_EQ(run({"render", path("empty.stk"), path("empty.svg"), "--travel"}).status, 0);
    const std::string svg = readText("empty.svg");
    EXPECT_NE(svg.find("viewBox=\"0 -1 1 1\""), std::string::npos) << svg;
    EXPECT_EQ(count(svg, "<path"), 0u);
}

// --- simplify and shuffle ---------------------------------------------------------------

TEST_F(ToolTest, SimplifyDropsPointsWithinTheTolerance) {
    // A wobble of 0.001 along y = 0, then a corner, and an opaque record that has no points.
    writeWords("in.stk", StreamBuilder()
                             .moveTo(0, 0)
                             .lineTo(2, 0.001f)
                             .lineTo(4, -0.001f)
                             .lineTo(6, 0.001f)
                             .lineTo(8, 0)
                             .lineTo(8, 10)
                             .raw({0x4001, 0x0102, 0x0304, 0x0506}));
    const SRun fine = run({"simplify", path("in.stk"), path("fine.stk"), "--tolerance", "1e-5"});
    ASSERT_EQ(fine.status, 0) << fine.err;
    EXPECT_EQ(fine.out, "Points 6 -> 6\n");

    const SRun coarse = run({"simplify", path("in.stk"), path("out.stk"), "--tolerance", "0.01"});
    ASSERT_EQ(coarse.status, 0) << coarse.err;
    ASSERT_EQ(coarse.out.rfind("Points 6 -> ", 0), 0u) << coarse.out;
    const unsigned long after = std::stoul(coarse.out.substr(12));
    EXPECT_LT(after, 6u);
    LibStrokeset::CStrokeset drawing;
    load("out.stk", drawing);
    EXPECT_EQ(drawing.getPointsCount() - drawing.getUnsupportedOpcodeCount(), after);
    Eigen::RowVector3f first, last;
    ASSERT_TRUE(drawing.getPosition(0, first));
    ASSERT_TRUE(drawing.getPosition(static_cast<unsigned int>(after) - 1, last));
    EXPECT_EQ(first, test::point(0, 0));
    EXPECT_EQ(last, test::point(8, 10));
}

TEST_F(ToolTest, ShuffleKeepsWhatIsDrawn) {
    LibStrokeset::Sample::SOptions options;
    options.collections = 200;
    writeWords("in.stk", LibStrokeset::Sample::makeDrawing(options));
    ASSERT_EQ(run({"shuffle", path("in.stk"), path("out.stk")}).status, 0);
    const std::string before = run({"info", "--json", path("in.stk")}).out;
    const std::string after = run({"info", "--json", path("out.stk")}).out;
    for (const char* key :
         {"points", "lines", "dots", "unsupportedRecords", "pens", "boundingBox"}) {
        EXPECT_EQ(jsonLine(after, key), jsonLine(before, key)) << key;
        EXPECT_NE(jsonLine(after, key), "") << key;
    }
    EXPECT_NE(jsonLine(after, "travelLength"), jsonLine(before, "travelLength"));
}

} // namespace
