#include <LibStrokeset/Formats/MachineExport.h>

#include <cmath>
#include <memory>
#include <optional>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>

#include "../Numbers.h"
#include "CGcodeDialect.h"
#include "CHpglDialect.h"
#include "CMachinePlacement.h"
#include "CMachineWriter.h"

namespace LibStrokeset::Formats {

namespace {

using Machine::CMachinePlacement;
using Machine::SBedPoint;

/// Why a point cannot be written, or nothing: its x or y is not a finite number, or becomes
/// one that no machine number holds once placed and scaled.
std::optional<std::string> badPoint(const CMachinePlacement& placement, const Eigen::RowVector3f& p,
                                    unsigned int index) {
    const auto at = [&] {
        return "the point at opcode index " + std::to_string(index) + " (" +
               significantDigits(p.x()) + ", " + significantDigits(p.y()) + ")";
    };
    if (!std::isfinite(p.x()) || !std::isfinite(p.y())) {
        return at() + " has a coordinate that is not a finite number";
    }
    const SBedPoint placed = placement.place(p.x(), p.y());
    if (!std::isfinite(placement.machineX(placed)) || !std::isfinite(placement.machineY(placed))) {
        return at() + " lies beyond any machine coordinate once placed and scaled";
    }
    return std::nullopt;
}

/// The first point, in drawing order, that cannot be written.
std::optional<std::string> firstBadPoint(const CStrokeset& drawing, const SDeviceProfile& profile) {
    const CMachinePlacement placement(profile);
    for (const CCollection* collection : drawing.getCollections()) {
        if (const auto* path = dynamic_cast<const CSubPath*>(collection)) {
            for (const CLine& line : *path) {
                if (auto bad = badPoint(placement, line.getPosition(), line.getOpcodeIndex())) {
                    return bad;
                }
                if (auto bad =
                        badPoint(placement, line.getEndPosition(), line.getEndOpcodeIndex())) {
                    return bad;
                }
            }
        } else if (const auto* dots = dynamic_cast<const CDotCollection*>(collection)) {
            for (const CDot& dot : *dots) {
                if (auto bad = badPoint(placement, dot.getPosition(), dot.getOpcodeIndex())) {
                    return bad;
                }
            }
        }
    }
    return std::nullopt;
}

std::unique_ptr<Machine::IMachineDialect> dialectFor(const SDeviceProfile& profile) {
    if (profile.language == EMachineLanguage::eHpgl) {
        return std::make_unique<Machine::CHpglDialect>();
    }
    return std::make_unique<Machine::CGcodeDialect>(
        profile.units, shortDecimals(profile.drawFeed * profile.scale, profile.decimals));
}

} // namespace

SMachineExport exportMachine(const CStrokeset& drawing, const SDeviceProfile& profile) {
    SMachineExport result;
    result.error = checkDeviceProfile(profile);
    if (result.error.empty()) {
        result.error = firstBadPoint(drawing, profile).value_or("");
    }
    if (!result.ok()) {
        return result;
    }
    const std::unique_ptr<Machine::IMachineDialect> dialect = dialectFor(profile);
    Machine::CMachineWriter writer(profile, *dialect, result);
    writer.begin();
    walkDrawing(drawing, writer);
    writer.end();
    SMachineEstimate& estimate = result.estimate;
    estimate.seconds = 60.0 * (estimate.drawLength / profile.drawFeed +
                               estimate.travelLength / profile.travelFeed) +
                       2.0 * profile.penSeconds * static_cast<double>(estimate.penLifts) +
                       profile.toolChangeSeconds * static_cast<double>(estimate.toolChanges);
    return result;
}

} // namespace LibStrokeset::Formats
