#pragma once

// Builds word streams for tests the way a host would write them by hand.

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

} // namespace test
