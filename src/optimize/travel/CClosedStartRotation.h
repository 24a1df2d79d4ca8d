#pragma once

#include <cstddef>
#include <vector>

#include <LibStrokeset/CSubPath.h>

#include "optimize/travel/CTravelTour.h"

namespace LibStrokeset {

/// Enters each closed sub-path of a tour at the point that makes the jumps into it and out
/// of it shortest (it starts and ends there), keeping the point it has unless another is
/// strictly better. Goes along the path once, so that each choice sees the one before it.
class CClosedStartRotation {
public:
    /// `paths[item]` is the closed sub-path of a tour item, or null for any other item;
    /// `rotations[item]` the line it now starts with, changed by run.
    CClosedStartRotation(const std::vector<const CSubPath*>& paths,
                         std::vector<std::size_t>& rotations);

    /// Rotates in the tour (its items' ends move to the new point); returns how many
    /// items it rotated.
    std::size_t run(CTravelTour& tour, const Eigen::RowVector3f* origin);

private:
    const std::vector<const CSubPath*>& m_paths;
    std::vector<std::size_t>& m_rotations;
};

} // namespace LibStrokeset
