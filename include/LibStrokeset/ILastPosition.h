#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <Eigen/Core>

namespace LibStrokeset {

/// A collection that has a last point.
class LIBSTROKESET_API ILastPosition {
public:
    /// Position of the collection's last point, where the pen-up travel leaves.
    virtual const Eigen::RowVector3f& getLastPosition() const = 0;

protected:
    /// Protected and not virtual: nothing is ever deleted through this interface.
    ~ILastPosition() = default;
};

} // namespace LibStrokeset
