#pragma once

#include <cmath>
#include <limits>

#include <Eigen/Core>

namespace LibStrokeset {

/// Distances at or below this count as zero.
constexpr float zeroDistance = std::numeric_limits<float>::epsilon();

/// Maps p by the affine 3 x 4 matrix: the left 3 x 3 block times p plus the fourth column.
inline Eigen::RowVector3f applyAffine(const Eigen::Matrix<float, 3, 4>& matrix,
                                      const Eigen::RowVector3f& p) {
    return (matrix.leftCols<3>() * p.transpose() + matrix.col(3)).transpose();
}

/// 3D Euclidean distance in float, summed in the one order every tolerance test relies on.
inline float distance(const Eigen::RowVector3f& a, const Eigen::RowVector3f& b) {
    const float dx = b.x() - a.x();
    const float dy = b.y() - a.y();
    const float dz = b.z() - a.z();
    return std::sqrt((dy * dy + dz * dz) + dx * dx);
}

/// A point is written and counted as 3D exactly when its z is not 0 (so -0 is 2D, NaN 3D).
inline bool isPoint3D(const Eigen::RowVector3f& p) { return p.z() != 0.0f; }

/// The point (0, 0, 0), for collections asked for a position they do not have.
inline const Eigen::RowVector3f& origin() {
    static const Eigen::RowVector3f zero(0.0f, 0.0f, 0.0f);
    return zero;
}

/// Exact comparison of every coordinate.
inline bool samePosition(const Eigen::RowVector3f& a, const Eigen::RowVector3f& b) {
    return a.x() == b.x() && a.y() == b.y() && a.z() == b.z();
}

} // namespace LibStrokeset
