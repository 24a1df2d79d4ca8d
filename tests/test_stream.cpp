#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

using LibStrokeset::CSerializationState;
using LibStrokeset::CStrokeset;
using LibStrokeset::EOpcodeType;
using test::Words;

namespace {

constexpr unsigned int noIndex = 4294967295u;

std::vector<Words> recordsOf(CStrokeset& document) {
    struct : LibStrokeset::IIteratorCallback {
        std::vector<Words> records;
        void onDot(const Eigen::RowVector3f&) override {}
        void onLine(const Eigen::RowVector3f&, const Eigen::RowVector3f&, bool, bool) override {}
        void onUnsupportedElement(const Words& words) override { records.push_back(words); }
    } recorder;
    document.iterate(recorder);
    return recorder.records;
}

unsigned short penAt(CStrokeset& document, unsigned int index) {
    unsigned short pen = 12345;
    EXPECT_TRUE(document.getPenNumber(index, pen));
    return pen;
}

} // namespace

TEST(StreamFormat, DocumentIsWrittenRecordByRecordWithFreshNumbering) {
    // A redundant pen change, a 3D move-to with z = 0 and a z of -0: none survives writing.
    test::StreamBuilder input;
    input.pen(2).pen(2).moveTo(0, 0, 0).lineTo(1, 0).lineTo(1, 1, -0.0f).pen(3).dot(0.5f, 0.5f, 2);
    input.raw({0x3001, 0xAAAA, 0xBBBB});
    CStrokeset document(input);
    EXPECT_EQ(document.getOpcodeCount(), 5u);
    std::vector<EOpcodeType> types;
    EXPECT_TRUE(document.getOpcodeTypes(types));
    EXPECT_EQ(types,
              (std::vector<EOpcodeType>{LibStrokeset::eSubPathStart, LibStrokeset::eSubPathPoint,
                                        LibStrokeset::eSubPathEnd, LibStrokeset::eDot,
                                        LibStrokeset::eUnsupported}));
    std::vector<unsigned int> map;
    EXPECT_EQ(test::serialized(document, &map),
              (Words{0x240A, 0x0002,                                         // pen 2
                     0x5416, 0x0000, 0x0000, 0x0000, 0x0000,                 // move-to (0, 0)
                     0x5417, 0x3F80, 0x0000, 0x0000, 0x0000,                 // line-to (1, 0)
                     0x5417, 0x3F80, 0x0000, 0x3F80, 0x0000,                 // line-to (1, 1)
                     0x240A, 0x0003,                                         // pen 3
                     0x742A, 0x3F00, 0x0000, 0x3F00, 0x0000, 0x4000, 0x0000, // 3D dot
                     0x3001, 0xAAAA, 0xBBBB}));
    EXPECT_EQ(map, (std::vector<unsigned int>{0, 1, 2, 3, 4}));
}

TEST(StreamFormat, MoveToConsumesAnIndexWithoutMakingAnElement) {
    CStrokeset document(test::StreamBuilder().moveTo(5, 5).moveTo(0, 0).dot(1, 1));
    EXPECT_EQ(document.getOpcodeCount(), 3u);
    EXPECT_EQ(document.getOpcodeType(0), LibStrokeset::eNone);
    EXPECT_EQ(document.getOpcodeType(1), LibStrokeset::eNone);
    EXPECT_EQ(document.getOpcodeType(2), LibStrokeset::eDot);
    std::vector<unsigned int> map;
    EXPECT_EQ(test::serialized(document, &map), (Words{0x541A, 0x3F80, 0, 0x3F80, 0}));
    EXPECT_EQ(map, (std::vector<unsigned int>{noIndex, noIndex, 0}));
    EXPECT_EQ(document.getOpcodeCount(), 1u);
}

TEST(StreamFormat, UnsupportedRecordsAreKeptWholeAndWrittenVerbatim) {
    const Words words{0x5418, 0x0001, 0x0002, 0x0003, 0x0004, // close to a dot, still 5 words
                      0x1234,                                 // one word
                      0x0123, 0x0000, 0x0004, 0xBEEF,         // long form, 4 words
                      0x0000, 0x0000, 0x0003,                 // long form, only its length
                      0x3001, 0x240A, 0x0007,                 // a pen change word as data
                      0x541A, 0x3F80, 0x0000, 0x3F80, 0x0000};
    CStrokeset document(words);
    EXPECT_EQ(recordsOf(document), (std::vector<Words>{{0x5418, 1, 2, 3, 4},
                                                       {0x1234},
                                                       {0x0123, 0x0000, 0x0004, 0xBEEF},
                                                       {0x0000, 0x0000, 0x0003},
                                                       {0x3001, 0x240A, 0x0007}}));
    EXPECT_EQ(document.getOpcodeCount(), 6u);
    EXPECT_EQ(document.getUnsupportedOpcodeCount(), 5u);
    EXPECT_EQ(document.getOpcodeType(4), LibStrokeset::eUnsupported);
    EXPECT_EQ(document.getOpcodeType(5), LibStrokeset::eDot);
    EXPECT_EQ(penAt(document, 5), 65535);
    EXPECT_EQ(test::serialized(document), words);
}

TEST(StreamFormat, RecordsCutShortBecomeOneRecordHoldingTheRest) {
    const std::vector<Words> streams{
        {0x541A, 0x3F80, 0x0000},
        {0x7426, 0x0000, 0x0000, 0x0000, 0x0000, 0x0000},
        {0x5000, 0x0001},
        {0x0001, 0x0000, 0x0009, 0xAAAA}, // long-form length past the end
        {0x0001, 0x0000},                 // second length word missing
        {0x0002},
        // Lengths that cannot cover the length words swallow everything behind them.
        {0x0002, 0x0000, 0x0000, 0x541A, 0x3F80, 0x0000, 0x3F80, 0x0000},
        {0x0002, 0x0000, 0x0002, 0x1234},
    };
    for (const Words& words : streams) {
        CStrokeset document;
        EXPECT_TRUE(document.paste(words));
        EXPECT_EQ(recordsOf(document), std::vector<Words>{words});
        EXPECT_EQ(document.getOpcodeCount(), 1u);
        EXPECT_EQ(test::serialized(document), words);
    }

    // A complete dot followed by a lone pen change word: the dot stays, the word is a record.
    const Words words{0x541A, 0x3F80, 0x0000, 0x3F80, 0x0000, 0x240A};
    CStrokeset document(words);
    EXPECT_EQ(document.getOpcodeCount(), 2u);
    EXPECT_EQ(document.getOpcodeType(0), LibStrokeset::eDot);
    EXPECT_EQ(recordsOf(document), (std::vector<Words>{{0x240A}}));
    EXPECT_EQ(test::serialized(document), words);
}

TEST(StreamFormat, PenChangeIsWrittenOnlyWhenThePenChanges) {
    using test::StreamBuilder;
    // "No pen" after pen 3 writes nothing and reads back as pen 3.
    CStrokeset noPen(StreamBuilder().pen(3).dot(1, 0).pen(65535).dot(2, 0));
    EXPECT_EQ(penAt(noPen, 0), 3);
    EXPECT_EQ(penAt(noPen, 1), 65535);
    const Words written = test::serialized(noPen);
    EXPECT_EQ(written, (Words{0x240A, 3, 0x541A, 0x3F80, 0, 0, 0, 0x541A, 0x4000, 0, 0, 0}));
    CStrokeset reread(written);
    EXPECT_EQ(penAt(reread, 1), 3);

    // Every written stream starts at pen 0, so a leading pen 0 is not written.
    CStrokeset penZero(StreamBuilder().pen(0).dot(1, 0));
    EXPECT_EQ(test::serialized(penZero), (Words{0x541A, 0x3F80, 0, 0, 0}));
    CStrokeset rereadZero(test::serialized(penZero));
    EXPECT_EQ(penAt(rereadZero, 0), 65535);

    // Pen changes between dots keep them in one collection, each dot with its own pen.
    CStrokeset pens(StreamBuilder().pen(7).dot(1, 0).pen(7).dot(2, 0).pen(2).dot(1, 0));
    EXPECT_EQ(pens.getCollections().size(), 1u);
    EXPECT_EQ(penAt(pens, 2), 2);
    EXPECT_EQ(test::serialized(pens),
              StreamBuilder().pen(7).dot(1, 0).dot(2, 0).pen(2).dot(1, 0).words());
}

TEST(SerializationState, WriteFloatAppendsHighWordFirstBehindExistingWords) {
    Words words{0x1111};
    CSerializationState state(words, nullptr);
    for (float value : {0.1f, 1.0f, 12.345f, -0.0f}) {
        state.writeFloat(value);
    }
    EXPECT_EQ(words, (Words{0x1111, 0x3DCC, 0xCCCD, 0x3F80, 0, 0x4145, 0x851F, 0x8000, 0}));
}

TEST(SerializationState, NumbersOpcodesAndFillsTheIndexMap) {
    Words words;
    std::vector<unsigned int> map(5, 99);
    CSerializationState state(words, &map);
    state.writePenNumber(4); // not an opcode
    EXPECT_EQ(state.writeOpcode(0x541A, 3), 0u);
    EXPECT_EQ(state.writeOpcode(0x541A, noIndex), 1u);
    EXPECT_EQ(state.writeBinaryElementData({0x3001, 0x0005, 0x0006}, 0), 2u);
    EXPECT_EQ(state.writeBinaryElementData({0x1000}, noIndex), 3u);
    EXPECT_EQ(state.writeOpcode(0x5417, 4), 4u);
    EXPECT_EQ(words, (Words{0x240A, 4, 0x541A, 0x541A, 0x3001, 0x0005, 0x0006, 0x1000, 0x5417}));
    EXPECT_EQ(map, (std::vector<unsigned int>{2, 99, 99, 0, 4}));
}

TEST(SerializationState, OldIndexBeyondTheMapThrowsMemoryCorruption) {
    Words words;
    std::vector<unsigned int> map(2, 99);
    CSerializationState state(words, &map);
    EXPECT_EQ(state.writeOpcode(0x541A, 1), 0u);
    auto expectCorruption = [](auto&& write) {
        try {
            write();
            ADD_FAILURE() << "no exception";
        } catch (const char* message) {
            EXPECT_STREQ(message, "memory corruption");
        }
    };
    expectCorruption([&] { state.writeOpcode(0x5417, 2); });
    expectCorruption([&] { state.writeBinaryElementData({0x2001, 0xABCD}, 9); });
    // What was written stays, the words of the failing calls included.
    EXPECT_EQ(words, (Words{0x541A, 0x5417, 0x2001, 0xABCD}));
    EXPECT_EQ(map, (std::vector<unsigned int>{99, 0}));
}

TEST(SerializationState, PenChangeOnlyForRealPensNotInForce) {
    Words words;
    CSerializationState state(words, nullptr);
    for (unsigned short pen : {0, 65535, 7, 7, 65535, 7, 0}) {
        state.writePenNumber(pen);
    }
    EXPECT_EQ(words, (Words{0x240A, 7, 0x240A, 0}));
    EXPECT_EQ(state.writeOpcode(0x541A, noIndex), 0u);
}

class StkFile : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_NE(mkdtemp(m_dir.data()), nullptr); }
    void TearDown() override { std::filesystem::remove_all(m_dir); } // only what SetUp made
    std::string path(const char* name) const { return m_dir + "/" + name; }
    std::string bytesOf(const char* name) const {
        std::ifstream file(path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    std::string m_dir = ::testing::TempDir() + "stkXXXXXX";
};

TEST_F(StkFile, WordsAreStoredBigEndianAndReadBack) {
    Words words{0x240A, 0x0003, 0xFF01};
    std::string error = "earlier message";
    ASSERT_TRUE(CStrokeset::writeStkFile(path("a.stk"), words, error));
    EXPECT_EQ(bytesOf("a.stk"), std::string("\x24\x0A\x00\x03\xFF\x01", 6));
    Words read(10, 0x7777);
    ASSERT_TRUE(CStrokeset::readStkFile(path("a.stk"), read, error));
    EXPECT_EQ(read, words);
    EXPECT_EQ(error, "earlier message");

    // Rewriting truncates; an empty stream is an empty file and reads back empty.
    Words empty;
    ASSERT_TRUE(CStrokeset::writeStkFile(path("a.stk"), empty, error));
    EXPECT_EQ(std::filesystem::file_size(path("a.stk")), 0u);
    EXPECT_TRUE(CStrokeset::readStkFile(path("a.stk"), read, error));
    EXPECT_TRUE(read.empty());
    EXPECT_EQ(error, "earlier message");
}

TEST_F(StkFile, FailuresReportAndLeaveWordsAlone) {
    const Words before{0xAAAA, 0xBBBB};
    Words words = before;
    std::string error;
    std::ofstream(path("odd.stk"), std::ios::binary) << std::string("\x24\x0A\x00", 3);
    EXPECT_FALSE(CStrokeset::readStkFile(path("odd.stk"), words, error));
    EXPECT_EQ(error, "File has wrong length!");
    EXPECT_EQ(words, before);

    EXPECT_FALSE(CStrokeset::readStkFile(path("missing.stk"), words, error));
    EXPECT_EQ(error, "File could not be opened!");
    EXPECT_EQ(words, before);

    const std::string unreachable = path("no-such-dir/out.stk");
    EXPECT_FALSE(CStrokeset::writeStkFile(unreachable, words, error));
    EXPECT_EQ(error, "File to save could not be opened!");
    EXPECT_FALSE(std::filesystem::exists(unreachable));

    // A sparse file whose size does not fit the signed 32-bit byte count.
    std::ofstream(path("huge.stk"), std::ios::binary).close();
    if (truncate(path("huge.stk").c_str(), 2147483648LL) != 0) {
        GTEST_SKIP() << "cannot make a sparse file here";
    }
    EXPECT_FALSE(CStrokeset::readStkFile(path("huge.stk"), words, error));
    EXPECT_EQ(error, "File is too large!");
    EXPECT_EQ(words, before);
}
