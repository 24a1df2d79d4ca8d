#include "stream/CRecordReader.h"

#include <cstdint>
#include <cstring>

#include "stream/Opcodes.h"

namespace LibStrokeset {

namespace {

/// Length in words of a known record, 0 for any other opcode word.
std::size_t knownLength(unsigned short opcode, SRecord::EKind& kind) {
    switch (opcode) {
    case Opcode::penChange: kind = SRecord::ePenChange; return 2;
    case Opcode::moveTo2D: kind = SRecord::eMoveTo; return 5;
    case Opcode::moveTo3D: kind = SRecord::eMoveTo; return 7;
    case Opcode::lineTo2D: kind = SRecord::eLineTo; return 5;
    case Opcode::lineTo3D: kind = SRecord::eLineTo; return 7;
    case Opcode::dot2D: kind = SRecord::eDot; return 5;
    case Opcode::dot3D: kind = SRecord::eDot; return 7;
    default: kind = SRecord::eUnsupported; return 0;
    }
}

} // namespace

CRecordReader::CRecordReader(const std::vector<unsigned short>& words)
    : m_words(words), m_position(0) {}

bool CRecordReader::next(SRecord& record) {
    if (m_position >= m_words.size()) {
        return false;
    }
    const std::size_t length = recordLength(record.kind);
    if (length == 0) {
        return false;
    }
    record.offset = m_position;
    record.length = length;
    if (record.kind == SRecord::ePenChange) {
        record.pen = m_words[m_position + 1];
    } else if (record.kind != SRecord::eUnsupported) {
        record.position = readPoint(length == 7);
    }
    m_position += length;
    return true;
}

bool CRecordReader::stoppedAtCutRecord() const { return m_position < m_words.size(); }

std::size_t CRecordReader::position() const { return m_position; }

std::size_t CRecordReader::recordLength(SRecord::EKind& kind) const {
    const unsigned short opcode = m_words[m_position];
    std::size_t length = knownLength(opcode, kind);
    if (length == 0) {
        length = unsupportedLength(opcode);
    }
    return length > m_words.size() - m_position ? 0 : length;
}

std::size_t CRecordReader::unsupportedLength(unsigned short opcode) const {
    const std::size_t shortLength = opcode >> 12;
    if (shortLength != 0) {
        return shortLength;
    }
    if (m_words.size() - m_position < 3) {
        return 0; // the length words themselves are missing
    }
    const std::uint32_t longLength =
        (static_cast<std::uint32_t>(m_words[m_position + 1]) << 16) | m_words[m_position + 2];
    // A length below 3 cannot hold its own length words (and 0 would never advance).
    return longLength < 3 ? 0 : longLength;
}

float CRecordReader::readFloat(std::size_t at) const {
    const std::uint32_t bits = (static_cast<std::uint32_t>(m_words[at]) << 16) | m_words[at + 1];
    float value;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

Eigen::RowVector3f CRecordReader::readPoint(bool is3D) const {
    const float x = readFloat(m_position + 1);
    const float y = readFloat(m_position + 3);
    const float z = is3D ? readFloat(m_position + 5) : 0.0f;
    return Eigen::RowVector3f(x, y, z);
}

} // namespace LibStrokeset
