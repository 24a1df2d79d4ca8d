#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <Eigen/Core>

namespace LibStrokeset {

/// A collection that has a first point.
class LIBSTROKESET_API IFirstPosition {
public:
    /// Position of the collection's first point, where the pen-up travel arrives.
    virtual const Eigen::RowVector3f& getFirstPosition() const = 0;

protected:
    /// Protected and not virtual: nothing is ever deleted through this interface.
    ~IFirstPosition() = default;
};

} // namespace LibStrokeset
