#pragma once

#include <optional>
#include <utility>

#include <LibStrokeset/Formats/DeviceProfile.h>

// Where a drawing point lands on the machine's bed, and which part of a segment stays on it.
namespace LibStrokeset::Formats::Machine {

/// A point on the bed, in drawing units: flipped and moved, not yet scaled.
struct SBedPoint {
    double x = 0.0, y = 0.0;
    bool operator==(const SBedPoint& other) const { return x == other.x && y == other.y; }
};

class CMachinePlacement {
public:
    explicit CMachinePlacement(const SDeviceProfile& profile);

    /// The drawing point flipped and moved by the profile's origin.
    SBedPoint place(double x, double y) const;
    /// In machine units: scaled.
    double machineX(const SBedPoint& p) const { return p.x * m_scale; }
    double machineY(const SBedPoint& p) const { return p.y * m_scale; }
    /// True when the bed holds the point; always true without a bed size.
    bool onBed(const SBedPoint& p) const;
    /// The part of the segment from a to b that lies on the bed (Liang-Barsky), if any; the
    /// whole segment without a bed size.
    std::optional<std::pair<SBedPoint, SBedPoint>> clip(const SBedPoint& a,
                                                        const SBedPoint& b) const;

private:
    /// The point held inside the bed.
    SBedPoint onEdge(SBedPoint p) const;

    double m_scale, m_signX, m_signY, m_originX, m_originY, m_width, m_height;
};

} // namespace LibStrokeset::Formats::Machine
