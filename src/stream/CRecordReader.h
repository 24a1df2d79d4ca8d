#pragma once

#include <cstddef>
#include <vector>

#include <Eigen/Core>

namespace LibStrokeset {

/// One record of a word stream, as the reader found it.
struct SRecord {
    enum EKind { ePenChange, eMoveTo, eLineTo, eDot, eUnsupported };

    EKind kind = eUnsupported;
    /// The point of a move-to, line-to or dot (z = 0 for the 2D forms).
    Eigen::RowVector3f position = Eigen::RowVector3f::Zero();
    /// The pen of a pen change.
    unsigned short pen = 0;
    /// Where the record's words start in the stream, and how many there are.
    std::size_t offset = 0;
    std::size_t length = 0;
};

/// Splits a word stream into records without ever reading past its end.
///
/// A record that would run past the end of the stream, and a long-form record whose length
/// cannot even cover its own length words, become one unsupported record holding every word
/// that is left, so any vector of words is read completely and written back unchanged.
class CRecordReader {
public:
    explicit CRecordReader(const std::vector<unsigned short>& words);

    /// Reads the next record; false at the end of the stream.
    bool next(SRecord& record);

private:
    std::size_t unsupportedLength(unsigned short opcode) const;
    float readFloat(std::size_t at) const;
    Eigen::RowVector3f readPoint(bool is3D) const;

    const std::vector<unsigned short>& m_words;
    std::size_t m_position;
};

} // namespace LibStrokeset
