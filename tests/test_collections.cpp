#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <initializer_list>
#include <sstream>
#include <string>

using namespace LibStrokeset;
using test::point;
using test::Words;

namespace {

constexpr unsigned int noIndex = CElement::noIndex;
using Matrix = Eigen::Matrix<float, 3, 4>;
using Indices = std::vector<unsigned int>;
using Types = std::vector<EOpcodeType>;

// Dot i sits at (i, 0, 0); pens are 10, 11, ... in list order.
CDotCollection dotsWith(std::initializer_list<unsigned int> indices) {
    CDotCollection dots;
    unsigned short pen = 10;
    for (unsigned int index : indices) {
        CDot dot(point(static_cast<float>(index), 0), pen++, index);
        dots.addDot(dot);
    }
    return dots;
}

// Record i is the two words 0x2000, i.
CUnsupportedElementCollection recordsWith(std::initializer_list<unsigned int> indices) {
    CUnsupportedElementCollection records;
    for (unsigned int index : indices) {
        Words words{0x2000, static_cast<unsigned short>(index)};
        CUnsupportedElement element(words, index);
        records.addElement(element);
    }
    return records;
}

std::string index(unsigned int i) { return i == noIndex ? "-" : std::to_string(i); }

std::string range(const CCollection& c) {
    return "[" + index(c.getMinOpcodeIndex()) + "," + index(c.getMaxOpcodeIndex()) + "]";
}

// Every dot as "x,y" (",z" unless z is 0) with "#index" ("#-" for none) and "/pen", then the
// index range.
std::string text(const CDotCollection& dots) {
    std::ostringstream out;
    for (const CDot& dot : dots) {
        const Eigen::RowVector3f& p = dot.getPosition();
        out << p.x() << ',' << p.y();
        if (p.z() != 0.0f) {
            out << ',' << p.z();
        }
        out << '#' << index(dot.getOpcodeIndex()) << '/' << dot.getPenNumber() << ' ';
    }
    return out.str() + range(dots);
}

} // namespace

TEST(CollectionRange, GrowsWithRealIndicesOnlyAndIsRebuiltBySerialize) {
    CDotCollection dots;
    const unsigned int added[] = {noIndex, 9, 7, 11};
    const char* ranges[] = {"[-,0]", "[9,9]", "[7,9]", "[7,11]"};
    for (int i = 0; i < 4; ++i) {
        CDot dot(point(0, 0), 1, added[i]);
        dots.addDot(dot);
        EXPECT_EQ(range(dots), ranges[i]);
    }

    // Serializing renumbers from the writer's counter; deleting never narrows the range.
    Words words;
    Indices map(12, 77);
    CSerializationState state(words, &map);
    state.writeOpcode(0x1000, noIndex);
    dots.serialize(state);
    EXPECT_EQ(text(dots), "0,0#1/1 0,0#2/1 0,0#3/1 0,0#4/1 [1,4]");
    EXPECT_EQ(map, (Indices{77, 77, 77, 77, 77, 77, 77, 3, 77, 2, 77, 4}));
    EXPECT_TRUE(dots.deletePoints({1, 2, 3, 4}));
    EXPECT_EQ(text(dots), "[1,4]");
    dots.serialize(state);
    EXPECT_EQ(text(dots), "[-,0]");
}

TEST(DotCollection, InsertDotPlacesAnUnnumberedDotAfterTheNamedOne) {
    CDotCollection dots = dotsWith({0, 1, 2});
    Eigen::RowVector3f last = point(5, 5), middle = point(6, 6), nowhere = point(7, 7);
    EXPECT_TRUE(dots.insertDot(2, last));
    EXPECT_TRUE(dots.insertDot(0, middle));
    EXPECT_FALSE(dots.insertDot(8, nowhere));
    EXPECT_EQ(text(dots), "0,0#0/10 6,6#-/10 1,0#1/11 2,0#2/12 5,5#-/12 [0,2]");
}

TEST(DotCollection, LookupsAndPenChangesByIndex) {
    CDotCollection dots = dotsWith({4, 5, 6});
    Eigen::RowVector3f position, moved = point(1, 2, 3);
    unsigned short pen = 0;
    EXPECT_TRUE(dots.setPosition(5, moved));
    EXPECT_TRUE(dots.getPosition(5, position));
    EXPECT_EQ(position, point(1, 2, 3));
    EXPECT_TRUE(dots.setPenNumber(5, 99));
    EXPECT_FALSE(dots.getPosition(7, position) || dots.getPenNumber(3, pen) ||
                 dots.setPenNumber(7, 1) || dots.setPosition(7, moved));
    EXPECT_EQ(text(dots), "4,0#4/10 1,2,3#5/99 6,0#6/12 [4,6]");

    // A missing index fails the change but keeps what was changed before it.
    EXPECT_FALSE(dots.changePen({4, 6, 9}, 3));
    EXPECT_FALSE(dots.changePen({}, 4));
    EXPECT_EQ(text(dots), "4,0#4/3 1,2,3#5/99 6,0#6/3 [4,6]");
    EXPECT_TRUE(dots.changePen({5, 6}, 7));
    EXPECT_EQ(text(dots), "4,0#4/3 1,2,3#5/7 6,0#6/7 [4,6]");
}

TEST(DotCollection, TransformsMapPointsAndKeepIndices) {
    CDotCollection dots = dotsWith({0, 1, 2}), none;
    Matrix shift;
    shift << 1, 0, 0, 10, 0, 1, 0, 0, 0, 0, 1, 0;
    EXPECT_TRUE(dots.transformPoints({}, shift));
    EXPECT_FALSE(dots.transformPoints({2, 8}, shift));
    EXPECT_EQ(text(dots), "0,0#0/10 1,0#1/11 12,0#2/12 [0,2]");
    EXPECT_TRUE(dots.transformPoints({0, 1}, shift));
    EXPECT_TRUE(dots.transformPoint(1, shift));
    EXPECT_FALSE(dots.transformPoint(8, shift));
    EXPECT_EQ(text(dots), "10,0#0/10 21,0#1/11 12,0#2/12 [0,2]");

    // Swap x and y, double z, then move by (1, 2, 5): every 2D dot becomes 3D.
    Matrix m;
    m << 0, 1, 0, 1, 1, 0, 0, 2, 0, 0, 2, 5;
    EXPECT_TRUE(dots.transform(m));
    EXPECT_EQ(text(dots), "1,12,5#0/10 1,23,5#1/11 1,14,5#2/12 [0,2]");
    EXPECT_EQ(dots.getLastPosition(), point(1, 14, 5));
    EXPECT_TRUE(none.transform(m));
    EXPECT_TRUE(none.transformPoints({}, m));
    EXPECT_FALSE(none.transformPoints({0}, m));
}

TEST(DotCollection, DeletionKeepsOrderAndHandsBackRemovedDots) {
    CDotCollection dots = dotsWith({0, 1, 2, 3, 4, 5, 6});
    EXPECT_TRUE(dots.deletePoints({0, 3}));
    EXPECT_FALSE(dots.deletePoints({2, 9}));
    EXPECT_TRUE(dots.deletePoints({}));
    EXPECT_FALSE(dots.deletePoint(2));
    EXPECT_TRUE(dots.deletePoint(6));
    EXPECT_EQ(text(dots), "1,0#1/11 4,0#4/14 5,0#5/15 [0,6]");

    Eigen::RowVector3f position, unnumbered = point(8, 8);
    unsigned short pen = 0;
    ASSERT_TRUE(dots.insertDot(1, unnumbered));
    EXPECT_FALSE(dots.removeAndGetParams(noIndex, position, pen));
    EXPECT_FALSE(dots.removeAndGetParams(9, position, pen));
    EXPECT_TRUE(dots.removeAndGetParams(4, position, pen));
    EXPECT_EQ(position, point(4, 0));
    EXPECT_EQ(pen, 14);
    EXPECT_TRUE(dots.removeAndGetParamsLast(position, pen));
    EXPECT_EQ(position, point(5, 0));
    EXPECT_EQ(pen, 15);
    EXPECT_EQ(text(dots), "1,0#1/11 8,8#-/11 [0,6]");
    EXPECT_FALSE(CDotCollection().removeAndGetParamsLast(position, pen));
}

TEST(Collections, CopyWritesSelectedElementsAsNewOpcodes) {
    CDotCollection dots = dotsWith({0, 1, 2});
    CUnsupportedElementCollection records = recordsWith({0, 1, 2});
    Words words{0xAAAA};
    Indices map(3, 77);
    CSerializationState state(words, &map);
    EXPECT_TRUE(dots.copy({0, 2}, state));
    EXPECT_FALSE(dots.copy({1, 7}, state));
    dots.copyAll(state);
    EXPECT_TRUE(CDotCollection().copy({}, state));
    EXPECT_FALSE(CDotCollection().copy({0}, state));
    EXPECT_TRUE(records.copy({5, 6}, state));
    EXPECT_TRUE(records.copy({2, 0, 9}, state));
    records.copyAll(state);
    test::StreamBuilder expected;
    expected.raw({0xAAAA}).pen(10).dot(0, 0).pen(12).dot(2, 0).pen(11).dot(1, 0);
    expected.pen(10).dot(0, 0).pen(11).dot(1, 0).pen(12).dot(2, 0);
    EXPECT_EQ(words, expected.raw({0x2000, 0, 0x2000, 2, 0x2000, 0, 0x2000, 1, 0x2000, 2}).words());
    EXPECT_EQ(map, Indices(3, 77));
    EXPECT_EQ(state.writeOpcode(0x1000, noIndex), 11u);

    // A selection is the whole collection when it names exactly its indices.
    EXPECT_TRUE(dots.isCompleteCollection({0, 1, 2}));
    EXPECT_FALSE(dots.isCompleteCollection({0, 2}));
    EXPECT_FALSE(dots.isCompleteCollection({0, 1, 3}));
    EXPECT_FALSE(dotsWith({4, 5, 6}).isCompleteCollection({3, 5, 6}));
    EXPECT_TRUE(records.isCompleteCollection({0, 1, 2}));
}

TEST(UnsupportedCollection, HasNoPositionsOrPensButDeletesAndCountsRecords) {
    CUnsupportedElementCollection records = recordsWith({0, 1, 2, 3});
    Words words{0x1000};
    Eigen::RowVector3f position = point(9, 9, 9);
    unsigned short pen = 42;
    Matrix m = Matrix::Identity();
    EXPECT_FALSE(records.getPosition(0, position) || records.getPenNumber(0, pen) ||
                 records.setPosition(0, position) || records.setPenNumber(0, 1) ||
                 records.transformPoint(0, m) || records.transformPoints({0, 1}, m) ||
                 records.transformPoints({}, m) || records.transform(m) ||
                 records.changePen({0, 1}, 1));
    EXPECT_EQ(position, point(9, 9, 9));
    EXPECT_EQ(pen, 42);
    EXPECT_EQ(records.getLastPenNumber(), 65535);
    EXPECT_EQ(records.getUnsupportedOpcodeCount(), 4u);
    EXPECT_EQ(records.getOpcodeType(3), eUnsupported);
    EXPECT_EQ(records.getOpcodeType(4), eNone);

    EXPECT_TRUE(records.deletePoints({1, 2}));
    EXPECT_FALSE(records.deletePoints({3, 8}));
    EXPECT_FALSE(records.deletePoint(3));
    EXPECT_EQ(records.getPointsCount(), 1u);
    EXPECT_EQ(records.getEndIndex(), 0u);
    EXPECT_EQ(range(records), "[0,3]");
    EXPECT_TRUE(records.deletePoints({}));

    // Types stop at a record without an index, keeping those written before it.
    CUnsupportedElement unnumbered(words, noIndex), later(words, 2);
    records.addElement(unnumbered);
    records.addElement(later);
    Types types(3, eNone);
    EXPECT_FALSE(records.getOpcodeTypes(types));
    EXPECT_EQ(types, (Types{eUnsupported, eNone, eNone}));
    EXPECT_TRUE(CUnsupportedElementCollection().getOpcodeTypes(types));
    EXPECT_FALSE(CUnsupportedElementCollection().deletePoints({0}));
}
