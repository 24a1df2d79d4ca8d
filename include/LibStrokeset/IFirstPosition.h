#pragma once

#include <Eigen/Core>

namespace LibStrokeset {

/// A collection that has a first point.
class IFirstPosition {
public:
    virtual const Eigen::RowVector3f& getFirstPosition() const = 0;

protected:
    // Never deleted through this interface.
    ~IFirstPosition() = default;
};

} // namespace LibStrokeset
