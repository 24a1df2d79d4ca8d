#include <gtest/gtest.h>

#include "StreamBuilder.h"

#include <functional>
#include <tuple>

// Editing commands driven as a host drives them: load words, call commands by opcode index,
// then serialize and compare words, index maps and the collection list.

namespace {

using LibStrokeset::CStrokeset;
using namespace test;
using Point = Eigen::RowVector3f;
using Matrix = Eigen::Matrix<float, 3, 4>;

constexpr unsigned int kNone = 4294967295u;

// dots 0, 1 | sub-path 2, 3, 4 | unsupported record 5 | dot 6
Words mixedDrawing() {
    return cat(
        {dots({{0, 0}, {1, 0}}), path({{0, 10}, {10, 10}, {10, 20}}), kRecord, dots({{5, 5}})});
}

// A refused command must leave the drawing as loaded: same words, same collections.
void expectUnchanged(CStrokeset& document, const Words& original) {
    CStrokeset reference(original);
    EXPECT_EQ(pointsPerCollection(document), pointsPerCollection(reference));
    EXPECT_EQ(serialized(document), serialized(reference));
}

Matrix translation(float x, float y) {
    Matrix m;
    m << 1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, 0;
    return m;
}

} // namespace

TEST(Editing, RefusedOrIdleCommandsLeaveTheDrawingAsItWas) {
    // dots 0, 1 | open path 2..5 | one-line path 6, 7 | closed triangle 8..11 | record 12
    const Words original =
        cat({dots({{0, 0}, {1, 0}}), path({{0, 10}, {10, 10}, {10, 20}, {0, 20}}),
             path({{20, 0}, {30, 0}}), path({{40, 0}, {50, 0}, {50, 10}, {40, 0}}), kRecord});
    Point p = point(7, 7);
    Matrix shift = translation(1, 2);
    unsigned short pen = 7;
    using Case = std::tuple<bool, const char*, std::function<bool(CStrokeset&)>>;
#define CASE(result, call) Case(result, #call, [&](CStrokeset& d) { return d.call; })
    const Case cases[] = {
        // points and selections; a grouping that fails touches no group
        CASE(false, setPosition(12, p)), CASE(false, setPenNumber(12, pen)),
        CASE(false, transformPoint(99, shift)), CASE(false, deletePoint(kNone)),
        CASE(true, transformPoints({}, shift)), CASE(true, changePen({}, 4)),
        CASE(true, deletePoints({})), CASE(false, transformPoints({0, 99}, shift)),
        CASE(false, changePen({0, 99}, 4)), CASE(false, deletePoints({0, 99})),
        CASE(false, transformPoints({12}, shift)),
        // a dot goes only after the end of a sub-path
        CASE(false, insertDot(3, p)), CASE(false, insertDot(2, p)),
        // lines: the last collection is a record; a sub-path is named by its start only
        CASE(false, appendLine(p)), CASE(false, appendLine(kNone, p)),
        CASE(false, appendLine(5, p)), CASE(false, appendLine(3, p)),
        CASE(false, appendLine(12, p)), CASE(false, prependLine(5, p)),
        CASE(false, prependLine(kNone, p)), CASE(false, insertLine(0, p, p)),
        CASE(false, insertLinePoint(0, p)), CASE(false, insertLinePoint(99, p)),
        // close: only by the start index, not one line; the triangle is closed already
        CASE(false, closeSubpath(5)), CASE(false, closeSubpath(3)), CASE(false, closeSubpath(6)),
        CASE(false, closeSubpath(0)), CASE(false, closeSubpath(kNone)), CASE(true, closeSubpath(8)),
        // open and split: inner points only
        CASE(false, openSubpath(2)), CASE(false, openSubpath(5)), CASE(false, openSubpath(0)),
        CASE(false, splitSubpath(2)), CASE(false, splitSubpath(5)),
        // join and connect: end of one sub-path, then start of another
        CASE(false, joinSubpath(2, 7)), CASE(false, joinSubpath(5, 2)),
        CASE(false, joinSubpath(5, 99)), CASE(false, joinSubpath(5, 0)),
        CASE(false, connectSubpath(2, 7)), CASE(false, connectSubpath(kNone, 6)),
        CASE(true, connectSubpath(7, 6)), // onto itself: close refuses one line
        CASE(false, reverseSubpathDirection(3)), CASE(false, reverseSubpathDirection(5)),
        // a new start: closed sub-paths only, and a point of the same one that starts a line
        CASE(false, setClosedSubpathStart(2, 3)), CASE(false, setClosedSubpathStart(8, 3)),
        CASE(false, setClosedSubpathStart(8, 11)), CASE(false, setClosedSubpathStart(9, 10)),
        CASE(true, setClosedSubpathStart(8, 8)),
        // collections are named by their first opcode
        CASE(false, collectionMakeFirst(1)), CASE(false, collectionMoveUp(3)),
        CASE(false, collectionMakeLast(99)), CASE(false, collectionMoveDown(9)),
        CASE(true, collectionMoveUp(0)), CASE(true, collectionMoveDown(12))};
#undef CASE
    for (const auto& [result, call, command] : cases) {
        SCOPED_TRACE(call);
        CStrokeset document(original);
        EXPECT_EQ(command(document), result);
        expectUnchanged(document, original);
    }
    CStrokeset empty;
    EXPECT_FALSE(empty.appendLine(p));
    EXPECT_TRUE(empty.getCollections().empty());
}

TEST(EditingPoints, SinglePointsAndSelectionsReachTheirCollections) {
    CStrokeset document(mixedDrawing());
    Point position;
    EXPECT_TRUE(document.getPosition(3, position));
    EXPECT_EQ(position, point(10, 10));
    unsigned short pen = 1;
    EXPECT_TRUE(document.getPenNumber(0, pen));
    EXPECT_EQ(pen, 65535); // no pen change was loaded
    Point moved = point(3, 3);
    EXPECT_TRUE(document.setPosition(3, moved)); // both copies of the inner point
    pen = 7;
    EXPECT_TRUE(document.setPenNumber(3, pen));
    Matrix shift = translation(1, 2);
    EXPECT_FALSE(document.transformPoints({0, 1, 3, 5}, shift)); // the other groups are mapped
    EXPECT_TRUE(document.transformPoints({2, 3, 4}, shift));     // a whole sub-path
    EXPECT_TRUE(document.changePen({0, 0}, 4));
    EXPECT_FALSE(document.changePen({1, 5, 6}, 8)); // the dots change nevertheless
    EXPECT_TRUE(document.transformPoint(6, shift));
    Matrix lift;
    lift << 1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 0, 5; // every point becomes 3D with z = 5
    EXPECT_FALSE(document.transform(lift));     // the record fails, the rest is still mapped
    EXPECT_EQ(serialized(document),
              cat({penChange(4), StreamBuilder().dot(2, 4, 5).pen(8).dot(3, 4, 5).moveTo(2, 14, 5),
                   penChange(7), StreamBuilder().lineTo(6, 9, 5).lineTo(12, 24, 5), kRecord,
                   penChange(8), StreamBuilder().dot(7, 9, 5)}));
}

TEST(EditingDeletion, GapsUntilSerializeAndWholeSelectionsRemoveTheirCollection) {
    CStrokeset document(mixedDrawing());
    Point p = point(5, 5);
    EXPECT_TRUE(document.deletePoint(0));
    EXPECT_FALSE(document.getPosition(0, p)); // a gap inside the dots' range
    EXPECT_FALSE(document.deletePoint(0));
    EXPECT_FALSE(document.appendLine(0, p));
    EXPECT_TRUE(document.deletePoint(5)); // records can be deleted
    EXPECT_TRUE(document.deletePoint(6)); // the only dot: its collection stays, empty
    EXPECT_EQ(pointsPerCollection(document), (Shape{1, 3, 0, 0}));
    EXPECT_EQ(document.getOpcodeCount(), 7u); // nothing is renumbered before serialize
    std::vector<unsigned int> indexMap;
    EXPECT_EQ(serialized(document, &indexMap),
              cat({dots({{1, 0}}), path({{0, 10}, {10, 10}, {10, 20}})}));
    EXPECT_EQ(indexMap, (std::vector<unsigned int>{kNone, 0, 1, 2, 3, kNone, kNone}));
    EXPECT_EQ(document.getOpcodeCount(), 4u);

    // Both dots and the record are whole selections; the sub-path loses one point.
    CStrokeset other(mixedDrawing());
    EXPECT_TRUE(other.deletePoints({1, 0, 3, 5}));
    EXPECT_EQ(pointsPerCollection(other), (Shape{2, 1}));
    EXPECT_EQ(serialized(other), cat({path({{0, 10}, {10, 20}}), dots({{5, 5}})}));
    // The end point and an inner point of one sub-path in one request: both go.
    CStrokeset line(path({{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
    EXPECT_TRUE(line.deletePoints({1, 3}));
    EXPECT_EQ(serialized(line), path({{0, 0}, {2, 0}}));
    // An index the range still covers but no dot has: the found dot goes, the result is false.
    CStrokeset three(dots({{0, 0}, {1, 0}, {2, 0}}));
    EXPECT_TRUE(three.deletePoint(1));
    EXPECT_FALSE(three.deletePoints({0, 1}));
    EXPECT_EQ(serialized(three), dots({{2, 0}}));
}

TEST(EditingDots, InsertDotAndNewDotAddUnnumberedDots) {
    // dots 0 (pen 3), 1 (pen 4) | sub-path 2, 3, 4 (pen 4) | dot 5 (pen 6); current pen 6
    CStrokeset document(
        cat({StreamBuilder().pen(3).dot(0, 0).pen(4).dot(1, 0), path({{0, 10}, {10, 10}, {10, 20}}),
             StreamBuilder().pen(6).dot(7, 7)}));
    Point a = point(0.5f, 0), b = point(0.25f, 0), c = point(10, 21);
    Point d = point(1.5f, 0), e = point(8, 8);
    EXPECT_TRUE(document.insertDot(0, a));  // takes the pen of the dot it follows
    EXPECT_TRUE(document.insertDot(0, b));  // directly after dot 0 again, so before a
    EXPECT_TRUE(document.insertDot(1, d));  // after the last dot, with its pen
    EXPECT_TRUE(document.insertDot(4, c));  // own collection right after the sub-path
    EXPECT_TRUE(document.insertDot(99, e)); // own collection at the end
    EXPECT_TRUE(document.newDot(c));        // joins the trailing dot collection
    EXPECT_EQ(pointsPerCollection(document), (Shape{5, 3, 1, 1, 2}));
    std::vector<LibStrokeset::EOpcodeType> types;
    EXPECT_FALSE(document.getOpcodeTypes(types));
    EXPECT_EQ(serialized(document),
              cat({penChange(3), dots({{0, 0}, {0.25f, 0}, {0.5f, 0}}), penChange(4),
                   dots({{1, 0}, {1.5f, 0}}), path({{0, 10}, {10, 10}, {10, 20}}), penChange(6),
                   dots({{10, 21}, {7, 7}, {8, 8}, {10, 21}})}));

    CStrokeset records(cat({kRecord, path({{0, 0}, {1, 0}})}));
    EXPECT_TRUE(records.insertDot(0, a)); // after the end of a record collection
    EXPECT_TRUE(records.newDot(e));       // after a sub-path: a new collection
    EXPECT_EQ(serialized(records),
              cat({kRecord, dots({{0.5f, 0}}), path({{0, 0}, {1, 0}}), dots({{8, 8}})}));
}

TEST(EditingLines, LinesFromDotsAndNewLinesGoToTheEnd) {
    // dot a (pen 5) | sub-path 1, 2 (pen 6) | dot b (pen 6) | trailing pen change: current pen 9
    CStrokeset document(
        StreamBuilder().pen(5).dot(0, 0).pen(6).moveTo(10, 0).lineTo(20, 0).dot(1, 0).pen(9));
    Point p = point(5, 5), q = point(6, 6), r = point(7, 7), s = point(8, 8);
    EXPECT_TRUE(document.appendLine(p));        // b starts a line; its emptied collection goes
    EXPECT_TRUE(document.appendLine(0, q));     // so does a, with its own pen
    EXPECT_TRUE(document.appendLine(1, r));     // the sub-path named by its start grows at its end
    EXPECT_TRUE(document.appendLine(kNone, s)); // as appendLine(s): the line from a grows
    EXPECT_TRUE(document.newLine(p, s));        // with the current pen
    EXPECT_EQ(pointsPerCollection(document), (Shape{3, 2, 3, 2}));
    std::vector<LibStrokeset::EOpcodeType> types;
    EXPECT_FALSE(document.getOpcodeTypes(types)); // new points have no index yet
    EXPECT_EQ(
        serialized(document),
        cat({penChange(6), path({{10, 0}, {20, 0}, {7, 7}}), path({{1, 0}, {5, 5}}), penChange(5),
             path({{0, 0}, {6, 6}, {8, 8}}), penChange(9), path({{5, 5}, {8, 8}})}));

    CStrokeset emptied(path({{0, 0}, {1, 0}}));
    EXPECT_TRUE(emptied.deletePoint(1));
    EXPECT_FALSE(emptied.appendLine(p));                 // no last point to start from
    EXPECT_EQ(pointsPerCollection(emptied), (Shape{1})); // an empty sub-path counts one point
}

TEST(EditingLines, PrependInsertLineAndInsertLinePoint) {
    CStrokeset document(
        StreamBuilder().pen(3).moveTo(0, 0).lineTo(1, 0).pen(5).dot(4, 4).dot(6, 6));
    Point p = point(-1, 0), q = point(9, 9), x = point(0.5f, 1);
    EXPECT_TRUE(document.insertLine(1, x, p));   // right after the sub-path, current pen 5
    EXPECT_TRUE(document.insertLinePoint(0, x)); // after the start point, with the next pen
    EXPECT_TRUE(document.insertLinePoint(1, q)); // after the end point
    EXPECT_TRUE(document.prependLine(0, p));     // the new start carries the start pen
    EXPECT_TRUE(document.prependLine(3, q));     // a line to the dot, with the dot's pen
    EXPECT_TRUE(document.insertLine(kNone, q, x));
    EXPECT_EQ(pointsPerCollection(document), (Shape{5, 2, 1, 2, 2}));
    EXPECT_EQ(serialized(document),
              cat({StreamBuilder().pen(3).moveTo(-1, 0).lineTo(0, 0).lineTo(0.5f, 1).lineTo(1, 0),
                   StreamBuilder().lineTo(9, 9).pen(5).moveTo(0.5f, 1).lineTo(-1, 0).dot(4, 4),
                   path({{9, 9}, {6, 6}}), path({{9, 9}, {0.5f, 1}})}));
}

TEST(EditingSubpaths, CloseRestartOpenAndSplit) {
    // open square A, B, C, D: 0..3 | one-line path 4, 5 | dot 6
    const Words rest = cat({path({{20, 0}, {30, 0}}), dots({{1, 1}})});
    CStrokeset document(cat({path({{0, 0}, {10, 0}, {10, 10}, {0, 10}}), rest}));
    EXPECT_TRUE(document.closeSubpath(0));
    EXPECT_TRUE(document.closeSubpath(0)); // closed already: nothing is added
    EXPECT_EQ(serialized(document),
              cat({path({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}), rest}));
    EXPECT_TRUE(document.setClosedSubpathStart(0, 2)); // C, D, A, B, C
    EXPECT_EQ(serialized(document),
              cat({path({{10, 10}, {0, 10}, {0, 0}, {10, 0}, {10, 10}}), rest}));
    EXPECT_TRUE(document.openSubpath(1));  // the segment that leaves D goes: C, D and A, B, C
    EXPECT_TRUE(document.splitSubpath(3)); // B ends one part and starts the other
    EXPECT_EQ(pointsPerCollection(document), (Shape{2, 2, 2, 2, 1}));
    EXPECT_EQ(serialized(document), cat({path({{10, 10}, {0, 10}}), path({{0, 0}, {10, 0}}),
                                         path({{10, 0}, {10, 10}}), rest}));
}

TEST(EditingSubpaths, JoinAndConnectMergeIntoTheFirstNamedPath) {
    // Y (0, 1) | dot 2 | X (3, 4): merged at the midpoint, where X stood.
    CStrokeset document(cat({path({{4, 0}, {6, 0}}), dots({{9, 9}}), path({{0, 0}, {2, 0}})}));
    EXPECT_TRUE(document.joinSubpath(4, 0));
    EXPECT_EQ(pointsPerCollection(document), (Shape{1, 3}));
    EXPECT_EQ(serialized(document), cat({dots({{9, 9}}), path({{0, 0}, {3, 0}, {6, 0}})}));

    // A-B (0, 1) | B-C (2, 3) | E-F (4, 5)
    CStrokeset paths(cat({path({{0, 0}, {1, 0}}), path({{1, 0}, {2, 0}}), path({{5, 0}, {6, 0}})}));
    EXPECT_TRUE(paths.connectSubpath(1, 2)); // B meets B exactly: no bridge
    EXPECT_TRUE(paths.connectSubpath(3, 4)); // C to E is bridged
    EXPECT_EQ(pointsPerCollection(paths), (Shape{5}));
    EXPECT_EQ(serialized(paths), path({{0, 0}, {1, 0}, {2, 0}, {5, 0}, {6, 0}}));
    EXPECT_TRUE(paths.connectSubpath(4, 0)); // onto itself: closes it
    EXPECT_EQ(serialized(paths), path({{0, 0}, {1, 0}, {2, 0}, {5, 0}, {6, 0}, {0, 0}}));
}

TEST(EditingSubpaths, ReverseKeepsIndicesAndPenFields) {
    // A with pen 1, B with pen 2, C with pen 3
    const Words original =
        StreamBuilder().pen(1).moveTo(0, 0).pen(2).lineTo(1, 0).pen(3).lineTo(2, 0).dot(5, 5);
    CStrokeset document(original);
    EXPECT_TRUE(document.reverseSubpathDirection(0));
    EXPECT_TRUE(document.reverseSubpathDirection(2)); // C kept its index and starts the path
    EXPECT_EQ(serialized(document), original);        // twice restores every field
    EXPECT_TRUE(document.reverseSubpathDirection(0));
    EXPECT_EQ(serialized(document),
              cat({penChange(2), StreamBuilder().moveTo(2, 0).pen(1).lineTo(1, 0).pen(2),
                   StreamBuilder().lineTo(0, 0).pen(3).dot(5, 5)}));
}

TEST(EditingOrder, CollectionMovesNameACollectionByItsStartIndex) {
    // dots 0, 1 | sub-path 2, 3 | record 4
    CStrokeset document(cat({dots({{0, 0}, {1, 0}}), path({{0, 10}, {10, 10}}), kRecord}));
    EXPECT_TRUE(document.collectionMakeFirst(4));
    EXPECT_EQ(document.getCollectionIndexOfPoint(4), 0u); // found by its own range meanwhile
    EXPECT_EQ(document.getCollectionIndexOfPoint(3), 2u);
    std::vector<unsigned int> indexMap;
    EXPECT_EQ(serialized(document, &indexMap),
              cat({kRecord, dots({{0, 0}, {1, 0}}), path({{0, 10}, {10, 10}})}));
    EXPECT_EQ(indexMap, (std::vector<unsigned int>{1, 2, 3, 4, 0}));

    // record 0 | dots 1, 2 | sub-path 3, 4
    EXPECT_TRUE(document.collectionMakeLast(1)); // record, path, dots
    EXPECT_TRUE(document.collectionMoveDown(0)); // path, record, dots
    EXPECT_TRUE(document.collectionMoveUp(1));   // path, dots, record
    EXPECT_EQ(serialized(document),
              cat({path({{0, 10}, {10, 10}}), dots({{0, 0}, {1, 0}}), kRecord}));
}

TEST(EditingSubpaths, RenumberedEndCopiesCanReachTheOpcodeCount) {
    // A 0, B 1, C 2; reversed, C starts the path, and removing B renumbers A from C's index
    // to 3: at the opcode count, which a map cannot hold.
    CStrokeset alone(path({{0, 0}, {1, 0}, {2, 0}}));
    ASSERT_TRUE(alone.reverseSubpathDirection(0));
    ASSERT_TRUE(alone.deletePoint(1));
    EXPECT_EQ(alone.getOpcodeType(3), LibStrokeset::eSubPathEnd); // A, now at the count
    std::vector<unsigned int> indexMap;
    Words words;
    try {
        alone.serialize(words, &indexMap);
        ADD_FAILURE() << "no exception";
    } catch (const char* message) {
        EXPECT_STREQ(message, "memory corruption");
    }
    // Without a map the words come out whole.
    EXPECT_EQ(serialized(alone), path({{2, 0}, {0, 0}}));

    // With a dot numbered 3 behind it, A's new index 3 takes the dot's map entry, which the
    // dot then overwrites; A's own old index 0 keeps no entry.
    CStrokeset shared(cat({path({{0, 0}, {1, 0}, {2, 0}}), dots({{5, 5}})}));
    ASSERT_TRUE(shared.reverseSubpathDirection(0));
    ASSERT_TRUE(shared.deletePoint(1));
    EXPECT_EQ(serialized(shared, &indexMap), cat({path({{2, 0}, {0, 0}}), dots({{5, 5}})}));
    EXPECT_EQ(indexMap, (std::vector<unsigned int>{kNone, kNone, 0, 2}));
}
