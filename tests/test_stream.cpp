#include <gtest/gtest.h>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <fstream>
#include <string>

using namespace LibStrokeset;
using test::StreamBuilder;
using test::Words;

namespace {

constexpr unsigned int noIndex = CElement::noIndex;
using Indices = std::vector<unsigned int>;

std::vector<Words> recordsOf(CStrokeset& document) {
    struct : IIteratorCallback {
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
    EXPECT_EQ(document.getOpcodeType(5), eDot);
    EXPECT_EQ(penAt(document, 5), 65535);
    EXPECT_EQ(test::serialized(document), words);
}

namespace {

/// What a document holds: its opcode count and the words it writes.
std::pair<unsigned int, Words> loaded(CStrokeset& document) {
    const unsigned int count = document.getOpcodeCount();
    return {count, test::serialized(document)};
}

} // namespace

TEST(StreamLoading, CutRecordEndsLoadingAndIsDroppedWithAllBehindIt) {
    // Whole records of every kind in front, the last of them a sub-path the cut may continue.
    const Words front =
        StreamBuilder().pen(3).dot(1, 1).raw({0x3001, 0xAAAA, 0xBBBB}).moveTo(0, 0).lineTo(1, 0);
    const Words dot = StreamBuilder().dot(5, 5);
    std::vector<Words> cuts;
    for (unsigned short opcode : {0x5416, 0x7426, 0x5417, 0x7427, 0x541A, 0x742A, 0x5000, 0xF123}) {
        const std::size_t length = opcode >> 12;
        for (std::size_t present = 1; present < length; ++present) {
            Words cut(present, 0x3F80);
            cut[0] = opcode;
            cuts.push_back(cut);
        }
    }
    cuts.push_back({0x240A});                         // a pen change without its pen
    cuts.push_back({0x0001});                         // long form without its length words
    cuts.push_back({0x0001, 0x0000});                 // ... without the second one
    cuts.push_back({0x0001, 0x0000, 0x0009, 0xAAAA}); // a length past the end
    cuts.push_back({0x0001, 0xFFFF, 0xFFFF, 0xAAAA});
    cuts.push_back({0x0001, 0xFFFF, 0xFFFE});
    // Lengths that cannot hold their own length words drop every word behind them.
    for (unsigned short length : {0, 1, 2}) {
        cuts.push_back(test::cat({{0x0002, 0x0000, length}, dot}));
    }
    CStrokeset whole(front);
    const auto expected = loaded(whole);
    for (const Words& cut : cuts) {
        SCOPED_TRACE(::testing::PrintToString(cut));
        const Words words = test::cat({front, cut});
        CStrokeset document;
        EXPECT_FALSE(document.paste(words));
        EXPECT_EQ(loaded(document), expected);
        EXPECT_FALSE(CStrokeset().setBinaryStrokesetData(words));
        EXPECT_EQ(CStrokeset::getCutRecordPosition(words), front.size());
        // The pen of a cut pen change is not taken either: a dot pasted next keeps pen 3.
        EXPECT_TRUE(document.paste(dot));
        EXPECT_EQ(penAt(document, expected.first), 3);
    }
    EXPECT_EQ(CStrokeset::getCutRecordPosition(front), noIndex);
    EXPECT_EQ(CStrokeset::getCutRecordPosition({}), noIndex);
}

TEST(StreamLoading, WhatAHostAddsBehindACutRecordSurvivesTheNextLoad) {
    CStrokeset document(Words{0x3001, 0xAAAA});
    EXPECT_TRUE(document.getCollections().empty());
    Eigen::RowVector3f p = test::point(2, 3);
    ASSERT_TRUE(document.newDot(p));
    CStrokeset reloaded(test::serialized(document));
    EXPECT_EQ(reloaded.getOpcodeCount(), 1u);
    EXPECT_EQ(reloaded.getOpcodeType(0), eDot);
}

TEST(StreamLoading, StreamsCutAtEveryPositionKeepTheirWholeRecords) {
    std::mt19937 random(20261124);
    for (int round = 0; round < 20; ++round) {
        // A random stream and the word positions where its records end.
        StreamBuilder builder;
        std::vector<std::size_t> ends{0};
        for (int record = 0; record < 12; ++record) {
            const float x = static_cast<float>(random() % 7), y = static_cast<float>(random() % 7);
            switch (random() % 7) {
            case 0: builder.pen(static_cast<unsigned short>(random() % 3)); break;
            case 1: builder.moveTo(x, y); break;
            case 2: builder.lineTo(x, y, random() % 2 ? 0.0f : 1.0f); break;
            case 3: builder.dot(x, y); break;
            case 4: builder.dot(x, y, 2); break;
            case 5: builder.raw({0x2005, 0x541A}); break;
            default: builder.raw({0x0000, 0x0000, 0x0004, 0x240A}); break;
            }
            ends.push_back(builder.words().size());
        }
        const Words& words = builder.words();
        for (std::size_t cut = 0; cut <= words.size(); ++cut) {
            const std::size_t whole = *(std::upper_bound(ends.begin(), ends.end(), cut) - 1);
            CStrokeset document, wholeRecords(Words(words.begin(), words.begin() + whole));
            EXPECT_EQ(document.paste(Words(words.begin(), words.begin() + cut)), whole == cut);
            EXPECT_EQ(loaded(document), loaded(wholeRecords)) << "cut at " << cut;
        }
    }
}

TEST(StreamFormat, PenChangeIsWrittenOnlyWhenThePenChanges) {
    // Each dot takes the pen in force when it is read, "no pen" included.
    StreamBuilder input;
    input.pen(0).dot(1, 0).pen(3).dot(2, 0).pen(65535).dot(3, 0).pen(7).dot(4, 0).pen(7).dot(5, 0);
    CStrokeset document(input);
    EXPECT_EQ(penAt(document, 0), 0);
    EXPECT_EQ(penAt(document, 2), 65535);
    // Every written stream starts at pen 0; "no pen" is never written.
    const Words written = test::serialized(document);
    EXPECT_EQ(
        written,
        StreamBuilder().dot(1, 0).pen(3).dot(2, 0).dot(3, 0).pen(7).dot(4, 0).dot(5, 0).words());
    CStrokeset reread(written);
    EXPECT_EQ(penAt(reread, 0), 65535);
    EXPECT_EQ(penAt(reread, 2), 3);
    EXPECT_EQ(penAt(reread, 4), 7);
}

TEST(SerializationState, AppendsWordsNumbersOpcodesAndFillsTheMap) {
    Words words{0x1111};
    Indices map(5, 99);
    CSerializationState state(words, &map);
    for (float value : {0.1f, 1.0f, 12.345f, -0.0f}) {
        state.writeFloat(value);
    }
    state.writePenNumber(4); // not an opcode
    EXPECT_EQ(state.writeOpcode(0x541A, 3), 0u);
    EXPECT_EQ(state.writeOpcode(0x541A, noIndex), 1u);
    EXPECT_EQ(state.writeBinaryElementData({0x3001, 0x0005, 0x0006}, 0), 2u);
    EXPECT_EQ(state.writeBinaryElementData({0x1000}, noIndex), 3u);
    EXPECT_EQ(state.writeOpcode(0x5417, 4), 4u);
    // An old index beyond the map throws, after the words are written.
    for (int form = 0; form < 2; ++form) {
        try {
            form == 0 ? state.writeOpcode(0x5417, 5) : state.writeBinaryElementData({0x2001}, 9);
            ADD_FAILURE() << "no exception";
        } catch (const char* message) {
            EXPECT_STREQ(message, "memory corruption");
        }
    }
    EXPECT_EQ(words,
              (Words{0x1111, 0x3DCC, 0xCCCD, 0x3F80, 0,      0x4145, 0x851F, 0x8000, 0,      //
                     0x240A, 4,      0x541A, 0x541A, 0x3001, 5,      6,      0x1000, 0x5417, //
                     0x5417, 0x2001})); // the words of the calls that threw
    EXPECT_EQ(map, (Indices{2, 99, 99, 0, 4}));
}

TEST(StkFile, WordsAreStoredBigEndianAndFailuresLeaveWordsAlone) {
    std::string dir = ::testing::TempDir() + "stkXXXXXX";
    ASSERT_NE(mkdtemp(dir.data()), nullptr);
    const std::string file = dir + "/a.stk", odd = dir + "/odd.stk", huge = dir + "/huge.stk";
    Words words(10, 0x7777), empty;
    std::string error = "earlier message";
    std::ofstream(file, std::ios::binary) << std::string("\x24\x0A\x00\x03\xFF\x01", 6);
    ASSERT_TRUE(CStrokeset::readStkFile(file, words, error));
    EXPECT_EQ(words, (Words{0x240A, 0x0003, 0xFF01}));
    // Written back, the words read the same; an empty stream is an empty file.
    for (Words* written : {&words, &empty}) {
        Words read{0x1111};
        ASSERT_TRUE(CStrokeset::writeStkFile(file, *written, error));
        EXPECT_EQ(std::filesystem::file_size(file), 2 * written->size());
        ASSERT_TRUE(CStrokeset::readStkFile(file, read, error));
        EXPECT_EQ(read, *written);
    }
    EXPECT_EQ(error, "earlier message");

    std::ofstream(odd, std::ios::binary) << std::string("\x24\x0A\x00", 3);
    EXPECT_FALSE(CStrokeset::readStkFile(odd, words, error));
    EXPECT_EQ(error, "File has wrong length!");
    EXPECT_FALSE(CStrokeset::readStkFile(dir + "/missing.stk", words, error));
    EXPECT_EQ(error, "File could not be opened!");
    EXPECT_FALSE(CStrokeset::writeStkFile(dir + "/no-such-dir/b.stk", words, error));
    EXPECT_EQ(error, "File to save could not be opened!");
    // A sparse file whose size does not fit the signed 32-bit byte count.
    std::ofstream(huge, std::ios::binary).close();
    if (truncate(huge.c_str(), 2147483648LL) == 0) {
        EXPECT_FALSE(CStrokeset::readStkFile(huge, words, error));
        EXPECT_EQ(error, "File is too large!");
    }
    EXPECT_EQ(words, (Words{0x240A, 0x0003, 0xFF01}));
    std::filesystem::remove_all(dir); // only what this test made
}
