#include <gtest/gtest.h>

#include "StreamBuilder.h"

#include <array>

// Editing commands driven as a host drives them: load words, call commands by opcode index,
// then serialize and compare words, index maps and the collection list.

namespace {

using LibStrokeset::CStrokeset;
using test::serialized;
using test::StreamBuilder;
using test::Words;
using Point = Eigen::RowVector3f;
using Matrix = Eigen::Matrix<float, 3, 4>;
using XY = std::array<float, 2>;

constexpr unsigned int kNone = 4294967295u;
const Words kRecord = {0x3001, 0xAAAA, 0xBBBB};

// A move-to followed by line-tos through the points.
Words path(std::initializer_list<XY> points) {
    StreamBuilder builder;
    for (const XY* p = points.begin(); p != points.end(); ++p) {
        p == points.begin() ? builder.moveTo((*p)[0], (*p)[1]) : builder.lineTo((*p)[0], (*p)[1]);
    }
    return builder;
}

Words dots(std::initializer_list<XY> points) {
    StreamBuilder builder;
    for (const XY& p : points) {
        builder.dot(p[0], p[1]);
    }
    return builder;
}

Words cat(std::initializer_list<Words> parts) {
    Words all;
    for (const Words& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// dots 0, 1 | sub-path 2, 3, 4 | unsupported record 5 | dot 6
Words mixedDrawing() {
    return cat({dots({{0, 0}, {1, 0}}), path({{0, 10}, {10, 10}, {10, 20}}), kRecord,
                dots({{5, 5}})});
}

std::size_t collectionCount(const CStrokeset& document) {
    return document.getCollections().size();
}

// A failed command must leave the drawing as loaded: same words, same collections.
void expectUnchanged(CStrokeset& document, const Words& original) {
    CStrokeset reference(original);
    EXPECT_EQ(serialized(document), serialized(reference));
    EXPECT_EQ(collectionCount(document), collectionCount(reference));
}

Matrix translation(float x, float y) {
    Matrix m;
    m << 1, 0, 0, x, 0, 1, 0, y, 0, 0, 1, 0;
    return m;
}

} // namespace

TEST(EditingPoints, ReadsAndWritesPositionsAndPens) {
    CStrokeset document(mixedDrawing());
    Point position = test::point(-1, -1);
    EXPECT_TRUE(document.getPosition(3, position));
    EXPECT_EQ(position, test::point(10, 10));
    position = test::point(-1, -1);
    EXPECT_FALSE(document.getPosition(5, position)); // a record has no position
    EXPECT_FALSE(document.getPosition(kNone, position));
    EXPECT_EQ(position, test::point(-1, -1));
    unsigned short pen = 1;
    EXPECT_TRUE(document.getPenNumber(0, pen));
    EXPECT_EQ(pen, 65535); // no pen change was loaded
    EXPECT_FALSE(document.getPenNumber(5, pen));

    Point moved = test::point(3, 3);
    EXPECT_FALSE(document.setPosition(5, moved));
    EXPECT_TRUE(document.setPosition(3, moved)); // both copies of the inner point
    pen = 7;
    EXPECT_FALSE(document.setPenNumber(5, pen));
    EXPECT_TRUE(document.setPenNumber(3, pen));
    pen = 9;
    EXPECT_TRUE(document.setPenNumber(6, pen));
    EXPECT_EQ(serialized(document), cat({dots({{0, 0}, {1, 0}}),
                                         StreamBuilder().moveTo(0, 10).pen(7).lineTo(3, 3)
                                             .lineTo(10, 20),
                                         kRecord, StreamBuilder().pen(9).dot(5, 5)}));
    EXPECT_TRUE(document.getPenNumber(3, pen));
    EXPECT_EQ(pen, 7);
}

TEST(EditingTransforms, SinglePointsAndTheWholeDrawing) {
    CStrokeset document(mixedDrawing());
    Matrix shift = translation(1, 2);
    EXPECT_FALSE(document.transformPoint(5, shift));
    EXPECT_FALSE(document.transformPoint(99, shift));
    EXPECT_TRUE(document.transformPoint(3, shift)); // both copies of the inner point
    EXPECT_TRUE(document.transformPoint(6, shift));
    EXPECT_EQ(serialized(document), cat({dots({{0, 0}, {1, 0}}),
                                         path({{0, 10}, {11, 12}, {10, 20}}), kRecord,
                                         dots({{6, 7}})}));

    Matrix lift;
    lift << 1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 0, 5; // every point becomes 3D with z = 5
    EXPECT_FALSE(document.transform(lift));     // the record fails, the rest is still mapped
    EXPECT_EQ(serialized(document), Words(StreamBuilder()
                                              .dot(1, 2, 5).dot(2, 2, 5)
                                              .moveTo(1, 12, 5).lineTo(12, 14, 5).lineTo(11, 22, 5)
                                              .raw({0x3001, 0xAAAA, 0xBBBB})
                                              .dot(7, 9, 5)));
    CStrokeset empty;
    EXPECT_TRUE(empty.transform(lift));
}

TEST(EditingSelections, TransformPointsAndChangePenGroupByCollection) {
    const Words original = mixedDrawing();
    CStrokeset document(original);
    Matrix shift = translation(1, 2);
    EXPECT_TRUE(document.transformPoints({}, shift));
    EXPECT_TRUE(document.changePen({}, 4));
    EXPECT_FALSE(document.transformPoints({0, 99}, shift)); // grouping fails before any change
    EXPECT_FALSE(document.changePen({0, 99}, 4));
    EXPECT_FALSE(document.transformPoints({5}, shift)); // a whole record collection
    expectUnchanged(document, original);

    EXPECT_FALSE(document.transformPoints({0, 1, 3, 5}, shift)); // the other groups are mapped
    EXPECT_TRUE(document.transformPoints({2, 3, 4}, shift));     // a whole sub-path
    EXPECT_TRUE(document.changePen({0, 0}, 4));                  // a repeated index counts once
    EXPECT_FALSE(document.changePen({1, 5, 6}, 8));              // the dots change nevertheless
    EXPECT_EQ(serialized(document), cat({StreamBuilder().pen(4).dot(1, 2).pen(8).dot(2, 2),
                                         path({{1, 12}, {12, 14}, {11, 22}}), kRecord,
                                         dots({{5, 5}})}));
}

TEST(EditingDeletion, DeletePointLeavesGapsAndEmptyCollections) {
    CStrokeset document(mixedDrawing());
    EXPECT_TRUE(document.deletePoint(0));
    Point position;
    EXPECT_FALSE(document.getPosition(0, position));
    EXPECT_EQ(document.getOpcodeType(0), LibStrokeset::eNone);
    EXPECT_FALSE(document.deletePoint(0));
    EXPECT_TRUE(document.deletePoint(6)); // the only dot: its collection stays, empty
    EXPECT_EQ(collectionCount(document), 4u);
    EXPECT_TRUE(document.deletePoint(5)); // records can be deleted
    EXPECT_TRUE(document.deletePoint(3));
    EXPECT_FALSE(document.deletePoint(99));
    EXPECT_EQ(document.getOpcodeCount(), 7u); // nothing is renumbered before serialize
    EXPECT_EQ(serialized(document), cat({dots({{1, 0}}), path({{0, 10}, {10, 20}})}));
    EXPECT_EQ(document.getOpcodeCount(), 3u);

    CStrokeset four(dots({{0, 0}, {1, 0}, {2, 0}, {3, 0}}));
    EXPECT_TRUE(four.deletePoint(1));
    std::vector<unsigned int> indexMap;
    serialized(four, &indexMap);
    EXPECT_EQ(indexMap, (std::vector<unsigned int>{0, kNone, 1, 2}));
}

TEST(EditingDeletion, DeletePointsRemovesFullyCoveredCollections) {
    const Words original = mixedDrawing();
    CStrokeset document(original);
    EXPECT_TRUE(document.deletePoints({}));
    EXPECT_FALSE(document.deletePoints({0, 99}));
    expectUnchanged(document, original);
    EXPECT_TRUE(document.deletePoints({1, 0, 3})); // the first dot collection itself goes
    EXPECT_EQ(collectionCount(document), 3u);
    EXPECT_EQ(serialized(document), cat({path({{0, 10}, {10, 20}}), kRecord, dots({{5, 5}})}));

    CStrokeset other(original);
    EXPECT_TRUE(other.deletePoints({2, 3, 4, 5}));
    EXPECT_TRUE(other.deletePoints({6}));
    EXPECT_EQ(collectionCount(other), 1u);
    EXPECT_EQ(serialized(other), dots({{0, 0}, {1, 0}}));

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
    const Words original = cat({StreamBuilder().pen(3).dot(0, 0).pen(4).dot(1, 0),
                                path({{0, 10}, {10, 10}, {10, 20}}),
                                StreamBuilder().pen(6).dot(7, 7)});
    CStrokeset document(original);
    Point a = test::point(0.5f, 0), b = test::point(0.25f, 0), c = test::point(10, 21);
    Point d = test::point(1.5f, 0), e = test::point(8, 8);
    EXPECT_FALSE(document.insertDot(3, a)); // not inside a sub-path
    EXPECT_FALSE(document.insertDot(2, a));
    expectUnchanged(document, original);
    EXPECT_TRUE(document.insertDot(0, a));  // takes the pen of the dot it follows
    EXPECT_TRUE(document.insertDot(0, b));  // directly after dot 0 again, so before a
    EXPECT_TRUE(document.insertDot(1, d));  // after the last dot, with its pen
    EXPECT_TRUE(document.insertDot(4, c));  // own collection right after the sub-path
    EXPECT_TRUE(document.insertDot(99, e)); // own collection at the end
    EXPECT_TRUE(document.newDot(c));        // joins the trailing dot collection
    EXPECT_EQ(collectionCount(document), 5u);
    EXPECT_EQ(document.getOpcodeCount(), 6u);
    std::vector<LibStrokeset::EOpcodeType> types;
    EXPECT_FALSE(document.getOpcodeTypes(types));
    EXPECT_EQ(serialized(document),
              cat({StreamBuilder().pen(3).dot(0, 0).dot(0.25f, 0).dot(0.5f, 0).pen(4).dot(1, 0)
                       .dot(1.5f, 0),
                   path({{0, 10}, {10, 10}, {10, 20}}),
                   StreamBuilder().pen(6).dot(10, 21).dot(7, 7).dot(8, 8).dot(10, 21)}));
    EXPECT_EQ(document.getOpcodeCount(), 12u);
    EXPECT_TRUE(document.getOpcodeTypes(types));

    CStrokeset records(cat({kRecord, path({{0, 0}, {1, 0}})}));
    EXPECT_TRUE(records.insertDot(0, a)); // after the end of a record collection
    EXPECT_TRUE(records.newDot(e));       // after a sub-path: a new collection
    EXPECT_EQ(collectionCount(records), 4u);
    EXPECT_EQ(serialized(records), cat({kRecord, dots({{0.5f, 0}}), path({{0, 0}, {1, 0}}),
                                        dots({{8, 8}})}));
}

TEST(EditingLines, NewLineIsNumberedOnlyBySerialize) {
    CStrokeset document(StreamBuilder().pen(5).dot(0, 0));
    Point p1 = test::point(1, 1), p2 = test::point(2, 3);
    EXPECT_TRUE(document.newLine(p1, p2)); // with the current pen
    EXPECT_EQ(collectionCount(document), 2u);
    EXPECT_EQ(document.getOpcodeCount(), 1u);
    std::vector<LibStrokeset::EOpcodeType> types;
    EXPECT_FALSE(document.getOpcodeTypes(types));
    EXPECT_EQ(serialized(document),
              Words(StreamBuilder().pen(5).dot(0, 0).moveTo(1, 1).lineTo(2, 3)));
    EXPECT_TRUE(document.getOpcodeTypes(types));
    EXPECT_EQ(types, (std::vector<LibStrokeset::EOpcodeType>{LibStrokeset::eDot,
                                                             LibStrokeset::eSubPathStart,
                                                             LibStrokeset::eSubPathEnd}));
}

TEST(EditingLines, AppendLineContinuesFromTheLastPoint) {
    // dot a with pen 5, dot b with pen 6, then a trailing pen change: current pen 9
    const Words twoDots = StreamBuilder().pen(5).dot(0, 0).pen(6).dot(1, 0).pen(9);
    CStrokeset document(twoDots);
    Point p = test::point(5, 5), q = test::point(6, 6);
    EXPECT_TRUE(document.appendLine(p)); // b starts the line, with its own pen
    EXPECT_TRUE(document.appendLine(q)); // then the sub-path grows
    EXPECT_EQ(collectionCount(document), 2u);
    EXPECT_EQ(serialized(document), Words(StreamBuilder().pen(5).dot(0, 0).pen(6).moveTo(1, 0)
                                              .lineTo(5, 5).lineTo(6, 6)));

    CStrokeset single(dots({{2, 2}}));
    EXPECT_TRUE(single.appendLine(p)); // the emptied dot collection is removed
    EXPECT_EQ(collectionCount(single), 1u);
    EXPECT_EQ(serialized(single), path({{2, 2}, {5, 5}}));

    CStrokeset empty;
    EXPECT_FALSE(empty.appendLine(p));
    EXPECT_EQ(collectionCount(empty), 0u);
    const Words recordLast = cat({dots({{0, 0}}), kRecord});
    CStrokeset records(recordLast);
    EXPECT_FALSE(records.appendLine(p));
    expectUnchanged(records, recordLast);
    CStrokeset emptiedPath(path({{0, 0}, {1, 0}}));
    EXPECT_TRUE(emptiedPath.deletePoint(1));
    EXPECT_FALSE(emptiedPath.appendLine(p));
    EXPECT_EQ(collectionCount(emptiedPath), 1u);
    EXPECT_TRUE(serialized(emptiedPath).empty());
}

TEST(EditingLines, AppendLineByIndexStartsAtADotOrExtendsASubPath) {
    CStrokeset document(StreamBuilder().pen(5).dot(0, 0).pen(6).dot(1, 0).pen(9));
    Point p = test::point(5, 5), q = test::point(6, 6), r = test::point(7, 7);
    EXPECT_FALSE(document.appendLine(7, p));
    EXPECT_TRUE(document.appendLine(0, p)); // a leaves its collection for a new sub-path
    const Words afterFirst = StreamBuilder().pen(6).dot(1, 0).pen(5).moveTo(0, 0).lineTo(5, 5);
    EXPECT_EQ(serialized(document), afterFirst);

    // dot 0 | sub-path 1, 2
    EXPECT_FALSE(document.appendLine(2, q)); // the end index does not name the sub-path
    expectUnchanged(document, afterFirst);
    EXPECT_TRUE(document.appendLine(1, q));
    EXPECT_TRUE(document.appendLine(kNone, r)); // as appendLine(r)
    EXPECT_TRUE(document.appendLine(0, p));     // the last dot: its collection goes
    EXPECT_EQ(collectionCount(document), 2u);
    EXPECT_EQ(serialized(document), Words(StreamBuilder()
                                              .pen(5).moveTo(0, 0).lineTo(5, 5).lineTo(6, 6)
                                              .lineTo(7, 7).pen(6).moveTo(1, 0).lineTo(5, 5)));

    CStrokeset other(mixedDrawing());
    EXPECT_FALSE(other.appendLine(5, p)); // a record
    EXPECT_FALSE(other.appendLine(3, p)); // an inner point
    EXPECT_TRUE(other.deletePoint(1));
    EXPECT_FALSE(other.appendLine(1, p)); // a deleted dot, still inside the range
    EXPECT_TRUE(other.deletePoint(6));
    EXPECT_FALSE(other.appendLine(kNone, p)); // the last collection has no dot left
    EXPECT_EQ(collectionCount(other), 4u);
    EXPECT_EQ(serialized(other), cat({dots({{0, 0}}), path({{0, 10}, {10, 10}, {10, 20}}),
                                      kRecord}));
}

TEST(EditingLines, PrependInsertLineAndInsertLinePoint) {
    const Words original = StreamBuilder().pen(3).moveTo(0, 0).lineTo(1, 0).pen(5).dot(4, 4)
                               .dot(6, 6);
    CStrokeset document(original);
    Point p = test::point(-1, 0), q = test::point(9, 9), x = test::point(0.5f, 1);
    EXPECT_FALSE(document.prependLine(1, p));
    EXPECT_FALSE(document.prependLine(kNone, p));
    EXPECT_FALSE(document.insertLine(0, p, q)); // the start of a collection of two points
    EXPECT_FALSE(document.insertLinePoint(2, x)); // a dot
    EXPECT_FALSE(document.insertLinePoint(99, x));
    expectUnchanged(document, original);

    EXPECT_TRUE(document.insertLine(1, x, p));   // right after the sub-path, current pen 5
    EXPECT_TRUE(document.insertLinePoint(0, x)); // after the start point, with the next pen
    EXPECT_TRUE(document.insertLinePoint(1, q)); // after the end point
    EXPECT_TRUE(document.prependLine(0, p));     // the new start carries the start pen
    EXPECT_TRUE(document.prependLine(3, q));     // a line to the dot, with the dot's pen
    EXPECT_TRUE(document.insertLine(kNone, q, x));
    EXPECT_EQ(collectionCount(document), 5u);
    EXPECT_EQ(serialized(document), Words(StreamBuilder()
                                              .pen(3).moveTo(-1, 0).lineTo(0, 0).lineTo(0.5f, 1)
                                              .lineTo(1, 0).lineTo(9, 9)
                                              .pen(5).moveTo(0.5f, 1).lineTo(-1, 0)
                                              .dot(4, 4).moveTo(9, 9).lineTo(6, 6)
                                              .moveTo(9, 9).lineTo(0.5f, 1)));
    CStrokeset empty;
    EXPECT_TRUE(empty.insertLine(0, p, q));
    EXPECT_EQ(serialized(empty), path({{-1, 0}, {9, 9}}));
}

TEST(EditingSubpaths, CloseOpenAndSplit) {
    // open square 0..3 | one-line path 4, 5 | dot 6
    const Words original = cat({path({{0, 0}, {10, 0}, {10, 10}, {0, 10}}),
                                path({{20, 0}, {30, 0}}), dots({{1, 1}})});
    CStrokeset document(original);
    for (unsigned int index : {3u, 1u, 4u, 6u, 99u, kNone}) {
        EXPECT_FALSE(document.closeSubpath(index)) << index;
    }
    EXPECT_FALSE(document.splitSubpath(0));
    EXPECT_FALSE(document.splitSubpath(3));
    expectUnchanged(document, original);
    EXPECT_TRUE(document.closeSubpath(0));
    EXPECT_TRUE(document.closeSubpath(0)); // closed already: nothing is added
    const Words square = path({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}});
    EXPECT_EQ(serialized(document), cat({square, path({{20, 0}, {30, 0}}), dots({{1, 1}})}));

    // square 0..4 | path 5, 6 | dot 7
    for (unsigned int index : {0u, 4u, 3u, 5u, 7u, kNone}) {
        EXPECT_FALSE(document.openSubpath(index)) << index;
    }
    EXPECT_TRUE(document.openSubpath(1)); // the segment that leaves B goes
    EXPECT_TRUE(document.splitSubpath(3)); // D ends one part and starts the other
    EXPECT_EQ(collectionCount(document), 5u);
    EXPECT_EQ(serialized(document), cat({path({{0, 0}, {10, 0}}), path({{10, 10}, {0, 10}}),
                                         path({{0, 10}, {0, 0}}), path({{20, 0}, {30, 0}}),
                                         dots({{1, 1}})}));
}

TEST(EditingSubpaths, JoinAndConnectMergeIntoTheFirstNamedPath) {
    const Words pair = cat({path({{0, 0}, {2, 0}}), path({{4, 0}, {6, 0}})});
    CStrokeset document(pair);
    EXPECT_FALSE(document.joinSubpath(0, 3)); // start of X and end of Y: the wrong ends
    EXPECT_FALSE(document.joinSubpath(1, 0)); // one and the same sub-path
    EXPECT_FALSE(document.joinSubpath(1, 99));
    EXPECT_FALSE(document.connectSubpath(1, 3));
    EXPECT_FALSE(document.connectSubpath(kNone, 2));
    expectUnchanged(document, pair);
    EXPECT_TRUE(document.joinSubpath(1, 2)); // merged at the midpoint
    EXPECT_EQ(collectionCount(document), 1u);
    EXPECT_EQ(serialized(document), path({{0, 0}, {3, 0}, {6, 0}}));

    // Y (0, 1) | dot 2 | X (3, 4): the result stands where X stood.
    CStrokeset reordered(cat({path({{4, 0}, {6, 0}}), dots({{9, 9}}), path({{0, 0}, {2, 0}})}));
    EXPECT_TRUE(reordered.joinSubpath(4, 0));
    EXPECT_EQ(collectionCount(reordered), 2u);
    EXPECT_EQ(serialized(reordered), cat({dots({{9, 9}}), path({{0, 0}, {3, 0}, {6, 0}})}));

    // A-B (0, 1) | B-C (2, 3) | E-F (4, 5)
    CStrokeset paths(cat({path({{0, 0}, {1, 0}}), path({{1, 0}, {2, 0}}), path({{5, 0}, {6, 0}})}));
    EXPECT_TRUE(paths.connectSubpath(1, 2)); // B meets B exactly: no bridge
    EXPECT_TRUE(paths.connectSubpath(3, 4)); // C to E is bridged
    EXPECT_EQ(collectionCount(paths), 1u);
    EXPECT_EQ(serialized(paths), path({{0, 0}, {1, 0}, {2, 0}, {5, 0}, {6, 0}}));
    EXPECT_TRUE(paths.connectSubpath(4, 0)); // onto itself: closes it
    EXPECT_EQ(serialized(paths), path({{0, 0}, {1, 0}, {2, 0}, {5, 0}, {6, 0}, {0, 0}}));
    const Words line = path({{0, 0}, {1, 0}});
    CStrokeset single(line);
    EXPECT_TRUE(single.connectSubpath(1, 0)); // close refuses one line; the command succeeds
    expectUnchanged(single, line);
}

TEST(EditingSubpaths, ReverseKeepsIndicesAndPenFields) {
    // A with pen 1, B with pen 2, C with pen 3
    const Words original =
        StreamBuilder().pen(1).moveTo(0, 0).pen(2).lineTo(1, 0).pen(3).lineTo(2, 0).dot(5, 5);
    CStrokeset document(original);
    for (unsigned int index : {1u, 2u, 3u}) {
        EXPECT_FALSE(document.reverseSubpathDirection(index)) << index;
    }
    expectUnchanged(document, original);
    EXPECT_TRUE(document.reverseSubpathDirection(0));
    EXPECT_TRUE(document.reverseSubpathDirection(2)); // C kept its index and starts the path
    EXPECT_EQ(serialized(document), original);        // twice restores every field
    EXPECT_TRUE(document.reverseSubpathDirection(0));
    EXPECT_EQ(serialized(document), Words(StreamBuilder().pen(2).moveTo(2, 0).pen(1).lineTo(1, 0)
                                              .pen(2).lineTo(0, 0).pen(3).dot(5, 5)));
}

TEST(EditingSubpaths, SetClosedSubpathStartRotatesAClosedPath) {
    // closed square 0..4 | open path 5..7 | dot 8
    const Words original = cat({path({{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}),
                                path({{20, 0}, {30, 0}, {30, 10}}), dots({{1, 1}})});
    CStrokeset document(original);
    EXPECT_TRUE(document.setClosedSubpathStart(0, 0));
    EXPECT_FALSE(document.setClosedSubpathStart(5, 6)); // not closed
    EXPECT_FALSE(document.setClosedSubpathStart(0, 8)); // another collection
    EXPECT_FALSE(document.setClosedSubpathStart(0, 4)); // no line starts at the end point
    EXPECT_FALSE(document.setClosedSubpathStart(1, 2)); // not the start index
    expectUnchanged(document, original);
    EXPECT_TRUE(document.setClosedSubpathStart(0, 2));
    EXPECT_EQ(serialized(document), cat({path({{10, 10}, {0, 10}, {0, 0}, {10, 0}, {10, 10}}),
                                         path({{20, 0}, {30, 0}, {30, 10}}), dots({{1, 1}})}));
}

TEST(EditingOrder, CollectionMovesNameACollectionByItsStartIndex) {
    // dots 0, 1 | sub-path 2, 3 | record 4
    const Words original = cat({dots({{0, 0}, {1, 0}}), path({{0, 10}, {10, 10}}), kRecord});
    CStrokeset document(original);
    EXPECT_FALSE(document.collectionMakeFirst(1)); // not the first opcode of its collection
    EXPECT_FALSE(document.collectionMoveUp(3));
    EXPECT_FALSE(document.collectionMakeLast(99));
    EXPECT_TRUE(document.collectionMoveUp(0));   // first already
    EXPECT_TRUE(document.collectionMoveDown(4)); // last already
    expectUnchanged(document, original);

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
    EXPECT_EQ(serialized(document), cat({path({{0, 10}, {10, 10}}), dots({{0, 0}, {1, 0}}),
                                         kRecord}));
}
