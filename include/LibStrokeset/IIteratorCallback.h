#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <vector>

#include <Eigen/Core>

namespace LibStrokeset {

/// Implemented by the host to visit a drawing element by element, in stream order.
class LIBSTROKESET_API IIteratorCallback {
public:
    virtual void onDot(const Eigen::RowVector3f& position) = 0;
    virtual void onLine(const Eigen::RowVector3f& start, const Eigen::RowVector3f& end,
                        bool firstLine, bool lastLine) = 0;
    virtual void onUnsupportedElement(const std::vector<unsigned short>& words) = 0;
    virtual ~IIteratorCallback() = default;
};

} // namespace LibStrokeset
