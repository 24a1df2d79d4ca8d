// Inner first: contours inside contours (point tests, the indexed search against every pair),
// the precedence checks of tour moves against applying them, the constrained nearest-neighbour
// order against a plain search, and optimizeTravel keeping every hole before its outline.

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include <LibStrokeset/LibStrokeset.h>

#include "DrawnSegments.h"
#include "StreamBuilder.h"
#include "optimize/travel/CConstrainedGreedy.h"
#include "optimize/travel/CContainment.h"
#include "optimize/travel/CContourPolygon.h"
#include "optimize/travel/CEndNeighbours.h"
#include "optimize/travel/CTourRefinement.h"
#include "optimize/travel/CTravelPrecedence.h"
#include "optimize/travel/CTravelTour.h"

namespace {

using namespace LibStrokeset;
using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;
using Points = std::vector<Eigen::Vector2d>;

Points square(double x, double y, double side) {
    return {{x, y}, {x + side, y}, {x + side, y + side}, {x, y + side}};
}

/// A star of `tips` spikes; long enough to be read in bands.
Points star(double cx, double cy, double inner, double outer, int tips) {
    Points points;
    for (int k = 0; k < 2 * tips; ++k) {
        const double angle = M_PI * k / tips;
        const double r = k % 2 == 0 ? outer : inner;
        points.emplace_back(cx + r * std::cos(angle), cy + r * std::sin(angle));
    }
    return points;
}

std::vector<CContourPolygon> contours(const std::vector<Points>& shapes, bool banded = true) {
    std::vector<CContourPolygon> result;
    for (const Points& shape : shapes) {
        result.emplace_back(shape, banded);
    }
    return result;
}

TEST(NestingContours, BoundaryAndEvenOddAnswerAloneOrInBands) {
    const CContourPolygon box(square(0, 0, 4));
    EXPECT_TRUE(box.holds({1, 1}));
    EXPECT_FALSE(box.holds({5, 1}));
    for (const Eigen::Vector2d& p : {Eigen::Vector2d(0, 0), Eigen::Vector2d(2, 0),
                                     Eigen::Vector2d(4, 3), Eigen::Vector2d(0, 4)}) {
        EXPECT_TRUE(box.onBoundary(p)) << p.transpose();
    }
    EXPECT_FALSE(box.onBoundary({2, 2}));
    EXPECT_FALSE(CContourPolygon(Points{{0, 0}, {std::nan(""), 1}, {1, 1}}).isFinite());

    // A star of 400 edges read in bands answers every point as read whole: vertices, points
    // on edges, band borders and random points.
    const Points shape = star(10, -3, 2, 9, 200);
    const CContourPolygon banded(shape, true), whole(shape, false);
    std::mt19937 random(3);
    std::uniform_real_distribution<double> coordinate(-12, 22);
    std::vector<Eigen::Vector2d> probes(shape.begin(), shape.end());
    for (std::size_t k = 0; k + 1 < shape.size(); k += 7) {
        probes.push_back((shape[k] + shape[k + 1]) / 2);
    }
    for (int k = 0; k < 3000; ++k) {
        probes.emplace_back(coordinate(random), coordinate(random) - 10);
    }
    for (double y = -12; y <= 6; y += 18.0 / 50) {
        probes.emplace_back(10, y);
    }
    for (const Eigen::Vector2d& p : probes) {
        ASSERT_EQ(banded.onBoundary(p), whole.onBoundary(p)) << p.transpose();
        ASSERT_EQ(banded.holds(p), whole.holds(p)) << p.transpose();
    }
}

TEST(NestingContours, NestedTouchingSharedAndCrossingContours) {
    const auto pairs = [](const std::vector<Points>& shapes) {
        const Pairs reference =
            CContainment::of(contours(shapes, false), EContainmentRoute::eAllPairs);
        EXPECT_EQ(CContainment::of(contours(shapes), EContainmentRoute::eIndexed), reference);
        return reference;
    };
    // Three deep, listed outside in: every inner lies inside every outer.
    EXPECT_EQ(pairs({square(0, 0, 10), square(2, 2, 6), square(4, 4, 2)}),
              (Pairs{{1, 0}, {2, 0}, {2, 1}}));
    // Inside, touching the outer along an edge and at a corner: still inside.
    EXPECT_EQ(pairs({square(0, 0, 10), square(0, 0, 3), square(7, 7, 3)}), (Pairs{{1, 0}, {2, 0}}));
    // Sharing one vertex from outside, side by side sharing an edge, the same contour twice:
    // none inside another.
    EXPECT_EQ(pairs({square(0, 0, 2), square(2, 2, 2), square(2, 0, 2), square(2, 0, 2)}), Pairs{});
    // Crossing squares of one size: neither holds the other's box.
    EXPECT_EQ(pairs({square(0, 0, 4), square(2, 1, 4)}), Pairs{});
    // A contour whose box lies within another's but which lies outside it (in a notch).
    const Points notched = {{0, 0}, {10, 0}, {10, 10}, {6, 10}, {6, 4}, {4, 4}, {4, 10}, {0, 10}};
    EXPECT_EQ(pairs({notched, square(4.5, 6, 1), square(1, 1, 1)}), (Pairs{{2, 0}}));
    // A contour with every vertex on the outer's boundary is not inside it.
    EXPECT_EQ(pairs({square(0, 0, 4), Points{{0, 0}, {4, 0}, {4, 4}}}), Pairs{});
}

TEST(NestingContours, TheIndexFindsWhatEveryPairFinds) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        // Small integer grids give shared vertices, touching edges, equal boxes and repeats.
        const int span = 2 + static_cast<int>(seed % 7);
        std::uniform_int_distribution<int> at(0, span), size(0, span), kind(0, 9);
        std::vector<Points> shapes;
        const int count = 1 + static_cast<int>(random() % 40);
        for (int k = 0; k < count; ++k) {
            const double x = at(random), y = at(random), s = size(random);
            switch (kind(random)) {
            case 0: shapes.push_back({{x, y}, {x + s, y + 1}, {x, y + s}}); break;
            case 1: shapes.push_back(star(x, y, s / 3, s + 1, 40)); break;
            case 2: shapes.push_back({{x, y}}); break; // one point
            case 3:
                shapes.push_back(
                    {{x, y}, {std::numeric_limits<double>::infinity(), y}, {x, y + 1}});
                break;
            case 4:
                shapes.push_back({{x, y}, {x + s, y + s}, {x, y + s}, {x + s, y}});
                break; // a bow tie
            default: shapes.push_back(square(x, y, s)); break;
            }
        }
        ASSERT_EQ(CContainment::of(contours(shapes), EContainmentRoute::eIndexed),
                  CContainment::of(contours(shapes, false), EContainmentRoute::eAllPairs));
    }
}

/// Random pairs (earlier, later) that form no cycle: earlier by a hidden random rank.
Pairs randomPrecedence(std::mt19937& random, std::uint32_t items, std::size_t count) {
    std::vector<std::uint32_t> rank(items);
    std::iota(rank.begin(), rank.end(), 0u);
    std::shuffle(rank.begin(), rank.end(), random);
    Pairs pairs;
    for (std::size_t k = 0; k < count && items > 1; ++k) {
        std::uint32_t a = random() % items, b = random() % items;
        if (a != b) {
            pairs.emplace_back(rank[a] < rank[b] ? a : b, rank[a] < rank[b] ? b : a);
        }
    }
    return pairs;
}

std::vector<std::uint32_t> itemsOf(const std::vector<CTravelTour::SStep>& steps) {
    std::vector<std::uint32_t> items;
    for (const CTravelTour::SStep& step : steps) {
        items.push_back(step.item);
    }
    return items;
}

CTravelTour randomTour(std::mt19937& random, std::uint32_t items,
                       const std::vector<std::uint32_t>& order, bool origin) {
    std::vector<Eigen::RowVector3f> starts, ends;
    std::uniform_int_distribution<int> grid(0, 6);
    for (std::uint32_t k = 0; k < items; ++k) {
        starts.emplace_back(grid(random), grid(random), 0.0f);
        ends.emplace_back(grid(random), grid(random), 0.0f);
    }
    std::vector<CTravelTour::SStep> steps;
    for (std::uint32_t item : order) {
        steps.push_back({item, random() % 2 == 0});
    }
    const Eigen::RowVector3f from(1, 1, 0);
    return CTravelTour(starts, ends, steps, origin ? &from : nullptr);
}

TEST(NestingPrecedence, MoveChecksAnswerAsApplyingTheMoveAndRepairKeepsEveryPair) {
    for (unsigned seed = 1; seed <= 400; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const std::uint32_t items = 2 + random() % 12;
        const Pairs pairs = randomPrecedence(random, items, random() % (2 * items));
        const CTravelPrecedence precedence(items, pairs);
        std::vector<std::uint32_t> order(items);
        std::iota(order.begin(), order.end(), 0u);
        std::shuffle(order.begin(), order.end(), random);
        const std::vector<std::uint32_t> repaired = precedence.repaired(order);
        ASSERT_TRUE(precedence.keptBy(repaired));
        ASSERT_TRUE(std::is_permutation(repaired.begin(), repaired.end(), order.begin()));
        if (precedence.keptBy(order)) {
            ASSERT_EQ(repaired, order);
        }
        CTravelTour tour = randomTour(random, items, repaired, seed % 2 == 0);
        const std::size_t n = tour.size();
        for (int move = 0; move < 30; ++move) {
            const std::size_t first = random() % n, last = random() % n;
            CTravelTour turned = tour;
            turned.reverse(first, last);
            ASSERT_EQ(precedence.allowsReversal(tour, first, last),
                      precedence.keptBy(itemsOf(turned.path())));
            const std::size_t count = 1 + random() % 3, after = random() % n;
            bool gapInRun = false; // the refinement never moves the gap
            for (std::size_t k = 0; k < count; ++k) {
                gapInRun = gapInRun || tour.itemAt(first + k) == tour.gap();
            }
            if (count + 2 < n && (after + n - first + 1) % n > count && !gapInRun) {
                CTravelTour moved = tour;
                const std::uint32_t run[] = {tour.itemAt(first), tour.itemAt(first + 1),
                                             tour.itemAt(first + 2)};
                moved.move(first, count, after, random() % 2 == 0);
                ASSERT_EQ(precedence.keptAround(moved, run, count),
                          precedence.keptBy(itemsOf(moved.path())));
            }
            if (precedence.keptBy(itemsOf(turned.path()))) {
                tour = turned; // wander through the orders that keep the pairs
            }
        }
    }
}

/// The constrained nearest-neighbour order by plain search over every waiting-free item.
std::vector<CTravelTour::SStep> plainConstrainedGreedy(const std::vector<SJumpEntry>& entries,
                                                       const CTravelPrecedence& precedence,
                                                       const Eigen::RowVector3f* origin) {
    const std::size_t n = entries.size();
    std::vector<bool> placed(n, false);
    std::vector<CTravelTour::SStep> steps;
    Eigen::RowVector3f at = origin != nullptr ? *origin : Eigen::RowVector3f::Zero();
    while (steps.size() < n) {
        std::uint32_t best = 0;
        bool bestAtEnd = false, found = false, anyFree = false;
        double bestJump = 0;
        std::uint32_t lowestFree = 0;
        for (std::uint32_t item = 0; item < n; ++item) {
            const auto& before = precedence.earlier(item);
            if (placed[item] || std::any_of(before.begin(), before.end(),
                                            [&](std::uint32_t b) { return !placed[b]; })) {
                continue;
            }
            if (!anyFree) {
                lowestFree = item;
                anyFree = true;
            }
            for (bool atEnd : {false, true}) {
                const Eigen::RowVector3f& p = atEnd ? entries[item].end : entries[item].start;
                const double jump = CTravelTour::jump(&at, &p);
                if (jump == jump && (!found || jump < bestJump)) {
                    best = item;
                    bestAtEnd = atEnd;
                    bestJump = jump;
                    found = true;
                }
            }
        }
        if (!found || (steps.empty() && origin == nullptr)) {
            best = lowestFree;
            bestAtEnd = false;
        }
        const SJumpEntry& entry = entries[best];
        const bool reversed = bestAtEnd && !(entry.start == entry.end);
        steps.push_back({best, reversed});
        at = reversed ? entry.start : entry.end;
        placed[best] = true;
    }
    return steps;
}

TEST(NestingGreedy, TheGridFindsWhatAPlainSearchFinds) {
    const std::atomic<bool> notAborted(false);
    for (unsigned seed = 1; seed <= 300; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const std::uint32_t items = 1 + random() % 60;
        std::uniform_int_distribution<int> grid(-3, 3 + static_cast<int>(seed % 20));
        std::vector<SJumpEntry> entries;
        for (std::uint32_t k = 0; k < items; ++k) {
            SJumpEntry entry{nullptr, true, Eigen::RowVector3f(grid(random), grid(random), 0),
                             Eigen::RowVector3f(grid(random), grid(random), 0)};
            if (k % 3 == 0) {
                entry.end = entry.start; // a closed path or a dot
            }
            if (seed % 5 == 0 && k % 5 == 2) { // not a number: jumps that compare with nothing
                entry.start.x() = std::numeric_limits<float>::quiet_NaN();
            }
            entries.push_back(entry);
        }
        const CTravelPrecedence precedence(items, randomPrecedence(random, items, items));
        const Eigen::RowVector3f origin(0.5f, 2.0f, 0.0f);
        const Eigen::RowVector3f* from = seed % 2 == 0 ? &origin : nullptr;
        const std::vector<CTravelTour::SStep> fast =
            CConstrainedGreedy(entries, precedence, notAborted).order(from);
        const std::vector<CTravelTour::SStep> plain =
            plainConstrainedGreedy(entries, precedence, from);
        ASSERT_EQ(fast.size(), plain.size());
        ASSERT_TRUE(precedence.keptBy(itemsOf(fast)));
        // Ties may go to another item at the same distance: compare the jumps.
        Eigen::RowVector3f atFast = from ? origin : Eigen::RowVector3f::Zero(), atPlain = atFast;
        for (std::size_t k = 0; k < fast.size(); ++k) {
            const SJumpEntry& a = entries[fast[k].item];
            const SJumpEntry& b = entries[plain[k].item];
            if (k > 0 || from != nullptr) {
                const double jumpFast =
                    CTravelTour::jump(&atFast, fast[k].reversed ? &a.end : &a.start);
                const double jumpPlain =
                    CTravelTour::jump(&atPlain, plain[k].reversed ? &b.end : &b.start);
                if (!(std::isnan(jumpFast) && std::isnan(jumpPlain))) {
                    ASSERT_EQ(jumpFast, jumpPlain) << "step " << k;
                }
            }
            if (fast[k].item != plain[k].item) {
                break; // the orders part at a tie
            }
            atFast = fast[k].reversed ? a.start : a.end;
            atPlain = atFast;
        }
    }
}

TEST(NestingRefinement, MovesKeepThePairsAndNeverLengthen) {
    const std::atomic<bool> notAborted(false);
    for (unsigned seed = 1; seed <= 100; ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const std::uint32_t items = 3 + random() % 80;
        const CTravelPrecedence precedence(items, randomPrecedence(random, items, items));
        std::vector<std::uint32_t> order(items);
        std::iota(order.begin(), order.end(), 0u);
        std::shuffle(order.begin(), order.end(), random);
        CTravelTour tour = randomTour(random, items, precedence.repaired(order), seed % 2 == 0);
        std::vector<Eigen::RowVector3f> starts, ends;
        for (std::uint32_t k = 0; k < items; ++k) {
            starts.push_back(tour.start(k));
            ends.push_back(tour.end(k));
        }
        const CEndNeighbours neighbours(starts, ends, 8);
        const double before = tour.length();
        CTourRefinement(tour, neighbours, notAborted, std::numeric_limits<long long>::max(), {},
                        &precedence)
            .run();
        EXPECT_TRUE(precedence.keptBy(itemsOf(tour.path())));
        EXPECT_LE(tour.length(), before);
    }
}

// The document: squares nested three deep in a grid of parts, open paths and dots among them.
test::Words nestedDrawing(unsigned seed, bool pens) {
    std::mt19937 random(seed);
    struct SShape {
        unsigned short pen;
        std::vector<test::XY> points;
    };
    std::vector<SShape> shapes;
    for (int part = 0; part < 9; ++part) {
        const float x = 30.0f * static_cast<float>(part % 3),
                    y = 30.0f * static_cast<float>(part / 3);
        for (int depth = 0; depth < 3; ++depth) {
            const float inset = 4.0f * static_cast<float>(depth), side = 20.0f - 2 * inset;
            const float x0 = x + inset, y0 = y + inset;
            shapes.push_back(
                {static_cast<unsigned short>(pens ? 1 + depth % 2 : 1),
                 {{x0, y0}, {x0 + side, y0}, {x0 + side, y0 + side}, {x0, y0 + side}, {x0, y0}}});
        }
        shapes.push_back({1, {{x + 9, y + 9}, {x + 11, y + 11}}}); // open, in the innermost
        shapes.push_back({2, {{x + 25, y}}});                      // a dot between parts
    }
    shapes.push_back({1, {{0, 0}, {20, 0}, {20, 20}, {0, 20}, {0, 0}}}); // part 0's outline again
    std::shuffle(shapes.begin(), shapes.end(), random);
    test::StreamBuilder words;
    for (const SShape& shape : shapes) {
        words.pen(shape.pen);
        if (shape.points.size() == 1) {
            words.dot(shape.points[0][0], shape.points[0][1]);
            continue;
        }
        words.moveTo(shape.points[0][0], shape.points[0][1]);
        for (std::size_t k = 1; k < shape.points.size(); ++k) {
            words.lineTo(shape.points[k][0], shape.points[k][1]);
        }
    }
    return words.words();
}

/// The nested pairs of the document's closed paths, by every-pair search, as positions in
/// the document's order; and whether each inner comes first.
bool innerFirstHolds(CStrokeset& document, std::size_t* pairCount = nullptr) {
    std::vector<CContourPolygon> shapes;
    for (CCollection* collection : document) {
        auto* path = dynamic_cast<CSubPath*>(collection);
        if (path != nullptr && !path->isEmpty() && path->isClosed()) {
            Points points;
            for (const CLine& line : *path) {
                points.emplace_back(line.getPosition().x(), line.getPosition().y());
            }
            shapes.emplace_back(points, false);
        }
    }
    const Pairs pairs = CContainment::of(shapes, EContainmentRoute::eAllPairs);
    if (pairCount != nullptr) {
        *pairCount = pairs.size();
    }
    return std::all_of(pairs.begin(), pairs.end(),
                       [](const auto& pair) { return pair.first < pair.second; });
}

double travelOf(CStrokeset& document, const CTravelOptimizationParameters& parameters,
                bool* changed = nullptr) {
    CTravelOptimizationResults results;
    const bool result = document.optimizeTravel(parameters, results, [](int, float) {});
    if (changed != nullptr) {
        *changed = result;
    }
    return results.travelAfter();
}

TEST(NestingTravel, EveryHoleBeforeItsOutlineWithEverySwitchAndNothingLost) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const bool pens = seed % 2 == 0;
        const test::Words words = nestedDrawing(seed, pens);
        CStrokeset shuffled(words);
        std::size_t pairs = 0;
        innerFirstHolds(shuffled, &pairs);
        // Three pairs a part; part 0's outline again holds its two inner squares, and neither
        // copy of the outline holds the other.
        ASSERT_EQ(pairs, 9u * 3 + 2);
        CStrokeset greedy(words);
        const double constrainedGreedy =
            travelOf(greedy, CTravelOptimizationParameters(false, false, false, 0, true));
        EXPECT_TRUE(innerFirstHolds(greedy));
        for (unsigned mask = 0; mask < 8; ++mask) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " switches " << mask);
            CStrokeset document(words);
            const auto before = test::drawn(document);
            bool changed = false;
            const double travel = travelOf(
                document, CTravelOptimizationParameters(mask & 1, mask & 2, mask & 4, 30.0, true),
                &changed);
            EXPECT_TRUE(changed); // the shuffled order puts outlines first
            EXPECT_TRUE(innerFirstHolds(document));
            EXPECT_TRUE(test::drawn(document) == before);
            if (!(mask & 1)) {
                EXPECT_LE(travel, constrainedGreedy * (1 + 1e-12));
            }
            // Run again: the order already keeps the rule and is not made longer.
            const double again = travelOf(
                document, CTravelOptimizationParameters(mask & 1, mask & 2, mask & 4, 30.0, true));
            EXPECT_TRUE(innerFirstHolds(document));
            EXPECT_LE(again, travel * (1 + 1e-12));
        }
    }
}

} // namespace
