#pragma once

// Builds word streams for tests the way a host would write them by hand.

#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

namespace test {

using Words = std::vector<unsigned short>;

/// The two words of a float: high half of the bit pattern first.
inline Words floatWords(float value) {
    std::uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return {static_cast<unsigned short>(bits >> 16), static_cast<unsigned short>(bits & 0xFFFF)};
}

class StreamBuilder {
public:
    StreamBuilder& pen(unsigned short number) { return raw({0x240A, number}); }
    StreamBuilder& moveTo(float x, float y) { return point(0x5416, x, y); }
    StreamBuilder& moveTo(float x, float y, float z) { return point(0x7426, x, y, z); }
    StreamBuilder& lineTo(float x, float y) { return point(0x5417, x, y); }
    StreamBuilder& lineTo(float x, float y, float z) { return point(0x7427, x, y, z); }
    StreamBuilder& dot(float x, float y) { return point(0x541A, x, y); }
    StreamBuilder& dot(float x, float y, float z) { return point(0x742A, x, y, z); }
    StreamBuilder& raw(std::initializer_list<unsigned short> words) {
        m_words.insert(m_words.end(), words.begin(), words.end());
        return *this;
    }
    const Words& words() const { return m_words; }
    operator const Words&() const { return m_words; }

private:
    StreamBuilder& point(unsigned short opcode, float x, float y) {
        m_words.push_back(opcode);
        append(x);
        append(y);
        return *this;
    }
    StreamBuilder& point(unsigned short opcode, float x, float y, float z) {
        point(opcode, x, y);
        append(z);
        return *this;
    }
    void append(float value) {
        const Words half = floatWords(value);
        m_words.insert(m_words.end(), half.begin(), half.end());
    }

    Words m_words;
};

/// The words a document serializes to (renumbering it).
inline Words serialized(LibStrokeset::CStrokeset& document,
                        std::vector<unsigned int>* indexMap = nullptr) {
    Words words;
    document.serialize(words, indexMap);
    return words;
}

inline Eigen::RowVector3f point(float x, float y, float z = 0.0f) {
    return Eigen::RowVector3f(x, y, z);
}

using XY = std::array<float, 2>;

/// A record of an opcode the library carries through without interpreting it.
inline const Words kRecord = {0x3001, 0xAAAA, 0xBBBB};

/// A pen change on its own, to put between parts.
inline Words penChange(unsigned short number) { return StreamBuilder().pen(number); }

/// A move-to followed by line-tos through the points.
inline Words path(std::initializer_list<XY> points) {
    StreamBuilder builder;
    for (const XY* p = points.begin(); p != points.end(); ++p) {
        p == points.begin() ? builder.moveTo((*p)[0], (*p)[1]) : builder.lineTo((*p)[0], (*p)[1]);
    }
    return builder;
}

/// One dot record per point.
inline Words dots(std::initializer_list<XY> points) {
    StreamBuilder builder;
    for (const XY& p : points) {
        builder.dot(p[0], p[1]);
    }
    return builder;
}

/// The parts one after the other.
inline Words cat(std::initializer_list<Words> parts) {
    Words all;
    for (const Words& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

/// The shape of the collection list: the points (or records) each collection holds, in order.
using Shape = std::vector<unsigned int>;

inline Shape pointsPerCollection(const LibStrokeset::CStrokeset& document) {
    Shape counts;
    for (const auto* collection : document.getCollections()) {
        counts.push_back(collection->getPointsCount());
    }
    return counts;
}

} // namespace test
