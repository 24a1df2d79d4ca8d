#include "CMachinePlacement.h"

namespace LibStrokeset::Formats::Machine {

CMachinePlacement::CMachinePlacement(const SDeviceProfile& profile)
    : m_scale(profile.scale), m_signX(profile.flipX ? -1.0 : 1.0),
      m_signY(profile.flipY ? -1.0 : 1.0), m_originX(profile.originX), m_originY(profile.originY),
      m_width(profile.bedWidth), m_height(profile.bedHeight) {}

SBedPoint CMachinePlacement::place(double x, double y) const {
    return {m_signX * x + m_originX, m_signY * y + m_originY};
}

bool CMachinePlacement::onBed(const SBedPoint& p) const {
    return (m_width <= 0.0 || (p.x >= 0.0 && p.x <= m_width)) &&
           (m_height <= 0.0 || (p.y >= 0.0 && p.y <= m_height));
}

SBedPoint CMachinePlacement::onEdge(SBedPoint p) const {
    const auto hold = [](double v, double size) {
        return size <= 0.0 ? v : v < 0.0 ? 0.0 : v > size ? size : v;
    };
    return {hold(p.x, m_width), hold(p.y, m_height)};
}

std::optional<std::pair<SBedPoint, SBedPoint>> CMachinePlacement::clip(const SBedPoint& a,
                                                                       const SBedPoint& b) const {
    double enter = 0.0, leave = 1.0;
    const double dx = b.x - a.x, dy = b.y - a.y;
    // Each edge bounds the segment's parameter from one side: p * t <= q.
    const auto edge = [&](double p, double q) {
        if (p == 0.0) {
            return q >= 0.0;
        }
        const double t = q / p;
        if (p < 0.0) {
            enter = t > enter ? t : enter;
        } else {
            leave = t < leave ? t : leave;
        }
        return enter <= leave;
    };
    const bool kept = (m_width <= 0.0 || (edge(-dx, a.x) && edge(dx, m_width - a.x))) &&
                      (m_height <= 0.0 || (edge(-dy, a.y) && edge(dy, m_height - a.y)));
    if (!kept) {
        return std::nullopt;
    }
    // The ends that are not cut stay exactly as they were; cut ones are held on the edge
    // against rounding.
    const SBedPoint from = enter > 0.0 ? onEdge({a.x + enter * dx, a.y + enter * dy}) : a;
    const SBedPoint to = leave < 1.0 ? onEdge({a.x + leave * dx, a.y + leave * dy}) : b;
    return std::make_pair(from, to);
}

} // namespace LibStrokeset::Formats::Machine
