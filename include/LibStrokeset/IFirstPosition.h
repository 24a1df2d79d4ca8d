#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <Eigen/Core>

namespace LibStrokeset {

/// A collection that has a first point.
class LIBSTROKESET_API IFirstPosition {
public:
    virtual const Eigen::RowVector3f& getFirstPosition() const = 0;

protected:
    // Never deleted through this interface.
    ~IFirstPosition() = default;
};

} // namespace LibStrokeset
