// Decodes arbitrary bytes into a drawing (as the optimizer fuzzer does) and travel switches,
// optionally cleans it up with optimize first, runs optimizeTravel, and stops when what is
// drawn changed, the pen changes were miscounted, the travel grew, the written words do not
// read back whole, or (inner first) a closed path comes before one inside it in its stretch.
// Then refines the first collections' ends as they now lie on the array tour and on the
// blocked tour, with a couple of kicks, and stops when the two end apart. The time limit is
// short, so that runs are also cut at arbitrary points.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "DrawingDecoder.h"
#include "DrawnSegments.h"
#include "optimize/travel/CContainment.h"
#include "optimize/travel/COrientedPath.h"
#include "optimize/travel/CBlockedTour.h"
#include "optimize/travel/CEndNeighbours.h"
#include "optimize/travel/CTourRefinement.h"

#include <limits>

namespace {

void fail(const char* what) {
    std::fprintf(stderr, "optimizeTravel: %s\n", what);
    std::abort();
}

/// Whether every closed path comes after the closed paths inside it, stretch by stretch
/// between unsupported records, by the every-pair search.
bool innerFirstHolds(LibStrokeset::CStrokeset& document) {
    std::vector<std::vector<LibStrokeset::CContourPolygon>> stretches(1);
    for (LibStrokeset::CCollection* collection : document) {
        auto* path = dynamic_cast<LibStrokeset::CSubPath*>(collection);
        if (path != nullptr && !path->isEmpty() && LibStrokeset::COrientedPath::mayRotate(*path)) {
            std::vector<Eigen::Vector2d> points;
            for (const LibStrokeset::CLine& line : *path) {
                points.emplace_back(line.getPosition().x(), line.getPosition().y());
            }
            stretches.back().emplace_back(points, false);
        } else if (path == nullptr && !collection->isEmpty() &&
                   dynamic_cast<LibStrokeset::CDotCollection*>(collection) == nullptr) {
            stretches.emplace_back();
        }
    }
    for (const auto& stretch : stretches) {
        for (const auto& [inner, outer] :
             LibStrokeset::CContainment::of(stretch, LibStrokeset::EContainmentRoute::eAllPairs)) {
            if (outer < inner) return false;
        }
    }
    return true;
}

/// Items and kicks per comparison: enough for several blocks and a kick taken back on both
/// tours, few enough that the comparison does not crowd out the inputs.
constexpr std::size_t comparedItems = 64;
constexpr std::size_t kicksCompared = 2;

/// Refines the first and last points of the collections on both tours, from the drawing's
/// order, with no deadline.
void compareTours(LibStrokeset::CStrokeset& document) {
    using namespace LibStrokeset;
    std::vector<Eigen::RowVector3f> starts, ends;
    std::vector<CTravelTour::SStep> steps;
    for (CCollection* collection : document) {
        const auto* first = dynamic_cast<const IFirstPosition*>(collection);
        const auto* last = dynamic_cast<const ILastPosition*>(collection);
        if (first != nullptr && last != nullptr && !collection->isEmpty() &&
            starts.size() < comparedItems) {
            steps.push_back({static_cast<std::uint32_t>(starts.size()), false});
            starts.push_back(first->getFirstPosition());
            ends.push_back(last->getLastPosition());
        }
    }
    CTravelTour plain(starts, ends, steps, nullptr);
    CBlockedTour blocked(starts, ends, steps, nullptr);
    const CEndNeighbours neighbours(starts, ends, 8);
    const std::atomic<bool> aborted(false);
    const long long never = std::numeric_limits<long long>::max();
    CTourRefinement onPlain(plain, neighbours, aborted, never, nullptr);
    CTourRefinement onBlocked(blocked, neighbours, aborted, never, nullptr);
    onPlain.limitKicks(kicksCompared);
    onBlocked.limitKicks(kicksCompared);
    if (onPlain.run() != onBlocked.run()) {
        fail("the two tours made different moves");
    }
    for (std::size_t p = 0; p < plain.size(); ++p) {
        if (plain.itemAt(p) != blocked.itemAt(p) ||
            plain.isReversed(plain.itemAt(p)) != blocked.isReversed(blocked.itemAt(p))) {
            fail("the two tours ended apart");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    test::ByteSource source(data, size);
    const unsigned switches = source.byte();
    const test::DecodedRun input = test::DrawingDecoder(source).decode();
    LibStrokeset::CStrokeset document(input.words);
    for (unsigned int index : input.emptied) {
        document.deletePoint(index);
    }
    if (switches & 8) { // joined paths of several pens, as the tool hands them over
        LibStrokeset::COptimizationResults ignored;
        document.optimize(input.parameters, ignored, [](int, float) {});
    }
    const auto before = test::drawn(document);
    const unsigned int pensBefore = document.getPenChangeCount();
    LibStrokeset::CTravelOptimizationResults results;
    const bool changed =
        document.optimizeTravel(LibStrokeset::CTravelOptimizationParameters(
                                    switches & 1, switches & 2, switches & 4, 0.005, switches & 16),
                                results, [](int, float) {});
    if (test::drawn(document) != before) {
        fail("what is drawn changed");
    }
    if (results.penChangesBefore() != pensBefore ||
        results.penChangesAfter() != document.getPenChangeCount()) {
        fail("pen changes miscounted");
    }
    // Pens together may buy fewer pen changes with travel; nothing else lengthens it.
    const double after = results.travelAfter(), travelBefore = results.travelBefore();
    const bool same = after == travelBefore || (std::isnan(after) && std::isnan(travelBefore));
    // Inner first may cost travel to put a hole before its outline.
    if ((!(switches & 17) && after > travelBefore) || (!changed && !same)) {
        fail("the travel grew");
    }
    if ((switches & 16) && !innerFirstHolds(document)) {
        fail("a closed path comes before one inside it");
    }
    // Inner first comes before pens together: a hole in another pen may cost a change.
    if ((switches & 1) && !(switches & 16) &&
        results.penChangesAfter() > results.penChangesBefore()) {
        fail("pens together added pen changes");
    }
    std::vector<unsigned short> words;
    document.serialize(words, nullptr);
    if (LibStrokeset::CStrokeset::getCutRecordPosition(words) != 4294967295u) {
        fail("the written words hold a cut record");
    }
    compareTours(document);
    return 0;
}
