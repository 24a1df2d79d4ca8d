#include "optimize/travel/CContourPolygon.h"

#include <algorithm>
#include <cmath>

namespace LibStrokeset {

namespace {
/// An edge's ends, lower (by y, then x) first: every sum on an edge is then computed alike
/// whichever way the contour runs, so that rounding cannot make its answers depend on that.
std::pair<const Eigen::Vector2d&, const Eigen::Vector2d&> lowerFirst(const Eigen::Vector2d& a,
                                                                     const Eigen::Vector2d& b) {
    const bool aFirst = a.y() < b.y() || (a.y() == b.y() && a.x() <= b.x());
    return {aFirst ? a : b, aFirst ? b : a};
}

/// Contours with fewer edges are read whole: bands would cost more than they save.
constexpr std::size_t bandedFrom = 64;
/// Edges per band, on average.
constexpr std::size_t edgesPerBand = 8;
} // namespace

CContourPolygon::CContourPolygon(std::vector<Eigen::Vector2d> points, bool banded)
    : m_points(std::move(points)) {
    for (const Eigen::Vector2d& p : m_points) {
        m_finite = m_finite && std::isfinite(p.x()) && std::isfinite(p.y());
    }
    if (!m_finite || m_points.empty()) {
        m_finite = m_finite && !m_points.empty();
        return;
    }
    m_lowestFirst.resize(m_points.size());
    for (std::uint32_t k = 0; k < m_points.size(); ++k) {
        m_lowestFirst[k] = k;
    }
    std::sort(m_lowestFirst.begin(), m_lowestFirst.end(), [this](std::uint32_t a, std::uint32_t b) {
        const Eigen::Vector2d &p = m_points[a], &q = m_points[b];
        return p.x() < q.x() || (p.x() == q.x() && p.y() < q.y());
    });
    m_low = m_high = m_points.front();
    for (const Eigen::Vector2d& p : m_points) {
        m_low = m_low.cwiseMin(p);
        m_high = m_high.cwiseMax(p);
    }
    const std::size_t edges = m_points.size();
    if (!banded || edges < bandedFrom || !(m_high.y() > m_low.y())) {
        return;
    }
    const std::size_t bands = edges / edgesPerBand;
    m_bandHeight = (m_high.y() - m_low.y()) / static_cast<double>(bands);
    m_bands.resize(bands);
    for (std::size_t i = 0; i < edges; ++i) {
        const Eigen::Vector2d& a = m_points[i];
        const Eigen::Vector2d& b = m_points[(i + 1) % edges];
        const std::size_t from = bandAt(std::min(a.y(), b.y()));
        const std::size_t to = bandAt(std::max(a.y(), b.y()));
        for (std::size_t band = from; band <= to; ++band) {
            m_bands[band].push_back(static_cast<std::uint32_t>(i));
        }
    }
}

std::size_t CContourPolygon::bandAt(double y) const {
    const double band = std::floor((y - m_low.y()) / m_bandHeight);
    return static_cast<std::size_t>(std::clamp(band, 0.0, static_cast<double>(m_bands.size() - 1)));
}

bool CContourPolygon::boxHolds(const CContourPolygon& other) const {
    return m_finite && other.m_finite && m_low.x() <= other.m_low.x() &&
           m_low.y() <= other.m_low.y() && other.m_high.x() <= m_high.x() &&
           other.m_high.y() <= m_high.y();
}

template <class Visit> bool CContourPolygon::anyEdgeAt(double y, Visit visit) const {
    const std::size_t edges = m_points.size();
    if (m_bands.empty()) {
        for (std::size_t i = 0; i < edges; ++i) {
            if (visit(m_points[i], m_points[(i + 1) % edges])) {
                return true;
            }
        }
        return false;
    }
    // Every edge whose height range holds y lies in y's band: the band of a height is
    // computed alike everywhere and never decreases with it.
    for (std::uint32_t i : m_bands[bandAt(y)]) {
        if (visit(m_points[i], m_points[(i + 1) % edges])) {
            return true;
        }
    }
    return false;
}

bool CContourPolygon::onBoundary(const Eigen::Vector2d& p) const {
    if (!m_finite) {
        return false;
    }
    return anyEdgeAt(p.y(), [&p](const Eigen::Vector2d& from, const Eigen::Vector2d& to) {
        const auto [a, b] = lowerFirst(from, to);
        if (p.x() < std::min(a.x(), b.x()) || p.x() > std::max(a.x(), b.x()) ||
            p.y() < std::min(a.y(), b.y()) || p.y() > std::max(a.y(), b.y())) {
            return false;
        }
        return (b.x() - a.x()) * (p.y() - a.y()) == (b.y() - a.y()) * (p.x() - a.x());
    });
}

bool CContourPolygon::holds(const Eigen::Vector2d& p) const {
    if (!m_finite) {
        return false;
    }
    bool inside = false;
    anyEdgeAt(p.y(), [&p, &inside](const Eigen::Vector2d& from, const Eigen::Vector2d& to) {
        const auto [a, b] = lowerFirst(from, to);
        if ((a.y() > p.y()) != (b.y() > p.y())) {
            const double x = a.x() + (p.y() - a.y()) * (b.x() - a.x()) / (b.y() - a.y());
            if (p.x() < x) {
                inside = !inside;
            }
        }
        return false;
    });
    return inside;
}

} // namespace LibStrokeset
