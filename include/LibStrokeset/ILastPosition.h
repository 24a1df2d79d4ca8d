#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <Eigen/Core>

namespace LibStrokeset {

/// A collection that has a last point.
class LIBSTROKESET_API ILastPosition {
public:
    virtual const Eigen::RowVector3f& getLastPosition() const = 0;

protected:
    // Never deleted through this interface.
    ~ILastPosition() = default;
};

} // namespace LibStrokeset
