#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <limits>
#include <tuple>
#include <utility>

using namespace LibStrokeset;
using test::point;
using test::Words;

namespace {

constexpr unsigned int noIndex = CElement::noIndex;
const float quietNan = std::numeric_limits<float>::quiet_NaN();

// Every field of a line, start point first.
auto fieldsOf(const CLine& l) {
    return std::make_tuple(l.getPosition(), l.getPenNumber(), l.getOpcodeIndex(),
                           l.getEndPosition(), l.getEndPenNumber(), l.getEndOpcodeIndex());
}

} // namespace

TEST(DrawingElement, Is3DExactlyWhenZComparesUnequalToZero) {
    const std::pair<float, bool> cases[] = {
        {0.0f, false}, {-0.0f, false}, {1e-30f, true}, {quietNan, true}, {-2.0f, true}};
    for (const auto& [z, is3D] : cases) {
        EXPECT_EQ(CDrawingElement(point(1, 2, z), 0, 0).is3D(), is3D) << z;
        EXPECT_EQ(CLine(point(1, 2, 0), point(3, 4, z), 0, 0, 0, 1).isEnd3D(), is3D) << z;
    }
}

TEST(Emitters, DotsAndRecordsTakeTheWritersIndexCopiesDoNot) {
    Words words{0xBEEF}, record{0x3001, 0x240A, 0x0007};
    std::vector<unsigned int> map(6, 77);
    CSerializationState state(words, &map);
    CDot deep(point(12.345f, 1.0f, quietNan), 5, 2), flat(point(-1.0f, 0.5f, -0.0f), 65535, 0);
    CUnsupportedElement element(record, 5);
    record[1] = 0; // the element keeps its own copy
    CDot(point(1.0f, 0.1f, 0.0f), 5, 3).copy(state);
    deep.serialize(state);
    flat.serialize(state);
    element.serialize(state);
    EXPECT_EQ(words, (Words{0xBEEF, 0x240A, 5,      0x541A, 0x3F80, 0x0000, 0x3DCC, 0xCCCD, //
                            0x742A, 0x4145, 0x851F, 0x3F80, 0x0000, 0x7FC0, 0x0000,         //
                            0x541A, 0xBF80, 0x0000, 0x3F00, 0x0000, 0x3001, 0x240A, 0x0007}));
    EXPECT_EQ(deep.getOpcodeIndex(), 1u);
    EXPECT_EQ(flat.getOpcodeIndex(), 2u);
    EXPECT_EQ(element.getOpcodeIndex(), 3u);
    EXPECT_EQ(map, (std::vector<unsigned int>{2, 77, 1, 77, 77, 3}));
}

TEST(Line, EmittersWriteTheirPointWithItsOwnPen) {
    Words words;
    std::vector<unsigned int> map(10, 77);
    CSerializationState state(words, &map);
    const CLine copied(point(1, 0), point(0, 1, 3), 2, 4, 5, 6);
    copied.copyMoveTo(state);
    copied.copyLineTo(state);
    CLine first(point(0, 0, 1), point(1, 0), 3, 65535, 8, 9);
    CLine second(point(1, 0), point(2, 2), 5, 65535, 4, 6);
    CLine third(point(5, 5), point(0, 1, 3), 65535, 3, 1, 7);
    first.serializeStartPointAsMoveTo(state);
    second.serializeStartPointAsLineTo(state);
    // The end emitter takes the start index from the record written just before it.
    third.serializeEndPointAsLineTo(state);
    EXPECT_EQ(words, (Words{0x240A, 2, 0x5416, 0x3F80, 0, 0,      0,               // copied
                            0x240A, 4, 0x7427, 0,      0, 0x3F80, 0, 0x4040, 0,    //
                            0x240A, 3, 0x7426, 0,      0, 0,      0, 0x3F80, 0,    // first
                            0x240A, 5, 0x5417, 0x3F80, 0, 0,      0,               // second
                            0x240A, 3, 0x7427, 0,      0, 0x3F80, 0, 0x4040, 0})); // third
    EXPECT_EQ(fieldsOf(first), fieldsOf(CLine(point(0, 0, 1), point(1, 0), 3, 65535, 2, 9)));
    EXPECT_EQ(second.getOpcodeIndex(), 3u);
    EXPECT_EQ(fieldsOf(third), fieldsOf(CLine(point(5, 5), point(0, 1, 3), 65535, 3, 3, 4)));
    EXPECT_EQ(map, (std::vector<unsigned int>{77, 77, 77, 77, 3, 77, 77, 4, 2, 77}));
}

TEST(Line, ReverseExchangesPositionsAndIndicesButNotPens) {
    const CLine original(point(1, 2, 3), point(4, 5, 0), 7, 8, 10, 11);
    CLine line = original;
    line.reverse();
    EXPECT_EQ(fieldsOf(line), fieldsOf(CLine(point(4, 5, 0), point(1, 2, 3), 7, 8, 11, 10)));
    line.reverse();
    EXPECT_EQ(fieldsOf(line), fieldsOf(original));

    // Moving the end keeps its index unless a new one comes with it.
    line.setEndPoint(point(2, 2, 2));
    EXPECT_EQ(fieldsOf(line), fieldsOf(CLine(point(1, 2, 3), point(2, 2, 2), 7, 8, 10, 11)));
    line.setEndPoint(point(3, 3), noIndex);
    EXPECT_EQ(fieldsOf(line), fieldsOf(CLine(point(1, 2, 3), point(3, 3), 7, 8, 10, noIndex)));
}
