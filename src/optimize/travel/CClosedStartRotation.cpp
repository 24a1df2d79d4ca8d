#include "optimize/travel/CClosedStartRotation.h"

namespace LibStrokeset {

CClosedStartRotation::CClosedStartRotation(const std::vector<const CSubPath*>& paths,
                                           std::vector<std::size_t>& rotations)
    : m_paths(paths), m_rotations(rotations) {}

std::size_t CClosedStartRotation::run(CTravelTour& tour, const Eigen::RowVector3f* origin) {
    const std::vector<CTravelTour::SStep> path = tour.path();
    std::size_t rotated = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        const std::uint32_t item = path[i].item;
        if (m_paths[item] == nullptr) {
            continue;
        }
        const Eigen::RowVector3f* from = i == 0 ? origin : tour.exit(path[i - 1].item);
        const Eigen::RowVector3f* to = i + 1 < path.size() ? tour.entry(path[i + 1].item) : nullptr;
        const Eigen::RowVector3f& now = tour.start(item);
        double best = CTravelTour::jump(from, &now) + CTravelTour::jump(&now, to);
        std::size_t chosen = m_rotations[item];
        const std::vector<CLine>& lines = m_paths[item]->getLines();
        for (std::size_t k = 0; k < lines.size(); ++k) {
            const Eigen::RowVector3f& p = lines[k].getPosition();
            const double length = CTravelTour::jump(from, &p) + CTravelTour::jump(&p, to);
            if (length < best && best - length > best * 1e-12) {
                best = length;
                chosen = k;
            }
        }
        if (chosen != m_rotations[item]) {
            m_rotations[item] = chosen;
            tour.setEnds(item, lines[chosen].getPosition());
            ++rotated;
        }
    }
    return rotated;
}

} // namespace LibStrokeset
