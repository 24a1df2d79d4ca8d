#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <memory>
#include <set>
#include <vector>

using namespace LibStrokeset;
using test::point;
using test::StreamBuilder;
using test::Words;

namespace {

using Points = std::vector<Eigen::RowVector3f>;
using Indices = std::vector<unsigned int>;
using Pens = std::vector<unsigned short>;
using Matrix = Eigen::Matrix<float, 3, 4>;
constexpr unsigned int none = CElement::noIndex;

const Eigen::RowVector3f A = point(0, 0), B = point(1, 0), C = point(1, 1), D = point(0, 1);
const Eigen::RowVector3f E = point(2, 2);

// A polyline through the points, chained and numbered from `first` on as loading builds one.
// Pens default to 0, which the writer never announces.
CSubPath makePath(const Points& points, unsigned int first = 0, Pens pens = {}) {
    pens.resize(points.size(), 0);
    CSubPath path;
    for (std::size_t k = 0; k + 1 < points.size(); ++k) {
        const unsigned int index = first + static_cast<unsigned int>(k);
        CLine line(points[k], points[k + 1], pens[k], pens[k + 1], index, index + 1);
        path.addLine(line);
    }
    return path;
}

// P0 .. Pn. Every caller relies on the chain, so a broken one fails the test here.
Points pointsOf(const CSubPath& path) {
    Points result;
    const std::vector<CLine>& lines = path.getLines();
    for (std::size_t k = 0; k < lines.size(); ++k) {
        if (k > 0 && lines[k - 1].getEndPosition() != lines[k].getPosition()) {
            ADD_FAILURE() << "end of line " << k - 1 << " differs from start of line " << k;
        }
        result.push_back(lines[k].getPosition());
    }
    if (!lines.empty()) {
        result.push_back(lines.back().getEndPosition());
    }
    return result;
}

// Start and end opcode index of every line, in line order.
Indices indicesOf(const CSubPath& path) {
    Indices result;
    for (const CLine& line : path.getLines()) {
        result.push_back(line.getOpcodeIndex());
        result.push_back(line.getEndOpcodeIndex());
    }
    return result;
}

// Start and end pen of every line, in line order.
Pens pensOf(const CSubPath& path) {
    Pens result;
    for (const CLine& line : path.getLines()) {
        result.push_back(line.getPenNumber());
        result.push_back(line.getEndPenNumber());
    }
    return result;
}

Indices rangeOf(const CSubPath& path) {
    return {path.getMinOpcodeIndex(), path.getMaxOpcodeIndex()};
}

Words emit(CSubPath& path, std::vector<unsigned int>* indexMap = nullptr) {
    Words words;
    CSerializationState state(words, indexMap);
    path.serialize(state);
    return words;
}

Points simplified(const Points& points, float tolerance) {
    CSubPath path = makePath(points);
    path.simplify(tolerance);
    return pointsOf(path);
}

} // namespace

TEST(SubPathModel, LookupsUseTheStartCopiesAndTheLastEnd) {
    CSubPath path = makePath({A, B, C}, 7);
    EXPECT_EQ(path.getOpcodeType(6), eNone);
    EXPECT_EQ(path.getOpcodeType(7), eSubPathStart);
    EXPECT_EQ(path.getOpcodeType(8), eSubPathPoint);
    EXPECT_EQ(path.getOpcodeType(9), eSubPathEnd);
    EXPECT_EQ(path.getOpcodeType(10), eNone);
    EXPECT_EQ(path.getPointsCount(), 3u);
    EXPECT_EQ(rangeOf(path), (Indices{7, 9}));

    // Until the next serialization only the end copies and the range are compacted.
    CSubPath erased = makePath({A, B, C, D}, 7);
    EXPECT_EQ(erased.erase(erased.cbegin() + 1)->getPosition(), C);
    EXPECT_EQ(indicesOf(erased), (Indices{7, 8, 9, 9}));
    EXPECT_EQ(rangeOf(erased), (Indices{7, 9}));
    EXPECT_EQ(erased.getOpcodeType(9), eSubPathPoint);
    Eigen::RowVector3f p;
    EXPECT_TRUE(erased.getPosition(9, p));
    EXPECT_EQ(p, C);
    EXPECT_EQ(erased.getOpcodeType(10), eNone);

    // An unnumbered start makes the end copies count on from 0.
    CSubPath prepended = makePath({A, B, C});
    prepended.prependLine(E);
    EXPECT_EQ(rangeOf(prepended), (Indices{0, 2}));
    prepended.erase(prepended.cbegin() + 2, prepended.cend());
    EXPECT_EQ(pointsOf(prepended), (Points{E, A, B}));
    EXPECT_EQ(indicesOf(prepended), (Indices{none, 0, 0, 1}));
    EXPECT_EQ(rangeOf(prepended), (Indices{1, 1}));
}

TEST(SubPathModel, EmptySubPathAnswersWithoutAPoint) {
    CSubPath path;
    EXPECT_EQ(path.getStartIndex(), none);
    EXPECT_EQ(path.getEndIndex(), none);
    EXPECT_EQ(path.getPointsCount(), 1u);
    EXPECT_EQ(path.getFirstPosition(), point(0, 0));
    CSubPath other = makePath({A, B});
    EXPECT_FALSE(path.isEqual(other));
    EXPECT_FALSE(other.isEqual(path));
    EXPECT_FALSE(other.hasEqualStartAndEndPoints(path, 10.0f));
    EXPECT_FALSE(other.hasEqualReversedStartAndEndPoints(path, 10.0f));
    EXPECT_EQ(other.mayAutoJoin(path, 10.0f), 0);
}

TEST(SubPathPoints, PositionAndPenEditsWriteBothCopies) {
    CSubPath path = makePath({A, B, C}, 7, {1, 2, 3});
    Eigen::RowVector3f x = E, y = D;
    EXPECT_TRUE(path.setPosition(8, x));
    EXPECT_TRUE(path.setPosition(9, y));
    EXPECT_FALSE(path.setPosition(42, y));
    EXPECT_EQ(pointsOf(path), (Points{A, E, D}));
    EXPECT_TRUE(path.setPenNumber(8, 9));
    EXPECT_TRUE(path.setPenNumber(7, 4));
    EXPECT_TRUE(path.setPenNumber(9, 5));
    EXPECT_FALSE(path.setPenNumber(42, 6));
    EXPECT_EQ(pensOf(path), (Pens{4, 9, 9, 5}));
    EXPECT_EQ(emit(path),
              StreamBuilder().pen(4).moveTo(0, 0).pen(9).lineTo(2, 2).pen(5).lineTo(0, 1).words());

    // An inner point is found in both copies and counts twice; unknown indices count nothing.
    CSubPath pens = makePath({A, B, C}, 0, {1, 1, 1});
    EXPECT_TRUE(pens.changePen({0, 2}, 7));
    EXPECT_EQ(pensOf(pens), (Pens{7, 1, 1, 7}));
    EXPECT_TRUE(pens.changePen({1, 99}, 8));
    EXPECT_EQ(pensOf(pens), (Pens{7, 8, 8, 7}));
    EXPECT_FALSE(pens.changePen({0, 99}, 9));
    EXPECT_EQ(pensOf(pens), (Pens{9, 8, 8, 7}));
    EXPECT_TRUE(pens.changePen({}, 3));
}

TEST(SubPathPoints, TransformsMapEveryCopyAndKeepIndices) {
    Matrix m; // moves by (1, 2) and puts every point at z = 5
    m << 1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 0, 5;
    CSubPath path = makePath({A, B, C}, 7, {1, 2, 3});
    EXPECT_TRUE(path.transform(m));
    EXPECT_EQ(pointsOf(path), (Points{point(1, 2, 5), point(2, 2, 5), point(2, 3, 5)}));
    EXPECT_EQ(indicesOf(path), (Indices{7, 8, 8, 9}));
    EXPECT_EQ(pensOf(path), (Pens{1, 2, 2, 3}));

    // P0 and Pn of a closed path are two points, each mapped only by its own index; points
    // found before an unknown index stay mapped.
    CSubPath ring = makePath({A, B, C, D, A});
    EXPECT_TRUE(ring.transformPoints({0}, m));
    EXPECT_EQ(pointsOf(ring), (Points{point(1, 2, 5), B, C, D, A}));
    EXPECT_FALSE(ring.transformPoints({2, 4, 99}, m));
    EXPECT_EQ(pointsOf(ring), (Points{point(1, 2, 5), B, point(2, 3, 5), D, point(1, 2, 5)}));
}

TEST(SubPathEmission, SerializeRenumbersBothCopiesAndFillsTheMap) {
    CSubPath path = makePath({A, point(1, 0, 2), C}, 7, {2, 2, 3});
    std::vector<unsigned int> map(10, none);
    EXPECT_EQ(emit(path, &map),
              StreamBuilder().pen(2).moveTo(0, 0).lineTo(1, 0, 2).pen(3).lineTo(1, 1).words());
    EXPECT_EQ(map, (Indices{none, none, none, none, none, none, none, 0, 1, 2}));
    EXPECT_EQ(indicesOf(path), (Indices{0, 1, 1, 2}));
    EXPECT_EQ(rangeOf(path), (Indices{0, 2}));

    // A new point has no index until the next serialization.
    path.appendLine(D);
    EXPECT_EQ(path.getEndIndex(), none);
    EXPECT_EQ(pensOf(path), (Pens{2, 2, 2, 3, 3, 3}));
    std::vector<EOpcodeType> types(4, eNone);
    EXPECT_FALSE(path.getOpcodeTypes(types));
    emit(path);
    EXPECT_EQ(indicesOf(path), (Indices{0, 1, 1, 2, 2, 3}));
    EXPECT_EQ(rangeOf(path), (Indices{0, 3}));
    EXPECT_TRUE(path.getOpcodeTypes(types));
}

TEST(SubPathEditing, ClosedNeedsThreeLinesAndCloseAddsTheWayBack) {
    EXPECT_TRUE(makePath({A, B, C, D, A}).isClosed());
    EXPECT_FALSE(makePath({A, B, C, D, point(0, 1e-6f)}).isClosed());
    EXPECT_FALSE(makePath({A, B, A}).isClosed());

    CSubPath square = makePath({A, B, C, D}, 0, {1, 1, 1, 4});
    EXPECT_TRUE(square.close());
    EXPECT_EQ(pointsOf(square), (Points{A, B, C, D, A}));
    EXPECT_EQ(indicesOf(square), (Indices{0, 1, 1, 2, 2, 3, 3, none}));
    EXPECT_EQ(pensOf(square), (Pens{1, 1, 1, 1, 1, 4, 4, 4}));
    EXPECT_TRUE(square.close());
    EXPECT_EQ(square.getLines().size(), 4u);

    CSubPath there = makePath({A, B, A});
    EXPECT_TRUE(there.close());
    EXPECT_EQ(pointsOf(there), (Points{A, B, A, A}));
    EXPECT_FALSE(makePath({A, B}).close());
}

TEST(SubPathEditing, OpenAndSplitHandBackTheFrontPart) {
    CSubPath ring = makePath({A, B, C, D, A});
    EXPECT_EQ(std::unique_ptr<CSubPath>(ring.open(3)), nullptr); // the last inner point
    EXPECT_EQ(std::unique_ptr<CSubPath>(ring.open(4)), nullptr);
    std::unique_ptr<CSubPath> front(ring.open(1));
    ASSERT_NE(front, nullptr);
    EXPECT_EQ(pointsOf(*front), (Points{A, B}));
    EXPECT_EQ(rangeOf(*front), (Indices{0, 1}));
    EXPECT_EQ(pointsOf(ring), (Points{C, D, A}));
    EXPECT_EQ(indicesOf(ring), (Indices{2, 3, 3, 4}));
    EXPECT_EQ(rangeOf(ring), (Indices{2, 4}));

    CSubPath path = makePath({A, B, C, D, E}, 10);
    EXPECT_EQ(std::unique_ptr<CSubPath>(path.split(10)), nullptr);
    EXPECT_EQ(std::unique_ptr<CSubPath>(path.split(14)), nullptr);
    std::unique_ptr<CSubPath> head(path.split(12));
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(pointsOf(*head), (Points{A, B, C}));
    EXPECT_EQ(indicesOf(*head), (Indices{10, 11, 11, 12}));
    EXPECT_EQ(rangeOf(*head), (Indices{10, 12}));
    EXPECT_EQ(pointsOf(path), (Points{C, D, E}));
    EXPECT_EQ(indicesOf(path), (Indices{12, 13, 13, 14}));
    EXPECT_EQ(rangeOf(path), (Indices{12, 14}));
}

TEST(SubPathEditing, JoinMeetsAtTheMidpointAndConnectBridgesGaps) {
    CSubPath left = makePath({point(0, 0), point(2, 0)}, 0, {1, 2});
    CSubPath right = makePath({point(4, 0, 4), point(6, 0)}, 2, {3, 4});
    left.joinSubpath(right);
    EXPECT_EQ(pointsOf(left), (Points{point(0, 0), point(3, 0, 2), point(6, 0)}));
    EXPECT_EQ(indicesOf(left), (Indices{0, none, none, 3}));
    EXPECT_EQ(rangeOf(left), (Indices{0, 3}));
    EXPECT_EQ(
        emit(left),
        StreamBuilder().pen(1).moveTo(0, 0).pen(3).lineTo(3, 0, 2).pen(4).lineTo(6, 0).words());

    CSubPath ab = makePath({A, B}, 0, {1, 2});
    CSubPath bc = makePath({B, C}, 5, {3, 4});
    ab.connectSubpath(bc);
    EXPECT_EQ(pointsOf(ab), (Points{A, B, C}));
    EXPECT_EQ(indicesOf(ab), (Indices{0, 1, 5, 6}));

    CSubPath gap = makePath({A, B}, 0, {1, 2});
    CSubPath cd = makePath({C, D}, 5, {3, 4});
    gap.connectSubpath(cd);
    EXPECT_EQ(pointsOf(gap), (Points{A, B, C, D}));
    EXPECT_EQ(indicesOf(gap), (Indices{0, 1, 1, 5, 5, 6}));
    EXPECT_EQ(pensOf(gap), (Pens{1, 2, 2, 3, 3, 4}));
}

TEST(SubPathEditing, ReverseAndChangeStartKeepEveryIndexWithItsPoint) {
    CSubPath path = makePath({A, B, C}, 0, {1, 2, 3});
    path.reverse();
    EXPECT_EQ(pointsOf(path), (Points{C, B, A}));
    EXPECT_EQ(indicesOf(path), (Indices{2, 1, 1, 0}));
    EXPECT_EQ(rangeOf(path), (Indices{0, 2}));
    EXPECT_EQ(pensOf(path), (Pens{2, 3, 1, 2}));
    // Pens stay in their fields: C with b, B with a, A with b.
    EXPECT_EQ(emit(path),
              StreamBuilder().pen(2).moveTo(1, 1).pen(1).lineTo(1, 0).pen(2).lineTo(0, 0).words());

    CSubPath ring = makePath({A, B, C, D, A});
    EXPECT_FALSE(ring.changeStart(4));
    EXPECT_TRUE(ring.changeStart(0));
    EXPECT_EQ(pointsOf(ring), (Points{A, B, C, D, A}));
    EXPECT_TRUE(ring.changeStart(2));
    EXPECT_EQ(pointsOf(ring), (Points{C, D, A, B, C}));
    EXPECT_EQ(indicesOf(ring), (Indices{2, 3, 3, 4, 0, 1, 1, 2}));
    EXPECT_EQ(rangeOf(ring), (Indices{0, 4}));
}

TEST(SubPathEditing, InsertLinePointPutsTheNewPointAfterTheNamedOne) {
    CSubPath path = makePath({A, B}, 0, {1, 2});
    Eigen::RowVector3f x = E, y = D;
    EXPECT_TRUE(path.insertLinePoint(0, x));
    EXPECT_EQ(pointsOf(path), (Points{A, E, B}));
    EXPECT_EQ(indicesOf(path), (Indices{0, none, none, 1}));
    EXPECT_EQ(pensOf(path), (Pens{2, 2, 2, 2}));
    EXPECT_TRUE(path.insertLinePoint(1, y));
    EXPECT_FALSE(path.insertLinePoint(7, y));
    EXPECT_EQ(pointsOf(path), (Points{A, E, B, D}));
    EXPECT_EQ(rangeOf(path), (Indices{0, 1}));
}

TEST(SubPathEditing, DeletePointJoinsTheNeighbours) {
    CSubPath inner = makePath({A, B, C}, 7);
    EXPECT_TRUE(inner.deletePoint(8));
    EXPECT_EQ(pointsOf(inner), (Points{A, C}));
    EXPECT_EQ(indicesOf(inner), (Indices{7, 8}));
    EXPECT_EQ(rangeOf(inner), (Indices{7, 8}));

    CSubPath first = makePath({A, B, C}, 7);
    EXPECT_TRUE(first.deletePoint(7));
    EXPECT_EQ(pointsOf(first), (Points{B, C}));
    EXPECT_EQ(indicesOf(first), (Indices{8, 9}));

    CSubPath last = makePath({A, B, C}, 7);
    EXPECT_TRUE(last.deletePoint(9));
    EXPECT_FALSE(last.deletePoint(42));
    EXPECT_EQ(pointsOf(last), (Points{A, B}));
    EXPECT_EQ(rangeOf(last), (Indices{7, 8}));
    // An emptied path keeps its range until it is written again.
    EXPECT_TRUE(last.deletePoint(8));
    EXPECT_TRUE(last.isEmpty());
    EXPECT_EQ(rangeOf(last), (Indices{7, 8}));
    EXPECT_TRUE(emit(last).empty());
    EXPECT_EQ(rangeOf(last), (Indices{none, 0}));
}

TEST(SubPathEditing, DeletePointsResolvesEveryIndexBeforeRemovingAny) {
    CSubPath tail = makePath({A, B, C, D});
    EXPECT_TRUE(tail.deletePoints({2, 3}));
    EXPECT_EQ(pointsOf(tail), (Points{A, B}));
    CSubPath skip = makePath({A, B, C, D});
    EXPECT_TRUE(skip.deletePoints({1, 3}));
    EXPECT_EQ(pointsOf(skip), (Points{A, C}));
    CSubPath partly = makePath({A, B, C, D});
    EXPECT_FALSE(partly.deletePoints({1, 99}));
    EXPECT_EQ(pointsOf(partly), (Points{A, C, D}));
}

TEST(SubPathComparison, IsEqualComparesGeometryAndPensButNotIndices) {
    CSubPath path = makePath({A, B, C}, 0, {1, 2, 3});
    EXPECT_TRUE(path.isEqual(makePath({A, B, C}, 20, {1, 2, 3})));
    EXPECT_FALSE(path.isEqual(makePath({A, B, C}, 0, {1, 2, 4})));
    EXPECT_FALSE(path.isEqual(makePath({A, B, C}, 0, {5, 2, 3})));
    EXPECT_FALSE(path.isEqual(makePath({A, D, C}, 0, {1, 2, 3})));
    EXPECT_FALSE(path.isEqual(makePath({C, B, A}, 0, {1, 2, 3})));
}

TEST(SubPathComparison, EndPointTestsAreStrict) {
    CSubPath path = makePath({A, point(2, 0)});
    EXPECT_FALSE(path.hasEqualStartAndEndPoints(makePath({A, point(2, 0)}), 0.0f));
    CSubPath shifted = makePath({point(0.5f, 0), point(2, 0)});
    EXPECT_FALSE(path.hasEqualStartAndEndPoints(shifted, 0.5f));
    EXPECT_TRUE(path.hasEqualStartAndEndPoints(shifted, 0.51f));
    CSubPath backwards = makePath({point(2, 0), point(0.5f, 0)});
    EXPECT_FALSE(path.hasEqualReversedStartAndEndPoints(backwards, 0.5f));
    EXPECT_TRUE(path.hasEqualReversedStartAndEndPoints(backwards, 0.51f));
}

TEST(SubPathComparison, MayAutoJoinTriesTheFourPairingsInOrder) {
    const Eigen::RowVector3f a = point(0, 0), b = point(1, 0), c = point(2, 0);
    CSubPath ab = makePath({a, b}), bc = makePath({b, c}), cb = makePath({c, b});
    CSubPath ba = makePath({b, a}), near = makePath({point(1.5f, 0), point(5, 5)});
    EXPECT_EQ(ab.mayAutoJoin(bc, 0.01f), 1);
    EXPECT_EQ(ab.mayAutoJoin(cb, 0.01f), 2);
    EXPECT_EQ(bc.mayAutoJoin(ab, 0.01f), 3);
    EXPECT_EQ(bc.mayAutoJoin(ba, 0.01f), 4);
    EXPECT_EQ(ab.mayAutoJoin(ba, 0.01f), 1); // 3 holds as well; 1 is tested first
    EXPECT_EQ(ab.mayAutoJoin(bc, 0.0f), 0);
    EXPECT_EQ(ab.mayAutoJoin(near, 0.5f), 0);
    EXPECT_EQ(ab.mayAutoJoin(near, 0.51f), 1);
}

TEST(SubPathSimplify, WorkedExamples) {
    const Points three{point(0, 0), point(1, 0), point(2, 0)};
    const Points zigzag{point(0, 0), point(1, 1), point(2, 0), point(3, 1), point(4, 0)};
    EXPECT_EQ(simplified(three, 0.1f), three);
    EXPECT_EQ(simplified({A, B}, 0.1f), (Points{A, B}));
    EXPECT_EQ(simplified(zigzag, 0.1f), zigzag);
    EXPECT_EQ(simplified({point(0, 0), point(1, 0), point(2, 0), point(3, 0), point(3, 1),
                          point(3, 2), point(3, 3)},
                         0.1f),
              (Points{point(0, 0), point(2, 0), point(3, 0), point(3, 2), point(3, 3)}));
    EXPECT_EQ(simplified({point(0, 0), point(0, 0), point(1, 0), point(2, 0)}, 0.1f),
              (Points{point(0, 0), point(1, 0), point(2, 0)}));
    // A point exactly at the tolerance stays on the chord; z alone never makes a deviation.
    const Points bump{point(0, 0), point(1, 0.5f), point(2, 0), point(3, 0), point(4, 0)};
    EXPECT_EQ(simplified(bump, 0.5f), (Points{point(0, 0), point(3, 0), point(4, 0)}));
    EXPECT_EQ(simplified(bump, 0.49f),
              (Points{point(0, 0), point(1, 0.5f), point(3, 0), point(4, 0)}));
    EXPECT_EQ(simplified({point(0, 0), point(1, 0, 5), point(2, 0), point(3, 0)}, 0.1f),
              (Points{point(0, 0), point(2, 0), point(3, 0)}));
}

TEST(SubPathSimplify, RemovedRunsKeepTheChainAndRenumberTheEnds) {
    CSubPath path =
        makePath({point(0, 0), point(1, 0), point(2, 0), point(3, 0), point(4, 0), point(5, 0)}, 0,
                 {0, 1, 2, 3, 4, 5});
    path.simplify(0.1f);
    EXPECT_EQ(pointsOf(path), (Points{point(0, 0), point(4, 0), point(5, 0)}));
    EXPECT_EQ(indicesOf(path), (Indices{0, 1, 4, 2}));
    EXPECT_EQ(rangeOf(path), (Indices{0, 2}));
    EXPECT_EQ(pensOf(path), (Pens{0, 1, 4, 5}));
}
