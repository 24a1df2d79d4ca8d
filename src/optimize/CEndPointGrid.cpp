#include "optimize/CEndPointGrid.h"

#include <algorithm>
#include <cmath>

#include <LibStrokeset/CSubPath.h>

#include "optimize/CScanSnapshot.h"

namespace LibStrokeset {

namespace {

/// Cell coordinates are clamped to this range, so that they fit a key whatever the
/// coordinates; clamping keeps their order, so the search stays conservative.
constexpr std::int64_t cellLimit = std::int64_t(1) << 30;

bool finite(const Eigen::RowVector3f& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

} // namespace

bool CEndPointGrid::canIndex(float tolerance) { return std::isfinite(tolerance); }

CEndPointGrid::CEndPointGrid(const CScanSnapshot& snapshot, float tolerance)
    // When the float distance of a and b is below the tolerance t (finite coordinates),
    // every axis differs by less than t (1 + 2^-22) unless that difference is below 2^-60,
    // where the squares underflow; the reach covers both with a wide margin.
    : m_reach(static_cast<double>(tolerance) * (1.0 + std::ldexp(1.0, -12)) + std::ldexp(1.0, -40)),
      m_cellSize(cellSize(snapshot, m_reach)), m_cells([&] {
          // A point with an infinite or NaN coordinate is at an infinite or NaN distance from
          // every point, which no tolerance accepts: it is not filed.
          std::vector<CPositionGroups::SKeyedPosition> filed;
          for (std::uint32_t position = 0; position < snapshot.size(); ++position) {
              if (const CSubPath* path = snapshot.path(position)) {
                  for (const Eigen::RowVector3f* p :
                       {&path->getFirstPosition(), &path->getLastPosition()}) {
                      if (finite(*p)) {
                          filed.emplace_back(key(cellOf(p->x()), cellOf(p->y())), position);
                      }
                  }
              }
          }
          return CPositionGroups(filed);
      }()) {}

double CEndPointGrid::cellSize(const CScanSnapshot& snapshot, double reach) {
    // About one end point per cell over the extent of most of the points (a few far-off
    // points must not make the cells large), but never below twice the reach, so that a
    // search looks at no more than two cells per axis.
    std::vector<float> xs, ys;
    for (std::uint32_t position = 0; position < snapshot.size(); ++position) {
        if (const CSubPath* path = snapshot.path(position)) {
            for (const Eigen::RowVector3f* p :
                 {&path->getFirstPosition(), &path->getLastPosition()}) {
                if (finite(*p)) {
                    xs.push_back(p->x());
                    ys.push_back(p->y());
                }
            }
        }
    }
    if (xs.empty()) {
        return 2.0 * reach;
    }
    const auto spread = [](std::vector<float>& values) {
        const std::size_t margin = values.size() / 100;
        std::nth_element(values.begin(), values.begin() + margin, values.end());
        const double low = values[margin];
        const std::size_t top = values.size() - 1 - margin;
        std::nth_element(values.begin(), values.begin() + top, values.end());
        return static_cast<double>(values[top]) - low;
    };
    const double extent = std::max(spread(xs), spread(ys));
    return std::max(2.0 * reach, extent / std::sqrt(static_cast<double>(xs.size())));
}

std::int64_t CEndPointGrid::cellOf(double coordinate) const {
    const double cell = std::floor(coordinate / m_cellSize);
    return static_cast<std::int64_t>(
        std::clamp(cell, -static_cast<double>(cellLimit), static_cast<double>(cellLimit)));
}

std::uint64_t CEndPointGrid::key(std::int64_t x, std::int64_t y) {
    return (static_cast<std::uint64_t>(x + 2 * cellLimit) << 32) |
           static_cast<std::uint64_t>(y + 2 * cellLimit);
}

void CEndPointGrid::collect(const Eigen::RowVector3f& p, std::uint32_t after,
                            std::vector<SRange>& ranges) const {
    if (!finite(p)) {
        return; // nothing lies within a tolerance of it
    }
    const double x = p.x(), y = p.y();
    // Rounding and floor keep order, so a coordinate within the reach of x falls in a cell
    // between these two.
    const std::int64_t xLow = cellOf(x - m_reach), xHigh = cellOf(x + m_reach);
    const std::int64_t yLow = cellOf(y - m_reach), yHigh = cellOf(y + m_reach);
    for (std::int64_t cx = xLow; cx <= xHigh; ++cx) {
        for (std::int64_t cy = yLow; cy <= yHigh; ++cy) {
            const SRange range = m_cells.after(key(cx, cy), after);
            if (range.first != range.last) {
                ranges.push_back(range);
            }
        }
    }
}

} // namespace LibStrokeset
