// Builds a drawing from a session of edits that the input bytes choose, then checks that the
// one-pass selection code does what the one-at-a-time forms do: the same groups for a
// selection, the same results and words for changePen, transformPoints and deletePoints on
// a twin drawing, and the same lines or elements for every collection's own set edits. Twins
// that find collections by the index and by the walk answer every lookup alike after every
// edit, the host's own edits of collections it holds included.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <set>
#include <vector>

#include "EditSession.h"
#include "document/CCollectionLookup.h"
#include "SelectionOracle.h"
#include "elements/NamedElementRemoval.h"

namespace {

using namespace LibStrokeset;

void fail(const char* what) {
    std::fprintf(stderr, "one-pass selection differs: %s\n", what);
    std::abort();
}

/// Choices read from the input, one byte each (two when more than 256 are possible); zeros
/// once the input is used up.
test::Chooser byteChooser(const std::uint8_t* data, std::size_t size) {
    auto next = std::make_shared<std::size_t>(0);
    return [data, size, next](unsigned int n) {
        unsigned int value = 0;
        for (unsigned int span = 1; span < n && span < 65536; span <<= 8) {
            value = (value << 8) | (*next < size ? data[(*next)++] : 0u);
        }
        return n < 2 ? 0u : value % n;
    };
}

/// Every sub-path and dot run of the document, copied, edited by the set both ways.
void compareCollectionEdits(const CStrokeset& document, const std::set<unsigned int>& named) {
    for (const CCollection* collection : document.getCollections()) {
        if (const auto* path = dynamic_cast<const CSubPath*>(collection)) {
            CSubPath fast = *path, oneByOne = *path;
            if (CSubPathSelection::deletePoints(fast, named) !=
                    CSubPathSelection::deletePointsOneByOne(oneByOne, named) ||
                test::describe(fast) != test::describe(oneByOne)) {
                fail("sub-path deletePoints");
            }
            fast = *path;
            oneByOne = *path;
            if (CSubPathSelection::changePen(fast, named, 9) !=
                    CSubPathSelection::changePenOneByOne(oneByOne, named, 9) ||
                test::describe(fast) != test::describe(oneByOne)) {
                fail("sub-path changePen");
            }
        } else if (const auto* dots = dynamic_cast<const CDotCollection*>(collection)) {
            for (const bool fromBack : {true, false}) {
                std::vector<CDot> fast(dots->begin(), dots->end()), oneByOne = fast;
                std::set<unsigned int> fastLeft = named, oneByOneLeft = named;
                eraseNamed(fast, fastLeft, fromBack);
                eraseNamedOneByOne(oneByOne, oneByOneLeft, fromBack);
                if (fastLeft != oneByOneLeft || fast.size() != oneByOne.size()) {
                    fail("dot removal");
                }
                for (std::size_t k = 0; k < fast.size(); ++k) {
                    if (fast[k].getOpcodeIndex() != oneByOne[k].getOpcodeIndex() ||
                        fast[k].getPenNumber() != oneByOne[k].getPenNumber() ||
                        test::bits(fast[k].getPosition()) !=
                            test::bits(oneByOne[k].getPosition())) {
                        fail("dot removal");
                    }
                }
            }
        }
    }
}

/// Everything a host can ask by index, answered by the indexed twin and the walking one.
void compareLookups(CStrokeset& indexed, CStrokeset& walked) {
    for (unsigned int i = 0; i < walked.getOpcodeCount() + 3; ++i) {
        Eigen::RowVector3f p(1.0f, 2.0f, 3.0f), q(1.0f, 2.0f, 3.0f);
        unsigned short penP = 5, penQ = 5;
        if (indexed.getCollectionIndexOfPoint(i) != walked.getCollectionIndexOfPoint(i) ||
            indexed.getOpcodeType(i) != walked.getOpcodeType(i) ||
            indexed.getPosition(i, p) != walked.getPosition(i, q) ||
            test::bits(p) != test::bits(q) ||
            indexed.getPenNumber(i, penP) != walked.getPenNumber(i, penQ) || penP != penQ) {
            fail("lookup routes");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::EditSession sessionA(byteChooser(data, size)), sessionB(byteChooser(data, size));
    // Twins that find collections by the two routes, compared after every edit.
    CStrokeset a, b;
    lookupOf(a).setRoute(ELookupRoute::eIndexed);
    lookupOf(b).setRoute(ELookupRoute::eWalk);
    const unsigned int edits = size == 0 ? 0 : data[0] % 48;
    sessionA.build(a, 0);
    sessionB.build(b, 0);
    compareLookups(a, b);
    for (unsigned int k = 0; k < edits; ++k) {
        const unsigned int kind = size > 1 ? (data[1] + k) % 6 : 1;
        if (kind == 0) {
            sessionA.editHeldCollection(a);
            sessionB.editHeldCollection(b);
        } else if (kind < 3) {
            sessionA.edit(a);
            sessionB.edit(b);
        } else if (sessionA.command(a) != sessionB.command(b)) {
            fail("command answers");
        }
        compareLookups(a, b);
    }
    const std::vector<unsigned int> indices = sessionA.selection(a);
    if (sessionB.selection(b) != indices) {
        fail("twins differ");
    }

    test::Groups fast, walked;
    const bool grouped = CIndexGrouping::group(a.getCollections(), indices, fast);
    if (grouped != CIndexGrouping::groupByWalk(a, indices, walked) || fast != walked) {
        fail("groups");
    }
    compareCollectionEdits(a, std::set<unsigned int>(indices.begin(), indices.end()));

    test::Matrix matrix;
    matrix << 0.5f, 0, 0, 1, 0, 1, 0, -2, 0, 0, 1, 3;
    bool same = true;
    switch (data[size == 0 ? 0 : size - 1] % 3) {
    case 0: same = a.changePen(indices, 4) == test::changePenByWalk(b, indices, 4); break;
    case 1:
        same =
            a.transformPoints(indices, matrix) == test::transformPointsByWalk(b, indices, matrix);
        break;
    default: same = a.deletePoints(indices) == test::deletePointsByWalk(b, indices);
    }
    std::vector<unsigned short> wordsA, wordsB;
    a.serialize(wordsA, nullptr);
    b.serialize(wordsB, nullptr);
    if (!same || wordsA != wordsB) {
        fail("command result or words");
    }
    return 0;
}
