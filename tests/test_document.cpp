#include <gtest/gtest.h>

#include "StreamBuilder.h"

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

// A sub-path (0,0) (1,0) (1,1) with pen 2, a dot (0.5, 0.5, 2) with pen 3, a 3-word record.
const Words exampleWords{0x240A, 0x0002, 0x5416, 0x0000, 0x0000, 0x0000, 0x0000, 0x5417,
                         0x3F80, 0x0000, 0x0000, 0x0000, 0x5417, 0x3F80, 0x0000, 0x3F80,
                         0x0000, 0x240A, 0x0003, 0x742A, 0x3F00, 0x0000, 0x3F00, 0x0000,
                         0x4000, 0x0000, 0x3001, 0xAAAA, 0xBBBB};

// One letter per collection in list order: P sub-path, D dots, U unsupported records.
std::string kindsOf(const CStrokeset& doc) {
    std::string kinds;
    for (const CCollection* c : doc.getCollections()) {
        kinds += dynamic_cast<const CSubPath*>(c)                        ? 'P'
                 : dynamic_cast<const CDotCollection*>(c)                ? 'D'
                 : dynamic_cast<const CUnsupportedElementCollection*>(c) ? 'U'
                                                                         : '?';
    }
    return kinds;
}

CCollection* collectionAt(CStrokeset& doc, std::size_t position) {
    if (position >= doc.getCollections().size()) {
        ADD_FAILURE() << "no collection at " << position;
        return nullptr;
    }
    return *std::next(doc.getCollections().begin(), static_cast<std::ptrdiff_t>(position));
}

const CLine& lineOf(CStrokeset& doc, std::size_t position, std::size_t line) {
    return dynamic_cast<CSubPath&>(*collectionAt(doc, position)).getLines().at(line);
}

unsigned short penOf(CStrokeset& doc, unsigned int index) {
    unsigned short pen = 0;
    EXPECT_TRUE(doc.getPenNumber(index, pen)) << index;
    return pen;
}

Indices rangeOf(const CCollection* collection) {
    if (collection == nullptr) {
        return {};
    }
    return {collection->getMinOpcodeIndex(), collection->getMaxOpcodeIndex()};
}

// Copies the selection after a marker word and returns what copy printed.
std::string copyOut(CStrokeset& doc, const Indices& indices, Words& words, bool result = true) {
    words = {0xBEEF};
    testing::internal::CaptureStdout();
    EXPECT_EQ(doc.copy(indices, words), result);
    return testing::internal::GetCapturedStdout();
}

Words withMarker(const Words& words) {
    Words result{0xBEEF};
    result.insert(result.end(), words.begin(), words.end());
    return result;
}

std::string text(const Eigen::RowVector3f& p) {
    std::ostringstream out;
    out << p.x() << ',' << p.y() << ',' << p.z();
    return out.str();
}

// Start and end of a line: position, opcode index and pen.
std::string text(const CLine& line) {
    std::ostringstream out;
    out << text(line.getPosition()) << " #" << line.getOpcodeIndex() << " p" << line.getPenNumber()
        << " to " << text(line.getEndPosition()) << " #" << line.getEndOpcodeIndex() << " p"
        << line.getEndPenNumber();
    return out.str();
}

// Writes down every visit as text.
struct Recorder : IIteratorCallback {
    std::string log;
    void onDot(const Eigen::RowVector3f& p) override { log += "dot " + text(p) + "; "; }
    void onLine(const Eigen::RowVector3f& s, const Eigen::RowVector3f& e, bool first,
                bool last) override {
        log += "line " + text(s) + " " + text(e) + (first ? " first" : "") + (last ? " last" : "") +
               "; ";
    }
    void onUnsupportedElement(const std::vector<unsigned short>& words) override {
        log += "record of " + std::to_string(words.size()) + "; ";
    }
};

// Numbered records of a stream of known records and short-form unsupported ones.
unsigned int countNumberedRecords(const Words& words) {
    unsigned int count = 0;
    for (std::size_t at = 0; at < words.size();) {
        const std::size_t length = words[at] >> 12;
        count += words[at] == 0x240A ? 0 : 1;
        at += length == 0 ? words.size() : length;
    }
    return count;
}

} // namespace

TEST(StrokesetCore, EmptyDocumentHasNothingToFind) {
    CStrokeset doc;
    EXPECT_EQ(doc.getOpcodeType(0), eNone);
    Types types{eDot};
    EXPECT_TRUE(doc.getOpcodeTypes(types));
    EXPECT_TRUE(types.empty());
    Words words{0xBEEF};
    EXPECT_EQ(doc.serialize(words, nullptr), 0u);
    EXPECT_EQ(words, Words{0xBEEF});
    EXPECT_EQ(doc.getCollectionIndexOfPoint(0), none);
    EXPECT_TRUE(doc.paste({}));
    EXPECT_TRUE(doc.getCollections().empty());
}

TEST(StrokesetCore, ExampleDrawingWritesItsWordsWithIndicesZeroToFour) {
    CStrokeset doc(exampleWords);
    ASSERT_EQ(kindsOf(doc), "PDU");
    EXPECT_EQ(doc.getOpcodeCount(), 5u);
    EXPECT_EQ(doc.getPointsCount(), 5u);
    EXPECT_EQ(doc.getUnsupportedOpcodeCount(), 1u);
    // Writing appends; twice in a row gives the same words and the same indices.
    Words twice;
    EXPECT_EQ(doc.serialize(twice, nullptr), 5u);
    EXPECT_EQ(doc.serialize(twice, nullptr), 5u);
    Words expected = exampleWords;
    expected.insert(expected.end(), exampleWords.begin(), exampleWords.end());
    EXPECT_EQ(twice, expected);
    Types types;
    EXPECT_TRUE(doc.getOpcodeTypes(types));
    EXPECT_EQ(types, (Types{eSubPathStart, eSubPathPoint, eSubPathEnd, eDot, eUnsupported}));
    EXPECT_EQ(doc.getOpcodeType(6), eNone);
    EXPECT_EQ(rangeOf(collectionAt(doc, 0)), (Indices{0, 2}));
    EXPECT_EQ(doc.getCollectionIncludingPoint(3), collectionAt(doc, 1));
    EXPECT_EQ(doc.getCollectionIndexOfPoint(4), 2u);
    EXPECT_EQ(doc.getCollectionIndexOfPoint(5), none);
}

TEST(StrokesetCore, IterateVisitsEveryElementInListOrder) {
    Words words = exampleWords;
    const Words tail = StreamBuilder().moveTo(2, 2).lineTo(3, 3);
    words.insert(words.end(), tail.begin(), tail.end());
    CStrokeset doc(words);
    Recorder recorder;
    doc.iterate(recorder);
    EXPECT_EQ(recorder.log, "line 0,0,0 1,0,0 first; line 1,0,0 1,1,0 last; "
                            "dot 0.5,0.5,2; record of 3; line 2,2,0 3,3,0 first last; ");
}

TEST(StrokesetLoading, DotsAndRecordsRunOnAcrossPenChangesOnly) {
    // The pen word inside the 3-word record is data, not a pen change.
    StreamBuilder words;
    words.dot(1, 1).pen(5).dot(2, 2).moveTo(3, 3).dot(4, 4);
    words.raw({0x1001}).pen(6).raw({0x3002, 0x240A, 0x0009}).dot(5, 5);
    CStrokeset doc(words);
    ASSERT_EQ(kindsOf(doc), "DDUD");
    EXPECT_EQ(doc.getOpcodeCount(), 7u);
    EXPECT_EQ(doc.getOpcodeType(2), eNone);
    EXPECT_EQ(doc.getOpcodeType(3), eDot);
    EXPECT_EQ(rangeOf(collectionAt(doc, 2)), (Indices{4, 5}));
    EXPECT_EQ(doc.getPointsCount(), 6u);
    EXPECT_EQ(penOf(doc, 0), 65535);
    EXPECT_EQ(penOf(doc, 1), 5);
    EXPECT_EQ(penOf(doc, 3), 5);
    EXPECT_EQ(penOf(doc, 6), 6);
}

TEST(StrokesetLoading, RecordsCutShortKeepTheRestOfTheStream) {
    // Neither a record running past the end nor a long form too short to advance may lose
    // words or read beyond them: the rest of the stream becomes one record.
    for (const Words& tail : {Words{0x5416, 0x3F80}, Words{0x0123, 0x0000, 0x0000, 0xBEEF}}) {
        Words words = StreamBuilder().dot(1, 1);
        words.insert(words.end(), tail.begin(), tail.end());
        CStrokeset doc(words);
        EXPECT_EQ(kindsOf(doc), "DU");
        EXPECT_EQ(doc.getOpcodeCount(), 2u);
        EXPECT_EQ(serialized(doc), words);
    }
}

TEST(StrokesetLoading, LineToStartsFromTheLastPointRead) {
    // Without a move-to, a line-to starts at the origin with index 0 and no pen; after a dot
    // it starts at the dot with the index and pen of the last line point.
    CStrokeset doc(StreamBuilder().pen(4).lineTo(1, 1).dot(5, 5).pen(6).lineTo(6, 6));
    ASSERT_EQ(kindsOf(doc), "PDP");
    EXPECT_EQ(text(lineOf(doc, 0, 0)), "0,0,0 #0 p65535 to 1,1,0 #0 p4");
    EXPECT_EQ(text(lineOf(doc, 2, 0)), "5,5,0 #0 p4 to 6,6,0 #2 p6");

    // After a record the new sub-path shares the previous end point and its index; the first
    // collection in list order answers for the shared index.
    CStrokeset split(StreamBuilder().moveTo(0, 0).lineTo(1, 0).raw({0x1234}).lineTo(2, 0));
    ASSERT_EQ(kindsOf(split), "PUP");
    EXPECT_EQ(text(lineOf(split, 2, 0)), "1,0,0 #1 p65535 to 2,0,0 #3 p65535");
    EXPECT_EQ(split.getCollectionIncludingPoint(1), collectionAt(split, 0));
    EXPECT_EQ(split.getCollectionIndexOfPoint(3), 2u);
    EXPECT_EQ(
        serialized(split),
        StreamBuilder().moveTo(0, 0).lineTo(1, 0).raw({0x1234}).moveTo(1, 0).lineTo(2, 0).words());
    EXPECT_EQ(split.getOpcodeCount(), 5u);
}

TEST(StrokesetLoading, PasteAppendsBehindTheDrawingAndNumbersOn) {
    CStrokeset doc(StreamBuilder().pen(7).dot(0, 0).dot(1, 0));
    EXPECT_TRUE(doc.paste(StreamBuilder().dot(20, 0).dot(21, 0).dot(22, 0)));
    EXPECT_TRUE(doc.paste(StreamBuilder().dot(23, 0)));
    ASSERT_EQ(kindsOf(doc), "DDD");
    EXPECT_EQ(doc.getOpcodeCount(), 6u);
    EXPECT_EQ(rangeOf(collectionAt(doc, 0)), (Indices{0, 1}));
    EXPECT_EQ(rangeOf(collectionAt(doc, 1)), (Indices{2, 4}));
    Eigen::RowVector3f p;
    EXPECT_TRUE(doc.getPosition(3, p));
    EXPECT_EQ(p, point(21, 0));
    EXPECT_EQ(penOf(doc, 5), 7); // the pen of the earlier load carries on
}

TEST(StrokesetCore, CopiesAreLoadedFromTheSerializedSource) {
    const Words gapped = StreamBuilder().dot(1, 1).dot(2, 2).moveTo(9, 9).dot(3, 3);
    CStrokeset source(gapped);
    CStrokeset copy(source);
    EXPECT_EQ(kindsOf(copy), "D");
    EXPECT_EQ(copy.getOpcodeCount(), 3u);
    EXPECT_EQ(source.getOpcodeCount(), 3u);
    EXPECT_EQ(rangeOf(collectionAt(source, 1)), (Indices{2, 2}));
    EXPECT_EQ(serialized(copy), StreamBuilder().dot(1, 1).dot(2, 2).dot(3, 3).words());

    // Assignment starts afresh, the current pen included.
    CStrokeset other(gapped);
    CStrokeset target(StreamBuilder().pen(9).raw({0x1001}));
    target = other;
    EXPECT_EQ(kindsOf(target), "D");
    EXPECT_EQ(other.getOpcodeCount(), 3u);
    target.paste(StreamBuilder().dot(7, 7));
    EXPECT_EQ(penOf(target, 3), 65535);

    CStrokeset self(gapped);
    CStrokeset& alias = self;
    self = alias;
    EXPECT_EQ(kindsOf(self), "DD");
    EXPECT_EQ(self.getOpcodeCount(), 4u);
    EXPECT_EQ(rangeOf(collectionAt(self, 1)), (Indices{3, 3}));
}

TEST(StrokesetCore, SerializeMapsOldIndicesToNewOnes) {
    CStrokeset doc(StreamBuilder().dot(1, 0).dot(2, 0).dot(3, 0).dot(4, 0));
    EXPECT_TRUE(doc.deletePoint(1));
    EXPECT_TRUE(doc.deletePoint(3));
    EXPECT_EQ(doc.getOpcodeType(1), eNone);
    // Grown to the opcode count with no entries; what it held for deleted points stays.
    std::vector<unsigned int> map{77, 77};
    Words words;
    EXPECT_EQ(doc.serialize(words, &map), 2u);
    EXPECT_EQ(words, StreamBuilder().dot(1, 0).dot(3, 0).words());
    EXPECT_EQ(map, (Indices{0, 77, 1, none}));

    // A new dot has no old index to map; a longer map keeps what it held.
    Eigen::RowVector3f p = point(4, 0);
    EXPECT_TRUE(doc.newDot(p));
    EXPECT_EQ(doc.getOpcodeCount(), 2u);
    Types types;
    EXPECT_FALSE(doc.getOpcodeTypes(types));
    map.assign(4, 77);
    EXPECT_EQ(doc.serialize(words, &map), 3u);
    EXPECT_EQ(map, (Indices{0, 1, 77, 77}));
    EXPECT_TRUE(doc.getOpcodeTypes(types));
    EXPECT_EQ(types, (Types{eDot, eDot, eDot}));
}

TEST(StrokesetCopy, SelectionsAreWrittenAsNewStreams) {
    CStrokeset doc(
        StreamBuilder().pen(1).moveTo(0, 0).lineTo(1, 0).lineTo(2, 0).lineTo(3, 0).dot(5, 5));
    Words words;
    EXPECT_EQ(copyOut(doc, {}, words), "");
    EXPECT_EQ(words, Words{0xBEEF});
    EXPECT_EQ(copyOut(doc, {1, 99}, words, false), "");
    EXPECT_EQ(words, Words{0xBEEF});
    EXPECT_EQ(copyOut(doc, {2, 1}, words), "");
    EXPECT_EQ(words, withMarker(StreamBuilder().pen(1).moveTo(1, 0).lineTo(2, 0)));
    EXPECT_EQ(copyOut(doc, {3, 0}, words), "");
    EXPECT_EQ(words, withMarker(StreamBuilder().pen(1).moveTo(0, 0).lineTo(3, 0)));
    EXPECT_EQ(copyOut(doc, {0, 1, 2, 3}, words), "");
    EXPECT_EQ(
        words,
        withMarker(StreamBuilder().pen(1).moveTo(0, 0).lineTo(1, 0).lineTo(2, 0).lineTo(3, 0)));
    // One point of a sub-path makes no polyline; a repeated index is written once.
    EXPECT_EQ(copyOut(doc, {2, 4}, words), "numOfOpcodes=1; opcodeIndices=2\n");
    EXPECT_EQ(words, withMarker(StreamBuilder().pen(1).dot(5, 5)));
    EXPECT_EQ(copyOut(doc, {4, 4}, words), "numOfOpcodes=1; opcodeIndices=2\n");
    EXPECT_EQ(words, withMarker(StreamBuilder().pen(1).dot(5, 5)));

    Types types;
    EXPECT_TRUE(doc.getOpcodeTypes(types));
    EXPECT_EQ(types, (Types{eSubPathStart, eSubPathPoint, eSubPathPoint, eSubPathEnd, eDot}));

    // Pasted back, the copy is numbered on from the opcode count.
    copyOut(doc, {1, 2}, words);
    EXPECT_TRUE(doc.paste(Words(words.begin() + 1, words.end())));
    EXPECT_EQ(kindsOf(doc), "PDP");
    EXPECT_EQ(doc.getOpcodeCount(), 7u);
    EXPECT_EQ(doc.getCollectionIndexOfPoint(5), 2u);
    Eigen::RowVector3f p;
    EXPECT_TRUE(doc.getPosition(6, p));
    EXPECT_EQ(p, point(2, 0));
    EXPECT_EQ(penOf(doc, 6), 1);
}

TEST(StrokesetDrawings, RealDrawingsRoundTripWordForWord) {
    namespace fs = std::filesystem;
    const fs::path folder(LIBSTROKESET_DRAWINGS_DIR);
    if (!fs::is_directory(folder)) {
        GTEST_SKIP() << "no drawings in " << folder;
    }
    int files = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() != ".stk") {
            continue;
        }
        SCOPED_TRACE(entry.path().string());
        ++files;
        Words words;
        std::string error;
        ASSERT_TRUE(CStrokeset::readStkFile(entry.path().string(), words, error)) << error;
        CStrokeset doc(words);
        const unsigned int records = countNumberedRecords(words);
        EXPECT_EQ(doc.getOpcodeCount(), records);
        Words written;
        EXPECT_EQ(doc.serialize(written, nullptr), records);
        EXPECT_TRUE(written == words) << "the written words differ from the file's";
    }
    if (files == 0) {
        GTEST_SKIP() << "no .stk files in " << folder;
    }
}
