#include <LibStrokeset/COptimizationParameters.h>

namespace LibStrokeset {

COptimizationParameters::COptimizationParameters(float positionTolerance,
                                                 bool removeDuplicatedPaths,
                                                 bool removeDuplicatedReversedPaths,
                                                 bool autojoinPaths, bool autojoinReversedPaths,
                                                 bool removeDegeneratedLines, bool closeSubpaths,
                                                 bool minimizeJumpDistances)
    : m_positionTolerance(positionTolerance), m_removeDuplicatedPaths(removeDuplicatedPaths),
      m_removeDuplicatedReversedPaths(removeDuplicatedReversedPaths),
      m_autojoinPaths(autojoinPaths), m_autojoinReversedPaths(autojoinReversedPaths),
      m_removeDegeneratedLines(removeDegeneratedLines), m_closeSubpaths(closeSubpaths),
      m_minimizeJumpDistances(minimizeJumpDistances) {}

} // namespace LibStrokeset
