#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "optimize/OptimizeCollections.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <tuple>
#include <utility>

// The optimizer run, its counters, the jump-distance ordering, shuffle and simplify, checked
// on drawings small enough to work every value out by hand.

namespace {

using LibStrokeset::COptimizationParameters;
using LibStrokeset::COptimizationResults;
using LibStrokeset::CStrokeset;
using namespace test;
using Calls = std::vector<std::pair<int, float>>;

enum Phase : unsigned { kDup = 1, kRevDup = 2, kJoin = 4, kRevJoin = 8, kDegenerate = 16 };
constexpr unsigned kClose = 32, kOrder = 64, kAll = 127;

COptimizationParameters parameters(float tolerance, unsigned phases) {
    return COptimizationParameters(tolerance, phases & kDup, phases & kRevDup, phases & kJoin,
                                   phases & kRevJoin, phases & kDegenerate, phases & kClose,
                                   phases & kOrder);
}

struct Outcome {
    bool result = false;
    COptimizationResults results;
    Calls calls;
};

/// Every test runs with both engines: the indexed one through the document's own optimize,
/// the reference one through the internal entry point with a flag of its own.
class EngineTest : public testing::TestWithParam<LibStrokeset::EOptimizerEngine> {
protected:
    bool indexed() const { return GetParam() == LibStrokeset::EOptimizerEngine::eIndexed; }

    bool runOptimize(CStrokeset& document, const COptimizationParameters& p,
                     COptimizationResults& r, std::function<void(int, float)> progress) {
        if (indexed()) {
            return document.optimize(p, r, std::move(progress));
        }
        return LibStrokeset::optimizeCollections(document.getCollections(), m_aborted, p, r,
                                                 std::move(progress), GetParam());
    }
    void abort(CStrokeset& document) {
        indexed() ? document.setOptimizationAborted() : m_aborted.store(true);
    }
    bool isAborted(CStrokeset& document) {
        return indexed() ? document.isOptimizationAborted() : m_aborted.load();
    }

    Outcome optimize(CStrokeset& document, float tolerance, unsigned phases,
                     const COptimizationResults& previous = COptimizationResults()) {
        Outcome outcome;
        outcome.results = previous;
        outcome.result = runOptimize(
            document, parameters(tolerance, phases), outcome.results,
            [&outcome](int stage, float percent) { outcome.calls.emplace_back(stage, percent); });
        return outcome;
    }

private:
    std::atomic<bool> m_aborted{false};
};

// passes, estimated runs, performed runs, start size, end size,
// then duplicated paths, autojoined paths, degenerated lines, closed sub-paths
using Counts =
    std::tuple<int, unsigned long long, unsigned long long, int, int, int, int, int, int>;

Counts counts(const COptimizationResults& r) {
    return Counts(r.passes(), r.estimatedRuns(), r.performedRuns(), r.startCollectionSize(),
                  r.endCollectionSize(), r.duplicatedPaths(), r.autojoinedPaths(),
                  r.degeneratedLines(), r.closedSubpaths());
}

void expectTotals(const COptimizationResults& r, float before, float after) {
    EXPECT_FLOAT_EQ(r.totalJumpDistanceBeforeOptimization(), before);
    EXPECT_FLOAT_EQ(r.totalJumpDistanceAfterOptimization(), after);
}

using Optimize = EngineTest;
using OptimizeDuplicates = EngineTest;
using OptimizeAutojoin = EngineTest;
using OptimizeCleanup = EngineTest;
using OptimizeOrdering = EngineTest;
using OptimizeAbort = EngineTest;
using OptimizeRealDrawing = EngineTest;

} // namespace

TEST_P(Optimize, EveryPhaseInTurnAndResultsThatDescribeOnlyTheirOwnRun) {
    // Tolerance 1: A is almost closed (gap 0.5) and repeated, B ends 0.5 before C starts, D
    // starts with a line of length 0.5.
    const Words a = path({{0, 0}, {10, 0}, {10, 10}, {0, 0.5f}});
    CStrokeset document(cat({a, a, path({{50, 0}, {60, 0}}), path({{60.5f, 0}, {70, 0}}),
                             path({{100, 0}, {100, 0.5f}, {110, 0}})}));
    Outcome run = optimize(document, 1.0f, kAll);
    EXPECT_TRUE(run.result);
    // Duplicates: 7 pair steps. Autojoin: a pass of 5 steps that joins B and C, one of 3 that
    // joins nothing. Degenerate lines and closing visit 3 collections, the ordering makes 3
    // tests and finds nothing shorter: A's end (0,0) to B (50,0), B's end to D (100,0.5).
    EXPECT_EQ(counts(run.results),
              (Counts{6, 10 + 10 + 3 + 3 + 3, 7 + 8 + 3 + 3 + 3, 5, 3, 1, 1, 1, 1}));
    expectTotals(run.results, 50 + std::sqrt(900.25f), 50 + std::sqrt(900.25f));
    EXPECT_EQ(serialized(document),
              cat({path({{0, 0}, {10, 0}, {10, 10}, {0, 0}}), path({{50, 0}, {60.25f, 0}, {70, 0}}),
                   path({{100, 0.5f}, {110, 0}})}));

    // Every field is written again, also by a run with all phases off, which never calls the
    // (here empty) callback.
    const COptimizationResults full = run.results;
    COptimizationResults results = full;
    results.setElapsedTime(-1);
    EXPECT_FALSE(runOptimize(document, parameters(1.0f, 0), results, nullptr));
    EXPECT_EQ(counts(results), (Counts{0, 0, 0, 3, 3, 0, 0, 0, 0}));
    expectTotals(results, 0.0f, 0.0f);
    EXPECT_GE(results.elapsedTime(), 0);

    // An empty document with all phases on: no autojoin pass, one call opens the ordering.
    CStrokeset empty;
    run = optimize(empty, 1.0f, kAll, full);
    EXPECT_FALSE(run.result);
    EXPECT_EQ(run.calls, (Calls{{4, 0.0f}}));
    EXPECT_EQ(counts(run.results), (Counts{4, 0, 0, 0, 0, 0, 0, 0, 0}));
    expectTotals(run.results, 0.0f, 0.0f);
    // That call throws when the callback is empty, and the results stay untouched.
    results = full;
    EXPECT_THROW(runOptimize(empty, parameters(1.0f, kAll), results, nullptr),
                 std::bad_function_call);
    EXPECT_EQ(counts(results), counts(full));
}

TEST_P(OptimizeDuplicates, RemovesLaterCopiesForwardAndReversed) {
    const Words a = path({{0, 0}, {5, 0}, {5, 5}});
    const Words backwards = path({{5, 5}, {5, 0}, {0, 0}});
    const Words twoDots = dots({{7, 7}, {8, 8}});
    // A | dots | A | A backwards. The dots are an inner step without a test and never an
    // outer; the last collection is never an outer either: 3 pair steps in every case.
    const Words drawing = cat({a, twoDots, a, backwards});
    const std::pair<unsigned, Words> cases[] = {{kDup | kRevDup, cat({a, twoDots})},
                                                {kDup, cat({a, twoDots, backwards})},
                                                {kRevDup, cat({a, twoDots, a})}};
    for (const auto& [phases, remaining] : cases) {
        SCOPED_TRACE(phases);
        CStrokeset document(drawing);
        const Outcome run = optimize(document, 0.01f, phases);
        EXPECT_TRUE(run.result);
        const int removed = phases == kDup + kRevDup ? 2 : 1;
        EXPECT_EQ(counts(run.results), (Counts{1, 6, 3, 4, 4 - removed, removed, 0, 0, 0}));
        EXPECT_EQ(serialized(document), remaining);
    }

    // Equal ends are not enough, forwards or backwards: the points in between must match too.
    const Words sameEnds = cat({a, path({{0, 0}, {0, 5}, {5, 5}}), path({{5, 5}, {5, 1}, {0, 0}})});
    CStrokeset different(sameEnds);
    EXPECT_FALSE(optimize(different, 0.01f, kDup | kRevDup).result);
    EXPECT_EQ(serialized(different), sameEnds);

    // Both copies go while the first is the outer.
    CStrokeset three(cat({a, a, a}));
    const Outcome run = optimize(three, 0.01f, kDup);
    EXPECT_TRUE(run.result);
    EXPECT_EQ(counts(run.results), (Counts{1, 3, 2, 3, 1, 2, 0, 0, 0}));
    EXPECT_EQ(serialized(three), a);
}

TEST_P(OptimizeAutojoin, PassesRepeatUntilOneJoinsNothing) {
    const float mid = (10.0f + 10.005f) * 0.5f;
    const Words meeting = cat({path({{0, 0}, {10, 0}}), path({{10.005f, 0}, {10, 10}})});
    CStrokeset document(cat({meeting, path({{50, 50}, {60, 60}})}));
    Outcome run = optimize(document, 0.01f, kJoin);
    EXPECT_TRUE(run.result);
    // 2 steps, then a pass of 1 step joins nothing
    EXPECT_EQ(counts(run.results), (Counts{2, 3, 3, 3, 2, 0, 1, 0, 0}));
    EXPECT_EQ(serialized(document),
              cat({path({{0, 0}, {mid, 0}, {10, 10}}), path({{50, 50}, {60, 60}})}));

    CStrokeset pair(meeting); // one collection left ends the phase
    EXPECT_EQ(counts(optimize(pair, 0.01f, kJoin).results), (Counts{1, 1, 1, 2, 1, 0, 1, 0, 0}));

    // The outer grows during its inner run: the third path joins its new end in the same pass.
    CStrokeset chain(cat({meeting, path({{10, 10.005f}, {0, 10}})}));
    run = optimize(chain, 0.01f, kJoin);
    EXPECT_EQ(counts(run.results), (Counts{1, 3, 2, 3, 1, 0, 2, 0, 0}));
    EXPECT_EQ(serialized(chain), path({{0, 0}, {mid, 0}, {10, (10.0f + 10.005f) * 0.5f}, {0, 10}}));
}

TEST_P(OptimizeAutojoin, EachJoinCodeNeedsItsOwnFlag) {
    const float mid = (10.0f + 10.005f) * 0.5f;
    const Words joined = path({{0, 0}, {10, 0}, {20, 0}});
    // code, drawing, the one phase that joins, the joined path
    const std::tuple<const char*, Words, unsigned, Words> cases[] = {
        // code 1 wins although the inner end also meets the outer end
        {"1", cat({path({{0, 0}, {10, 0}}), path({{10.005f, 0}, {10.003f, 0}})}), kJoin,
         path({{0, 0}, {mid, 0}, {10.003f, 0}})},
        {"2", cat({path({{0, 0}, {10, 0}}), path({{20, 0}, {10.005f, 0}})}), kRevJoin,
         path({{0, 0}, {mid, 0}, {20, 0}})},
        // codes 3 and 4 put the inner's lines in front; the outer's start point stays
        {"3", cat({path({{10, 0}, {20, 0}}), path({{0, 0}, {10.005f, 0}})}), kJoin, joined},
        {"4", cat({path({{10, 0}, {20, 0}}), path({{10.005f, 0}, {0, 0}})}), kRevJoin, joined},
    };
    for (const auto& [code, drawing, joiningPhase, expected] : cases) {
        for (unsigned phase : {kJoin, kRevJoin}) {
            SCOPED_TRACE(testing::Message() << "code " << code << ", phases " << phase);
            CStrokeset document(drawing);
            const Outcome run = optimize(document, 0.01f, phase);
            const bool joins = phase == joiningPhase;
            EXPECT_EQ(run.result, joins);
            EXPECT_EQ(counts(run.results), (Counts{1, 1, 1, 2, joins ? 1 : 2, 0, joins, 0, 0}));
            EXPECT_EQ(serialized(document), joins ? expected : drawing);
        }
    }
}

TEST_P(OptimizeCleanup, DegenerateLinesShorterThanTheToleranceGo) {
    // Lengths 1, 0.5 and 0.25 are exact in float: the line of length 1 equals the tolerance
    // and stays; two short lines in a row both go, and so does the emptied sub-path. Its
    // duplicate goes first, so the later phases estimate 2 collections; closing visits 1.
    const Words shortLine = path({{0, 10}, {0, 10.5f}});
    CStrokeset document(cat({path({{0, 0}, {1, 0}, {1, 0.5f}, {1, 0.75f}}), shortLine, shortLine}));
    const Outcome run = optimize(document, 1.0f, kDup | kDegenerate | kClose);
    EXPECT_TRUE(run.result);
    EXPECT_EQ(counts(run.results), (Counts{3, 3 + 2 + 2, 3 + 2 + 1, 3, 2, 1, 0, 3, 0}));
    EXPECT_EQ(pointsPerCollection(document), (Shape{2}));
    EXPECT_EQ(serialized(document), path({{0, 0}, {1, 0}}));
}

TEST_P(OptimizeCleanup, ClosingSnapsAlmostClosedPathsOfThreeLinesOrMore) {
    const Words twoLines = path({{20, 0}, {30, 0}, {20, 0.05f}});
    const Words closed = path({{40, 0}, {50, 0}, {50, 10}, {40, 0}});
    CStrokeset document(cat({path({{0, 0}, {10, 0}, {10, 10}, {0, 0.05f}}), twoLines, closed}));
    const Outcome run = optimize(document, 0.1f, kClose);
    EXPECT_TRUE(run.result); // not the two-line path, not the closed one
    EXPECT_EQ(counts(run.results), (Counts{1, 3, 3, 3, 3, 0, 0, 0, 1}));
    EXPECT_EQ(serialized(document),
              cat({path({{0, 0}, {10, 0}, {10, 10}, {0, 0}}), twoLines, closed}));
}

TEST_P(OptimizeCleanup, ToleranceZeroNegativeOrNaNMatchesNothing) {
    // Two equal almost closed paths, a path that starts with a zero-length line, a dot.
    const Words almostClosed = path({{0, 0}, {10, 0}, {10, 10}, {0, 0.05f}});
    const Words drawing =
        cat({almostClosed, almostClosed, path({{20, 0}, {20, 0}, {30, 0}}), dots({{5, 5}})});
    for (float tolerance : {0.0f, -1.0f, std::numeric_limits<float>::quiet_NaN()}) {
        SCOPED_TRACE(tolerance);
        CStrokeset document(drawing);
        const Outcome run = optimize(document, tolerance, kAll & ~kOrder);
        EXPECT_FALSE(run.result);
        // 6 pair steps each for duplicates and one autojoin pass, 4 visits each for the rest
        EXPECT_EQ(counts(run.results), (Counts{4, 20, 20, 4, 4, 0, 0, 0, 0}));
        EXPECT_EQ(serialized(document), drawing);
    }
}

TEST_P(OptimizeOrdering, GreedyOrderIsAdoptedOnlyWhenShorterAndNotZero) {
    const Words a = path({{0, 0}, {10, 0}}), z = path({{100, 0}, {110, 0}});
    const Words ring = path({{12, 0}, {15, 4}, {9, 4}, {12, 0}});
    // drawing; candidate tests, (n - 1) n / 2 for n >= 3 entries once the dots are split; total
    // before and after; the words of the adopted order (none when the order is kept); shape
    const std::tuple<Words, unsigned long long, float, float, Words, Shape> cases[] = {
        // From C's end (19,0) B's end is 1 away and its start 11: B is placed reversed.
        {cat({a, path({{30, 0}, {20, 0}}), path({{11, 0}, {19, 0}})}), 3, 20 + 9, 1 + 1,
         cat({a, path({{11, 0}, {19, 0}}), path({{20, 0}, {30, 0}})}), Shape{2, 2, 2}},
        // From A's end both dots are 3 away: the first in order wins.
        {cat({a, z, dots({{10, -3}, {10, 3}})}), 6, 90 + std::sqrt(10009.0f) + 6,
         3 + 6 + std::sqrt(8109.0f), cat({a, dots({{10, -3}, {10, 3}}), z}), Shape{2, 1, 1, 2}},
        // A path whose ends coincide is as near forwards as backwards: it stays forwards.
        {cat({a, z, ring}), 3, 90 + 98, 2 + 88, cat({a, ring, z}), Shape{2, 4, 2}},
        // A record first is followed by the next entry, whatever its distance.
        {cat({kRecord, z, a, path({{11, 0}, {20, 0}})}), 6, 110 + 1, 90 + 1,
         cat({kRecord, z, path({{20, 0}, {11, 0}}), path({{10, 0}, {0, 0}})}), Shape{1, 2, 2, 2}},
        // Greedy finds jumps of length 0 only: total after 0, the order is kept.
        {cat({a, path({{20, 0}, {30, 0}}), path({{10, 0}, {20, 0}})}), 3, 10 + 20, 0, Words{},
         Shape{2, 2, 2}},
        // Already the greedy order: equal totals, the dots stay one collection.
        {dots({{0, 0}, {1, 0}, {2, 0}}), 3, 2, 2, Words{}, Shape{3}},
        // Two entries are neither reordered nor measured.
        {dots({{0, 0}, {100, 0}}), 0, 0, 0, Words{}, Shape{2}},
        // Shorter: every dot becomes a collection of its own, in the new order.
        {dots({{0, 0}, {10, 0}, {1, 0}}), 3, 10 + 9, 1 + 9, dots({{0, 0}, {1, 0}, {10, 0}}),
         Shape{1, 1, 1}}};
    for (const auto& [drawing, pairs, before, after, adopted, shape] : cases) {
        SCOPED_TRACE(testing::Message() << "total before " << before);
        CStrokeset document(drawing);
        const int size = static_cast<int>(document.getCollections().size());
        document.setOptimizationAborted(); // wiped when the run starts
        const Outcome run = optimize(document, 0.01f, kOrder);
        EXPECT_EQ(run.result, !adopted.empty()); // the new order is the only change
        ASSERT_FALSE(run.calls.empty());
        EXPECT_EQ(run.calls.front(), (std::pair<int, float>(4, 0.0f)));
        EXPECT_EQ(counts(run.results), (Counts{1, pairs, pairs, size, size, 0, 0, 0, 0}));
        expectTotals(run.results, before, after);
        EXPECT_EQ(pointsPerCollection(document), shape);
        EXPECT_EQ(serialized(document), adopted.empty() ? drawing : adopted);
    }
}

TEST_P(OptimizeOrdering, ACallbackThatSleptHearsOfTheFirstPlacement) {
    StreamBuilder builder;
    const int n = 1000;
    for (int i = 0; i < n; ++i) {
        const float x = static_cast<float>((i * 7919) % n);
        builder.moveTo(x, 0).lineTo(x, 1);
    }
    CStrokeset document(builder.words());
    Calls calls;
    // The opening call outlasts the report interval, so the report that follows it is due at
    // the first placement, which has offered every other entry once.
    auto progress = [&](int stage, float percent) {
        if (calls.empty()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(400));
        }
        calls.emplace_back(stage, percent);
    };
    COptimizationResults results;
    runOptimize(document, parameters(0.01f, kOrder), results, progress);
    ASSERT_GE(calls.size(), 2u);
    EXPECT_EQ(calls[0], (std::pair<int, float>(4, 0.0f)));
    const float estimate = static_cast<float>((n - 1) * n / 2);
    EXPECT_EQ(calls[1], (std::pair<int, float>(4, static_cast<float>(n - 1) / estimate * 100.0f)));
}

TEST_P(OptimizeAbort, AbortFromAnotherThreadStopsTheRunAndKeepsTheDrawing) {
    // Thousands of short lines on a scrambled grid: nothing to remove, join or close.
    StreamBuilder builder;
    for (int i = 0; i < 6000; ++i) {
        const int cell = (i * 7919) % 6000;
        const float x = static_cast<float>(cell % 80 * 2), y = static_cast<float>(cell / 80 * 2);
        builder.moveTo(x, y).lineTo(x + 0.5f, y + 0.25f);
    }
    const Words original = builder.words();
    CStrokeset document(original);
    std::atomic<bool> aborted{false};
    std::atomic<int> firstStage{0};
    bool result = true;
    COptimizationResults results;
    // The host's callback holds the run at its first report until the abort is requested, so
    // the abort lands inside the run however fast the machine is.
    auto progress = [&](int stage, float) {
        int none = 0;
        firstStage.compare_exchange_strong(none, stage);
        for (int i = 0; i < 10000 && !aborted; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    };
    std::thread worker(
        [&] { result = runOptimize(document, parameters(0.01f, kAll), results, progress); });
    // The run clears the flag when it starts, so abort only once it has reported.
    while (firstStage == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    abort(document);
    aborted = true;
    worker.join();

    EXPECT_FALSE(result);
    EXPECT_TRUE(isAborted(document));
    EXPECT_EQ(serialized(document), original);
    if (firstStage < 4) {
        // A pair scan reported first, long before the scans end. It stops at its next poll;
        // autojoin still starts its one pass; the later phases never run.
        EXPECT_EQ(results.passes(), 2);
        EXPECT_LT(results.performedRuns(), results.estimatedRuns());
    } else {
        // The scans were done within 0.33 s: the ordering's opening call was the first, and
        // the ordering stopped before measuring anything.
        EXPECT_EQ(firstStage, 4);
        EXPECT_EQ(results.passes(), 5);
        EXPECT_EQ(results.totalJumpDistanceBeforeOptimization(), 0.0f);
    }
}

TEST(ShuffleAndSimplify, ShuffleSplitsDotsSimplifyTouchesSubPathsOnly) {
    // dots 0..2 | sub-path 3, 4 | record 5 | a dot collection emptied by deletion
    CStrokeset document(
        cat({dots({{0, 0}, {1, 0}, {2, 0}}), path({{5, 5}, {6, 6}}), kRecord, dots({{9, 9}})}));
    EXPECT_TRUE(document.deletePoint(6));
    EXPECT_TRUE(document.shuffle());
    Shape shape = pointsPerCollection(document);
    std::sort(shape.begin(), shape.end());
    EXPECT_EQ(shape, (Shape{1, 1, 1, 1, 2}));
    EXPECT_EQ(document.getCollectionIncludingPoint(0), nullptr); // split dots have no index
    // Every element once, in some order; the sub-path is not reversed.
    const Words words = serialized(document);
    EXPECT_EQ(words.size(), 3 * 5 + 10 + 3);
    for (const Words& part :
         {dots({{0, 0}}), dots({{1, 0}}), dots({{2, 0}}), path({{5, 5}, {6, 6}}), kRecord}) {
        EXPECT_NE(std::search(words.begin(), words.end(), part.begin(), part.end()), words.end());
    }

    const Words threeDots = dots({{0, 0}, {1, 0}, {2, 0}});
    CStrokeset drawing(
        cat({threeDots, path({{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}), kRecord}));
    drawing.simplify(0.1f);
    EXPECT_EQ(serialized(drawing), cat({threeDots, path({{0, 0}, {4, 0}, {5, 0}}), kRecord}));
}

TEST_P(OptimizeRealDrawing, FiveHundredPolylines) {
    const std::string file = std::string(LIBSTROKESET_DRAWINGS_DIR) + "/500_polylines.stk";
    Words words;
    std::string error;
    ASSERT_TRUE(CStrokeset::readStkFile(file, words, error)) << error;
    // 500 polylines of 11 to 300 points, 78241 in all. No two ends lie closer than 1, no line
    // is shorter than 2 and no path is nearly closed, so with a small tolerance only the
    // ordering changes anything. Travel as the drawing's folder lists it: file order summed
    // in float, and what an independent greedy ordering reached.
    constexpr float kTravelFloatSum = 260976.14f;
    constexpr float kGreedyTravel = 14114.39f;
    constexpr unsigned long long kPairs = 500 * 499 / 2;

    CStrokeset document(words);
    const Outcome run = optimize(document, 0.0001f, kAll);
    EXPECT_TRUE(run.result);
    // duplicates, one autojoin pass and the ordering test every pair; the others visit 500
    EXPECT_EQ(counts(run.results),
              (Counts{5, 3 * kPairs + 1000, 3 * kPairs + 1000, 500, 500, 0, 0, 0, 0}));
    EXPECT_NEAR(run.results.totalJumpDistanceBeforeOptimization(), kTravelFloatSum,
                kTravelFloatSum * 1e-5f);
    EXPECT_NEAR(run.results.totalJumpDistanceAfterOptimization(), kGreedyTravel,
                kGreedyTravel * 1e-4f);
    CStrokeset reloaded(serialized(document));
    EXPECT_EQ(reloaded.getCollections().size(), 500u);
    EXPECT_EQ(reloaded.getPointsCount(), 78241u);
}

namespace {

std::string engineName(const testing::TestParamInfo<LibStrokeset::EOptimizerEngine>& info) {
    return info.param == LibStrokeset::EOptimizerEngine::eReference ? "Reference" : "Indexed";
}

const auto engines = testing::Values(LibStrokeset::EOptimizerEngine::eReference,
                                     LibStrokeset::EOptimizerEngine::eIndexed);

} // namespace

INSTANTIATE_TEST_SUITE_P(Engines, Optimize, engines, engineName);
INSTANTIATE_TEST_SUITE_P(Engines, OptimizeDuplicates, engines, engineName);
INSTANTIATE_TEST_SUITE_P(Engines, OptimizeAutojoin, engines, engineName);
INSTANTIATE_TEST_SUITE_P(Engines, OptimizeCleanup, engines, engineName);
INSTANTIATE_TEST_SUITE_P(Engines, OptimizeOrdering, engines, engineName);
INSTANTIATE_TEST_SUITE_P(Engines, OptimizeAbort, engines, engineName);
INSTANTIATE_TEST_SUITE_P(Engines, OptimizeRealDrawing, engines, engineName);
