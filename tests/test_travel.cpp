#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "optimize/CEndNeighbours.h"
#include "optimize/CTourRefinement.h"
#include "stream/CSerializationState.h"

#include <LibStrokeset/LibStrokeset.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <thread>

// The travel optimizer: its worked cases, and on seeded random drawings that it never makes
// the travel longer than the nearest-neighbour order and never changes what is drawn.

namespace {

using namespace LibStrokeset;
using namespace test;

CTravelOptimizationParameters switches(bool pens, bool closed, bool refine) {
    return CTravelOptimizationParameters(pens, closed, refine, 30.0);
}

CTravelOptimizationResults travel(CStrokeset& document, const CTravelOptimizationParameters& p,
                                  bool* changed = nullptr) {
    CTravelOptimizationResults results;
    const bool result = document.optimizeTravel(p, results, [](int, float) {});
    if (changed != nullptr) {
        *changed = result;
    }
    return results;
}

std::uint32_t bits(float value) {
    std::uint32_t b;
    std::memcpy(&b, &value, sizeof b);
    return b;
}

using Key = std::vector<std::uint32_t>;

/// A path as a point sequence that does not depend on its direction, nor, when closed, on
/// where it starts.
Key pathKey(const CSubPath& path) {
    std::vector<Key> points;
    points.push_back({bits(path.getFirstPosition().x()), bits(path.getFirstPosition().y()),
                      bits(path.getFirstPosition().z())});
    for (const CLine& line : path) {
        const Eigen::RowVector3f& p = line.getEndPosition();
        points.push_back({bits(p.x()), bits(p.y()), bits(p.z())});
    }
    std::vector<std::vector<Key>> forms;
    const bool closed = path.isClosed();
    if (closed) {
        points.pop_back();
    }
    for (int direction = 0; direction < 2; ++direction) {
        for (std::size_t start = 0; start < (closed ? points.size() : 1); ++start) {
            std::vector<Key> form(points.begin() + start, points.end());
            form.insert(form.end(), points.begin(), points.begin() + start);
            forms.push_back(form);
        }
        std::reverse(points.begin(), points.end());
    }
    Key key{closed ? 1u : 0u};
    for (const Key& point : *std::min_element(forms.begin(), forms.end())) {
        key.insert(key.end(), point.begin(), point.end());
    }
    return key;
}

/// The drawing's content: for each stretch between unsupported records, the sorted keys of
/// its paths and dots; the records themselves by their words.
std::vector<std::vector<Key>> content(CStrokeset& document) {
    std::vector<std::vector<Key>> stretches(1);
    for (CCollection* collection : document.getCollections()) {
        if (auto* path = dynamic_cast<CSubPath*>(collection)) {
            if (path->isEmpty()) {
                stretches.push_back({{9}});
                stretches.emplace_back();
            } else {
                stretches.back().push_back(pathKey(*path));
            }
        } else if (auto* dots = dynamic_cast<CDotCollection*>(collection)) {
            for (const CDot& dot : *dots) {
                const Eigen::RowVector3f& p = dot.getPosition();
                stretches.back().push_back(
                    {2, bits(p.x()), bits(p.y()), bits(p.z()), dot.getPenNumber()});
            }
        } else {
            std::vector<unsigned short> words;
            CSerializationState state(words, nullptr);
            collection->copyAll(state);
            stretches.push_back({Key(words.begin(), words.end())});
            stretches.emplace_back();
        }
    }
    for (std::vector<Key>& stretch : stretches) {
        std::sort(stretch.begin(), stretch.end());
    }
    return stretches;
}

/// Pen-up travel after a clean-up free ordering by optimize: the nearest-neighbour order, or
/// the drawing's own when that is shorter.
double greedyTravel(const std::vector<unsigned short>& words) {
    CStrokeset document(words);
    COptimizationResults ignored;
    document.optimize(COptimizationParameters(0.0f, false, false, false, false, false, false, true),
                      ignored, [](int, float) {});
    return travel(document, CTravelOptimizationParameters()).travelBefore();
}

TEST(TravelWorkedCases, PensTogetherChangePenOncePerPen) {
    StreamBuilder drawing;
    for (int i = 0; i < 6; ++i) {
        drawing.pen(static_cast<unsigned short>(1 + i % 3)).moveTo(i, 0).lineTo(i, 1);
    }
    CStrokeset document(drawing.words());
    bool changed = false;
    const CTravelOptimizationResults r = travel(document, switches(true, false, false), &changed);
    EXPECT_TRUE(changed);
    EXPECT_EQ(r.penChangesBefore(), 6u);
    EXPECT_EQ(r.penChangesAfter(), 3u);
    std::vector<unsigned short> pens;
    for (CCollection* c : document) {
        pens.push_back(static_cast<CSubPath*>(c)->getLines().front().getPenNumber());
    }
    EXPECT_EQ(pens, (std::vector<unsigned short>{1, 1, 2, 2, 3, 3}));
    // A second run finds nothing to change.
    bool again = true;
    travel(document, switches(true, false, false), &again);
    EXPECT_FALSE(again);
}

TEST(TravelWorkedCases, ClosedSquareIsEnteredAtTheNearestCorner) {
    CStrokeset document(StreamBuilder()
                            .moveTo(0, 0)
                            .lineTo(10, 0)
                            .moveTo(17, 5)
                            .lineTo(17, 0)
                            .lineTo(12, 0)
                            .lineTo(12, 5)
                            .lineTo(17, 5)
                            .words());
    const std::vector<std::vector<Key>> before = content(document);
    const CTravelOptimizationResults r = travel(document, switches(false, true, false));
    EXPECT_NEAR(r.travelBefore(), std::sqrt(74.0), 1e-6);
    EXPECT_NEAR(r.travelAfter(), 2.0, 1e-9);
    EXPECT_EQ(r.rotatedPaths(), 1u);
    auto* square = static_cast<CSubPath*>(document.getCollections().back());
    EXPECT_EQ(square->getFirstPosition(), point(12, 0));
    EXPECT_EQ(square->getLastPosition(), point(12, 0));
    EXPECT_TRUE(square->isClosed());
    EXPECT_EQ(content(document), before);
}

TEST(TravelWorkedCases, RefinementUndoesTheZigzagOfTheGreedyOrder) {
    // From 0 the greedy order runs 0, 1, 3, -1.5, -4.5 (10.5); left to right is 7.5.
    CStrokeset document(dots({{0, 0}, {1, 0}, {-1.5f, 0}, {3, 0}, {-4.5f, 0}}));
    const CTravelOptimizationResults r = travel(document, switches(false, false, true));
    EXPECT_NEAR(greedyTravel(dots({{0, 0}, {1, 0}, {-1.5f, 0}, {3, 0}, {-4.5f, 0}})), 10.5, 1e-9);
    EXPECT_NEAR(r.travelAfter(), 7.5, 1e-9);
    EXPECT_GT(r.appliedMoves(), 0u);
}

TEST(TravelWorkedCases, TwoOptUncrossesTwoJumps) {
    // Dots at the corners of a square, visited across both diagonals.
    std::vector<Eigen::RowVector3f> corners{point(0, 0), point(10, 10), point(10, 0), point(0, 10)};
    CTravelTour tour(corners, corners, {{0, false}, {1, false}, {2, false}, {3, false}}, nullptr);
    const CEndNeighbours neighbours(corners, corners, 3);
    std::atomic<bool> aborted(false);
    CTourRefinement refinement(tour, neighbours, aborted, std::numeric_limits<long long>::max(),
                               nullptr);
    EXPECT_NEAR(tour.length(), 20.0 * std::sqrt(2.0) + 10.0, 1e-9);
    EXPECT_GT(refinement.run(), 0u);
    EXPECT_NEAR(tour.length(), 30.0, 1e-9); // three sides, no crossing
}

/// A drawing of paths (some closed), runs of dots, pens 1 to 3, unsupported records,
/// emptied sub-paths and, when asked, NaN and infinite coordinates.
std::vector<unsigned short> randomDrawing(unsigned seed, bool oddValues, bool records) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> at(0.0f, 100.0f);
    const float odd[] = {std::numeric_limits<float>::quiet_NaN(),
                         std::numeric_limits<float>::infinity(), -0.0f, 50.0f};
    const auto coordinate = [&] {
        return oddValues && random() % 25 == 0 ? odd[random() % 4] : std::round(at(random));
    };
    StreamBuilder drawing;
    for (int i = 0; i < 60; ++i) {
        if (random() % 4 == 0) {
            drawing.pen(static_cast<unsigned short>(1 + random() % 3));
        }
        switch (random() % 6) {
        case 0:
            for (unsigned k = random() % 4 + 1; k > 0; --k) {
                drawing.dot(coordinate(), coordinate());
            }
            break;
        case 1: {
            const float x = coordinate(), y = coordinate();
            drawing.moveTo(x, y)
                .lineTo(x + 3, y)
                .lineTo(x + 3, y + 3)
                .lineTo(x, y + 3)
                .lineTo(x, y);
            break;
        }
        case 2:
            if (records) {
                drawing.raw({0x1234, 7});
                break;
            }
            [[fallthrough]];
        default:
            drawing.moveTo(coordinate(), coordinate());
            for (unsigned k = random() % 3 + 1; k > 0; --k) {
                drawing.lineTo(coordinate(), coordinate());
            }
        }
    }
    return drawing.words();
}

TEST(TravelProperties, NeverLongerThanGreedyAndContentKept) {
    for (unsigned seed = 1; seed <= 40; ++seed) {
        const bool oddValues = seed % 4 == 0;
        const bool records = seed % 3 == 0;
        const std::vector<unsigned short> words = randomDrawing(seed, oddValues, records);
        const double greedy = greedyTravel(words);
        for (unsigned mask = 1; mask < 8; ++mask) {
            SCOPED_TRACE(testing::Message() << "seed " << seed << " switches " << mask);
            CStrokeset document(words);
            if (seed % 5 == 0) { // empty the first one-line sub-path
                std::vector<unsigned short> ignored;
                document.serialize(ignored, nullptr);
                for (CCollection* c : document) {
                    auto* path = dynamic_cast<CSubPath*>(c);
                    if (path != nullptr && path->getLines().size() == 1) {
                        path->deletePoint(path->getStartIndex());
                        break;
                    }
                }
            }
            const std::vector<std::vector<Key>> before = content(document);
            const CTravelOptimizationResults r =
                travel(document, switches(mask & 1, mask & 2, mask & 4));
            EXPECT_EQ(content(document), before);
            EXPECT_FALSE(r.travelAfter() > r.travelBefore());
            // Pens together may cost travel; the other switches only take it away from the
            // greedy order (which unsupported records and emptied paths would interrupt).
            if (!oddValues && !records && seed % 5 != 0 && !(mask & 1)) {
                EXPECT_LE(r.travelAfter(), greedy * (1 + 1e-12));
            }
            if (mask & 1) {
                EXPECT_LE(r.penChangesAfter(), r.penChangesBefore());
            }
            std::vector<unsigned short> out;
            document.serialize(out, nullptr);
            EXPECT_TRUE(CStrokeset(out).getCutRecordPosition(out) == 4294967295u);
        }
    }
}

TEST(TravelProperties, SameInputSameOrder) {
    const std::vector<unsigned short> words = randomDrawing(7, false, true);
    std::vector<unsigned short> first, second;
    CStrokeset a(words), b(words);
    travel(a, switches(true, true, true));
    travel(b, switches(true, true, true));
    a.serialize(first, nullptr);
    b.serialize(second, nullptr);
    EXPECT_EQ(first, second);
}

TEST(TravelProperties, AbortFromAnotherThreadLeavesTheDrawingAsItWas) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> at(0.0f, 1000.0f);
    StreamBuilder drawing;
    for (int i = 0; i < 200000; ++i) {
        drawing.moveTo(at(random), at(random)).lineTo(at(random), at(random));
    }
    CStrokeset document(drawing.words());
    std::vector<unsigned short> before;
    document.serialize(before, nullptr);
    document.setOptimizationAborted(); // cleared by the start
    CTravelOptimizationResults r;
    std::thread stopper([&document] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        document.setOptimizationAborted();
    });
    const bool changed = document.optimizeTravel(switches(true, true, true), r, [](int, float) {});
    stopper.join();
    EXPECT_FALSE(changed);
    EXPECT_LT(r.elapsedTime(), 20000);
    std::vector<unsigned short> after;
    document.serialize(after, nullptr);
    EXPECT_EQ(after, before);
}

} // namespace
