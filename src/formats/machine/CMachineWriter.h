#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <LibStrokeset/Formats/DrawingWalk.h>
#include <LibStrokeset/Formats/MachineExport.h>

#include "CMachinePlacement.h"
#include "IMachineDialect.h"

// Turns a drawing, in its own order, into a machine file: placing, clipping, pen changes,
// strokes and plunges; the dialect spells them and the result counts what was written.
namespace LibStrokeset::Formats::Machine {

class CMachineWriter : public IDrawingVisitor {
public:
    CMachineWriter(const SDeviceProfile& profile, IMachineDialect& dialect, SMachineExport& result);

    /// The profile's header, the dialect's start, the pen lifted.
    void begin();
    /// The profile's footer and the warnings.
    void end();

    void onPath(const CSubPath& path) override;
    void onDot(const CDot& dot) override;
    void onRecord(const CUnsupportedElement& record) override;
    void onJump(const Eigen::RowVector3f& from, const Eigen::RowVector3f& to) override;

private:
    /// Points drawn with one pen, with the pen in the drawing's numbering.
    void writeRun(unsigned short pen, const std::vector<SBedPoint>& points);
    /// One pen-down stroke of at least one point on the bed.
    void writeStroke(unsigned short pen, const std::vector<SBedPoint>& points, bool dot);
    void changePen(unsigned short pen);
    /// The machine's number for a drawing pen; noPen stays noPen.
    unsigned short machinePen(unsigned short pen);
    /// The template's lines with {pen} and {power} filled in, one per line of the file.
    void writeLines(const std::string& lines);
    std::string number(double value) const;

    const SDeviceProfile& m_profile;
    IMachineDialect& m_dialect;
    SMachineExport& m_result;
    CMachinePlacement m_placement;
    std::optional<unsigned short> m_pen; ///< the machine pen in the holder
    std::optional<SBedPoint> m_lifted;   ///< where the pen last went up
    bool m_wrappedPens = false;
};

} // namespace LibStrokeset::Formats::Machine
