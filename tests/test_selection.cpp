#include <gtest/gtest.h>

#include "EditSession.h"
#include "SelectionOracle.h"
#include "elements/NamedElementRemoval.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <set>
#include <sstream>
#include <string>

// The one-pass selection code against the straightforward forms it stands beside, on seeded
// drawings and element runs built to be awkward: the same groups, the same results, the same
// words.

using namespace LibStrokeset;
using test::EditSession;
using test::Groups;
using test::Indices;
using test::seededChooser;
using test::serialized;
using test::Words;

namespace {

using test::Matrix;
constexpr unsigned int kSeeds = 400;

/// A chain of up to 12 lines whose indices come from a small pool: repeated start copies,
/// end copies that differ from the next start (as sub-path edits leave them), unnumbered
/// points, NaN and infinite positions.
CSubPath awkwardPath(const test::Chooser& choose) {
    const auto index = [&] { return choose(7) == 0 ? CElement::noIndex : choose(9); };
    const auto coordinate = [&] {
        const unsigned int c = choose(10);
        return c == 0   ? std::numeric_limits<float>::quiet_NaN()
               : c == 1 ? -std::numeric_limits<float>::infinity()
                        : static_cast<float>(c);
    };
    CSubPath path;
    unsigned int start = index();
    for (unsigned int k = 0, n = choose(13); k < n; ++k) {
        const unsigned int end = index();
        CLine line(Eigen::RowVector3f(coordinate(), coordinate(), 0.0f),
                   Eigen::RowVector3f(coordinate(), coordinate(), coordinate()),
                   static_cast<unsigned short>(2 * k), static_cast<unsigned short>(2 * k + 1),
                   start, end);
        path.addLine(line);
        start = choose(3) == 0 ? index() : end;
    }
    return path;
}

std::set<unsigned int> someOf(const test::Chooser& choose, unsigned int pool) {
    std::set<unsigned int> set;
    for (unsigned int i = 0; i < pool; ++i) {
        if (choose(2) == 0) {
            set.insert(i);
        }
    }
    return set;
}

} // namespace

TEST(SelectionGrouping, OnePassGivesTheGroupsOfTheWalk) {
    unsigned int failed = 0, overlapping = 0;
    for (unsigned int seed = 0; seed < kSeeds; ++seed) {
        SCOPED_TRACE(seed);
        EditSession session(seededChooser(seed));
        CStrokeset document;
        session.build(document, seed % 40);
        for (int request = 0; request < 4; ++request) {
            const Indices indices = session.selection(document);
            Groups fast, walked;
            const bool grouped = CIndexGrouping::group(document.getCollections(), indices, fast);
            EXPECT_EQ(grouped, CIndexGrouping::groupByWalk(document, indices, walked));
            EXPECT_EQ(fast, walked);
            failed += grouped ? 0 : 1;
        }
        // Count drawings where some index lies in two ranges: the case the order decides.
        std::vector<int> holders(document.getOpcodeCount() + 1, 0);
        for (const CCollection* collection : document.getCollections()) {
            for (unsigned int i = collection->getMinOpcodeIndex();
                 i <= collection->getMaxOpcodeIndex() && i < holders.size(); ++i) {
                ++holders[i];
            }
        }
        overlapping +=
            std::count_if(holders.begin(), holders.end(), [](int n) { return n > 1; }) != 0;
    }
    // The seeds must reach both outcomes and plenty of overlapping ranges.
    EXPECT_GT(failed, kSeeds / 4);
    EXPECT_LT(failed, kSeeds * 2);
    EXPECT_GT(overlapping, kSeeds / 5);
}

TEST(SelectionCommands, SameResultsAndWordsAsTheWalk) {
    for (unsigned int seed = 0; seed < kSeeds; ++seed) {
        SCOPED_TRACE(seed);
        // Twins: one takes the commands, the other the forms they stand beside.
        EditSession sessionA(seededChooser(seed)), sessionB(seededChooser(seed));
        CStrokeset a, b;
        sessionA.build(a, seed % 40);
        sessionB.build(b, seed % 40);
        const Indices indices = sessionA.selection(a);
        ASSERT_EQ(indices, sessionB.selection(b));

        // copy changes nothing, so both forms run on the same document and the groups are
        // visited in the same (address) order.
        Words fastCopy, walkedCopy;
        std::string walkedPrinted;
        testing::internal::CaptureStdout();
        const bool copied = a.copy(indices, fastCopy);
        const std::string printed = testing::internal::GetCapturedStdout();
        EXPECT_EQ(copied, test::copyByWalk(a, indices, walkedCopy, walkedPrinted));
        EXPECT_EQ(fastCopy, walkedCopy);
        EXPECT_EQ(printed, walkedPrinted);

        Matrix matrix;
        matrix << 2, 0, 0, 1, 0, -1, 0, 3, 0, 0, 1, 0.5f;
        const unsigned short pen = static_cast<unsigned short>(seed % 5);
        switch (seed % 3) {
        case 0: EXPECT_EQ(a.changePen(indices, pen), test::changePenByWalk(b, indices, pen)); break;
        case 1:
            EXPECT_EQ(a.transformPoints(indices, matrix),
                      test::transformPointsByWalk(b, indices, matrix));
            break;
        default: EXPECT_EQ(a.deletePoints(indices), test::deletePointsByWalk(b, indices));
        }
        EXPECT_EQ(test::pointsPerCollection(a), test::pointsPerCollection(b));
        EXPECT_EQ(serialized(a), serialized(b));
    }
}

TEST(SelectionElements, OnePassRemovalMatchesErasingOneByOne) {
    for (unsigned int seed = 0; seed < kSeeds; ++seed) {
        SCOPED_TRACE(seed);
        const test::Chooser choose = seededChooser(seed);
        // Pens tell the dots apart; indices repeat and some are missing.
        std::vector<CDot> dots;
        std::vector<CUnsupportedElement> records;
        for (unsigned int k = 0, n = choose(10); k < n; ++k) {
            const unsigned int index = choose(6) == 0 ? CElement::noIndex : choose(7);
            dots.emplace_back(Eigen::RowVector3f(1, 2, 0), static_cast<unsigned short>(k), index);
            std::vector<unsigned short> words = {0x3001, static_cast<unsigned short>(k)};
            records.emplace_back(words, index);
        }
        const std::set<unsigned int> named = someOf(choose, 9);
        const auto expectSameRemoval = [&named](auto elements, bool fromBack, auto key) {
            auto oneByOne = elements;
            std::set<unsigned int> left = named, oneByOneLeft = named;
            eraseNamed(elements, left, fromBack);
            eraseNamedOneByOne(oneByOne, oneByOneLeft, fromBack);
            EXPECT_EQ(left, oneByOneLeft);
            ASSERT_EQ(elements.size(), oneByOne.size());
            for (std::size_t k = 0; k < elements.size(); ++k) {
                EXPECT_EQ(key(elements[k]), key(oneByOne[k]));
            }
        };
        const auto pen = [](const CDot& dot) { return dot.getPenNumber(); };
        expectSameRemoval(dots, true, pen);
        expectSameRemoval(dots, false, pen);
        expectSameRemoval(records, false,
                          [](const CUnsupportedElement& r) { return r.getBinaryElementData(); });
    }
}

TEST(SelectionSubPaths, OnePassEditsMatchTheOneByOneForms) {
    for (unsigned int seed = 0; seed < 4 * kSeeds; ++seed) {
        SCOPED_TRACE(seed);
        const test::Chooser choose = seededChooser(seed);
        const CSubPath original = awkwardPath(choose);
        const std::set<unsigned int> named = someOf(choose, 11);
        CSubPath fast = original, oneByOne = original;
        EXPECT_EQ(CSubPathSelection::deletePoints(fast, named),
                  CSubPathSelection::deletePointsOneByOne(oneByOne, named));
        EXPECT_EQ(test::describe(fast), test::describe(oneByOne));

        fast = original;
        oneByOne = original;
        const unsigned short pen = 77;
        EXPECT_EQ(CSubPathSelection::changePen(fast, named, pen),
                  CSubPathSelection::changePenOneByOne(oneByOne, named, pen));
        EXPECT_EQ(test::describe(fast), test::describe(oneByOne));
    }
}
