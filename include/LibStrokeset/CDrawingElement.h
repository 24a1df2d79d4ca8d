#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <Eigen/Core>

#include <LibStrokeset/CElement.h>

namespace LibStrokeset {

/// An element with a position and a pen: a dot, or the start point of a line.
class LIBSTROKESET_API CDrawingElement : public CElement {
public:
    /// Pen number that means "no pen".
    static constexpr unsigned short noPen = 65535;

    /// An element at the position, drawn with the pen, under the opcode index.
    CDrawingElement(const Eigen::RowVector3f& position, unsigned short penNumber,
                    unsigned int opcodeIndex);

    /// The position (x, y, z).
    const Eigen::RowVector3f& getPosition() const;
    /// The pen in force for this point; 65535 means no pen.
    unsigned short getPenNumber() const;
    /// Replaces the pen; the index stays.
    void setPenNumber(unsigned short penNumber);

    /// A point is 3D exactly when its z compares unequal to 0 (so -0 is 2D, NaN is 3D).
    bool is3D() const;

    /// Replaces the position; with clearIndex the element loses its opcode index.
    void setPoint(Eigen::RowVector3f position, bool clearIndex);

private:
    Eigen::RowVector3f m_position;
    unsigned short m_penNumber;
};

} // namespace LibStrokeset
