#include <gtest/gtest.h>

#include "EngineComparison.h"
#include "JumpTreeWalk.h"

#include <cmath>
#include <cstring>
#include <fstream>
#include <limits>
#include <random>

#include <LibStrokeset/CSubPath.h>

#include "elements/Geometry.h"
#include "optimize/indexed/CEndPointGrid.h"
#include "optimize/indexed/CJumpTree.h"
#include "optimize/rules/CPairRules.h"

// The indexed engine against the reference engine: the same document, result and counters
// on seeded adversarial drawings, and the indexes against exhaustive searches.

namespace {

using namespace test;
using LibStrokeset::CSubPath;

std::vector<std::uint8_t> randomBytes(unsigned seed, std::size_t count) {
    std::mt19937 random(seed);
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(random() & 0xFF);
    }
    return bytes;
}

DecodedRun decode(const std::vector<std::uint8_t>& bytes, unsigned maxOpcodes = 400) {
    ByteSource source(bytes.data(), bytes.size());
    return DrawingDecoder(source, maxOpcodes).decode();
}

} // namespace

TEST(EngineComparison, SeededAdversarialDrawingsWithEveryFlagSetAndOddTolerances) {
    // The decoder's tolerance choices: the grid step 0.5, 1, then 0, -1, NaN, +inf, -inf,
    // 1e30, 1e-30, a subnormal, 3, 0.05, 3.4e38, 0.25, and raw bits.
    const std::uint8_t tolerances[] = {0,   100, 160, 161, 162, 163, 164, 165,
                                       166, 167, 168, 169, 170, 171, 255};
    int joined = 0, duplicated = 0, reordered = 0;
    const unsigned runs = 128 * 15 * 2;
    for (unsigned seed = 0; seed < runs; ++seed) {
        std::vector<std::uint8_t> bytes = randomBytes(seed, 300);
        bytes[0] = static_cast<std::uint8_t>(seed % 128); // every flag combination
        bytes[1] = tolerances[seed / 128 % 15];
        const DecodedRun input = decode(bytes);
        const EngineRun reference = runEngine(input, LibStrokeset::EOptimizerEngine::eReference);
        const std::string different =
            difference(reference, runEngine(input, LibStrokeset::EOptimizerEngine::eIndexed));
        ASSERT_EQ(different, "") << "seed " << seed;
        joined += reference.results.autojoinedPaths();
        duplicated += reference.results.duplicatedPaths();
        reordered += reference.results.totalJumpDistanceAfterOptimization() > 0.0f;
    }
    // The drawings give every phase work to do.
    EXPECT_GT(joined, 1000);
    EXPECT_GT(duplicated, 1000);
    EXPECT_GT(reordered, 1000);
}

TEST(JumpTree, GreedyWalkOverSeededAdversarialDrawingsMatchesTheScan) {
    // The ordering's leaves hold these drawings whole; leaves of one point search deep trees.
    for (unsigned seed = 0; seed < 300; ++seed) {
        const DecodedRun input = decode(randomBytes(seed, 300));
        ASSERT_EQ(test::compareTreeWalk(input), "") << "seed " << seed;
    }
}

TEST(EngineComparison, DenseLinesThatJoinInLongChainsOverSeveralPasses) {
    // Short lines on an eighth-unit grid in a small square: ends meet at distance 0 and at
    // exactly the tolerance, chains grow at both ends, every jump has many equal rivals.
    for (unsigned seed = 0; seed < 4; ++seed) {
        std::mt19937 random(seed);
        const auto coordinate = [&random] { return static_cast<float>(random() % 80) / 8.0f; };
        StreamBuilder builder;
        for (int i = 0; i < 1500; ++i) {
            const float x = coordinate(), y = coordinate();
            builder.moveTo(x, y).lineTo(x + static_cast<float>(random() % 5) / 8.0f, coordinate());
        }
        for (float tolerance : {0.125f, 0.2f}) {
            DecodedRun input;
            input.words = builder.words();
            input.parameters = LibStrokeset::COptimizationParameters(tolerance, true, true, true,
                                                                     true, true, true, true);
            EXPECT_EQ(compareEngines(input), "") << "seed " << seed << ", tolerance " << tolerance;
        }
    }
}

TEST(EngineComparison, RealDrawingWithManyCoincidentEnds) {
    const std::string file = std::string(LIBSTROKESET_DRAWINGS_DIR) + "/multi_skull.stk";
    DecodedRun input;
    std::string error;
    ASSERT_TRUE(LibStrokeset::CStrokeset::readStkFile(file, input.words, error)) << file;
    // The first 2000 hatching lines keep the reference quick.
    LibStrokeset::CStrokeset document(input.words);
    auto& collections = document.getCollections();
    while (collections.size() > 2000) {
        delete collections.back();
        collections.pop_back();
    }
    input.words = serialized(document);
    for (float tolerance : {0.05f, 0.001f}) {
        input.parameters = LibStrokeset::COptimizationParameters(tolerance, true, true, true, true,
                                                                 true, true, true);
        EXPECT_EQ(compareEngines(input), "") << "tolerance " << tolerance;
    }
}

TEST(PairRules, PrependingAllLinesAtOnceEqualsPrependingOneByOne) {
    StreamBuilder builder;
    builder.pen(1).moveTo(0, 0).lineTo(1, 0).pen(2).lineTo(1, 1);
    builder.pen(3).moveTo(5, 5).lineTo(6, 5, 1).pen(4).lineTo(6, 6).lineTo(7, 7);
    LibStrokeset::CStrokeset document(builder.words());
    auto* into = dynamic_cast<CSubPath*>(document.getCollections().front());
    auto* from = dynamic_cast<CSubPath*>(document.getCollections().back());
    ASSERT_TRUE(into != nullptr && from != nullptr);
    CSubPath oneByOne(*into), atOnce(*into);
    for (auto line = from->rbegin(); line != from->rend(); ++line) {
        oneByOne.prependLine(line->getPosition());
    }
    LibStrokeset::CPairRules::prependAll(atOnce, *from);
    ASSERT_EQ(atOnce.getLines().size(), 5u);
    ASSERT_EQ(oneByOne.getLines().size(), 5u);
    for (std::size_t k = 0; k < 5; ++k) {
        const LibStrokeset::CLine& a = oneByOne.getLines()[k];
        const LibStrokeset::CLine& b = atOnce.getLines()[k];
        SCOPED_TRACE(k);
        EXPECT_EQ(a.getPosition(), b.getPosition());
        EXPECT_EQ(a.getEndPosition(), b.getEndPosition());
        EXPECT_EQ(a.getPenNumber(), b.getPenNumber());
        EXPECT_EQ(a.getEndPenNumber(), b.getEndPenNumber());
        EXPECT_EQ(a.getOpcodeIndex(), b.getOpcodeIndex());
        EXPECT_EQ(a.getEndOpcodeIndex(), b.getEndOpcodeIndex());
    }
    EXPECT_EQ(atOnce.getMinOpcodeIndex(), oneByOne.getMinOpcodeIndex());
    EXPECT_EQ(atOnce.getMaxOpcodeIndex(), oneByOne.getMaxOpcodeIndex());
}

namespace {

/// Coordinates that stress the rounding margins of the indexes: a coarse grid, values a few
/// units in the last place apart, subnormals, huge values, and now and then NaN or inf.
float awkward(std::mt19937& random) {
    const float inf = std::numeric_limits<float>::infinity();
    switch (random() % 8) {
    case 0: return std::ldexp(static_cast<float>(random() % 5), -140); // subnormal
    case 1: return 1e30f * static_cast<float>(random() % 3);
    case 2: {
        float value = static_cast<float>(random() % 4) * 0.75f;
        for (unsigned n = random() % 4; n > 0; --n)
            value = std::nextafter(value, inf);
        return value;
    }
    case 3: return random() % 16 == 0 ? (random() % 2 ? std::nanf("") : -inf) : 0.0f;
    default: return static_cast<float>(random() % 9) * 0.25f;
    }
}

Eigen::RowVector3f awkwardPoint(std::mt19937& random) {
    return {awkward(random), awkward(random), random() % 4 == 0 ? awkward(random) : 0.0f};
}

} // namespace

namespace {

/// The tree gives back the very end an entry with ends is left at, filed or not.
void expectExitOf(const LibStrokeset::CJumpTree& tree, const LibStrokeset::SJumpEntry& entry,
                  std::size_t position, bool reversed) {
    Eigen::RowVector3f exit;
    ASSERT_EQ(tree.exitOf(position, reversed, exit), entry.hasEnds) << "entry " << position;
    if (entry.hasEnds) {
        const Eigen::RowVector3f& expected = reversed ? entry.start : entry.end;
        EXPECT_EQ(std::memcmp(exit.data(), expected.data(), sizeof(float) * 3), 0)
            << "entry " << position << (reversed ? " reversed" : "");
    }
}

} // namespace

TEST(JumpTree, FindsWhatOfferingEveryRemainingEntryFinds) {
    // Leaves of one point up to the default: deep trees and shallow ones on the same input.
    const std::uint32_t leafSizes[] = {1, 3, 8, LibStrokeset::CJumpTree::defaultLeafSize};
    for (unsigned seed = 0; seed < 40; ++seed) {
        std::mt19937 random(seed);
        const std::uint32_t leafSize = leafSizes[seed % 4];
        std::vector<LibStrokeset::SJumpEntry> entries;
        for (int i = 0; i < 300; ++i) {
            entries.push_back({nullptr, random() % 10 != 0, awkwardPoint(random),
                               random() % 3 == 0 ? awkwardPoint(random)
                               : entries.empty() ? awkwardPoint(random)
                                                 : entries.back().start});
        }
        const std::atomic<bool> running{false};
        LibStrokeset::CJumpTree tree(entries, running, leafSize);
        std::vector<bool> removed(entries.size(), false);
        for (int query = 0; query < 300; ++query) {
            // From a point of some entry, as after placing it, or from anywhere.
            const std::size_t near = random() % entries.size();
            const Eigen::RowVector3f from = random() % 3 == 0 ? awkwardPoint(random)
                                            : random() % 2    ? entries[near].start
                                                              : entries[near].end;
            LibStrokeset::SJumpChoice everyEntry, indexed;
            for (std::size_t j = 0; j < entries.size(); ++j) {
                if (!removed[j] && entries[j].hasEnds) everyEntry.offer(from, entries[j], j);
            }
            tree.offerNearest(from, near, indexed);
            expectExitOf(tree, entries[near], near, random() % 2 == 0);
            ASSERT_EQ(indexed.index, everyEntry.index)
                << "seed " << seed << ", query " << query << ", leaves of " << leafSize;
            ASSERT_EQ(indexed.reversed, everyEntry.reversed);
            const std::size_t gone = random() % entries.size();
            removed[gone] = true;
            tree.remove(gone);
        }
    }
}

namespace {

std::vector<const CSubPath*> pathsOf(const LibStrokeset::CStrokeset& document) {
    std::vector<const CSubPath*> paths;
    for (const auto* collection : document.getCollections()) {
        paths.push_back(dynamic_cast<const CSubPath*>(collection));
    }
    return paths;
}

std::vector<LibStrokeset::CEndPointGrid::SEnd> endsOf(const std::vector<const CSubPath*>& paths) {
    std::vector<LibStrokeset::CEndPointGrid::SEnd> ends;
    for (std::uint32_t position = 0; position < paths.size(); ++position) {
        if (paths[position] != nullptr) {
            LibStrokeset::CEndPointGrid::addEnd(position, paths[position]->getFirstPosition(),
                                                ends);
            LibStrokeset::CEndPointGrid::addEnd(position, paths[position]->getLastPosition(), ends);
        }
    }
    return ends;
}

} // namespace

TEST(EndPointGrid, OffersEveryPathWithAnEndWithinTheTolerance) {
    const float tolerances[] = {0.25f, 0.75f, 1e-40f, 1e-30f, 2e30f, 1e-6f};
    for (unsigned seed = 0; seed < 36; ++seed) {
        std::mt19937 random(seed);
        const float tolerance = tolerances[seed % 6];
        StreamBuilder builder;
        for (int i = 0; i < 200; ++i) {
            const Eigen::RowVector3f a = awkwardPoint(random), b = awkwardPoint(random);
            builder.moveTo(a.x(), a.y(), a.z()).lineTo(b.x(), b.y(), b.z());
        }
        LibStrokeset::CStrokeset document(builder.words());
        const std::vector<const CSubPath*> paths = pathsOf(document);
        const LibStrokeset::CEndPointGrid grid(tolerance, endsOf(paths));
        // Every 20th path in the same cells: few ends for many cells, filed sparsely.
        std::vector<const CSubPath*> some(paths.size(), nullptr);
        for (std::size_t i = 0; i < paths.size(); i += 20) {
            some[i] = paths[i];
        }
        const LibStrokeset::CEndPointGrid few(grid, endsOf(some));
        for (std::uint32_t query = 0; query < paths.size(); ++query) {
            const CSubPath& outer = *paths[query];
            std::vector<std::uint32_t> offered, offeredFew;
            for (auto [searched, list] :
                 {std::pair(&grid, &offered), std::pair(&few, &offeredFew)}) {
                LibStrokeset::CEndPointGrid::firstAfter({searched}, outer.getFirstPosition(),
                                                        outer.getLastPosition(), query,
                                                        [list = list](std::uint32_t position) {
                                                            list->push_back(position);
                                                            return false;
                                                        });
            }
            for (std::uint32_t other = query + 1; other < paths.size(); ++other) {
                const CSubPath& inner = *paths[other];
                bool near = false;
                for (const auto* a : {&outer.getFirstPosition(), &outer.getLastPosition()}) {
                    for (const auto* b : {&inner.getFirstPosition(), &inner.getLastPosition()}) {
                        near = near || tolerance > LibStrokeset::distance(*a, *b);
                    }
                }
                if (near) {
                    ASSERT_TRUE(std::binary_search(offered.begin(), offered.end(), other))
                        << "seed " << seed << ": " << query << " and " << other;
                    ASSERT_TRUE(some[other] == nullptr ||
                                std::binary_search(offeredFew.begin(), offeredFew.end(), other))
                        << "seed " << seed << ", few: " << query << " and " << other;
                }
            }
        }
    }
}

TEST(EndPointGrid, OffersEndsJustInsideTheToleranceWhereverTheCellBordersFall) {
    // Pairs of ends as far apart along x as the float distance still takes as within the
    // tolerance, on a lattice as sparse as the cells are small (two tolerances): with
    // 40000 offsets against the cell borders, some pair straddles a border by a hair.
    for (float tolerance : {0.25f, 0.75f, 1e-6f}) {
        StreamBuilder builder;
        for (int i = 0; i < 40000; ++i) {
            // Each row of the lattice a little further along x.
            const float x =
                (static_cast<float>(i % 200) * 2.74f + static_cast<float>(i / 200) * 0.0137f) *
                tolerance;
            const float y = static_cast<float>(i / 200) * tolerance * 2.74f;
            // The farthest float above x whose distance from x is below the tolerance.
            std::uint32_t low = bitsOf(x), high = bitsOf(x + 2.0f * tolerance);
            while (high - low > 1) {
                const std::uint32_t middle = low + (high - low) / 2;
                float candidate;
                std::memcpy(&candidate, &middle, sizeof candidate);
                (tolerance > LibStrokeset::distance({x, y, 0}, {candidate, y, 0}) ? low : high) =
                    middle;
            }
            float farthest;
            std::memcpy(&farthest, &low, sizeof farthest);
            // The other ends lie out of reach, so that only the tested ends can be offered.
            const float away = tolerance * 3.0f;
            builder.moveTo(x, y).lineTo(x - away, y).moveTo(farthest, y).lineTo(x + away, y);
        }
        LibStrokeset::CStrokeset document(builder.words());
        const std::vector<const CSubPath*> paths = pathsOf(document);
        const LibStrokeset::CEndPointGrid grid(tolerance, endsOf(paths));
        for (std::uint32_t outer = 0; outer < paths.size(); outer += 2) {
            const Eigen::RowVector3f& start = paths[outer]->getFirstPosition();
            const auto partner = [outer](std::uint32_t position) { return position == outer + 1; };
            ASSERT_EQ(
                LibStrokeset::CEndPointGrid::firstAfter({&grid}, start, start, outer, partner),
                outer + 1)
                << "tolerance " << tolerance << ", pair " << outer / 2;
        }
    }
}
