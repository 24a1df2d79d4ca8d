#include "optimize/rules/CPairRules.h"

#include <algorithm>

#include <LibStrokeset/CSubPath.h>

namespace LibStrokeset {

namespace {

/// joinSubpath reserves exactly what it appends; an outer that grows by many joins would
/// then move its lines at every join. Growing the capacity geometrically first avoids that.
void makeRoom(CSubPath& into, std::size_t more) {
    std::vector<CLine>& lines = into.getLines();
    const std::size_t needed = lines.size() + more;
    if (lines.capacity() < needed) {
        lines.reserve(std::max(needed, 2 * lines.capacity()));
    }
}

} // namespace

CPairRules::CPairRules(const COptimizationParameters& parameters) : m_parameters(parameters) {}

const COptimizationParameters& CPairRules::parameters() const { return m_parameters; }

bool CPairRules::isDuplicate(CSubPath& outer, CSubPath& inner) const {
    const float tolerance = m_parameters.positionTolerance();
    if (m_parameters.removeDuplicatedPaths() && outer.hasEqualStartAndEndPoints(inner, tolerance) &&
        outer.isEqual(inner)) {
        return true;
    }
    if (m_parameters.removeDuplicatedReversedPaths() &&
        outer.hasEqualReversedStartAndEndPoints(inner, tolerance)) {
        CSubPath reversed(inner);
        reversed.reverse();
        return outer.isEqual(reversed);
    }
    return false;
}

int CPairRules::joinCode(CSubPath& outer, CSubPath& inner) const {
    const int code = outer.mayAutoJoin(inner, m_parameters.positionTolerance());
    const bool forward = code == 1 || code == 3;
    const bool reversed = code == 2 || code == 4;
    if ((forward && m_parameters.autojoinPaths()) ||
        (reversed && m_parameters.autojoinReversedPaths())) {
        return code;
    }
    return 0;
}

void CPairRules::join(CSubPath& outer, CSubPath& inner, int code) {
    switch (code) {
    case 1: // outer's end meets inner's start
        makeRoom(outer, inner.getLines().size());
        outer.joinSubpath(inner);
        break;
    case 2: // outer's end meets inner's end
        inner.reverse();
        makeRoom(outer, inner.getLines().size());
        outer.joinSubpath(inner);
        break;
    case 3: // inner's end meets outer's start
        prependAll(outer, inner);
        break;
    case 4: // inner's start meets outer's start
        inner.reverse();
        prependAll(outer, inner);
        break;
    default: break;
    }
}

void CPairRules::prependAll(CSubPath& into, const CSubPath& from) {
    std::vector<CLine>& lines = into.getLines();
    const std::vector<CLine>& source = from.getLines();
    if (lines.empty() || source.empty()) {
        return;
    }
    // Each prepended line runs from a point of `from` to the point after it, the last one
    // to into's first point, with into's first pen in both pen fields.
    const CLine& first = lines.front();
    const unsigned short pen = first.getPenNumber();
    std::vector<CLine> joined;
    joined.reserve(source.size() + lines.size());
    for (std::size_t k = 0; k + 1 < source.size(); ++k) {
        joined.emplace_back(source[k].getPosition(), source[k + 1].getPosition(), pen, pen,
                            CElement::noIndex, CElement::noIndex);
    }
    joined.emplace_back(source.back().getPosition(), first.getPosition(), pen, pen,
                        CElement::noIndex, first.getOpcodeIndex());
    joined.insert(joined.end(), lines.begin(), lines.end());
    lines.swap(joined);
}

} // namespace LibStrokeset
