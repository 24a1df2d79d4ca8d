#include <gtest/gtest.h>

#include "EditSession.h"
#include "document/CCollectionLookup.h"
#include "stream/CSerializationState.h"

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

/// A host edits a collection it took from the const list: the document is not told, the
/// collection's range changes all the same.
void editHeldCollection(CStrokeset& document, const test::Chooser& choose) {
    const auto& list = std::as_const(document).getCollections();
    if (list.empty()) {
        return;
    }
    CCollection* collection =
        *std::next(list.begin(), choose(static_cast<unsigned int>(list.size())));
    const unsigned int index = choose(document.getOpcodeCount() + 2);
    switch (choose(4)) {
    case 0: {
        // The collection written alone: numbered from 0, its range moves to the front.
        Words words;
        CSerializationState state(words, nullptr);
        collection->serialize(state);
        break;
    }
    case 1:
        if (auto* dots = dynamic_cast<CDotCollection*>(collection)) {
            CDot dot(Eigen::RowVector3f(1.0f, 2.0f, 0.0f), 3, index);
            dots->addDot(dot);
        }
        break;
    case 2:
        if (auto* path = dynamic_cast<CSubPath*>(collection)) {
            path->reverse();
        }
        break;
    default:
        if (auto* path = dynamic_cast<CSubPath*>(collection)) {
            delete path->split(index); // the host keeps the rest and drops the cut-off part
        }
    }
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
            for (std::size_t r = 0; r < 3; ++r) {
                if (what == 0) {
                    const test::Chooser same = seededChooser(seed * 31 + step);
                    editHeldCollection(documents[r], same);
                } else {
                    sessions[r]->edit(documents[r]);
                }
            }
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
