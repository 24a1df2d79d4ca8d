#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <limits>
#include <vector>

using LibStrokeset::CDot;
using LibStrokeset::CDrawingElement;
using LibStrokeset::CElement;
using LibStrokeset::CLine;
using LibStrokeset::CSerializationState;
using LibStrokeset::CUnsupportedElement;
using test::point;
using test::Words;

namespace {

constexpr unsigned int noIndex = 4294967295u;
const float quietNan = std::numeric_limits<float>::quiet_NaN();

} // namespace

TEST(Element, OpcodeIndexDefaultsToNone) {
    EXPECT_EQ(CElement().getOpcodeIndex(), noIndex);
    EXPECT_EQ(CElement(12).getOpcodeIndex(), 12u);
}

TEST(DrawingElement, Is3DExactlyWhenZComparesUnequalToZero) {
    const struct {
        float z;
        bool is3D;
    } cases[] = {{0.0f, false}, {-0.0f, false}, {1e-30f, true}, {quietNan, true}, {-2.0f, true}};
    for (const auto& c : cases) {
        EXPECT_EQ(CDrawingElement(point(1, 2, c.z), 0, 0).is3D(), c.is3D) << c.z;
        const CLine line(point(1, 2, 0), point(3, 4, c.z), 0, 0, 0, 1);
        EXPECT_EQ(line.isEnd3D(), c.is3D) << c.z;
        EXPECT_FALSE(line.is3D());
    }
}

TEST(DrawingElement, SetPointClearsTheIndexOnlyWhenAsked) {
    CDrawingElement element(point(1, 2, 3), 4, 9);
    element.setPoint(point(5, 6, 0), false);
    EXPECT_EQ(element.getPosition(), point(5, 6, 0));
    EXPECT_EQ(element.getOpcodeIndex(), 9u);
    EXPECT_FALSE(element.is3D());
    element.setPoint(point(7, 8, 9), true);
    EXPECT_EQ(element.getPosition(), point(7, 8, 9));
    EXPECT_EQ(element.getOpcodeIndex(), noIndex);
    EXPECT_EQ(element.getPenNumber(), 4);
}

TEST(Dot, CopyWritesADotRecordAndLeavesIndicesAlone) {
    Words words{0xBEEF};
    std::vector<unsigned int> map(4, 77);
    CSerializationState state(words, &map);
    const CDot flat(point(1.0f, 0.1f, 0.0f), 5, 3);
    const CDot deep(point(1.0f, 0.1f, quietNan), 5, 2);
    flat.copy(state);
    deep.copy(state);
    EXPECT_EQ(words, (Words{0xBEEF, 0x240A, 5, 0x541A, 0x3F80, 0x0000, 0x3DCC, 0xCCCD, //
                            0x742A, 0x3F80, 0x0000, 0x3DCC, 0xCCCD, 0x7FC0, 0x0000}));
    EXPECT_EQ(map, std::vector<unsigned int>(4, 77));
    EXPECT_EQ(flat.getOpcodeIndex(), 3u);
    EXPECT_EQ(deep.getOpcodeIndex(), 2u);
    EXPECT_EQ(state.writeOpcode(0x1000, noIndex), 2u); // both copies counted as opcodes
}

TEST(Dot, SerializeTakesTheWritersIndexAndFillsTheMap) {
    Words words;
    std::vector<unsigned int> map(3, 77);
    CSerializationState state(words, &map);
    CDot deep(point(12.345f, 1.0f, 2.0f), 0, 2);
    CDot negativeZero(point(-1.0f, 0.5f, -0.0f), 65535, 0);
    deep.serialize(state);
    negativeZero.serialize(state);
    EXPECT_EQ(words, (Words{0x742A, 0x4145, 0x851F, 0x3F80, 0x0000, 0x4000, 0x0000, //
                            0x541A, 0xBF80, 0x0000, 0x3F00, 0x0000}));
    EXPECT_EQ(deep.getOpcodeIndex(), 0u);
    EXPECT_EQ(negativeZero.getOpcodeIndex(), 1u);
    EXPECT_EQ(map, (std::vector<unsigned int>{1, 77, 0}));
}

TEST(Line, CopyEmittersWriteMoveToAndLineToWithoutRenumbering) {
    Words words;
    std::vector<unsigned int> map(7, 77);
    CSerializationState state(words, &map);
    const CLine line(point(1, 0), point(0, 1, 3), 2, 4, 5, 6);
    line.copyMoveTo(state);
    line.copyLineTo(state);
    EXPECT_EQ(words, (Words{0x240A, 2, 0x5416, 0x3F80, 0x0000, 0x0000, 0x0000, //
                            0x240A, 4, 0x7427, 0x0000, 0x0000, 0x3F80, 0x0000, 0x4040, 0x0000}));
    EXPECT_EQ(map, std::vector<unsigned int>(7, 77));
    EXPECT_EQ(line.getOpcodeIndex(), 5u);
    EXPECT_EQ(line.getEndOpcodeIndex(), 6u);
}

TEST(Line, SerializeEmittersStoreTheNewIndices) {
    Words words;
    std::vector<unsigned int> map(10, 77);
    CSerializationState state(words, &map);
    state.writeOpcode(0x1000, noIndex);
    state.writeOpcode(0x1000, noIndex);
    words.clear();

    CLine first(point(0, 0, 1), point(1, 0), 3, 65535, 8, 9);
    first.serializeStartPointAsMoveTo(state);
    EXPECT_EQ(words, (Words{0x240A, 3, 0x7426, 0, 0, 0, 0, 0x3F80, 0}));
    EXPECT_EQ(first.getOpcodeIndex(), 2u);
    EXPECT_EQ(first.getEndOpcodeIndex(), 9u);
    words.clear();

    CLine second(point(1, 0), point(2, 2), 5, 65535, 4, 6);
    second.serializeStartPointAsLineTo(state);
    EXPECT_EQ(words, (Words{0x240A, 5, 0x5417, 0x3F80, 0, 0, 0}));
    EXPECT_EQ(second.getOpcodeIndex(), 3u);
    words.clear();

    // The end emitter takes the start index from the record written just before it.
    CLine third(point(5, 5), point(0, 1, 3), 65535, 3, 1, 7);
    third.serializeEndPointAsLineTo(state);
    EXPECT_EQ(words, (Words{0x240A, 3, 0x7427, 0, 0, 0x3F80, 0, 0x4040, 0}));
    EXPECT_EQ(third.getOpcodeIndex(), 3u);
    EXPECT_EQ(third.getEndOpcodeIndex(), 4u);
    EXPECT_EQ(map, (std::vector<unsigned int>{77, 77, 77, 77, 3, 77, 77, 4, 2, 77}));
}

TEST(Line, ReverseExchangesPositionsAndIndicesButNotPens) {
    const CLine original(point(1, 2, 3), point(4, 5, 0), 7, 8, 10, 11);
    CLine line = original;
    line.reverse();
    EXPECT_EQ(line.getPosition(), point(4, 5, 0));
    EXPECT_EQ(line.getEndPosition(), point(1, 2, 3));
    EXPECT_EQ(line.getOpcodeIndex(), 11u);
    EXPECT_EQ(line.getEndOpcodeIndex(), 10u);
    EXPECT_EQ(line.getPenNumber(), 7);
    EXPECT_EQ(line.getEndPenNumber(), 8);
    line.reverse();
    EXPECT_EQ(line.getPosition(), original.getPosition());
    EXPECT_EQ(line.getEndPosition(), original.getEndPosition());
    EXPECT_EQ(line.getOpcodeIndex(), 10u);
    EXPECT_EQ(line.getEndOpcodeIndex(), 11u);
}

TEST(Line, EndPointSettersKeepOrReplaceTheEndIndex) {
    CLine line(point(0, 0), point(1, 1), 1, 2, 3, 4);
    line.setEndPoint(point(2, 2, 2));
    EXPECT_EQ(line.getEndPosition(), point(2, 2, 2));
    EXPECT_EQ(line.getEndOpcodeIndex(), 4u);
    line.setEndPoint(point(3, 3), noIndex);
    EXPECT_EQ(line.getEndPosition(), point(3, 3));
    EXPECT_EQ(line.getEndOpcodeIndex(), noIndex);
    EXPECT_EQ(line.getPosition(), point(0, 0)); // the start point is not touched
    EXPECT_EQ(line.getOpcodeIndex(), 3u);
}

TEST(UnsupportedElement, KeepsItsOwnCopyAndIsWrittenVerbatim) {
    Words record{0x3001, 0x240A, 0x0007};
    CUnsupportedElement element(record, 5);
    EXPECT_EQ(record, (Words{0x3001, 0x240A, 0x0007}));
    record[1] = 0;
    EXPECT_EQ(element.getBinaryElementData(), (Words{0x3001, 0x240A, 0x0007}));

    Words words;
    std::vector<unsigned int> map(6, 77);
    CSerializationState state(words, &map);
    state.writeOpcode(0x1000, noIndex);
    element.serialize(state);
    EXPECT_EQ(words, (Words{0x1000, 0x3001, 0x240A, 0x0007}));
    EXPECT_EQ(element.getOpcodeIndex(), 1u);
    EXPECT_EQ(map[5], 1u);
}
