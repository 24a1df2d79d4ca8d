#include <gtest/gtest.h>

#include "EditSession.h"
#include "SelectionOracle.h"
#include "document/CCollectionLookup.h"
#include "elements/CFirstPositions.h"
#include "subpath/CSubPathSelection.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Finding the collection that holds an opcode index: the index of the ranges against the walk
// over the list, on drawings that a session of edits left with overlapping ranges, gaps,
// empty collections and unnumbered points, and after a host changed ranges or the list behind
// the document's back.

using namespace LibStrokeset;
using test::EditSession;
using test::seededChooser;
using test::Words;

namespace {

constexpr ELookupRoute kRoutes[] = {ELookupRoute::eWalk, ELookupRoute::eIndexed,
                                    ELookupRoute::eAdaptive};

/// Everything the document answers about one index, in a form two documents can compare.
std::string answers(CStrokeset& document, unsigned int index) {
    std::string text = std::to_string(document.getCollectionIndexOfPoint(index)) + " " +
                       std::to_string(document.getOpcodeType(index));
    Eigen::RowVector3f position(-7.0f, -7.0f, -7.0f);
    const bool found = document.getPosition(index, position);
    unsigned int bits[3];
    std::memcpy(bits, position.data(), sizeof bits);
    text += found ? " at " + std::to_string(bits[0]) + "," + std::to_string(bits[1]) + "," +
                        std::to_string(bits[2])
                  : " nowhere";
    unsigned short pen = 7;
    text += document.getPenNumber(index, pen) ? " pen " + std::to_string(pen) : " no pen";
    CCollection* collection = document.getCollectionIncludingPoint(index);
    text +=
        collection == nullptr ? " none" : " holds " + std::to_string(collection->getPointsCount());
    return text;
}

/// Every index a host might ask about: all below the opcode count and a few past it.
std::vector<std::string> allAnswers(CStrokeset& document) {
    std::vector<std::string> all;
    for (unsigned int i = 0; i < document.getOpcodeCount() + 3; ++i) {
        all.push_back(answers(document, i));
    }
    all.push_back(answers(document, CElement::noIndex));
    all.push_back(answers(document, CElement::noIndex - 1));
    return all;
}

} // namespace

TEST(LookupRoutes, EveryRouteAnswersAsTheWalkAfterEveryEdit) {
    unsigned int overlapping = 0;
    for (unsigned int seed = 0; seed < 150; ++seed) {
        SCOPED_TRACE(seed);
        // Triplets: the same choices give the same edits on each.
        std::vector<std::unique_ptr<EditSession>> sessions;
        std::vector<CStrokeset> documents(3);
        for (std::size_t r = 0; r < 3; ++r) {
            sessions.push_back(std::make_unique<EditSession>(seededChooser(seed)));
            lookupOf(documents[r]).setRoute(kRoutes[r]);
            sessions[r]->build(documents[r], 0);
        }
        const test::Chooser hostChoice = seededChooser(seed + 1000);
        for (unsigned int step = 0; step < 30; ++step) {
            const unsigned int what = hostChoice(6);
            std::string answered[3];
            for (std::size_t r = 0; r < 3; ++r) {
                if (what == 0) {
                    sessions[r]->editHeldCollection(documents[r]);
                } else if (what < 3) {
                    sessions[r]->edit(documents[r]);
                } else {
                    answered[r] = sessions[r]->command(documents[r]);
                }
            }
            ASSERT_EQ(answered[1], answered[0]) << "step " << step;
            ASSERT_EQ(answered[2], answered[0]) << "step " << step;
            // Ask twice: the second round meets an index the first round built.
            for (int round = 0; round < 2; ++round) {
                const std::vector<std::string> walked = allAnswers(documents[0]);
                ASSERT_EQ(allAnswers(documents[1]), walked) << "step " << step;
                ASSERT_EQ(allAnswers(documents[2]), walked) << "step " << step;
            }
        }
        std::vector<int> holders(documents[0].getOpcodeCount() + 1, 0);
        for (const CCollection* collection : std::as_const(documents[0]).getCollections()) {
            for (unsigned int i = collection->getMinOpcodeIndex();
                 i <= collection->getMaxOpcodeIndex() && i < holders.size(); ++i) {
                ++holders[i];
            }
        }
        overlapping +=
            std::count_if(holders.begin(), holders.end(), [](int n) { return n > 1; }) != 0;
        for (std::size_t r = 1; r < 3; ++r) {
            EXPECT_EQ(test::serialized(documents[r]), test::serialized(documents[0]));
        }
    }
    EXPECT_GT(overlapping, 20u); // the case the list order decides must be common
}

TEST(LookupRoutes, FirstRangeInListOrderWinsOverGapsAndEmptyRanges) {
    for (const ELookupRoute route : kRoutes) {
        SCOPED_TRACE(static_cast<int>(route));
        CStrokeset document;
        lookupOf(document).setRoute(route);
        auto& list = document.getCollections();
        // Ranges, in list order: [5, 9], empty, [2, 6], [12, 12], [0, 20]. Dots 7 and 8 of the
        // first are gone, so 7 lies in a gap of the collection that wins it.
        const std::vector<std::vector<unsigned int>> dotIndices = {
            {5, 6, 9}, {}, {2, 3, 4, 6}, {12}, {0, 20}};
        for (const auto& indices : dotIndices) {
            auto* dots = new CDotCollection();
            for (const unsigned int index : indices) {
                CDot dot(Eigen::RowVector3f(static_cast<float>(index), 0.0f, 0.0f), 1, index);
                dots->addDot(dot);
            }
            list.push_back(dots);
        }
        const std::pair<unsigned int, unsigned int> expected[] = {
            {0, 4},
            {1, 4},
            {2, 2},
            {4, 2},
            {5, 0},
            {6, 0},
            {7, 0},
            {9, 0},
            {10, 4},
            {12, 3},
            {13, 4},
            {20, 4},
            {21, CElement::noIndex},
            {CElement::noIndex, CElement::noIndex}};
        for (int round = 0; round < 3; ++round) { // the adaptive route builds on a later round
            for (const auto& [index, position] : expected) {
                EXPECT_EQ(document.getCollectionIndexOfPoint(index), position) << index;
            }
        }
        Eigen::RowVector3f found;
        EXPECT_FALSE(document.getPosition(7, found));  // the first range holds 7, no dot has it
        EXPECT_FALSE(document.getPosition(10, found)); // the last range holds 10, no dot either
        ASSERT_TRUE(document.getPosition(20, found));
        EXPECT_EQ(found.x(), 20.0f);
    }
}

TEST(LookupRoutes, ARangeThatGrowsBehindTheDocumentsBackIsSeen) {
    for (const ELookupRoute route : kRoutes) {
        SCOPED_TRACE(static_cast<int>(route));
        test::StreamBuilder builder;
        builder.dot(0, 0).dot(1, 0).pen(1).moveTo(2, 0).lineTo(3, 0).lineTo(4, 0);
        CStrokeset document(builder.words());
        lookupOf(document).setRoute(route);
        for (int round = 0; round < 5; ++round) {
            EXPECT_EQ(document.getCollectionIndexOfPoint(3), 1u);
        }
        // The host adds a dot numbered 3 to the first collection, which now wins index 3.
        auto* dots =
            dynamic_cast<CDotCollection*>(std::as_const(document).getCollections().front());
        ASSERT_NE(dots, nullptr);
        CDot dot(Eigen::RowVector3f(9.0f, 9.0f, 0.0f), 2, 3);
        dots->addDot(dot);
        EXPECT_EQ(document.getCollectionIndexOfPoint(3), 0u);
        Eigen::RowVector3f found;
        ASSERT_TRUE(document.getPosition(3, found));
        EXPECT_EQ(found.x(), 9.0f);
        // Assigning another collection's contents moves the range too.
        *dots = CDotCollection();
        EXPECT_EQ(document.getCollectionIndexOfPoint(3), 1u);
        EXPECT_EQ(document.getCollectionIndexOfPoint(0), CElement::noIndex);
    }
}

TEST(LookupRoutes, ACollectionTakenOutAndDeletedIsNeverAnswered) {
    for (const ELookupRoute route : kRoutes) {
        SCOPED_TRACE(static_cast<int>(route));
        test::StreamBuilder builder;
        for (int k = 0; k < 50; ++k) {
            builder.moveTo(static_cast<float>(k), 0)
                .lineTo(static_cast<float>(k), 1)
                .pen(static_cast<unsigned short>(k % 3));
        }
        CStrokeset document(builder.words());
        lookupOf(document).setRoute(route);
        for (int round = 0; round < 5; ++round) {
            EXPECT_EQ(document.getCollectionIndexOfPoint(41), 20u);
        }
        // Through the list reference, as the document's contract allows: take one out, swap
        // two, put a copy of another in front.
        auto& list = document.getCollections();
        auto taken = std::next(list.begin(), 20);
        delete *taken;
        list.erase(taken);
        std::iter_swap(std::next(list.begin(), 3), std::next(list.begin(), 30));
        list.push_front(new CSubPath(*dynamic_cast<CSubPath*>(*std::next(list.begin(), 10))));
        EXPECT_EQ(document.getCollectionIndexOfPoint(41), CElement::noIndex);
        EXPECT_EQ(document.getCollectionIndexOfPoint(6), 31u); // the swapped collection
        EXPECT_EQ(document.getCollectionIndexOfPoint(20), 0u); // the copy in front wins
        EXPECT_EQ(document.getCollectionIndexOfPoint(62), 4u); // swapped the other way
    }
}

// ---- Inside one collection: the table of first positions against a scan of the elements.

namespace {

/// What a scan from the front finds: the first position carrying the index, else the count.
std::size_t scanFirst(const std::vector<unsigned int>& indices, unsigned int index) {
    return static_cast<std::size_t>(std::find(indices.begin(), indices.end(), index) -
                                    indices.begin());
}

/// Index runs as edits leave them: consecutive, consecutive across the top of the range,
/// with repeats, with unnumbered elements, shuffled, or drawn from a small pool.
std::vector<unsigned int> awkwardRun(const test::Chooser& choose) {
    const auto count = choose(70);
    std::vector<unsigned int> run;
    const unsigned int first = choose(3) == 0 ? CElement::noIndex - choose(40) : choose(100);
    for (unsigned int k = 0; k < count; ++k) {
        run.push_back(first + k);
    }
    switch (choose(4)) {
    case 0: break;
    case 1:
        for (unsigned int& index : run) {
            index = choose(5) == 0 ? CElement::noIndex : index;
        }
        break;
    case 2:
        for (unsigned int& index : run) {
            index = choose(12);
        }
        break;
    default:
        for (std::size_t k = run.size(); k > 1; --k) {
            std::swap(run[k - 1], run[choose(static_cast<unsigned int>(k))]);
        }
    }
    return run;
}

} // namespace

TEST(FirstPositions, FindWhatAScanFinds) {
    for (unsigned int seed = 0; seed < 2000; ++seed) {
        const test::Chooser choose = seededChooser(seed);
        const std::vector<unsigned int> run = awkwardRun(choose);
        const CFirstPositions positions(run.size(), [&](std::size_t k) { return run[k]; });
        std::vector<unsigned int> asked(run.begin(), run.end());
        for (const unsigned int other : {0u, 1u, 99u, 200u, CElement::noIndex,
                                         CElement::noIndex - 1, run.empty() ? 0u : run[0] - 1}) {
            asked.push_back(other);
        }
        for (const unsigned int index : asked) {
            ASSERT_EQ(positions.find(index), scanFirst(run, index))
                << "seed " << seed << " index " << index;
        }
    }
}

namespace {

/// The scan of the lines a sub-path's lookups stand for: the first line starting at the
/// index, else n for the end of the last line, else n + 1.
std::size_t scanPoint(const CSubPath& path, unsigned int index) {
    const auto& lines = path.getLines();
    for (std::size_t k = 0; k < lines.size(); ++k) {
        if (lines[k].getOpcodeIndex() == index) {
            return k;
        }
    }
    return !lines.empty() && lines.back().getEndOpcodeIndex() == index ? lines.size()
                                                                       : lines.size() + 1;
}

/// The pen fields of every line, to compare what setPenNumber changed.
std::vector<unsigned short> pens(const CSubPath& path) {
    std::vector<unsigned short> all;
    for (const CLine& line : path.getLines()) {
        all.push_back(line.getPenNumber());
        all.push_back(line.getEndPenNumber());
    }
    return all;
}

/// setPenNumber by the scan the sub-path's rules describe, on the lines of a copy.
bool scanSetPen(std::vector<CLine>& lines, unsigned int index, unsigned short pen) {
    if (lines.empty()) {
        return false;
    }
    if (lines.front().getOpcodeIndex() == index) {
        lines.front().setPenNumber(pen);
        return true;
    }
    if (lines.back().getEndOpcodeIndex() == index) {
        lines.back().setEndPenNumber(pen);
        return true;
    }
    for (std::size_t k = 1; k < lines.size(); ++k) {
        const bool ends = lines[k - 1].getEndOpcodeIndex() == index;
        const bool starts = lines[k].getOpcodeIndex() == index;
        if (ends) {
            lines[k - 1].setEndPenNumber(pen);
        }
        if (starts) {
            lines[k].setPenNumber(pen);
        }
        if (ends || starts) {
            return true;
        }
    }
    return false;
}

void expectSubPathLookupsMatchTheScan(CSubPath& path, unsigned int top) {
    for (unsigned int index = 0; index <= top; ++index) {
        const std::size_t k = scanPoint(path, index);
        const std::size_t n = std::as_const(path).getLines().size();
        Eigen::RowVector3f position(-1.0f, -1.0f, -1.0f);
        ASSERT_EQ(path.getPosition(index, position), k <= n) << index;
        if (k <= n) {
            const CLine& line = std::as_const(path).getLines()[std::min(k, n - 1)];
            ASSERT_EQ(position, k < n ? line.getPosition() : line.getEndPosition()) << index;
        }
        const EOpcodeType type = k == 0 && n > 0 ? eSubPathStart
                                 : k < n         ? eSubPathPoint
                                 : k == n        ? eSubPathEnd
                                                 : eNone;
        ASSERT_EQ(path.getOpcodeType(index), type) << index;
    }
}

} // namespace

TEST(LongCollections, SubPathLookupsMatchTheScanAfterEveryEdit) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const test::Chooser choose = seededChooser(seed);
        CSubPath path;
        const unsigned int n = 40 + choose(60);
        for (unsigned int k = 0; k < n; ++k) {
            CLine line(Eigen::RowVector3f(static_cast<float>(k), 0.0f, 0.0f),
                       Eigen::RowVector3f(static_cast<float>(k + 1), 0.0f, 0.0f), 1, 1, k, k + 1);
            path.addLine(line);
        }
        for (unsigned int step = 0; step < 40; ++step) {
            const unsigned int index = choose(n + 20);
            Eigen::RowVector3f p(static_cast<float>(step), 1.0f, 0.0f);
            switch (choose(10)) {
            case 9: {
                // A few indices: the path itself searches its tables, a copy made before
                // takes the pass over the lines, another the reference forms.
                const std::set<unsigned int> named = {index, choose(n + 20)};
                const auto pen = static_cast<unsigned short>(step + 100);
                CSubPath pass, oneByOne; // assigned, so that the ranges are copied too
                pass = path;
                oneByOne = path;
                const bool passed = CSubPathSelection::changePenInOnePass(pass, named, pen);
                ASSERT_EQ(CSubPathSelection::changePenOneByOne(oneByOne, named, pen), passed);
                ASSERT_EQ(CSubPathSelection::changePen(path, named, pen), passed);
                ASSERT_EQ(test::describe(path), test::describe(pass));
                ASSERT_EQ(test::describe(oneByOne), test::describe(pass));
                Eigen::Matrix<float, 3, 4> matrix;
                matrix << 2, 0, 0, 1, 0, 1, 0, -3, 0, 0, 1, 0.5f;
                ASSERT_EQ(path.transformPoints(named, matrix),
                          CSubPathSelection::transformPointsInOnePass(pass, named, matrix));
                ASSERT_EQ(test::describe(path), test::describe(pass));
                break;
            }
            case 0: path.insertLinePoint(index, p); break;
            case 1: path.deletePoint(index); break;
            case 2: path.reverse(); break;
            case 3: path.changeStart(index); break;
            case 4: delete path.split(index); break;
            case 5: path.prependLine(p); break;
            case 6: test::writeAlone(path); break;
            case 7:
                // The host renumbers a line through the vector: a repeat or a gap.
                if (!path.isEmpty()) {
                    path.getLines()[choose(path.getPointsCount() - 1)].setOpcodeIndex(choose(n));
                }
                break;
            default: {
                std::vector<CLine> expected = std::as_const(path).getLines();
                const bool set = scanSetPen(expected, index, static_cast<unsigned short>(step));
                ASSERT_EQ(path.setPenNumber(index, static_cast<unsigned short>(step)), set);
                CSubPath reference;
                reference.getLines() = expected;
                ASSERT_EQ(pens(path), pens(reference));
            }
            }
            expectSubPathLookupsMatchTheScan(path, n + 20);
            if (testing::Test::HasFatalFailure()) {
                return;
            }
        }
    }
}

TEST(LongCollections, DotLookupsMatchTheScanAfterEveryEdit) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const test::Chooser choose = seededChooser(seed);
        CDotCollection dots;
        const unsigned int n = 40 + choose(60);
        for (unsigned int k = 0; k < n; ++k) {
            CDot dot(Eigen::RowVector3f(static_cast<float>(k), 0.0f, 0.0f), 1, k);
            dots.addDot(dot);
        }
        for (unsigned int step = 0; step < 40; ++step) {
            const unsigned int index = choose(n + 20);
            Eigen::RowVector3f p(static_cast<float>(step) + 0.5f, 1.0f, 0.0f);
            unsigned short pen = 0;
            switch (choose(8)) {
            case 7: {
                // A few indices, against the scans the run specifies, on a copy of its dots.
                std::set<unsigned int> named = {index, choose(n + 20)};
                std::vector<CDot> expected(std::as_const(dots).begin(), std::as_const(dots).end());
                std::size_t changed = 0;
                bool penned = false;
                for (CDot& dot : expected) {
                    if (!penned && named.count(dot.getOpcodeIndex()) != 0) {
                        dot.setPenNumber(static_cast<unsigned short>(step));
                        penned = ++changed == named.size();
                    }
                }
                ASSERT_EQ(dots.changePen(named, static_cast<unsigned short>(step)), penned);
                Eigen::Matrix<float, 3, 4> matrix;
                matrix << 1, 0, 0, 3, 0, 2, 0, 0, 0, 0, 1, 0;
                std::set<unsigned int> left = named;
                for (CDot& dot : expected) {
                    if (left.erase(dot.getOpcodeIndex()) != 0) {
                        dot.setPoint(matrix.leftCols<3>() * dot.getPosition().transpose() +
                                         matrix.col(3),
                                     false);
                    }
                }
                ASSERT_EQ(dots.transformPoints(named, matrix), left.empty());
                ASSERT_EQ(dots.getPointsCount(), expected.size());
                for (std::size_t k = 0; k < expected.size(); ++k) {
                    const CDot& dot = *(std::as_const(dots).begin() + k);
                    ASSERT_EQ(dot.getPenNumber(), expected[k].getPenNumber()) << k;
                    ASSERT_EQ(test::bits(dot.getPosition()), test::bits(expected[k].getPosition()))
                        << k;
                }
                break;
            }
            case 0: dots.insertDot(index, p); break;
            case 1: dots.deletePoint(index); break;
            case 2: dots.removeAndGetParams(index, p, pen); break;
            case 3: {
                CDot dot(p, 2, index); // a repeat of an index already held, or a new one
                dots.addDot(dot);
                break;
            }
            case 4: test::writeAlone(dots); break;
            case 5:
                if (!dots.isEmpty()) {
                    (dots.begin() + choose(dots.getPointsCount()))->setOpcodeIndex(choose(n));
                }
                break;
            default: dots.deletePoints({index, index + 1, choose(n)}); break;
            }
            std::vector<unsigned int> run;
            for (const CDot& dot : std::as_const(dots)) {
                run.push_back(dot.getOpcodeIndex());
            }
            for (unsigned int i = 0; i <= n + 20; ++i) {
                const std::size_t k = scanFirst(run, i);
                Eigen::RowVector3f position(-1.0f, -1.0f, -1.0f);
                ASSERT_EQ(dots.getPosition(i, position), k < run.size()) << i;
                if (k < run.size()) {
                    ASSERT_EQ(position, (std::as_const(dots).begin() + k)->getPosition()) << i;
                }
                ASSERT_EQ(dots.getOpcodeType(i), k < run.size() ? eDot : eNone) << i;
            }
        }
    }
}

TEST(LookupRoutes, ACollectionThatOutlivesItsDocumentMovesToAnother) {
    test::StreamBuilder builder;
    builder.dot(0, 0).dot(1, 0).moveTo(2, 0).lineTo(3, 0);
    std::unique_ptr<CCollection> kept;
    {
        CStrokeset document(builder.words());
        lookupOf(document).setRoute(ELookupRoute::eIndexed);
        EXPECT_EQ(document.getCollectionIndexOfPoint(3), 1u);
        auto& list = document.getCollections();
        kept.reset(list.front());
        list.pop_front();
        EXPECT_EQ(document.getCollectionIndexOfPoint(3), 0u);
    }
    // The document is gone; the dots it indexed still change their range.
    CDot dot(Eigen::RowVector3f(5.0f, 5.0f, 0.0f), 1, 42);
    dynamic_cast<CDotCollection&>(*kept).addDot(dot);
    EXPECT_EQ(kept->getMaxOpcodeIndex(), 42u);
    CStrokeset other(builder.words());
    lookupOf(other).setRoute(ELookupRoute::eIndexed);
    EXPECT_EQ(other.getCollectionIndexOfPoint(42), CElement::noIndex);
    other.getCollections().push_back(kept.release());
    EXPECT_EQ(other.getCollectionIndexOfPoint(42), 2u);
    // Its range changes reach the new document's index.
    dot = CDot(Eigen::RowVector3f(6.0f, 6.0f, 0.0f), 1, 50);
    dynamic_cast<CDotCollection*>(std::as_const(other).getCollections().back())->addDot(dot);
    EXPECT_EQ(other.getCollectionIndexOfPoint(50), 2u);
}

TEST(LongCollections, RecordLookupsMatchTheScanAfterEveryEdit) {
    for (unsigned int seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const test::Chooser choose = seededChooser(seed);
        CUnsupportedElementCollection records;
        const unsigned int n = 40 + choose(60);
        std::vector<unsigned short> words = {0x3001, 0x1234};
        for (unsigned int k = 0; k < n; ++k) {
            CUnsupportedElement record(words, k);
            records.addElement(record);
        }
        for (unsigned int step = 0; step < 40; ++step) {
            const unsigned int index = choose(n + 20);
            switch (choose(4)) {
            case 0: records.deletePoint(index); break;
            case 1: {
                CUnsupportedElement record(words, index); // often a repeat
                records.addElement(record);
                break;
            }
            case 2: test::writeAlone(records); break;
            default: records.deletePoints({index, choose(n)}); break;
            }
            std::vector<unsigned int> run;
            for (const CUnsupportedElement& record : records.getElements()) {
                run.push_back(record.getOpcodeIndex());
            }
            for (unsigned int i = 0; i <= n + 20; ++i) {
                ASSERT_EQ(records.getOpcodeType(i),
                          scanFirst(run, i) < run.size() ? eUnsupported : eNone)
                    << i;
            }
            // deletePoint takes the first record with the index, as the scan finds it.
            CUnsupportedElementCollection copy = records;
            const std::size_t k = scanFirst(run, index);
            ASSERT_EQ(copy.deletePoint(index), k < run.size());
            if (k < run.size()) {
                run.erase(run.begin() + static_cast<std::ptrdiff_t>(k));
            }
            std::vector<unsigned int> left;
            for (const CUnsupportedElement& record : copy.getElements()) {
                left.push_back(record.getOpcodeIndex());
            }
            ASSERT_EQ(left, run);
        }
    }
}
