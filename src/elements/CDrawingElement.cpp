#include <LibStrokeset/CDrawingElement.h>

#include "elements/Geometry.h"

namespace LibStrokeset {

CDrawingElement::CDrawingElement(const Eigen::RowVector3f& position, unsigned short penNumber,
                                 unsigned int opcodeIndex)
    : CElement(opcodeIndex), m_position(position), m_penNumber(penNumber) {}

const Eigen::RowVector3f& CDrawingElement::getPosition() const { return m_position; }

unsigned short CDrawingElement::getPenNumber() const { return m_penNumber; }

void CDrawingElement::setPenNumber(unsigned short penNumber) { m_penNumber = penNumber; }

bool CDrawingElement::is3D() const { return isPoint3D(m_position); }

void CDrawingElement::setPoint(Eigen::RowVector3f position, bool clearIndex) {
    m_position = position;
    if (clearIndex) {
        setOpcodeIndex(noIndex);
    }
}

} // namespace LibStrokeset
