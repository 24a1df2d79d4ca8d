#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <vector>

#include <Eigen/Core>

namespace LibStrokeset {

/// Implemented by the host to visit a drawing element by element, in the order in which
/// serialize would write it (CStrokeset::iterate). The library never keeps or deletes it.
class LIBSTROKESET_API IIteratorCallback {
public:
    /// Called once per dot, with its position.
    virtual void onDot(const Eigen::RowVector3f& position) = 0;
    /// Called once per line of a sub-path, in order. firstLine is true only for the
    /// sub-path's first line, lastLine only for its last; a one-line sub-path passes both.
    virtual void onLine(const Eigen::RowVector3f& start, const Eigen::RowVector3f& end,
                        bool firstLine, bool lastLine) = 0;
    /// Called once per unsupported record, with its words exactly as they stood.
    virtual void onUnsupportedElement(const std::vector<unsigned short>& words) = 0;
    /// Lets the host delete its callbacks through this interface.
    virtual ~IIteratorCallback() = default;
};

} // namespace LibStrokeset
