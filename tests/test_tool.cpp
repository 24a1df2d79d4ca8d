// Runs the strokeset tool as a user would, on small files good and bad, and checks what it
// prints, the files it leaves and its exit statuses.

#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "SampleDrawing.h"
#include "StreamBuilder.h"

namespace {

namespace fs = std::filesystem;
using test::StreamBuilder;
using test::Words;
using Args = std::vector<std::string>;
using Names = std::set<std::string>;

const char* const kCommands[] = {"info",    "optimize", "render", "simplify",
                                 "shuffle", "import",   "export"};

/// Exit status (minus the signal number when a signal ended the run, so that dying of SIGINT
/// is not mistaken for exiting with 130) and what the run printed.
struct SRun {
    int status;
    std::string out, err;
};

std::string slurp(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

/// What follows `label` on the line that starts with it, less the padding in between.
std::string after(const std::string& text, const std::string& label) {
    const std::size_t at = ("\n" + text).find("\n" + label);
    if (at == std::string::npos) return "(no " + label + ")";
    const std::size_t from = text.find_first_not_of(' ', at + label.size());
    return text.substr(from, text.find('\n', from) - from);
}

std::size_t count(const std::string& text, const std::string& what) {
    std::size_t n = 0;
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; ++at) {
        ++n;
    }
    return n;
}

class ToolTest : public ::testing::Test {
protected:
    void SetUp() override { fs::create_directories(m_root / "work"); }
    void TearDown() override { fs::remove_all(m_root); }

    /// A path in the folder the tool works in; its logs live elsewhere.
    std::string path(const std::string& name) const { return (m_root / "work" / name).string(); }
    void writeText(const std::string& name, const std::string& text) {
        std::ofstream(path(name), std::ios::binary) << text;
    }
    void writeWords(const std::string& name, Words words) {
        std::string error;
        ASSERT_TRUE(LibStrokeset::CStrokeset::writeStkFile(path(name), words, error)) << error;
    }
    Names files() const {
        Names names;
        for (const auto& entry : fs::directory_iterator(m_root / "work")) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    /// Starts the tool with its standard output and error going to out.log and err.log.
    pid_t start(Args arguments) {
        arguments.insert(arguments.begin(), STROKESET_TOOL);
        std::vector<char*> argv;
        for (std::string& argument : arguments) {
            argv.push_back(argument.data());
        }
        argv.push_back(nullptr);
        const pid_t pid = fork();
        if (pid == 0) { // no stdio here: the copy of the test's buffers must not be flushed
            dup2(open((m_root / "out.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 1);
            dup2(open((m_root / "err.log").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
            execv(argv[0], argv.data());
            _exit(127);
        }
        return pid;
    }
    SRun finish(pid_t pid) {
        int status = -1; // stays a failure if the tool could not be waited for
        waitpid(pid, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
                slurp(m_root / "out.log"), slurp(m_root / "err.log")};
    }
    SRun run(const Args& arguments) { return finish(start(arguments)); }

    // One folder per test process: tests may run in parallel.
    const fs::path m_root =
        fs::temp_directory_path() / ("strokeset-test-" + std::to_string(getpid()));
};

/// A sub-path (0,0) (3,0) (3,4) with pen 1, a dot at (10,0) with pen 2, an opaque record.
Words smallDrawing() {
    StreamBuilder b;
    return test::cat(
        {b.pen(1).moveTo(0, 0).lineTo(3, 0).lineTo(3, 4).pen(2).dot(10, 0), test::kRecord});
}

/// Work for every phase with a tolerance of 0.05: a duplicate and a reversed duplicate, a
/// pair to join end to start and one end to end, an almost closed outline and a path with
/// a line shorter than the tolerance.
Words phaseDrawing() {
    StreamBuilder b;
    b.pen(1).moveTo(0, 0).lineTo(10, 0).lineTo(10, 10).moveTo(0, 0).lineTo(10, 0).lineTo(10, 10);
    b.moveTo(0, 20).lineTo(10, 20).lineTo(10, 30).moveTo(10, 30).lineTo(10, 20).lineTo(0, 20);
    b.moveTo(20, 0).lineTo(30, 0).moveTo(30.01f, 0).lineTo(30, 10);
    b.moveTo(40, 0).lineTo(50, 0).moveTo(50, 10).lineTo(50.01f, 0);
    b.moveTo(60, 0).lineTo(70, 0).lineTo(70, 10).lineTo(60, 10).lineTo(60, 0.02f);
    b.moveTo(80, 0).lineTo(90, 0).lineTo(90.001f, 0).lineTo(90, 10);
    return b;
}

TEST_F(ToolTest, HelpNamesEverySubCommandAndEachHasItsOwn) {
    const SRun help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const std::string command : kCommands) {
        EXPECT_NE(help.out.find("\n  " + command + " "), std::string::npos) << command;
        const SRun own = run({command, "--help"});
        EXPECT_EQ(own.status, 0) << command;
        EXPECT_NE(own.out.find("Usage: strokeset " + command), std::string::npos) << command;
    }
}

TEST_F(ToolTest, FailedRunsSayWhyGiveTheirStatusAndLeaveNoTrace) {
    writeWords("in.stk", smallDrawing());
    writeText("odd.stk", std::string("\x54\x16\x00", 3));
    writeWords("secret.stk", smallDrawing());
    fs::permissions(path("secret.stk"), fs::perms::none);
    fs::create_directory(path("taken"));
    writeText("taken/file", "x");
    writeText("out", "keep me");
    const std::string in = path("in.stk"), out = path("out"), nowhere = path("no/such/out.stk");
    // The status, what the error must name (a path for a file that failed) and the arguments.
    std::vector<std::tuple<int, std::string, Args>> cases = {
        {2, "subcommand is required", {}},
        {2, "subcommand is required", {"frobnicate"}},
        {2, "OUT is required", {"optimize", in}},
        {2, "not 0", {"optimize", in, out, "--tolerance", "0"}},
        {2, "not nan", {"optimize", in, out, "--tolerance", "nan"}},
        {2, "not wide", {"optimize", in, out, "--tolerance", "wide"}},
        {2, "--tolerance is required", {"simplify", in, out}},
        {2, "--width", {"render", in, out, "--width", "0"}},
        {2, "--colour", {"render", in, out, "--colour"}},
        {1, nowhere + ": ", {"shuffle", in, nowhere}},
        {1, path("taken") + ": ", {"shuffle", in, path("taken")}},
    };
    // An input the library cannot load gives its message: a missing one with every command.
    for (const std::string name : {"missing.stk", "odd.stk", "taken", "secret.stk"}) {
        if (name == "secret.stk" && geteuid() == 0) continue; // root reads it all the same
        const std::string message =
            name == "odd.stk" ? "has wrong length! It is 3 bytes long, an odd number: an Stk file "
                                "holds 16-bit words, two bytes each, so the file is cut short or "
                                "is not an Stk file."
                              : "could not be opened!";
        for (const std::string command : kCommands) {
            Args arguments{command, path(name), out, "--tolerance", "1"};
            arguments.resize(command == "info" ? 2 : command == "simplify" ? 5 : 3);
            cases.emplace_back(2, path(name) + ": File " + message + "\n", arguments);
            if (name != "missing.stk") break;
        }
    }
    for (const auto& [status, culprit, arguments] : cases) {
        SCOPED_TRACE(::testing::PrintToString(arguments));
        const SRun result = run(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_NE(result.err.find(culprit), std::string::npos) << result.err;
        // A bad command line shows the usage, of its sub-command when there is one.
        const std::string usage = arguments.size() > 1 ? " " + arguments[0] : "";
        const bool shown = result.err.find("Usage: strokeset" + usage) != std::string::npos;
        EXPECT_TRUE(shown || culprit[0] == '/') << result.err;
        EXPECT_EQ(result.err.find("strokeset strokeset"), std::string::npos) << result.err;
        EXPECT_EQ(result.out, "");
    }
    EXPECT_EQ(files(), (Names{"in.stk", "odd.stk", "out", "secret.stk", "taken"}));
    EXPECT_EQ(slurp(out), "keep me");
    EXPECT_EQ(slurp(path("taken/file")), "x");
}

TEST_F(ToolTest, ACutRecordIsBadInputUnlessSalvagedAndInfoReportsIt) {
    // A dot, then a record that announces 3 words and has 2: it starts at word 7 of 9.
    writeWords("cut.stk", test::cat({StreamBuilder().pen(3).dot(1, 1), {0x3001, 0xAAAA}}));
    const std::string facts = "cut record at word 7 (counted from 0); 2 words could not be read";
    for (const std::string command : kCommands) {
        if (command == "import") continue; // reads SVG, not Stk
        Args arguments{command, path("cut.stk"), path("out"), "--tolerance", "1"};
        arguments.resize(command == "info" ? 2 : command == "simplify" ? 5 : 3);
        const SRun refused = run(arguments);
        EXPECT_EQ(refused.status, 2) << command;
        EXPECT_NE(refused.err.find(path("cut.stk") + ": the stream ends in a " + facts),
                  std::string::npos)
            << refused.err;
        arguments.push_back("--salvage");
        const SRun salvaged = run(arguments);
        EXPECT_EQ(salvaged.status, 0) << command << ": " << salvaged.err;
        EXPECT_NE(salvaged.err.find("warning: " + path("cut.stk")), std::string::npos);
        EXPECT_NE(salvaged.err.find(facts), std::string::npos) << salvaged.err;
    }
    const SRun json = run({"info", "--json", "--salvage", path("cut.stk")});
    EXPECT_NE(json.out.find("\n  \"cutRecord\": {\"word\": 7, \"unreadWords\": 2},\n"),
              std::string::npos)
        << json.out;
    EXPECT_NE(json.out.find("\n  \"dots\": 1,\n"), std::string::npos);
    writeWords("whole.stk", smallDrawing());
    EXPECT_NE(run({"info", "--json", path("whole.stk")}).out.find("\"cutRecord\": null,"),
              std::string::npos);
}

TEST_F(ToolTest, InfoCountsMeasuresAndListsPensAsTextAndValidJson) {
    writeWords("small.stk", smallDrawing());
    const SRun text = run({"info", path("small.stk")});
    EXPECT_EQ(text.status, 0) << text.err;
    EXPECT_EQ(after(text.out, "Pens"), "1, 2");
    EXPECT_EQ(after(text.out, "Bounding box"),
              "x 0.000 .. 10.000, y 0.000 .. 4.000, z 0.000 .. 0.000");

    // No pen change, a NaN coordinate, a quote in the file name; and an empty drawing.
    writeWords("a \"q\".stk", StreamBuilder().moveTo(0, 0).lineTo(std::nanf(""), 1).dot(2, 2, 5));
    writeWords("empty.stk", {});
    writeWords("tab\t.stk", {});
    const std::pair<std::string, std::vector<std::string>> expected[] = {
        {"small.stk",
         {R"("collections": {"subPaths": 1, "dots": 1, "unsupported": 1},)", R"("lines": 2,)",
          R"("pens": [1, 2],)", R"("boundingBox": {"min": [0, 0, 0], "max": [10, 4, 0]},)",
          R"("travelLength": 8.062257748,)", R"("machine": null)"}}, // from (3,4) to (10,0)
        {"a \"q\".stk",
         {R"("file": ")" + path(R"(a \"q\".stk)") + R"(",)", R"("pens": [65535],)",
          R"("drawnLength": null,)", R"("boundingBox": {"min": [0, 0, 0], "max": [2, 2, 5]},)"}},
        {"empty.stk", {R"("boundingBox": null,)", R"("pens": [],)"}},
        {"tab\t.stk", {R"("file": ")" + path(R"(tab\u0009.stk)") + R"(",)"}},
    };
    // An object of one key and value a line, a comma after each but the last.
    const std::regex json(R"(\{\n(  "\w+": [^\n]*,\n)*  "\w+": [^\n]*[^,\n]\n\}\n)");
    for (const auto& [file, lines] : expected) {
        const SRun result = run({"info", "--json", path(file)});
        EXPECT_EQ(result.status, 0) << file << ": " << result.err;
        EXPECT_TRUE(std::regex_match(result.out, json)) << result.out;
        for (const std::string& line : lines) {
            EXPECT_NE(result.out.find("\n  " + line + "\n"), std::string::npos) << line;
        }
    }
}

TEST_F(ToolTest, OptimizeInPlaceRunsEveryPhaseReportsItAndReplacesTheFileWhole) {
    writeWords("drawing.stk", phaseDrawing());
    // A second name for the file keeps the old words only if the new file is renamed over it.
    fs::create_hard_link(path("drawing.stk"), path("original.stk"));
    const SRun result = run({"optimize", path("drawing.stk"), path("drawing.stk")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, ""); // no progress bar when standard error is no terminal
    EXPECT_EQ(files(), (Names{"drawing.stk", "original.stk"})); // no temporary file left
    EXPECT_EQ(after(result.out, "Removed duplicated paths"), "2");
    EXPECT_EQ(after(result.out, "Joined paths"), "2");
    EXPECT_EQ(after(result.out, "Removed degenerate lines"), "1");
    EXPECT_EQ(after(result.out, "Closed paths"), "1");
    EXPECT_EQ(after(result.out, "Collections"), "10 -> 6  (-40.0%)");
    // The file holds what the table says; the travel figures are the drawing's, as info has them.
    const SRun before = run({"info", path("original.stk")});
    const SRun written = run({"info", path("drawing.stk")});
    EXPECT_EQ(after(written.out, "Collections"), "6 (6 sub-paths, 0 dot runs, 0 unsupported)");
    EXPECT_EQ(after(written.out, "Points"), "20");
    const std::string travel =
        after(before.out, "Pen-up travel") + " -> " + after(written.out, "Pen-up travel");
    EXPECT_EQ(after(result.out, "Pen-up travel").rfind(travel + "  (-", 0), 0u) << result.out;
}

TEST_F(ToolTest, EachNoFlagSwitchesOffItsOwnPhaseAndTheToleranceIsHonoured) {
    writeWords("phases.stk", phaseDrawing());
    // A path, one starting 0.2 past its end (beyond the default tolerance, within 0.5) and a
    // copy of that: work only for the phases that join and remove duplicates forwards.
    StreamBuilder gap;
    gap.moveTo(0, 0).lineTo(10, 0).moveTo(10.2f, 0).lineTo(20, 5).moveTo(10.2f, 0).lineTo(20, 5);
    writeWords("gap.stk", gap);
    const std::pair<Args, std::string> cases[] = {
        {{"phases", "--no-duplicates"}, "Removed duplicated paths 1"},
        {{"phases", "--no-reversed-duplicates"}, "Removed duplicated paths 1"},
        {{"phases", "--no-join"}, "Joined paths 1"},
        {{"phases", "--no-reversed-join"}, "Joined paths 1"},
        {{"phases", "--no-degenerate"}, "Removed degenerate lines 0"},
        {{"phases", "--no-close"}, "Closed paths 0"},
        {{"phases", "--no-ordering"}, "Travel in ordering phase off"},
        {{"gap"}, "Joined paths 0"},
        {{"gap", "--tolerance", "0.5", "--no-join"}, "Joined paths 0"},
        {{"gap", "--tolerance", "0.5", "--no-reversed-join"}, "Joined paths 1"},
        {{"gap", "--no-duplicates"}, "Removed duplicated paths 0"},
        {{"gap", "--no-reversed-duplicates"}, "Removed duplicated paths 1"},
    };
    for (const auto& [options, expected] : cases) {
        SCOPED_TRACE(::testing::PrintToString(options));
        Args arguments{"optimize", path(options[0] + ".stk"), path("out.stk")};
        arguments.insert(arguments.end(), options.begin() + 1, options.end());
        const SRun result = run(arguments);
        const std::size_t space = expected.rfind(' ');
        EXPECT_EQ(after(result.out, expected.substr(0, space)), expected.substr(space + 1))
            << result.err;
    }
}

TEST_F(ToolTest, InnerFirstCutsEveryHoleBeforeItsOutline) {
    // Squares nested three deep, outlines first, and a square beside them that the nearest
    // neighbour order would visit between two of them.
    StreamBuilder b;
    b.pen(1);
    for (const float inset : {0.0f, 3.0f, 6.0f}) {
        const float lo = inset, hi = 20.0f - inset;
        b.moveTo(lo, lo).lineTo(hi, lo).lineTo(hi, hi).lineTo(lo, hi).lineTo(lo, lo);
    }
    b.moveTo(21, 0).lineTo(23, 0).lineTo(23, 2).lineTo(21, 2).lineTo(21, 0);
    writeWords("nested.stk", b);
    const SRun result = run({"optimize", path("nested.stk"), path("out.stk"), "--inner-first",
                             "--no-ordering", "--closed-starts", "--refine", "5"});
    ASSERT_EQ(result.status, 0) << result.err;
    std::vector<unsigned short> words;
    std::string error;
    ASSERT_TRUE(LibStrokeset::CStrokeset::readStkFile(path("out.stk"), words, error)) << error;
    std::vector<float> nestedWidths; // of the three nested squares, in drawing order
    for (LibStrokeset::CCollection* collection : LibStrokeset::CStrokeset(words)) {
        auto* path = dynamic_cast<LibStrokeset::CSubPath*>(collection);
        float low = 1e9f, high = -1e9f;
        for (const LibStrokeset::CLine& line : *path) {
            low = std::min(low, line.getPosition().x());
            high = std::max(high, line.getPosition().x());
        }
        if (high <= 20.0f) {
            nestedWidths.push_back(high - low);
        }
    }
    EXPECT_EQ(nestedWidths, (std::vector<float>{8.0f, 14.0f, 20.0f}));
}

TEST_F(ToolTest, TravelSwitchesRunAfterOptimizeAndInfoCountsPenChanges) {
    // Pens 1, 2, 1, 2 far apart, so that the nearest-neighbour order keeps them interleaved.
    StreamBuilder b;
    for (int i = 0; i < 4; ++i) {
        b.pen(static_cast<unsigned short>(1 + i % 2)).moveTo(100.0f * i, 0).lineTo(100.0f * i, 1);
    }
    writeWords("pens.stk", b);
    EXPECT_EQ(after(run({"info", path("pens.stk")}).out, "Pen changes"), "4");
    EXPECT_NE(run({"info", "--json", path("pens.stk")}).out.find("\n  \"penChanges\": 4,\n"),
              std::string::npos);

    const SRun plain = run({"optimize", path("pens.stk"), path("plain.stk")});
    EXPECT_EQ(plain.status, 0) << plain.err;
    EXPECT_EQ(after(plain.out, "Pen changes"), "4 -> 4  (+0.0%)"); // optimize alone
    EXPECT_EQ(after(plain.out, "Travel run pen changes"), "(no Travel run pen changes)");

    const SRun result = run({"optimize", path("pens.stk"), path("out.stk"), "--pens-together",
                             "--closed-starts", "--refine", "5"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(after(result.out, "Pen changes"), "4 -> 2  (-50.0%)");
    EXPECT_EQ(after(result.out, "Travel run pen changes"), "4 -> 2  (-50.0%)");
    EXPECT_EQ(after(result.out, "Rotated closed paths"), "0");
    EXPECT_EQ(after(run({"info", path("out.stk")}).out, "Pen changes"), "2");
    for (const char* seconds : {"-1", "nan", "inf", "soon"}) {
        const SRun refused =
            run({"optimize", path("pens.stk"), path("out.stk"), "--refine", seconds});
        EXPECT_EQ(refused.status, 2) << seconds;
        EXPECT_NE(refused.err.find("a number of seconds, 0 or more (for example 10), not " +
                                   std::string(seconds)),
                  std::string::npos)
            << refused.err;
    }
}

TEST_F(ToolTest, OptimizeCountsTheCollectionsItWrites) {
    // Two paths and three marks shorter than the tolerance, which the clean-up removes whole.
    StreamBuilder b;
    b.moveTo(0, 0).lineTo(10, 0).moveTo(20, 0).lineTo(20, 10);
    for (int i = 0; i < 3; ++i) {
        b.moveTo(5.0f * i, 30).lineTo(5.0f * i + 0.01f, 30);
    }
    writeWords("marks.stk", b);
    const SRun result = run({"optimize", path("marks.stk"), path("out.stk")});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(after(result.out, "Removed degenerate lines"), "3");
    EXPECT_EQ(after(result.out, "Collections"), "5 -> 2  (-60.0%)");
    EXPECT_EQ(after(run({"info", path("out.stk")}).out, "Collections"),
              "2 (2 sub-paths, 0 dot runs, 0 unsupported)");
}

TEST_F(ToolTest, CtrlCStopsOptimizeWritesNothingAndExits130) {
    LibStrokeset::Sample::SOptions options;
    options.collections = 20000;
    writeWords("big.stk", LibStrokeset::Sample::makeDrawing(options));
    // A tolerance wider than the drawing joins any two ends by their first join code, which
    // --no-join forbids: every autojoin search meets every later path, far longer than the
    // wait for the first report however fast the machine.
    const pid_t pid = start({"optimize", path("big.stk"), path("out.stk"), "--progress",
                             "--tolerance", "1e30", "--no-join"});
    // The first progress report shows that the run is under way.
    while (slurp(m_root / "err.log").find("stage ") == std::string::npos) {
        ASSERT_EQ(waitpid(pid, nullptr, WNOHANG), 0) << "ended before it could be interrupted";
        usleep(10000);
    }
    ASSERT_EQ(kill(pid, SIGINT), 0);
    const SRun result = finish(pid);
    EXPECT_EQ(result.status, 130) << result.err;
    EXPECT_NE(result.err.find("interrupted"), std::string::npos);
    // Stopped where it was: the ordering phase, which reports as soon as it begins, never ran.
    EXPECT_EQ(result.err.find("stage 4/4"), std::string::npos) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(files(), Names{"big.stk"});
}

TEST_F(ToolTest, RenderDrawsAColourPerPenDotsAndOptionallyTravel) {
    // Pen 1 then pen 2 within one path, two dots, and a jump from (3,4) to the first dot.
    writeWords(
        "in.stk",
        StreamBuilder().pen(1).moveTo(0, 0).lineTo(3, 0).pen(2).lineTo(3, 4).dot(10, 0).dot(10, 2));
    writeWords("empty.stk", test::kRecord);
    ASSERT_EQ(run({"render", path("in.stk"), path("plain.svg")}).status, 0);
    ASSERT_EQ(run({"render", path("in.stk"), path("travel.svg"), "--travel"}).status, 0);
    ASSERT_EQ(run({"render", path("empty.stk"), path("empty.svg"), "--travel"}).status, 0);
    const std::string plain = slurp(path("plain.svg")), travel = slurp(path("travel.svg"));
    EXPECT_EQ(plain.substr(plain.size() - 7), "</svg>\n");
    EXPECT_EQ(count(plain, "<path stroke=\"#ff7f0e\" d=\"M0.000 0.000L3.000 0.000\""), 1u);
    EXPECT_EQ(count(plain, "<path stroke=\"#2ca02c\" d=\"M3.000 0.000L3.000 4.000\""), 1u);
    EXPECT_EQ(count(plain, "<circle"), 2u);
    EXPECT_EQ(count(plain, "<g fill=\"#2ca02c\">"), 1u); // the dots have pen 2
    EXPECT_EQ(count(plain, "stroke-dasharray"), 0u);
    EXPECT_EQ(count(travel, "stroke-dasharray"), 1u);
    EXPECT_EQ(count(travel, "M3.000 4.000L10.000 0.000M10.000 0.000L10.000 2.000\""), 1u);
    // Nothing drawn is still a picture, of a unit square.
    const std::string empty = slurp(path("empty.svg"));
    EXPECT_EQ(count(empty, "viewBox=\"0 0 1 1\""), 1u) << empty;
    EXPECT_EQ(count(empty, "<path"), 0u);
}

TEST_F(ToolTest, SimplifyDropsPointsWithinTheToleranceAndKeepsTheShape) {
    // A wobble of 0.001 along y = 0, then a corner, and an opaque record that has no points.
    StreamBuilder wobble;
    wobble.moveTo(0, 0).lineTo(2, 0.001f).lineTo(4, -0.001f).lineTo(6, 0.001f).lineTo(8, 0);
    writeWords("in.stk", test::cat({wobble.lineTo(8, 10), test::kRecord}));
    const SRun fine = run({"simplify", path("in.stk"), path("fine.stk"), "--tolerance", "1e-5"});
    EXPECT_EQ(fine.out, "Points 6 -> 6\n") << fine.err;
    const SRun coarse = run({"simplify", path("in.stk"), path("in.stk"), "--tolerance", "0.01"});
    EXPECT_EQ(coarse.status, 0) << coarse.err;
    const std::string points = after(coarse.out, "Points 6 ->");
    EXPECT_LT(std::stoul(points), 6u) << coarse.out;
    const SRun written = run({"info", path("in.stk")});
    EXPECT_EQ(after(written.out, "Points"), points);
    EXPECT_EQ(after(written.out, "Drawn length"), "18.000"); // the corner and both ends stay
}

TEST_F(ToolTest, ShuffleKeepsWhatIsDrawnButNotItsOrder) {
    LibStrokeset::Sample::SOptions options;
    options.collections = 200;
    writeWords("in.stk", LibStrokeset::Sample::makeDrawing(options));
    ASSERT_EQ(run({"shuffle", path("in.stk"), path("out.stk")}).status, 0);
    const std::string before = run({"info", "--json", path("in.stk")}).out;
    const std::string shuffled = run({"info", "--json", path("out.stk")}).out;
    // Runs of dots may be split, sums taken in another order differ in the last digit, and
    // pens interleave anew.
    const std::regex ordered(
        "\n  \"(file|collections|drawnLength|travelLength|penChanges)\":[^\n]*");
    EXPECT_EQ(std::regex_replace(shuffled, ordered, ""), std::regex_replace(before, ordered, ""));
    const std::string travel = "  \"travelLength\":";
    EXPECT_NE(after(shuffled, travel), after(before, travel));
}

} // namespace

// SVG import and export.

const std::string kSvgDir = LIBSTROKESET_SVG_DIR;

/// The bounding box that info reports, as x0 y0 x1 y1.
std::vector<double> boxOf(const std::string& infoJson) {
    std::smatch m;
    const std::string number = R"((-?[0-9.e+-]+))";
    const std::regex box("\"min\": \\[" + number + ", " + number + ", 0\\], \"max\": \\[" + number +
                         ", " + number + ", 0\\]");
    if (!std::regex_search(infoJson, m, box)) return {};
    return {std::stod(m[1]), std::stod(m[2]), std::stod(m[3]), std::stod(m[4])};
}

/// The rows of the pen table that import prints: "1    name".
std::vector<std::string> penRows(const std::string& out) {
    std::vector<std::string> rows;
    const std::regex row("\n([0-9]+ +[^\n]*)");
    for (std::sregex_iterator it(out.begin(), out.end(), row), end; it != end; ++it) {
        rows.push_back((*it)[1]);
    }
    return rows;
}

TEST_F(ToolTest, ImportDrawsEachSampleSvgWithItsPathsDotsPensAndBox) {
    ASSERT_TRUE(fs::is_directory(kSvgDir)) << kSvgDir;
    struct SCase {
        std::string file;
        Args options;
        int paths, dots, pens;
        std::vector<double> box; ///< empty for a drawing of nothing
        double slack;            ///< the box was measured on a coarser flattening of the curves
    };
    const Args user{"--units", "user"};
    // A page of 10 cm holds 377.95 user units; a size without unit is in px.
    const double cm = 100.0 / 377.95275590551176, px = 25.4 / 96.0;
    const SCase cases[] = {
        {"7k_lines", user, 7000, 0, 1, {0.0256, 0.0228, 377.923, 377.938}, 0.001},
        {"7k_lines", {}, 7000, 0, 1, {0.0256 * cm, 0.0228 * cm, 377.923 * cm, 377.938 * cm}, 0.001},
        {"500_circles", user, 500, 0, 1, {-190.891, -193.614, 2185.95, 2172.58}, 0.02},
        // Circles smaller than the tolerance are dots.
        {"500_circles", {"--units", "user", "--tolerance", "2"}, 496, 4, 1, {}, 0},
        {"300_beziers", user, 300, 0, 1, {4.80, 0.02, 1992.68, 1996.35}, 0.02},
        {"900_quad_beziers", user, 900, 0, 1, {0.02, 0.34, 1999.41, 1999.17}, 0.02},
        {"all_shapes", user, 7, 0, 1, {5, 10, 500, 440}, 0.001},
        {"arc_with_rotate", user, 6, 0, 5, {28, 23.24, 113.52, 124.57}, 0.01},
        {"color_width_opacity", user, 30, 0, 3, {2.6134, 6.8743, 376.721, 369.641}, 0.001},
        {"few_beziers", user, 12, 0, 1, {47.34, 247.98, 1854.10, 1952.21}, 0.25},
        {"multilayer", user, 4, 0, 3, {10, 10, 600, 700}, 0.001},
        {"multilayer_named_layers", user, 5, 0, 4, {10, 10, 600, 700}, 0.001},
        {"fixed_size_500x300", {}, 1, 0, 1, {50 * px, 50 * px, 350 * px, 70 * px}, 0.001},
        {"no_size_viewbox", user, 1, 0, 1, {60, 160, 140, 240}, 0.011},
        // No size: the viewBox in px, its corner at the origin.
        {"percent_size_viewbox", {}, 1, 0, 1, {-40 * px, 60 * px, 40 * px, 140 * px}, 0.011},
        {"two_layers_a4", user, 400, 0, 2, {20.0256, 52.2692, 773.675, 1070.25}, 0.001},
        {"voronoi", user, 450, 0, 1, {0, 0, 1428.43, 1122.52}, 0.01},
        {"empty", {}, 0, 0, 0, {}, 0},
        {"text_element", {}, 0, 0, 0, {}, 0},
    };
    for (const SCase& c : cases) {
        SCOPED_TRACE(c.file + " " + ::testing::PrintToString(c.options));
        Args arguments{"import", kSvgDir + "/" + c.file + ".svg", path("out.stk")};
        arguments.insert(arguments.end(), c.options.begin(), c.options.end());
        const SRun result = run(arguments);
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(after(result.out, "Sub-paths"), std::to_string(c.paths));
        EXPECT_EQ(after(result.out, "Dots"), std::to_string(c.dots));
        EXPECT_EQ(penRows(result.out).size(), static_cast<std::size_t>(c.pens)) << result.out;
        EXPECT_EQ(c.paths == 0, result.err.find("draws nothing") != std::string::npos);
        const SRun info = run({"info", "--json", path("out.stk")});
        EXPECT_NE(info.out.find("\"subPaths\": " + std::to_string(c.paths) + ",\n"),
                  std::string::npos);
        if (c.box.empty()) continue;
        const std::vector<double> box = boxOf(info.out);
        ASSERT_EQ(box.size(), 4u) << info.out;
        for (int i = 0; i < 4; ++i) {
            EXPECT_NEAR(box[i], c.box[i], c.slack) << i;
        }
    }
}

TEST_F(ToolTest, ImportOfLinesGivesExactlyTheWordsOfTheirStkConversion) {
    const std::string stk = std::string(LIBSTROKESET_DRAWINGS_DIR) + "/7k_lines.stk";
    ASSERT_TRUE(fs::exists(stk)) << stk;
    const SRun result =
        run({"import", kSvgDir + "/7k_lines.svg", path("lines.stk"), "--units", "user"});
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(slurp(path("lines.stk")) == slurp(stk)); // too long to print
}

TEST_F(ToolTest, ExportThenImportGivesTheSamePointsBitForBit) {
    // Awkward floats: -0, the smallest and largest, values that need all nine digits.
    StreamBuilder b;
    b.pen(1).moveTo(0, -0.0f).lineTo(1e-45f, 3.4028235e38f).lineTo(0.1f, -123456.79f);
    b.dot(-1.17549435e-38f, 7.0f).moveTo(5, 5).lineTo(5, 5); // a dot, a zero-length line
    std::mt19937 random(7);
    std::uniform_real_distribution<float> mantissa(-1.0f, 1.0f);
    std::uniform_int_distribution<int> exponent(-30, 30);
    b.pen(2).moveTo(1, 2);
    for (int i = 0; i < 300; ++i) {
        b.lineTo(std::ldexp(mantissa(random), exponent(random)),
                 std::ldexp(mantissa(random), exponent(random)));
    }
    b.pen(3).dot(2, 3);
    writeWords("drawing.stk", b);
    // On the page in millimetres (no negative coordinates) the default import agrees too.
    writeWords("page.stk", StreamBuilder().pen(1).moveTo(0, 0).lineTo(210.1f, 297.3f).dot(1, 2));
    for (const auto& [file, units] :
         {std::pair<std::string, std::string>{"drawing", "user"}, {"page", "mm"}}) {
        SCOPED_TRACE(file);
        const SRun exported =
            run({"export", path(file + ".stk"), path(file + ".svg"), "--units", units});
        ASSERT_EQ(exported.status, 0) << exported.err;
        const SRun imported =
            run({"import", path(file + ".svg"), path("back.stk"), "--units", units});
        ASSERT_EQ(imported.status, 0) << imported.err;
        EXPECT_TRUE(slurp(path("back.stk")) == slurp(path(file + ".stk"))); // too long to print
    }
    const std::string svg = slurp(path("drawing.svg"));
    EXPECT_EQ(count(svg, "inkscape:groupmode=\"layer\""), 3u);
    EXPECT_EQ(count(svg, "<path "), 5u);
    EXPECT_EQ(count(svg, " Z\""), 2u); // the dots
    EXPECT_EQ(count(svg, "stroke-linecap=\"round\""), 3u);
    EXPECT_EQ(count(slurp(path("page.svg")), "width=\"210.100006mm\""), 1u);
}

TEST_F(ToolTest, ExportThenImportKeepsTheDrawingOrderAndThePenNumbers) {
    // Pens 3, 5, 3, 5 interleaved: a layer per run of a pen, each id naming its pen.
    StreamBuilder b;
    b.pen(3).moveTo(0, 0).lineTo(1, 0).pen(5).moveTo(2, 0).lineTo(3, 0);
    b.pen(3).moveTo(4, 0).lineTo(5, 0).pen(5).dot(6, 0);
    writeWords("pens.stk", b);
    ASSERT_EQ(run({"export", path("pens.stk"), path("pens.svg"), "--units", "user"}).status, 0);
    const std::string svg = slurp(path("pens.svg"));
    for (const char* id : {"id=\"pen3\"", "id=\"pen5\"", "id=\"pen3-1\"", "id=\"pen5-1\""}) {
        EXPECT_EQ(count(svg, id), 1u) << id;
    }
    const SRun imported = run({"import", path("pens.svg"), path("back.stk"), "--units", "user"});
    ASSERT_EQ(imported.status, 0) << imported.err;
    EXPECT_EQ(penRows(imported.out), (std::vector<std::string>{"3    Pen 3", "5    Pen 5"}));
    EXPECT_TRUE(slurp(path("back.stk")) == slurp(path("pens.stk")));

    // Layers that do not all name a pen are numbered from 1, passing over no fixed number.
    const std::string line = "<line x1=\"0\" y1=\"0\" x2=\"1\" y2=\"0\" stroke=\"red\"/>";
    writeText("mixed.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" "
                           "xmlns:inkscape=\"http://www.inkscape.org/namespaces/inkscape\">"
                           "<g id=\"pen7\" inkscape:groupmode=\"layer\">" +
                               line +
                               "</g>"
                               "<g id=\"outline\" inkscape:groupmode=\"layer\">" +
                               line + "</g></svg>");
    const SRun mixed = run({"import", path("mixed.svg"), path("mixed.stk")});
    ASSERT_EQ(mixed.status, 0) << mixed.err;
    EXPECT_EQ(penRows(mixed.out), (std::vector<std::string>{"1    pen7", "2    outline"}));
}

TEST_F(ToolTest, ImportOfBadOrEmptySvgSaysWhatAndNeverCrashes) {
    const std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\">";
    const std::string line = "<line x1=\"0\" y1=\"0\" x2=\"10\" y2=\"0\" stroke=\"red\"/>";
    // Exit status, what the messages must say, sub-paths written (-1: no file), the input.
    const std::tuple<int, std::string, int, std::string> cases[] = {
        {2, "not a readable XML document", -1, "plain text"},
        {2, "not a readable XML document", -1, svg + line}, // cut short
        {2, "not an SVG drawing: the document is a <html>", -1, "<html/>"},
        {2, "line 2, <path>: a coordinate is beyond", -1, svg + "\n<path d='M0 0L1e40 0'/></svg>"},
        {2, "more than 5000000 points", -1, svg + "<circle r='1e12' stroke='red'/></svg>"},
        {0, "the drawing draws nothing", 0, svg + "</svg>"},
        {0, "refers to \"#nothing\", which the drawing lacks", 1,
         svg + "<use href='#nothing'/>" + line + "</svg>"},
        {0, "refers to an element that contains it", 1,
         svg + "<g id='a'>" + line + "<use href='#a'/></g></svg>"},
        {0, "skipped 1 <blink> element", 1, svg + "<blink>" + line + "</blink>" + line + "</svg>"},
        {0, "skipped 2 <text> elements", 1, svg + "<text>a</text><text>b</text>" + line + "</svg>"},
        {0, "error at character 13; drawn up to there", 1,
         svg + "<path stroke='red' d='M0 0 L1 1 L2'/></svg>"},
        {0, "transform could not be read", 1,
         svg + "<g transform='spin(3)'>" + line + "</g></svg>"},
    };
    for (const auto& [status, message, paths, text] : cases) {
        SCOPED_TRACE(text);
        writeText("in.svg", text);
        const SRun result = run({"import", path("in.svg"), path("out.stk")});
        EXPECT_EQ(result.status, status);
        EXPECT_NE(result.err.find(path("in.svg") + ": "), std::string::npos) << result.err;
        EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
        EXPECT_EQ(fs::exists(path("out.stk")), paths >= 0);
        if (paths >= 0) {
            EXPECT_EQ(after(result.out, "Sub-paths"), std::to_string(paths));
            fs::remove(path("out.stk"));
        }
    }
    fs::create_directory(path("folder.svg"));
    EXPECT_EQ(run({"import", path("folder.svg"), path("out.stk")}).status, 2);
    EXPECT_EQ(files(), (Names{"folder.svg", "in.svg"}));
}

TEST_F(ToolTest, ImportGivesPensByLayerOrColourSkipsHiddenShapesAndFollowsTransforms) {
    // Outside any layer: a red line. Layer "A": a blue square drawn again through a use 100
    // to the right, and a hidden circle. A hidden layer. Layer "B": a red polyline inside a
    // nested svg that scales by 2, and a line in a group that is invisible but shows it.
    writeText("layers.svg", R"svg(<svg xmlns="http://www.w3.org/2000/svg"
        xmlns:inkscape="http://www.inkscape.org/namespaces/inkscape"
        xmlns:xlink="http://www.w3.org/1999/xlink" width="400" height="200">
      <line x1="0" y1="0" x2="5" y2="0" stroke="#f00"/>
      <g inkscape:groupmode="layer" inkscape:label="A" style="stroke:blue">
        <rect id="square" x="10" y="10" width="20" height="20"/>
        <use xlink:href="#square" x="100"/>
        <circle cx="50" cy="50" r="5" display="none"/>
      </g>
      <g inkscape:groupmode="layer" inkscape:label="Hidden" style="display:none">
        <line x1="0" y1="0" x2="500" y2="500" stroke="red"/>
      </g>
      <g inkscape:groupmode="layer" inkscape:label="B" stroke="red" transform="translate(0 100)">
        <svg x="10" viewBox="0 0 50 50" width="100" height="100">
          <polyline points="0,0 10,0 10,10"/>
        </svg>
        <g visibility="hidden"><line x1="0" x2="1" visibility="visible"/><line x2="9"/></g>
      </g>
    </svg>)svg");
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {"layer", {"1    (outside layers)", "2    A", "3    B"}},
        {"stroke", {"1    #ff0000", "2    #0000ff"}},
        {"none", {}},
    };
    for (const auto& [pens, rows] : cases) {
        SCOPED_TRACE(pens);
        const SRun result =
            run({"import", path("layers.svg"), path("out.stk"), "--units", "user", "--pens", pens});
        ASSERT_EQ(result.status, 0) << result.err;
        EXPECT_EQ(penRows(result.out), rows);
        EXPECT_EQ(after(result.out, "Sub-paths"), "5");
        const SRun info = run({"info", path("out.stk")});
        EXPECT_EQ(after(info.out, "Bounding box"),
                  "x 0.000 .. 130.000, y 0.000 .. 120.000, z 0.000 .. 0.000");
        EXPECT_EQ(after(info.out, "Pens"), pens == "layer"    ? "1, 2, 3"
                                           : pens == "stroke" ? "1, 2"
                                                              : "none");
    }
}

// Machine output.

namespace {

TEST_F(ToolTest, ExportWritesGcodeAndHpglByNameOrFormatAndReportsTheEstimate) {
    writeWords("small.stk", smallDrawing());
    const SRun gcode = run({"export", path("small.stk"), path("small.gcode")});
    ASSERT_EQ(gcode.status, 0) << gcode.err;
    EXPECT_EQ(after(gcode.out, "Machine"), "Servo pen plotter (G-code)");
    EXPECT_EQ(after(gcode.out, "Drawing length"), "7.000");
    EXPECT_EQ(after(gcode.out, "Travel length"), "8.062");
    EXPECT_EQ(after(gcode.out, "Pen lifts"), "2");
    EXPECT_EQ(after(gcode.out, "Tool changes"), "2");
    EXPECT_EQ(after(gcode.out, "Estimated time"), "0:01:01"); // 2 changes of 30 s, lifts, feeds
    EXPECT_NE(gcode.err.find("warning: left out 1 unsupported records"), std::string::npos);
    const std::string text = slurp(path("small.gcode"));
    // The servo profile puts the A4 page's y = 0 at the far edge of the bed.
    EXPECT_NE(text.find("G0 X0.000 Y297.000\nM3 S90\nG4 P0.15\nG1 X3.000 Y297.000 F3000\n"
                        "G1 X3.000 Y293.000\n"),
              std::string::npos)
        << text;

    const SRun hpgl = run({"export", path("small.stk"), path("small.out"), "--format", "hpgl",
                           "--set", "flip_y=false", "--set", "origin_y=0", "--set", "pen_count=1"});
    ASSERT_EQ(hpgl.status, 0) << hpgl.err;
    EXPECT_EQ(slurp(path("small.out")),
              "IN;\nSP1;\nPU0,0;\nPD120,0,120,160;\nPU;\nPU400,0;\nPD;\nPU;\nPU;SP0;\n");
    EXPECT_NE(hpgl.err.find("pens 1 to 1"), std::string::npos) << hpgl.err;

    // info tells the same estimate before anything is written.
    const SRun info = run({"info", path("small.stk"), "--profile", "gcode-servo"});
    ASSERT_EQ(info.status, 0) << info.err;
    for (const char* label : {"Machine", "Drawing length", "Travel length", "Pen lifts",
                              "Tool changes", "Estimated time"}) {
        EXPECT_EQ(after(info.out, label), after(gcode.out, label)) << label;
    }
    EXPECT_NE(run({"info", path("small.stk"), "--json"}).out.find("\"machine\": null"),
              std::string::npos);

    // A name that tells no machine format gets SVG, as it always did.
    ASSERT_EQ(run({"export", path("small.stk"), path("small.out")}).status, 0);
    EXPECT_EQ(slurp(path("small.out")).rfind("<?xml", 0), 0u);
}

TEST_F(ToolTest, ExportRefusesBadProfilesAndPointsThatAreNotNumbersAndWritesNothing) {
    writeWords("small.stk", smallDrawing());
    writeText("short.toml", "format = \"gcode\"\nscale = 1\ndecimals = 3\ndraw_feed = 100\n");
    writeText("typo.toml", "format = \"gcode\"\nscale = 1\ndecimals = 3\ndraw_feed = \"fast\"\n"
                           "travel_feed = 100\n");
    const std::pair<Args, std::string> cases[] = {
        {{"--profile", path("short.toml")}, "the key travel_feed is missing"},
        {{"--profile", path("typo.toml")}, "typo.toml:4: draw_feed must be a number, not a string"},
        {{"--set", "travel_feed=-1"}, "travel_feed must be a finite number above 0"},
        {{"--set", "speed=1"}, "--set speed: no profile has that key"},
        {{"--profile", "no-such-plotter"}, "no built-in profile of that name"},
        {{"--profile", "hpgl-cutter"}, "the profile HPGL vinyl cutter writes HPGL, not G-code"}};
    for (const auto& [options, message] : cases) {
        Args arguments = {"export", path("small.stk"), path("out.gcode")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const SRun result = run(arguments);
        EXPECT_EQ(result.status, 2) << message;
        EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    }

    StreamBuilder b;
    b.pen(1).moveTo(0, 0).lineTo(1, 1).dot(std::nanf(""), 4);
    writeWords("nan.stk", b);
    const SRun nan = run({"export", path("nan.stk"), path("out.hpgl")});
    EXPECT_EQ(nan.status, 2);
    EXPECT_NE(nan.err.find("the point at opcode index 2 (nan, 4) has a coordinate that is not a "
                           "finite number"),
              std::string::npos)
        << nan.err;
    EXPECT_EQ(files(), (Names{"small.stk", "short.toml", "typo.toml", "nan.stk"}));
}

} // namespace
