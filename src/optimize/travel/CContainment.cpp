#include "optimize/travel/CContainment.h"

#include <algorithm>
#include <cmath>

namespace LibStrokeset {

namespace {
/// A contour whose box covers more cells than this is tried against every query instead.
constexpr std::size_t mostCellsPerContour = 64;
} // namespace

bool CContainment::liesInside(const CContourPolygon& inner, std::uint32_t innerNumber,
                              const CContourPolygon& outer, std::uint32_t outerNumber) {
    if (innerNumber == outerNumber || !outer.boxHolds(inner)) {
        return false;
    }
    const double innerArea = inner.boxArea(), outerArea = outer.boxArea();
    if (!(innerArea < outerArea || (innerArea == outerArea && innerNumber < outerNumber))) {
        return false;
    }
    // The lowest vertex off the outer's boundary: the answer must not depend on where a
    // closed path starts or which way it runs, which the travel optimizer changes.
    for (std::uint32_t k : inner.lowestFirst()) {
        const Eigen::Vector2d& vertex = inner.points()[k];
        if (!outer.onBoundary(vertex)) {
            return outer.holds(vertex);
        }
    }
    return false;
}

std::vector<std::pair<std::uint32_t, std::uint32_t>>
CContainment::of(const std::vector<CContourPolygon>& contours, EContainmentRoute route) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs =
        route == EContainmentRoute::eAllPairs ? allPairs(contours) : indexed(contours);
    std::sort(pairs.begin(), pairs.end());
    return pairs;
}

std::vector<std::pair<std::uint32_t, std::uint32_t>>
CContainment::allPairs(const std::vector<CContourPolygon>& contours) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
    const auto n = static_cast<std::uint32_t>(contours.size());
    for (std::uint32_t i = 0; i < n; ++i) {
        for (std::uint32_t j = 0; j < n; ++j) {
            if (liesInside(contours[i], i, contours[j], j)) {
                pairs.emplace_back(i, j);
            }
        }
    }
    return pairs;
}

std::vector<std::pair<std::uint32_t, std::uint32_t>>
CContainment::indexed(const std::vector<CContourPolygon>& contours) {
    std::vector<std::pair<std::uint32_t, std::uint32_t>> pairs;
    const auto n = static_cast<std::uint32_t>(contours.size());
    // A grid over all finite boxes, about one cell per contour.
    bool any = false;
    Eigen::Vector2d low = Eigen::Vector2d::Zero(), high = Eigen::Vector2d::Zero();
    for (const CContourPolygon& contour : contours) {
        if (contour.isFinite()) {
            low = any ? low.cwiseMin(contour.low()) : contour.low();
            high = any ? high.cwiseMax(contour.high()) : contour.high();
            any = true;
        }
    }
    if (!any) {
        return pairs;
    }
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(n))));
    const Eigen::Vector2d extent = high - low;
    const double cellX = extent.x() > 0.0 ? extent.x() / static_cast<double>(side) : 1.0;
    const double cellY = extent.y() > 0.0 ? extent.y() / static_cast<double>(side) : 1.0;
    const auto cellOf = [&](double v, double origin, double cell) {
        const double at = std::floor((v - origin) / cell);
        return static_cast<std::size_t>(std::clamp(at, 0.0, static_cast<double>(side - 1)));
    };
    std::vector<std::vector<std::uint32_t>> cells(side * side);
    std::vector<std::uint32_t> large;
    for (std::uint32_t j = 0; j < n; ++j) {
        const CContourPolygon& contour = contours[j];
        if (!contour.isFinite()) {
            continue;
        }
        const std::size_t x0 = cellOf(contour.low().x(), low.x(), cellX);
        const std::size_t x1 = cellOf(contour.high().x(), low.x(), cellX);
        const std::size_t y0 = cellOf(contour.low().y(), low.y(), cellY);
        const std::size_t y1 = cellOf(contour.high().y(), low.y(), cellY);
        if ((x1 - x0 + 1) * (y1 - y0 + 1) > mostCellsPerContour) {
            large.push_back(j);
            continue;
        }
        for (std::size_t y = y0; y <= y1; ++y) {
            for (std::size_t x = x0; x <= x1; ++x) {
                cells[y * side + x].push_back(j);
            }
        }
    }
    // A box that holds another holds its centre, so the cell of the centre lists it.
    for (std::uint32_t i = 0; i < n; ++i) {
        const CContourPolygon& inner = contours[i];
        if (!inner.isFinite()) {
            continue;
        }
        const Eigen::Vector2d centre = (inner.low() + inner.high()) / 2.0;
        const std::vector<std::uint32_t>& cell =
            cells[cellOf(centre.y(), low.y(), cellY) * side + cellOf(centre.x(), low.x(), cellX)];
        const std::vector<std::uint32_t>* lists[] = {&cell, &large};
        for (const std::vector<std::uint32_t>* candidates : lists) {
            for (std::uint32_t j : *candidates) {
                if (liesInside(inner, i, contours[j], j)) {
                    pairs.emplace_back(i, j);
                }
            }
        }
    }
    return pairs;
}

} // namespace LibStrokeset
