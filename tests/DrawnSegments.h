#pragma once
// What a machine draws from a document, for checking that reordering changed nothing of it.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

namespace test {

using DrawnKey = std::vector<std::uint32_t>;

inline std::uint32_t floatBits(float value) {
    std::uint32_t b;
    std::memcpy(&b, &value, sizeof b);
    return b;
}

/// What a machine draws, stretch by stretch between unsupported records: every segment (its
/// two points bit for bit, either way round) and every dot with the pen that draws it, as the
/// written words give it (a point without a pen is drawn with the pen in force, 0 at first).
inline std::vector<std::vector<DrawnKey>> drawn(LibStrokeset::CStrokeset& document) {
    std::vector<unsigned short> words;
    document.serialize(words, nullptr);
    LibStrokeset::CStrokeset written(words);
    std::vector<std::vector<DrawnKey>> stretches(1);
    unsigned short pen = 0;
    const auto use = [&pen](unsigned short writtenPen) {
        pen = writtenPen == LibStrokeset::CDrawingElement::noPen ? pen : writtenPen;
        return pen;
    };
    const auto pointKey = [](const Eigen::RowVector3f& p) {
        return DrawnKey{floatBits(p.x()), floatBits(p.y()), floatBits(p.z())};
    };
    for (LibStrokeset::CCollection* collection : written) {
        if (auto* path = dynamic_cast<LibStrokeset::CSubPath*>(collection)) {
            use(path->getLines().front().getPenNumber());
            for (std::size_t k = 0; k < path->getLines().size(); ++k) {
                const LibStrokeset::CLine& line = path->getLines()[k];
                const bool last = k + 1 == path->getLines().size();
                const unsigned short by =
                    use(last ? line.getEndPenNumber() : path->getLines()[k + 1].getPenNumber());
                DrawnKey a = pointKey(line.getPosition()), b = pointKey(line.getEndPosition());
                if (b < a) {
                    std::swap(a, b);
                }
                DrawnKey segment{0, by};
                segment.insert(segment.end(), a.begin(), a.end());
                segment.insert(segment.end(), b.begin(), b.end());
                stretches.back().push_back(segment);
            }
        } else if (auto* dots = dynamic_cast<LibStrokeset::CDotCollection*>(collection)) {
            for (const LibStrokeset::CDot& dot : *dots) {
                DrawnKey key{1, use(dot.getPenNumber())};
                const DrawnKey at = pointKey(dot.getPosition());
                key.insert(key.end(), at.begin(), at.end());
                stretches.back().push_back(key);
            }
        } else {
            stretches.emplace_back();
        }
    }
    for (std::vector<DrawnKey>& stretch : stretches) {
        std::sort(stretch.begin(), stretch.end());
    }
    return stretches;
}

} // namespace test
