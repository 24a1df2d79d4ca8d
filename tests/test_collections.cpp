#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <initializer_list>
#include <utility>
#include <vector>

using LibStrokeset::CDot;
using LibStrokeset::CDotCollection;
using LibStrokeset::CSerializationState;
using LibStrokeset::CUnsupportedElement;
using LibStrokeset::CUnsupportedElementCollection;
using LibStrokeset::EOpcodeType;
using test::point;
using test::Words;

namespace {

constexpr unsigned int noIndex = 4294967295u;
using Matrix = Eigen::Matrix<float, 3, 4>;
using Indices = std::vector<unsigned int>;
using Range = std::pair<unsigned int, unsigned int>;

Range rangeOf(const LibStrokeset::CCollection& collection) {
    return {collection.getMinOpcodeIndex(), collection.getMaxOpcodeIndex()};
}

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

template <typename Elements> Indices indicesOf(const Elements& elements) {
    Indices indices;
    for (const auto& element : elements) {
        indices.push_back(element.getOpcodeIndex());
    }
    return indices;
}

std::vector<float> xsOf(const CDotCollection& dots) {
    std::vector<float> xs;
    for (auto it = dots.cbegin(); it != dots.cend(); ++it) {
        xs.push_back(it->getPosition().x());
    }
    return xs;
}

struct Recorder : LibStrokeset::IIteratorCallback {
    std::vector<Eigen::RowVector3f> dots;
    std::vector<Words> records;
    void onDot(const Eigen::RowVector3f& p) override { dots.push_back(p); }
    void onLine(const Eigen::RowVector3f&, const Eigen::RowVector3f&, bool, bool) override {}
    void onUnsupportedElement(const Words& words) override { records.push_back(words); }
};

} // namespace

TEST(CollectionRange, StartsEmptyAndGrowsWithRealIndicesOnly) {
    CDotCollection dots;
    CUnsupportedElementCollection records;
    for (const LibStrokeset::CCollection* c : {static_cast<LibStrokeset::CCollection*>(&dots),
                                               static_cast<LibStrokeset::CCollection*>(&records)}) {
        EXPECT_EQ(rangeOf(*c), Range(noIndex, 0u));
        EXPECT_EQ(c->getStartIndex(), noIndex);
        EXPECT_EQ(c->getEndIndex(), noIndex);
        EXPECT_TRUE(c->isEmpty());
        EXPECT_EQ(c->getLastPenNumber(), 65535);
    }
    CDot unnumbered(point(0, 0), 1, noIndex);
    dots.addDot(unnumbered);
    EXPECT_EQ(rangeOf(dots), Range(noIndex, 0u));
    const unsigned int added[] = {7, 3, 9}, mins[] = {7, 3, 3}, maxs[] = {7, 7, 9};
    for (int i = 0; i < 3; ++i) {
        CDot dot(point(1, 1), 1, added[i]);
        dots.addDot(dot);
        EXPECT_EQ(rangeOf(dots), Range(mins[i], maxs[i]));
    }
}

TEST(CollectionRange, SerializeRebuildsTheRangeEditsDoNot) {
    CDotCollection dots = dotsWith({7, 9});
    Words words;
    std::vector<unsigned int> map(10, 77);
    CSerializationState state(words, &map);
    state.writeOpcode(0x1000, noIndex);
    state.writeOpcode(0x1000, noIndex);
    dots.serialize(state);
    EXPECT_EQ(indicesOf(dots), (Indices{2, 3}));
    EXPECT_EQ(rangeOf(dots), Range(2u, 3u));
    EXPECT_EQ(map, (Indices{77, 77, 77, 77, 77, 77, 77, 2, 77, 3}));
    EXPECT_EQ(words, (Words{0x1000, 0x1000, 0x240A, 10, 0x541A, 0x40E0, 0, 0, 0, //
                            0x240A, 11, 0x541A, 0x4110, 0, 0, 0}));

    // Deleting never narrows the range; serializing the empty collection empties it.
    EXPECT_TRUE(dots.deletePoint(2));
    EXPECT_TRUE(dots.deletePoint(3));
    EXPECT_EQ(rangeOf(dots), Range(2u, 3u));
    dots.serialize(state);
    EXPECT_EQ(rangeOf(dots), Range(noIndex, 0u));

    CUnsupportedElementCollection records = recordsWith({7, 9});
    Words recordWords;
    CSerializationState recordState(recordWords, nullptr);
    records.serialize(recordState);
    EXPECT_EQ(recordWords, (Words{0x2000, 7, 0x2000, 9}));
    EXPECT_EQ(indicesOf(records.getElements()), (Indices{0, 1}));
    EXPECT_EQ(rangeOf(records), Range(0u, 1u));
}

TEST(DotCollection, InsertDotPlacesAnUnnumberedDotAfterTheNamedOne) {
    CDotCollection dots = dotsWith({0, 1, 2});
    Eigen::RowVector3f last = point(5, 5), middle = point(6, 6), nowhere = point(7, 7);
    EXPECT_TRUE(dots.insertDot(2, last));
    EXPECT_TRUE(dots.insertDot(0, middle));
    EXPECT_FALSE(dots.insertDot(8, nowhere));
    EXPECT_EQ(xsOf(dots), (std::vector<float>{0, 6, 1, 2, 5}));
    EXPECT_EQ(indicesOf(dots), (Indices{0, noIndex, 1, 2, noIndex}));
    EXPECT_EQ(dots.getLastPenNumber(), 12);
    EXPECT_EQ((dots.begin() + 1)->getPenNumber(), 10);
    EXPECT_EQ(rangeOf(dots), Range(0u, 2u));

    // Until renumbered, the types stop at the first unnumbered dot.
    std::vector<EOpcodeType> types(3, LibStrokeset::eNone);
    EXPECT_FALSE(dots.getOpcodeTypes(types));
    EXPECT_EQ(types, (std::vector<EOpcodeType>{LibStrokeset::eDot, LibStrokeset::eNone,
                                               LibStrokeset::eNone}));
    std::vector<EOpcodeType> numbered(4, LibStrokeset::eNone);
    EXPECT_TRUE(dotsWith({1, 3}).getOpcodeTypes(numbered));
    EXPECT_EQ(numbered, (std::vector<EOpcodeType>{LibStrokeset::eNone, LibStrokeset::eDot,
                                                  LibStrokeset::eNone, LibStrokeset::eDot}));
    EXPECT_TRUE(CDotCollection().getOpcodeTypes(types));
}

TEST(DotCollection, LookupsByIndex) {
    CDotCollection dots = dotsWith({4, 5, 6});
    Eigen::RowVector3f position;
    unsigned short pen = 0;
    EXPECT_TRUE(dots.getPosition(5, position));
    EXPECT_EQ(position, point(5, 0));
    EXPECT_TRUE(dots.getPenNumber(6, pen));
    EXPECT_EQ(pen, 12);
    EXPECT_TRUE(dots.setPenNumber(4, 99));
    Eigen::RowVector3f moved = point(1, 2, 3);
    EXPECT_TRUE(dots.setPosition(5, moved));
    EXPECT_FALSE(dots.getPosition(7, position) || dots.getPenNumber(3, pen) ||
                 dots.setPenNumber(7, 1) || dots.setPosition(7, moved));
    EXPECT_EQ(indicesOf(dots), (Indices{4, 5, 6}));
    EXPECT_EQ(dots.begin()->getPenNumber(), 99);
    EXPECT_EQ(dots.getOpcodeType(5), LibStrokeset::eDot);
    EXPECT_EQ(dots.getOpcodeType(7), LibStrokeset::eNone);
    EXPECT_EQ(dots.getStartIndex(), 4u);
    EXPECT_EQ(dots.getEndIndex(), 6u);
    Recorder recorder;
    dots.iterate(recorder);
    EXPECT_EQ(recorder.dots,
              (std::vector<Eigen::RowVector3f>{point(4, 0), point(1, 2, 3), point(6, 0)}));
}

TEST(DotCollection, ChangePenKeepsWhatItChangedWhenAnIndexIsMissing) {
    CDotCollection dots = dotsWith({0, 1, 2});
    EXPECT_FALSE(dots.changePen({0, 2, 5}, 3));
    EXPECT_EQ(dots.begin()->getPenNumber(), 3);
    EXPECT_EQ((dots.begin() + 1)->getPenNumber(), 11);
    EXPECT_EQ(dots.getLastPenNumber(), 3);
    EXPECT_FALSE(dots.changePen({}, 4));
    EXPECT_EQ(dots.getLastPenNumber(), 3);
    EXPECT_TRUE(dots.changePen({1, 2}, 7));
    EXPECT_EQ((dots.begin() + 1)->getPenNumber(), 7);
}

TEST(DotCollection, TransformsMapPointsAndKeepIndices) {
    CDotCollection dots = dotsWith({0, 1, 2});
    Matrix shift;
    shift << 1, 0, 0, 10, 0, 1, 0, 0, 0, 0, 1, 0;
    EXPECT_TRUE(dots.transformPoints({}, shift));
    EXPECT_FALSE(dots.transformPoints({2, 8}, shift));
    EXPECT_EQ(xsOf(dots), (std::vector<float>{0, 1, 12}));
    EXPECT_TRUE(dots.transformPoints({0, 1}, shift));
    EXPECT_TRUE(dots.transformPoint(1, shift));
    EXPECT_FALSE(dots.transformPoint(8, shift));
    EXPECT_EQ(xsOf(dots), (std::vector<float>{10, 21, 12}));

    // Swap x and y, double z, then move by (1, 2, 5): every 2D dot becomes 3D.
    Matrix m;
    m << 0, 1, 0, 1, 1, 0, 0, 2, 0, 0, 2, 5;
    EXPECT_TRUE(dots.transform(m));
    EXPECT_EQ(dots.getFirstPosition(), point(1, 12, 5));
    EXPECT_EQ(dots.getLastPosition(), point(1, 14, 5));
    EXPECT_TRUE(dots.begin()->is3D());
    EXPECT_EQ(indicesOf(dots), (Indices{0, 1, 2}));

    CDotCollection none;
    EXPECT_TRUE(none.transform(m));
    EXPECT_TRUE(none.transformPoints({}, m));
    EXPECT_FALSE(none.transformPoints({0}, m));
}

TEST(DotCollection, DeletionKeepsOrderAndReportsMissingIndices) {
    CDotCollection dots = dotsWith({0, 1, 2, 3, 4});
    EXPECT_TRUE(dots.deletePoints({1, 3}));
    EXPECT_EQ(indicesOf(dots), (Indices{0, 2, 4}));
    EXPECT_FALSE(dots.deletePoints({2, 9}));
    EXPECT_TRUE(dots.deletePoints({}));
    EXPECT_EQ(indicesOf(dots), (Indices{0, 4}));
    EXPECT_FALSE(dots.deletePoint(2));
    EXPECT_TRUE(dots.deletePoint(4));
    EXPECT_TRUE(dots.deletePoint(0));
    EXPECT_TRUE(dots.isEmpty());
    EXPECT_EQ(rangeOf(dots), Range(0u, 4u));
}

TEST(DotCollection, RemoveAndGetParamsHandsBackTheDot) {
    CDotCollection dots = dotsWith({3, 4, 5});
    Eigen::RowVector3f unnumberedAt = point(8, 8);
    ASSERT_TRUE(dots.insertDot(3, unnumberedAt));
    Eigen::RowVector3f position;
    unsigned short pen = 0;
    EXPECT_FALSE(dots.removeAndGetParams(noIndex, position, pen));
    EXPECT_FALSE(dots.removeAndGetParams(9, position, pen));
    EXPECT_TRUE(dots.removeAndGetParams(4, position, pen));
    EXPECT_EQ(position, point(4, 0));
    EXPECT_EQ(pen, 11);
    EXPECT_TRUE(dots.removeAndGetParamsLast(position, pen));
    EXPECT_EQ(position, point(5, 0));
    EXPECT_EQ(pen, 12);
    EXPECT_EQ(indicesOf(dots), (Indices{3, noIndex}));
    EXPECT_EQ(rangeOf(dots), Range(3u, 5u));
    EXPECT_FALSE(CDotCollection().removeAndGetParamsLast(position, pen));
}

TEST(DotCollection, CopyWritesSelectedDotsAsNewOpcodes) {
    CDotCollection dots = dotsWith({0, 1, 2});
    Words words;
    std::vector<unsigned int> map(3, 77);
    CSerializationState state(words, &map);
    EXPECT_TRUE(dots.copy({0, 2}, state));
    EXPECT_FALSE(dots.copy({1, 7}, state));
    dots.copyAll(state);
    const Words dot0{0x240A, 10, 0x541A, 0, 0, 0, 0};
    const Words dot1{0x240A, 11, 0x541A, 0x3F80, 0, 0, 0};
    const Words dot2{0x240A, 12, 0x541A, 0x4000, 0, 0, 0};
    Words expected;
    for (const Words* part : {&dot0, &dot2, &dot1, &dot0, &dot1, &dot2}) {
        expected.insert(expected.end(), part->begin(), part->end());
    }
    EXPECT_EQ(words, expected);
    EXPECT_EQ(map, Indices(3, 77));
    EXPECT_EQ(indicesOf(dots), (Indices{0, 1, 2}));
    EXPECT_EQ(state.writeOpcode(0x1000, noIndex), 6u);
    EXPECT_TRUE(CDotCollection().copy({}, state));
    EXPECT_FALSE(CDotCollection().copy({0}, state));
}

TEST(CollectionRange, CompleteCollectionMeansExactlyItsIndices) {
    CDotCollection dots = dotsWith({4, 5, 6});
    EXPECT_TRUE(dots.isCompleteCollection({4, 5, 6}));
    EXPECT_FALSE(dots.isCompleteCollection({4, 6}));
    EXPECT_FALSE(dots.isCompleteCollection({3, 5, 6}));
    EXPECT_FALSE(dots.isCompleteCollection({4, 5, 7}));
    CUnsupportedElementCollection records = recordsWith({3, 4});
    EXPECT_TRUE(records.isCompleteCollection({3, 4}));
    EXPECT_FALSE(records.isCompleteCollection({3}));
    EXPECT_FALSE(records.isCompleteCollection({3, 5}));
}

TEST(UnsupportedCollection, HasNoPositionsOrPens) {
    CUnsupportedElementCollection records = recordsWith({0, 1});
    Eigen::RowVector3f position = point(9, 9, 9);
    unsigned short pen = 42;
    Matrix m = Matrix::Identity();
    EXPECT_FALSE(records.getPosition(0, position));
    EXPECT_FALSE(records.getPenNumber(0, pen));
    EXPECT_EQ(position, point(9, 9, 9));
    EXPECT_EQ(pen, 42);
    EXPECT_FALSE(records.setPosition(0, position) || records.setPenNumber(0, 1) ||
                 records.transformPoint(0, m) || records.transformPoints({0, 1}, m) ||
                 records.transformPoints({}, m) || records.transform(m) ||
                 records.changePen({0, 1}, 1));
    EXPECT_EQ(records.getLastPenNumber(), 65535);
    EXPECT_EQ(records.getPointsCount(), 2u);
    EXPECT_EQ(records.getUnsupportedOpcodeCount(), 2u);
    EXPECT_EQ(dotsWith({0}).getUnsupportedOpcodeCount(), 0u);
    EXPECT_EQ(records.getOpcodeType(1), LibStrokeset::eUnsupported);
    EXPECT_EQ(records.getOpcodeType(2), LibStrokeset::eNone);
    Recorder recorder;
    records.iterate(recorder);
    EXPECT_EQ(recorder.records, (std::vector<Words>{{0x2000, 0}, {0x2000, 1}}));
}

TEST(UnsupportedCollection, DeletionReportsMissingIndices) {
    CUnsupportedElementCollection records = recordsWith({0, 1, 2, 3});
    EXPECT_TRUE(records.deletePoints({1, 2}));
    EXPECT_EQ(indicesOf(records.getElements()), (Indices{0, 3}));
    EXPECT_FALSE(records.deletePoints({3, 8}));
    EXPECT_EQ(indicesOf(records.getElements()), (Indices{0}));
    EXPECT_FALSE(records.deletePoint(3));
    EXPECT_TRUE(records.deletePoint(0));
    EXPECT_EQ(rangeOf(records), Range(0u, 3u));
    EXPECT_TRUE(records.deletePoints({}));
    EXPECT_FALSE(records.deletePoints({0}));
}

TEST(UnsupportedCollection, CopyWritesSelectedRecordsVerbatim) {
    CUnsupportedElementCollection records = recordsWith({0, 1, 2});
    Words words{0xAAAA};
    std::vector<unsigned int> map(3, 77);
    CSerializationState state(words, &map);
    EXPECT_TRUE(records.copy({5, 6}, state));
    EXPECT_EQ(words, (Words{0xAAAA}));
    EXPECT_TRUE(records.copy({2, 0, 9}, state));
    records.copyAll(state);
    EXPECT_EQ(words, (Words{0xAAAA, 0x2000, 0, 0x2000, 2, 0x2000, 0, 0x2000, 1, 0x2000, 2}));
    EXPECT_EQ(map, Indices(3, 77));
    EXPECT_EQ(indicesOf(records.getElements()), (Indices{0, 1, 2}));
    EXPECT_EQ(state.writeOpcode(0x1000, noIndex), 5u);
}

TEST(UnsupportedCollection, OpcodeTypesStopAtAnUnnumberedRecord) {
    CUnsupportedElementCollection records = recordsWith({1, 2});
    Words words{0x1000};
    CUnsupportedElement unnumbered(words, noIndex), later(words, 0);
    records.addElement(unnumbered);
    records.addElement(later);
    EXPECT_EQ(rangeOf(records), Range(0u, 2u));
    std::vector<EOpcodeType> types(3, LibStrokeset::eNone);
    EXPECT_FALSE(records.getOpcodeTypes(types));
    EXPECT_EQ(types, (std::vector<EOpcodeType>{LibStrokeset::eNone, LibStrokeset::eUnsupported,
                                               LibStrokeset::eUnsupported}));
    EXPECT_TRUE(CUnsupportedElementCollection().getOpcodeTypes(types));
}
