#include <gtest/gtest.h>

#include "StreamBuilder.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

using namespace LibStrokeset;
using test::point;
using test::serialized;
using test::StreamBuilder;
using test::Words;

namespace {

using Indices = std::vector<unsigned int>;
using Types = std::vector<EOpcodeType>;
constexpr unsigned int none = CElement::noIndex;

// One letter per collection in list order: P sub-path, D dots, U unsupported records.
std::string kindsOf(const CStrokeset& doc) {
    std::string kinds;
    for (const CCollection* c : doc.getCollections()) {
        kinds += dynamic_cast<const CSubPath*>(c)         ? 'P'
                 : dynamic_cast<const CDotCollection*>(c) ? 'D'
                                                          : 'U';
    }
    return kinds;
}

// Callers check kindsOf first, so the collection exists.
Indices rangeAt(const CStrokeset& doc, std::size_t position) {
    const CCollection* c = *std::next(doc.begin(), static_cast<std::ptrdiff_t>(position));
    return {c->getMinOpcodeIndex(), c->getMaxOpcodeIndex()};
}

unsigned short penOf(CStrokeset& doc, unsigned int index) {
    unsigned short pen = 0;
    EXPECT_TRUE(doc.getPenNumber(index, pen)) << index;
    return pen;
}

// Writes down every visit as text, points as x,y,z.
struct Recorder : IIteratorCallback {
    const Eigen::IOFormat xyz{Eigen::StreamPrecision, Eigen::DontAlignCols, ",", ","};
    std::ostringstream log;
    void onDot(const Eigen::RowVector3f& p) override { log << "dot " << p.format(xyz) << "; "; }
    void onLine(const Eigen::RowVector3f& s, const Eigen::RowVector3f& e, bool first,
                bool last) override {
        log << "line " << s.format(xyz) << " to " << e.format(xyz) << (first ? " first" : "")
            << (last ? " last" : "") << "; ";
    }
    void onUnsupportedElement(const Words& words) override {
        log << "record of " << words.size() << "; ";
    }
};

} // namespace

TEST(StrokesetCore, EmptyDocumentHasNothingToFind) {
    CStrokeset doc;
    Types types{eDot};
    EXPECT_TRUE(doc.getOpcodeTypes(types));
    EXPECT_TRUE(types.empty());
    Words words{0xBEEF};
    EXPECT_EQ(doc.serialize(words, nullptr), 0u);
    EXPECT_EQ(words, Words{0xBEEF});
    EXPECT_EQ(doc.getCollectionIncludingPoint(0), nullptr);
    EXPECT_TRUE(doc.paste({}));
    EXPECT_TRUE(doc.getCollections().empty());
}

TEST(StrokesetCore, DrawingIsWrittenRecordByRecordWithFreshNumbering) {
    // A redundant pen change, a 3D move-to with z = 0 and a z of -0: none survives writing.
    StreamBuilder input;
    input.pen(2).pen(2).moveTo(0, 0, 0).lineTo(1, 0).lineTo(1, 1, -0.0f).pen(3).dot(0.5f, 0.5f, 2);
    CStrokeset doc(input.raw({0x3001, 0xAAAA, 0xBBBB}).moveTo(2, 2).lineTo(3, 3));
    const Words written{0x240A, 0x0002,                                         // pen 2
                        0x5416, 0x0000, 0x0000, 0x0000, 0x0000,                 // move-to (0, 0)
                        0x5417, 0x3F80, 0x0000, 0x0000, 0x0000,                 // line-to (1, 0)
                        0x5417, 0x3F80, 0x0000, 0x3F80, 0x0000,                 // line-to (1, 1)
                        0x240A, 0x0003,                                         // pen 3
                        0x742A, 0x3F00, 0x0000, 0x3F00, 0x0000, 0x4000, 0x0000, // 3D dot
                        0x3001, 0xAAAA, 0xBBBB,                                 // record
                        0x5416, 0x4000, 0x0000, 0x4000, 0x0000,                 // move-to (2, 2)
                        0x5417, 0x4040, 0x0000, 0x4040, 0x0000};                // line-to (3, 3)
    ASSERT_EQ(kindsOf(doc), "PDUP");
    EXPECT_EQ(doc.getOpcodeCount(), 7u);
    EXPECT_EQ(doc.getPointsCount(), 7u);
    EXPECT_EQ(doc.getUnsupportedOpcodeCount(), 1u);
    Types types;
    EXPECT_TRUE(doc.getOpcodeTypes(types));
    EXPECT_EQ(types, (Types{eSubPathStart, eSubPathPoint, eSubPathEnd, eDot, eUnsupported,
                            eSubPathStart, eSubPathEnd}));
    EXPECT_EQ(doc.getOpcodeType(8), eNone);
    EXPECT_EQ(rangeAt(doc, 0), (Indices{0, 2}));
    EXPECT_EQ(doc.getCollectionIncludingPoint(3), *std::next(doc.begin()));
    EXPECT_EQ(doc.getCollectionIndexOfPoint(4), 2u);
    EXPECT_EQ(doc.getCollectionIndexOfPoint(7), none);
    Recorder recorder;
    doc.iterate(recorder);
    EXPECT_EQ(recorder.log.str(), "line 0,0,0 to 1,0,0 first; line 1,0,0 to 1,1,-0 last; "
                                  "dot 0.5,0.5,2; record of 3; line 2,2,0 to 3,3,0 first last; ");

    // Writing appends; twice in a row gives the same words and the same indices.
    Indices map;
    Words twice;
    EXPECT_EQ(doc.serialize(twice, &map), 7u);
    EXPECT_EQ(doc.serialize(twice, &map), 7u);
    EXPECT_EQ(Words(twice.begin(), twice.begin() + written.size()), written);
    EXPECT_EQ(Words(twice.begin() + written.size(), twice.end()), written);
    EXPECT_EQ(map, (Indices{0, 1, 2, 3, 4, 5, 6}));
}

TEST(StrokesetLoading, RecordsOfAKindRunOnAcrossPenChangesOnly) {
    StreamBuilder words;
    words.dot(1, 1).pen(5).dot(2, 2).moveTo(3, 3).dot(4, 4).raw({0x1001}).pen(6).raw({0x2002, 0});
    CStrokeset doc(words.dot(5, 5));
    ASSERT_EQ(kindsOf(doc), "DDUD");
    EXPECT_EQ(doc.getOpcodeCount(), 7u);
    EXPECT_EQ(doc.getOpcodeType(2), eNone);
    EXPECT_EQ(rangeAt(doc, 2), (Indices{4, 5}));
    EXPECT_EQ(penOf(doc, 6), 6);

    // A line-to without a move-to starts at the origin with index 0 and no pen; after a dot it
    // starts at the dot with the index and pen of the last line point.
    CStrokeset lines(StreamBuilder().pen(4).lineTo(1, 1).dot(5, 5).pen(6).lineTo(6, 6));
    ASSERT_EQ(kindsOf(lines), "PDP");
    EXPECT_EQ(rangeAt(lines, 0), (Indices{0, 0}));
    EXPECT_EQ(rangeAt(lines, 2), (Indices{0, 2}));
    EXPECT_EQ(penOf(lines, 0), 65535);
    StreamBuilder expected;
    expected.moveTo(0, 0).pen(4).lineTo(1, 1).dot(5, 5).moveTo(5, 5).pen(6).lineTo(6, 6);
    EXPECT_EQ(serialized(lines), expected.words());

    // After a record the new sub-path shares the previous end point and its index; the first
    // collection in list order answers for the shared index.
    CStrokeset split(StreamBuilder().moveTo(0, 0).lineTo(1, 0).raw({0x1234}).lineTo(2, 0));
    ASSERT_EQ(kindsOf(split), "PUP");
    EXPECT_EQ(rangeAt(split, 2), (Indices{1, 3}));
    EXPECT_EQ(split.getCollectionIndexOfPoint(1), 0u);
    EXPECT_EQ(
        serialized(split),
        StreamBuilder().moveTo(0, 0).lineTo(1, 0).raw({0x1234}).moveTo(1, 0).lineTo(2, 0).words());
    EXPECT_EQ(split.getOpcodeCount(), 5u);
}

TEST(StrokesetCore, CopiesAreLoadedFromTheSerializedSource) {
    const Words gapped = StreamBuilder().dot(1, 1).dot(2, 2).moveTo(9, 9).dot(3, 3);
    CStrokeset source(gapped), target(StreamBuilder().pen(9).raw({0x1001})), self(gapped);
    CStrokeset copy(source);
    EXPECT_EQ(kindsOf(copy), "D");
    EXPECT_EQ(source.getOpcodeCount(), 3u);
    EXPECT_EQ(rangeAt(source, 1), (Indices{2, 2}));
    EXPECT_EQ(serialized(copy), StreamBuilder().dot(1, 1).dot(2, 2).dot(3, 3).words());

    // Assignment starts afresh, the current pen included; assigning to itself changes nothing.
    target = source;
    EXPECT_EQ(kindsOf(target), "D");
    target.paste(StreamBuilder().dot(7, 7));
    EXPECT_EQ(penOf(target, 3), 65535);
    CStrokeset& alias = self;
    self = alias;
    EXPECT_EQ(kindsOf(self), "DD");
    EXPECT_EQ(rangeAt(self, 1), (Indices{3, 3}));
}

TEST(StrokesetCore, SerializeMapsOldIndicesToNewOnes) {
    CStrokeset doc(StreamBuilder().dot(1, 0).dot(2, 0).dot(3, 0).dot(4, 0).raw({0x1000}));
    EXPECT_TRUE(doc.deletePoint(1));
    EXPECT_TRUE(doc.deletePoint(3));
    EXPECT_EQ(doc.getOpcodeType(1), eNone);
    // Grown to the opcode count with no entries; what it held for deleted points stays.
    Indices map{77, 77};
    Words words;
    EXPECT_EQ(doc.serialize(words, &map), 3u);
    EXPECT_EQ(words, StreamBuilder().dot(1, 0).dot(3, 0).raw({0x1000}).words());
    EXPECT_EQ(map, (Indices{0, 77, 1, none, 2}));

    // A new dot has no index, which every collection reports; a longer map keeps its length.
    Eigen::RowVector3f p = point(4, 0);
    EXPECT_TRUE(doc.insertDot(0, p));
    EXPECT_EQ(doc.getOpcodeCount(), 3u);
    Types types;
    EXPECT_FALSE(doc.getOpcodeTypes(types));
    EXPECT_EQ(types, (Types{eDot, eNone, eUnsupported}));
    map.assign(4, 77);
    EXPECT_EQ(doc.serialize(words, &map), 4u);
    EXPECT_EQ(map, (Indices{0, 2, 3, 77}));
    EXPECT_TRUE(doc.getOpcodeTypes(types));
    EXPECT_EQ(types, (Types{eDot, eDot, eDot, eUnsupported}));
}

TEST(StrokesetCopy, SelectionsAreWrittenAsNewStreamsAndPastedBehind) {
    StreamBuilder path;
    path.pen(1).moveTo(0, 0).lineTo(1, 0).lineTo(2, 0).lineTo(3, 0);
    const Words whole = path, dot = StreamBuilder().pen(1).dot(5, 5);
    CStrokeset doc(path.dot(5, 5));
    const struct {
        Indices indices;
        bool copied;
        Words written;
        const char* printed;
    } cases[] = {
        {{}, true, {}, ""},
        {{1, 99}, false, {}, ""},
        {{2, 1}, true, StreamBuilder().pen(1).moveTo(1, 0).lineTo(2, 0), ""},
        {{3, 0}, true, StreamBuilder().pen(1).moveTo(0, 0).lineTo(3, 0), ""},
        {{0, 1, 2, 3}, true, whole, ""},
        // One point of a sub-path makes no polyline; a repeated index is written once.
        {{2, 4}, true, dot, "numOfOpcodes=1; opcodeIndices=2\n"},
        {{4, 4}, true, dot, "numOfOpcodes=1; opcodeIndices=2\n"},
    };
    for (const auto& c : cases) {
        Words words{0xBEEF}; // copy appends
        testing::internal::CaptureStdout();
        EXPECT_EQ(doc.copy(c.indices, words), c.copied);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.printed);
        EXPECT_EQ(words.front(), 0xBEEF);
        EXPECT_EQ(Words(words.begin() + 1, words.end()), c.written);
    }
    // Every paste opens a collection of its own, numbered on from the opcode count, and leaves
    // its pen for the next.
    EXPECT_TRUE(doc.paste(StreamBuilder().pen(7).dot(6, 6).dot(7, 7)));
    EXPECT_TRUE(doc.paste(dot));
    EXPECT_TRUE(doc.paste(StreamBuilder().dot(8, 8)));
    ASSERT_EQ(kindsOf(doc), "PDDDD");
    EXPECT_EQ(doc.getOpcodeCount(), 9u);
    EXPECT_EQ(rangeAt(doc, 2), (Indices{5, 6}));
    EXPECT_EQ(penOf(doc, 6), 7);
    EXPECT_EQ(penOf(doc, 8), 1);
}

TEST(StrokesetDrawings, RealDrawingsRoundTripWordForWord) {
    namespace fs = std::filesystem;
    int files = 0;
    if (fs::is_directory(LIBSTROKESET_DRAWINGS_DIR)) {
        for (const fs::directory_entry& entry : fs::directory_iterator(LIBSTROKESET_DRAWINGS_DIR)) {
            if (entry.path().extension() != ".stk") {
                continue;
            }
            SCOPED_TRACE(entry.path().string());
            ++files;
            Words words, written;
            std::string error;
            ASSERT_TRUE(CStrokeset::readStkFile(entry.path().string(), words, error)) << error;
            // Drawings hold pen changes and short-form records only: count the numbered ones.
            unsigned int records = 0;
            for (std::size_t at = 0; at < words.size(); at += std::max(words[at] >> 12, 1)) {
                records += words[at] == 0x240A ? 0 : 1;
            }
            CStrokeset doc(words);
            EXPECT_EQ(doc.getOpcodeCount(), records);
            EXPECT_EQ(doc.serialize(written, nullptr), records);
            EXPECT_TRUE(written == words) << "the written words differ from the file's";
        }
    }
    EXPECT_EQ(files, 3) << "the drawings in " << LIBSTROKESET_DRAWINGS_DIR;
}
