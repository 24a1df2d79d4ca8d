#pragma once

#include <Eigen/Core>

namespace LibStrokeset {

/// A collection that has a last point.
class ILastPosition {
public:
    virtual const Eigen::RowVector3f& getLastPosition() const = 0;

protected:
    // Never deleted through this interface.
    ~ILastPosition() = default;
};

} // namespace LibStrokeset
