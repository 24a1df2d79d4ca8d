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
/// Reading stops at a record that would run past the end of the stream, and at a long-form
/// record whose length cannot even cover its own length words: such a record is cut, and
/// kept it would swallow whatever a later stream puts behind it.
class CRecordReader {
public:
    explicit CRecordReader(const std::vector<unsigned short>& words);

    /// Reads the next whole record; false at the end of the stream or at a cut record.
    bool next(SRecord& record);
    /// Whether reading stopped at a cut record rather than at the end of the stream.
    bool stoppedAtCutRecord() const;
    /// Word position of the next record: after a stop at a cut record, where that record starts.
    std::size_t position() const;

private:
    /// Length of the record at the current position, 0 when it is cut.
    std::size_t recordLength(SRecord::EKind& kind) const;
    std::size_t unsupportedLength(unsigned short opcode) const;
    float readFloat(std::size_t at) const;
    Eigen::RowVector3f readPoint(bool is3D) const;

    const std::vector<unsigned short>& m_words;
    std::size_t m_position;
};

} // namespace LibStrokeset
