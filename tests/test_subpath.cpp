#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace LibStrokeset;
using test::point;
using test::StreamBuilder;
using test::Words;

namespace {

using Points = std::vector<Eigen::RowVector3f>;
using Indices = std::vector<unsigned int>;
using Matrix = Eigen::Matrix<float, 3, 4>;
constexpr unsigned int none = CElement::noIndex;

const Eigen::RowVector3f A = point(0, 0), B = point(1, 0), C = point(1, 1), D = point(0, 1);
const Eigen::RowVector3f E = point(2, 2);

// A polyline through the points, chained and numbered from `first` on as loading builds one.
CSubPath makePath(const Points& points, unsigned int first = 0,
                  std::vector<unsigned short> pens = {}) {
    pens.resize(points.size(), 0);
    CSubPath path;
    for (std::size_t k = 0; k + 1 < points.size(); ++k) {
        const unsigned int index = first + static_cast<unsigned int>(k);
        CLine line(points[k], points[k + 1], pens[k], pens[k + 1], index, index + 1);
        path.addLine(line);
    }
    return path;
}

// The points P0 .. Pn as "x,y" (",z" unless z is 0), each with "#index" ("#-" for none) and
// "/pen" unless the pen is 0, then the index range. Where the two copies of an inner point
// differ in index or pen, the end copy comes first and the start copy after a "|". Every
// caller relies on the chain, so a broken one fails the test here.
std::string text(const CSubPath& path, bool numbers = true) {
    std::ostringstream out;
    const auto index = [](unsigned int i) { return i == none ? "-" : std::to_string(i); };
    const auto put = [&](const Eigen::RowVector3f& p) {
        out << p.x() << ',' << p.y();
        if (p.z() != 0.0f) {
            out << ',' << p.z();
        }
    };
    const auto copy = [&](unsigned int i, unsigned short pen) {
        if (numbers) {
            out << '#' << index(i) << (pen != 0 ? "/" + std::to_string(pen) : "");
        }
    };
    const std::vector<CLine>& lines = path.getLines();
    for (std::size_t k = 0; k < lines.size(); ++k) {
        const CLine& line = lines[k];
        if (k == 0) {
            put(line.getPosition());
            copy(line.getOpcodeIndex(), line.getPenNumber());
        } else if (lines[k - 1].getEndPosition() != line.getPosition()) {
            ADD_FAILURE() << "line " << k << " does not start where the line before it ends";
        } else if (numbers && (lines[k - 1].getEndOpcodeIndex() != line.getOpcodeIndex() ||
                               lines[k - 1].getEndPenNumber() != line.getPenNumber())) {
            out << '|';
            copy(line.getOpcodeIndex(), line.getPenNumber());
        }
        out << ' ';
        put(line.getEndPosition());
        copy(line.getEndOpcodeIndex(), line.getEndPenNumber());
    }
    if (numbers) {
        out << (lines.empty() ? "[" : " [") << index(path.getMinOpcodeIndex()) << ','
            << index(path.getMaxOpcodeIndex()) << ']';
    }
    return out.str();
}

Words emit(CSubPath& path, std::vector<unsigned int>* indexMap = nullptr) {
    Words words;
    CSerializationState state(words, indexMap);
    path.serialize(state);
    return words;
}

std::string simplified(const Points& points, float tolerance) {
    CSubPath path = makePath(points);
    path.simplify(tolerance);
    return text(path, false);
}

} // namespace

TEST(SubPathModel, LookupsUseTheStartCopiesAndTheLastEnd) {
    CSubPath path = makePath({A, B, C}, 7);
    const EOpcodeType types[] = {eNone, eSubPathStart, eSubPathPoint, eSubPathEnd, eNone};
    for (unsigned int i = 6; i <= 10; ++i) {
        EXPECT_EQ(path.getOpcodeType(i), types[i - 6]) << i;
    }
    EXPECT_EQ(text(path), "0,0#7 1,0#8 1,1#9 [7,9]");

    // Until the next serialization only the end copies and the range are compacted.
    CSubPath erased = makePath({A, B, C, D}, 7);
    erased.erase(erased.cbegin() + 1);
    EXPECT_EQ(erased.getEndIndex(), 9u);
    EXPECT_EQ(erased.getMinOpcodeIndex(), 7u);
    EXPECT_EQ(erased.getMaxOpcodeIndex(), 9u);
    EXPECT_EQ(erased.getOpcodeType(9), eSubPathPoint);
    EXPECT_EQ(erased.getOpcodeType(10), eNone);

    // An unnumbered start makes the end copies count on from 0.
    CSubPath prepended = makePath({A, B, C});
    prepended.prependLine(E);
    prepended.erase(prepended.cbegin() + 2, prepended.cend());
    EXPECT_EQ(text(prepended), "2,2#- 0,0#0 1,0#1 [1,1]");

    // A sub-path without lines has no point to offer and matches nothing.
    CSubPath empty, other = makePath({A, B});
    EXPECT_EQ(empty.getPointsCount(), 1u);
    EXPECT_EQ(empty.getFirstPosition(), point(0, 0));
    EXPECT_FALSE(empty.isEqual(other) || other.isEqual(empty) ||
                 other.hasEqualStartAndEndPoints(empty, 10.0f) ||
                 other.hasEqualReversedStartAndEndPoints(empty, 10.0f));
    EXPECT_EQ(other.mayAutoJoin(empty, 10.0f), 0);
}

TEST(SubPathPoints, PositionAndPenEditsWriteBothCopies) {
    CSubPath path = makePath({A, B, C}, 7, {1, 2, 3});
    Eigen::RowVector3f x = E, y = D;
    EXPECT_TRUE(path.setPosition(8, x));
    EXPECT_TRUE(path.setPosition(9, y));
    EXPECT_FALSE(path.setPosition(42, y));
    EXPECT_TRUE(path.setPenNumber(8, 9));
    EXPECT_TRUE(path.setPenNumber(7, 4));
    EXPECT_TRUE(path.setPenNumber(9, 5));
    EXPECT_FALSE(path.setPenNumber(42, 6));
    EXPECT_EQ(text(path), "0,0#7/4 2,2#8/9 0,1#9/5 [7,9]");

    // P0 and Pn count once, an inner point twice (both copies); unknown indices count nothing.
    CSubPath pens = makePath({A, B, C}, 0, {1, 1, 1});
    EXPECT_TRUE(pens.changePen({0, 2}, 7));
    EXPECT_TRUE(pens.changePen({1, 99}, 8));
    EXPECT_FALSE(pens.changePen({0, 99}, 9));
    EXPECT_TRUE(pens.changePen({}, 3));
    EXPECT_EQ(text(pens), "0,0#0/9 1,0#1/8 1,1#2/7 [0,2]");
}

TEST(SubPathPoints, TransformsMapEveryCopyAndKeepIndices) {
    Matrix m; // moves by (1, 2) and puts every point at z = 5
    m << 1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 0, 5;
    CSubPath path = makePath({A, B, C}, 7, {1, 2, 3});
    EXPECT_TRUE(path.transform(m));
    EXPECT_EQ(text(path), "1,2,5#7/1 2,2,5#8/2 2,3,5#9/3 [7,9]");

    // P0 and Pn of a closed path are two points, each mapped only by its own index; points
    // found before an unknown index stay mapped.
    CSubPath ring = makePath({A, B, C, D, A});
    EXPECT_TRUE(ring.transformPoints({0}, m));
    EXPECT_EQ(text(ring, false), "1,2,5 1,0 1,1 0,1 0,0");
    EXPECT_FALSE(ring.transformPoints({2, 4, 99}, m));
    EXPECT_TRUE(ring.transformPoint(1, m));
    EXPECT_FALSE(ring.transformPoint(99, m));
    EXPECT_EQ(text(ring, false), "1,2,5 2,2,5 2,3,5 0,1 1,2,5");
}

TEST(SubPathEmission, SerializeRenumbersBothCopiesAndFillsTheMap) {
    CSubPath path = makePath({A, point(1, 0, 2), C}, 7, {2, 2, 3});
    Indices map(10, none);
    EXPECT_EQ(emit(path, &map),
              StreamBuilder().pen(2).moveTo(0, 0).lineTo(1, 0, 2).pen(3).lineTo(1, 1).words());
    EXPECT_EQ(map, (Indices{none, none, none, none, none, none, none, 0, 1, 2}));
    EXPECT_EQ(text(path), "0,0#0/2 1,0,2#1/2 1,1#2/3 [0,2]");

    // A new point has no index until the next serialization.
    path.appendLine(D);
    EXPECT_EQ(text(path), "0,0#0/2 1,0,2#1/2 1,1#2/3 0,1#-/3 [0,2]");
    std::vector<EOpcodeType> types(4, eNone);
    EXPECT_FALSE(path.getOpcodeTypes(types));
    emit(path);
    EXPECT_EQ(text(path), "0,0#0/2 1,0,2#1/2 1,1#2/3 0,1#3/3 [0,3]");
    EXPECT_TRUE(path.getOpcodeTypes(types));
}

TEST(SubPathEditing, ClosedNeedsThreeLinesAndCloseAddsTheWayBack) {
    EXPECT_TRUE(makePath({A, B, C, D, A}).isClosed());
    EXPECT_FALSE(makePath({A, B, C, D, point(0, 1e-6f)}).isClosed());
    EXPECT_FALSE(makePath({A, B, A}).isClosed());
    CSubPath square = makePath({A, B, C, D}, 0, {1, 1, 1, 4}), there = makePath({A, B, A});
    EXPECT_TRUE(square.close());
    EXPECT_TRUE(square.close());
    EXPECT_EQ(text(square), "0,0#0/1 1,0#1/1 1,1#2/1 0,1#3/4 0,0#-/4 [0,3]");
    EXPECT_TRUE(there.close());
    EXPECT_EQ(text(there), "0,0#0 1,0#1 0,0#2 0,0#- [0,2]");
    EXPECT_FALSE(makePath({A, B}).close());
}

TEST(SubPathEditing, OpenAndSplitHandBackTheFrontPart) {
    CSubPath ring = makePath({A, B, C, D, A});
    EXPECT_EQ(std::unique_ptr<CSubPath>(ring.open(3)), nullptr); // the last inner point
    EXPECT_EQ(std::unique_ptr<CSubPath>(ring.open(4)), nullptr);
    std::unique_ptr<CSubPath> front(ring.open(1));
    ASSERT_NE(front, nullptr);
    EXPECT_EQ(text(*front), "0,0#0 1,0#1 [0,1]");
    EXPECT_EQ(text(ring), "1,1#2 0,1#3 0,0#4 [2,4]");

    CSubPath path = makePath({A, B, C, D, E}, 10);
    EXPECT_EQ(std::unique_ptr<CSubPath>(path.split(10)), nullptr);
    EXPECT_EQ(std::unique_ptr<CSubPath>(path.split(14)), nullptr);
    std::unique_ptr<CSubPath> head(path.split(12));
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(text(*head), "0,0#10 1,0#11 1,1#12 [10,12]");
    EXPECT_EQ(text(path), "1,1#12 0,1#13 2,2#14 [12,14]");
}

TEST(SubPathEditing, JoinMeetsAtTheMidpointAndConnectBridgesGaps) {
    CSubPath left = makePath({point(0, 0), point(2, 0)}, 0, {1, 2});
    CSubPath right = makePath({point(4, 0, 4), point(6, 0)}, 2, {3, 4});
    left.joinSubpath(right);
    EXPECT_EQ(text(left), "0,0#0/1 3,0,2#-/2|#-/3 6,0#3/4 [0,3]");

    CSubPath ab = makePath({A, B}, 0, {1, 2}), gap = makePath({A, B}, 0, {1, 2});
    CSubPath bc = makePath({B, C}, 5, {3, 4}), cd = makePath({C, D}, 5, {3, 4});
    ab.connectSubpath(bc);
    EXPECT_EQ(text(ab), "0,0#0/1 1,0#1/2|#5/3 1,1#6/4 [0,6]");
    gap.connectSubpath(cd);
    EXPECT_EQ(text(gap), "0,0#0/1 1,0#1/2 1,1#5/3 0,1#6/4 [0,6]");
}

TEST(SubPathEditing, ReverseAndChangeStartKeepEveryIndexWithItsPoint) {
    CSubPath path = makePath({A, B, C}, 0, {1, 2, 3});
    path.reverse();
    EXPECT_EQ(text(path), "1,1#2/2 1,0#1/3|#1/1 0,0#0/2 [0,2]");
    // Pens stay in their fields: C with b, B with a, A with b.
    EXPECT_EQ(emit(path),
              StreamBuilder().pen(2).moveTo(1, 1).pen(1).lineTo(1, 0).pen(2).lineTo(0, 0).words());

    CSubPath ring = makePath({A, B, C, D, A});
    EXPECT_FALSE(ring.changeStart(4));
    EXPECT_TRUE(ring.changeStart(0));
    EXPECT_EQ(text(ring), "0,0#0 1,0#1 1,1#2 0,1#3 0,0#4 [0,4]");
    EXPECT_TRUE(ring.changeStart(2));
    EXPECT_EQ(text(ring), "1,1#2 0,1#3 0,0#4|#0 1,0#1 1,1#2 [0,4]");
}

TEST(SubPathEditing, InsertLinePointPutsTheNewPointAfterTheNamedOne) {
    CSubPath path = makePath({A, B}, 0, {1, 2});
    Eigen::RowVector3f x = E, y = D;
    EXPECT_TRUE(path.insertLinePoint(0, x));
    EXPECT_EQ(text(path), "0,0#0/2 2,2#-/2 1,0#1/2 [0,1]");
    EXPECT_TRUE(path.insertLinePoint(1, y));
    EXPECT_FALSE(path.insertLinePoint(7, y));
    EXPECT_EQ(text(path), "0,0#0/2 2,2#-/2 1,0#1/2 0,1#-/2 [0,1]");
}

TEST(SubPathEditing, DeletingPointsJoinsTheNeighbours) {
    // The line before an inner point takes over its end; P0 and Pn just lose their line.
    const std::pair<unsigned int, const char*> single[] = {
        {8, "0,0#7 1,1#8 [7,8]"}, {7, "1,0#8 1,1#9 [8,9]"}, {9, "0,0#7 1,0#8 [7,8]"}};
    for (const auto& [index, left] : single) {
        CSubPath path = makePath({A, B, C}, 7);
        EXPECT_TRUE(path.deletePoint(index));
        EXPECT_EQ(text(path), left);
    }
    // An emptied path keeps its range until it is written again.
    CSubPath line = makePath({A, B}, 7);
    EXPECT_FALSE(line.deletePoint(42));
    EXPECT_TRUE(line.deletePoint(8));
    EXPECT_TRUE(line.isEmpty());
    EXPECT_EQ(text(line), "[7,8]");
    EXPECT_TRUE(emit(line).empty());
    EXPECT_EQ(text(line), "[-,0]");

    // Every index of a set means the point it named before anything was removed.
    const std::tuple<std::set<unsigned int>, bool, const char*> sets[] = {
        {{2, 3}, true, "0,0 1,0"}, {{1, 3}, true, "0,0 1,1"}, {{1, 99}, false, "0,0 1,1 0,1"}};
    for (const auto& [indices, found, left] : sets) {
        CSubPath path = makePath({A, B, C, D});
        EXPECT_EQ(path.deletePoints(indices), found);
        EXPECT_EQ(text(path, false), left);
    }
}

TEST(SubPathComparison, EqualityIsExactAndToleranceTestsAreStrict) {
    CSubPath path = makePath({A, B, C}, 0, {1, 2, 3});
    EXPECT_TRUE(path.isEqual(makePath({A, B, C}, 20, {1, 2, 3})));
    EXPECT_FALSE(path.isEqual(makePath({A, B, C}, 0, {1, 2, 4})));
    EXPECT_FALSE(path.isEqual(makePath({A, B, C}, 0, {5, 2, 3})));
    EXPECT_FALSE(path.isEqual(makePath({A, D, C}, 0, {1, 2, 3})));
    EXPECT_FALSE(path.isEqual(makePath({C, B, A}, 0, {1, 2, 3})));

    CSubPath ae = makePath({A, E});
    EXPECT_FALSE(ae.hasEqualStartAndEndPoints(makePath({A, E}), 0.0f));
    CSubPath shifted = makePath({point(0.5f, 0), E}), backwards = makePath({E, point(0.5f, 0)});
    EXPECT_FALSE(ae.hasEqualStartAndEndPoints(shifted, 0.5f));
    EXPECT_TRUE(ae.hasEqualStartAndEndPoints(shifted, 0.51f));
    EXPECT_FALSE(ae.hasEqualReversedStartAndEndPoints(backwards, 0.5f));
    EXPECT_TRUE(ae.hasEqualReversedStartAndEndPoints(backwards, 0.51f));

    // The four pairings are tried in order: end-start, end-end, start-end, start-start.
    CSubPath ab = makePath({A, B}), bc = makePath({B, C}), cb = makePath({C, B});
    CSubPath ba = makePath({B, A}), near = makePath({point(1.5f, 0), E});
    EXPECT_EQ(ab.mayAutoJoin(bc, 0.01f), 1);
    EXPECT_EQ(ab.mayAutoJoin(cb, 0.01f), 2);
    EXPECT_EQ(bc.mayAutoJoin(ab, 0.01f), 3);
    EXPECT_EQ(bc.mayAutoJoin(ba, 0.01f), 4);
    EXPECT_EQ(ab.mayAutoJoin(ba, 0.01f), 1);
    EXPECT_EQ(ab.mayAutoJoin(backwards, 0.6f), 2);
    EXPECT_EQ(ab.mayAutoJoin(bc, 0.0f), 0);
    EXPECT_EQ(ab.mayAutoJoin(near, 0.5f), 0);
    EXPECT_EQ(ab.mayAutoJoin(near, 0.51f), 1);
}

TEST(SubPathSimplify, RemovesPointsNearTheChordAndKeepsTheChain) {
    const Points zigzag{point(0, 0), point(1, 1), point(2, 0), point(3, 1), point(4, 0)};
    EXPECT_EQ(simplified({A, B, point(2, 0)}, 0.1f), "0,0 1,0 2,0");
    EXPECT_EQ(simplified({A, B}, 0.1f), "0,0 1,0");
    EXPECT_EQ(simplified(zigzag, 0.1f), "0,0 1,1 2,0 3,1 4,0");
    EXPECT_EQ(simplified({point(0, 0), point(1, 0), point(2, 0), point(3, 0), point(3, 1),
                          point(3, 2), point(3, 3)},
                         0.1f),
              "0,0 2,0 3,0 3,2 3,3");
    EXPECT_EQ(simplified({A, A, B, point(2, 0)}, 0.1f), "0,0 1,0 2,0");
    // A point exactly at the tolerance stays on the chord; z alone never makes a deviation.
    const Points bump{point(0, 0), point(1, 0.5f), point(2, 0), point(3, 0), point(4, 0)};
    EXPECT_EQ(simplified(bump, 0.5f), "0,0 3,0 4,0");
    EXPECT_EQ(simplified(bump, 0.49f), "0,0 1,0.5 3,0 4,0");
    EXPECT_EQ(simplified({A, point(1, 0, 5), point(2, 0), point(3, 0)}, 0.1f), "0,0 2,0 3,0");

    CSubPath path =
        makePath({point(0, 0), point(1, 0), point(2, 0), point(3, 0), point(4, 0), point(5, 0)}, 0,
                 {0, 1, 2, 3, 4, 5});
    path.simplify(0.1f);
    EXPECT_EQ(text(path), "0,0#0 4,0#1/1|#4/4 5,0#2/5 [0,2]");
}
