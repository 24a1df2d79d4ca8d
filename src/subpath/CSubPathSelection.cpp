#include "subpath/CSubPathSelection.h"

#include "elements/CFirstPositions.h"
#include "elements/Geometry.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace LibStrokeset {

namespace {

/// The members of a set in ascending order, each with flags for the copies that took it.
using Tally = std::vector<std::pair<unsigned int, unsigned char>>;

Tally tallyOf(const std::set<unsigned int>& named) {
    Tally tally;
    tally.reserve(named.size());
    for (const unsigned int index : named) {
        tally.emplace_back(index, 0);
    }
    return tally;
}

/// Raises the flag on the member `index` unless it is raised already; true when it did.
bool take(Tally& tally, unsigned int index, unsigned char flag) {
    const auto found = std::lower_bound(tally.begin(), tally.end(), index,
                                        [](const std::pair<unsigned int, unsigned char>& member,
                                           unsigned int i) { return member.first < i; });
    if (found == tally.end() || found->first != index || (found->second & flag) != 0) {
        return false;
    }
    found->second |= flag;
    return true;
}

/// Marks, among the points P0 .. Pn, the one each index names: the start copy of the first
/// line that carries it, else the end of the last line. Returns how many indices named one.
std::size_t markPoints(const std::vector<CLine>& lines, const std::set<unsigned int>& named,
                       std::vector<bool>& marked) {
    Tally tally = tallyOf(named);
    std::size_t found = 0;
    marked.assign(lines.size() + 1, false);
    for (std::size_t k = 0; k < lines.size() && found != named.size(); ++k) {
        if (take(tally, lines[k].getOpcodeIndex(), 1)) {
            marked[k] = true;
            ++found;
        }
    }
    if (!lines.empty() && take(tally, lines.back().getEndOpcodeIndex(), 1)) {
        marked[lines.size()] = true;
        ++found;
    }
    return found;
}

/// Removes the marked points as removing them one at a time from the back does. A run of
/// inner points is bridged by the line before it, which takes over the end position and end
/// index of the run's last line and keeps its own end pen; the lines that start at removed
/// points go; a run that reaches Pn also takes the line into it, so the point before the run
/// becomes the end.
void removeMarkedPoints(std::vector<CLine>& lines, const std::vector<bool>& marked) {
    std::size_t tail = marked.size(); // first point of the run that reaches Pn
    while (tail > 0 && marked[tail - 1]) {
        --tail;
    }
    std::size_t kept = 0;
    for (std::size_t k = 0; k + 1 < tail; ++k) {
        if (marked[k]) {
            continue;
        }
        std::size_t last = k; // the line whose end the kept line k runs to
        while (marked[last + 1]) {
            ++last;
        }
        CLine line = lines[k];
        if (last != k) {
            line.setEndPoint(lines[last].getEndPosition(), lines[last].getEndOpcodeIndex());
        }
        lines[kept++] = line;
    }
    lines.erase(lines.begin() + static_cast<std::ptrdiff_t>(kept), lines.end());
}

} // namespace

bool CSubPathSelection::deletePoints(CSubPath& path, const std::set<unsigned int>& named) {
    path.forgetPositions();
    // Every point is located before any goes: removing renumbers the end copies.
    std::vector<bool> marked;
    const std::size_t found = markPoints(path.m_lines, named, marked);
    if (found != 0) {
        removeMarkedPoints(path.m_lines, marked);
        path.updateIndexRange();
    }
    return found == named.size();
}

bool CSubPathSelection::deletePointsOneByOne(CSubPath& path, const std::set<unsigned int>& named) {
    std::set<std::size_t> points;
    bool allFound = true;
    for (const unsigned int index : named) {
        const std::size_t k = path.findPoint(index);
        if (k > path.m_lines.size()) {
            allFound = false;
        } else {
            points.insert(k);
        }
    }
    if (points.empty()) {
        return allFound;
    }
    // From the back, so the positions still to be removed do not move.
    for (auto it = points.rbegin(); it != points.rend() && !path.m_lines.empty(); ++it) {
        path.removePoint(std::min(*it, path.m_lines.size()));
    }
    path.updateIndexRange();
    return allFound;
}

namespace {

/// Few indices in a long sub-path: a search each beats a pass over the lines.
bool fewAmongMany(const CSubPath& path, std::size_t indexCount) {
    const std::size_t lines = path.getLines().size();
    return lines >= CFirstPositions::minimumCount && indexCount * 16 < lines;
}

} // namespace

bool CSubPathSelection::changePen(CSubPath& path, const std::set<unsigned int>& named,
                                  unsigned short penNumber) {
    if (!fewAmongMany(path, named.size())) {
        return changePenInOnePass(path, named, penNumber);
    }
    // The same copies as the pass: the first start copy and the first end copy of each index.
    std::size_t changed = 0;
    for (const unsigned int index : named) {
        const std::size_t start = path.findLineStartingAt(index);
        if (start < path.m_lines.size()) {
            path.m_lines[start].setPenNumber(penNumber);
            ++changed;
        }
        const std::size_t end = path.findLineEndingAt(index);
        if (end < path.m_lines.size()) {
            path.m_lines[end].setEndPenNumber(penNumber);
            ++changed;
        }
    }
    return changed >= named.size();
}

bool CSubPathSelection::changePenInOnePass(CSubPath& path, const std::set<unsigned int>& named,
                                           unsigned short penNumber) {
    if (named.empty()) {
        return true;
    }
    // Flag 1: a start copy took the index; flag 2: an end copy did.
    Tally tally = tallyOf(named);
    std::size_t changed = 0;
    for (CLine& line : path.m_lines) {
        if (take(tally, line.getOpcodeIndex(), 1)) {
            line.setPenNumber(penNumber);
            ++changed;
        }
        if (take(tally, line.getEndOpcodeIndex(), 2)) {
            line.setEndPenNumber(penNumber);
            ++changed;
        }
    }
    return changed >= named.size();
}

bool CSubPathSelection::transformPoints(CSubPath& path, std::set<unsigned int> named,
                                        const Eigen::Matrix<float, 3, 4>& matrix) {
    if (!fewAmongMany(path, named.size())) {
        return transformPointsInOnePass(path, std::move(named), matrix);
    }
    // Each index maps the point the pass maps: the first line starting at it, else Pn.
    for (auto it = named.begin(); it != named.end();) {
        const std::size_t k = path.findLineStartingAt(*it);
        if (k < path.m_lines.size()) {
            path.setStartPoint(k, applyAffine(matrix, path.m_lines[k].getPosition()));
            it = named.erase(it);
        } else {
            ++it;
        }
    }
    if (!named.empty() && !path.m_lines.empty() && named.erase(path.getEndIndex()) != 0) {
        CLine& last = path.m_lines.back();
        last.setEndPoint(applyAffine(matrix, last.getEndPosition()));
    }
    return named.empty();
}

bool CSubPathSelection::transformPointsInOnePass(CSubPath& path, std::set<unsigned int> named,
                                                 const Eigen::Matrix<float, 3, 4>& matrix) {
    std::vector<CLine>& lines = path.m_lines;
    for (std::size_t k = 0; k < lines.size(); ++k) {
        if (named.erase(lines[k].getOpcodeIndex()) == 0) {
            continue;
        }
        path.setStartPoint(k, applyAffine(matrix, lines[k].getPosition()));
        if (named.empty()) {
            return true;
        }
    }
    if (named.empty()) {
        return true;
    }
    if (!lines.empty() && named.erase(path.getEndIndex()) != 0) {
        lines.back().setEndPoint(applyAffine(matrix, lines.back().getEndPosition()));
    }
    return named.empty();
}

bool CSubPathSelection::changePenOneByOne(CSubPath& path, const std::set<unsigned int>& named,
                                          unsigned short penNumber) {
    if (named.empty()) {
        return true;
    }
    // An inner point is found in both of its copies and counts twice.
    long long count = 0;
    for (const unsigned int index : named) {
        const std::size_t start = path.scanLinesStartingAt(index, 0);
        if (start < path.m_lines.size()) {
            path.m_lines[start].setPenNumber(penNumber);
            ++count;
        }
        for (CLine& line : path.m_lines) {
            if (line.getEndOpcodeIndex() == index) {
                line.setEndPenNumber(penNumber);
                ++count;
                break;
            }
        }
    }
    return count >= static_cast<long long>(named.size());
}

} // namespace LibStrokeset
