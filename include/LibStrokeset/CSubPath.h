#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <vector>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CLine.h>
#include <LibStrokeset/IFirstPosition.h>
#include <LibStrokeset/ILastPosition.h>

namespace LibStrokeset {

/// One polyline: a move-to followed by line-tos, held as a chain of lines.
///
/// A sub-path of n lines has the points P0 .. Pn. P0 is the start of line 0, Pn the end of
/// line n-1, and every inner point Pk is stored twice: as the start of line k and as the end
/// of line k-1. Points are looked up by the opcode index of their start copy (and Pn by the
/// end index of the last line).
class LIBSTROKESET_API CSubPath : public CCollection, public IFirstPosition, public ILastPosition {
public:
    using iterator = std::vector<CLine>::iterator;
    using const_iterator = std::vector<CLine>::const_iterator;
    using const_reverse_iterator = std::vector<CLine>::const_reverse_iterator;

    CSubPath();
    /// Copies the lines as addLine does, so the range is rebuilt from their indices.
    CSubPath(const CSubPath& other);
    CSubPath& operator=(const CSubPath& other);
    ~CSubPath() override;

    std::vector<CLine>& getLines();
    const std::vector<CLine>& getLines() const;

    iterator begin();
    iterator end();
    const_iterator begin() const;
    const_iterator end() const;
    const_iterator cbegin() const;
    const_iterator cend() const;
    const_reverse_iterator rbegin() const;
    const_reverse_iterator rend() const;
    const_reverse_iterator crbegin() const;
    const_reverse_iterator crend() const;

    /// Removes one line (without reconnecting its neighbours) and renumbers the end copies.
    iterator erase(const_iterator position);
    /// Removes the lines of [first, last) and renumbers the end copies.
    iterator erase(const_iterator first, const_iterator last);

    // Building a polyline. All but addLine need a line to extend; on an empty sub-path
    // they change nothing.
    void addLine(CLine& line);
    void appendLine(const Eigen::RowVector3f& position);
    void prependLine(const Eigen::RowVector3f& position);
    void setEndPosition(const Eigen::RowVector3f& position);

    // Queries.
    unsigned int getStartIndex() const override;
    unsigned int getEndIndex() const override;
    unsigned short getLastPenNumber() const override;
    const Eigen::RowVector3f& getFirstPosition() const override;
    const Eigen::RowVector3f& getLastPosition() const override;
    unsigned int getPointsCount() const override;
    bool isEmpty() const override;
    /// At least three lines and first and last point closer than 2^-23.
    bool isClosed() const;
    EOpcodeType getOpcodeType(unsigned int opcodeIndex) const override;
    bool getOpcodeTypes(std::vector<EOpcodeType>& types) const override;
    bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const override;
    bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const override;

    // Point edits.
    bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) override;
    bool setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) override;
    bool changePen(const std::set<unsigned int>& opcodeIndices, unsigned short penNumber) override;
    bool transform(Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transformPoints(std::set<unsigned int> opcodeIndices,
                         Eigen::Matrix<float, 3, 4>& matrix) override;

    // Visiting and emission.
    void iterate(IIteratorCallback& callback) override;
    void serialize(CSerializationState& state) override;
    void copyAll(CSerializationState& state) const override;
    bool copy(const std::set<unsigned int>& opcodeIndices,
              CSerializationState& state) const override;
    bool isCompleteCollection(const std::set<unsigned int>& opcodeIndices) override;

    // Structural edits. joinSubpath and connectSubpath change nothing when either
    // sub-path is empty or other is this one.
    bool close();
    CSubPath* open(unsigned int opcodeIndex);
    CSubPath* split(unsigned int opcodeIndex);
    void joinSubpath(CSubPath& other);
    void connectSubpath(CSubPath& other);
    void reverse();
    bool changeStart(unsigned int opcodeIndex);
    bool insertLinePoint(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    bool deletePoint(unsigned int opcodeIndex) override;
    bool deletePoints(std::set<unsigned int> opcodeIndices) override;

    // Comparison and simplification.
    bool isEqual(const CSubPath& other);
    bool hasEqualStartAndEndPoints(const CSubPath& other, float tolerance);
    bool hasEqualReversedStartAndEndPoints(const CSubPath& other, float tolerance);
    /// 1: this end meets other start; 2: this end meets other end; 3: this start meets
    /// other end; 4: this start meets other start; 0: no join.
    int mayAutoJoin(CSubPath& other, float tolerance);
    void simplify(float tolerance);

private:
    // Edits by a set of indices, kept beside their one-at-a-time reference forms.
    friend class CSubPathSelection;

    void updateIndexRange();
    /// Position in the line vector of the first line whose start index is opcodeIndex,
    /// searched from line `from` on; the line count when there is none.
    std::size_t findLineStartingAt(unsigned int opcodeIndex, std::size_t from = 0) const;
    /// Removes the points P(first) .. P(last) (inner points, 1 <= first <= last < n):
    /// the line before the run takes over the end of the last removed line.
    void removeInnerPoints(std::size_t first, std::size_t last);
    /// Removes point Pk as deletePoint does, without renumbering.
    void removePoint(std::size_t k);
    /// k of the point Pk with this index (n for the end point); n + 1 when there is none.
    std::size_t findPoint(unsigned int opcodeIndex) const;
    std::size_t lastLine() const;
    /// Moves point Pk (k < n), both of its copies; its index stays.
    void setStartPoint(std::size_t k, const Eigen::RowVector3f& position);
    /// Position of point Pk, k <= n (Pn is the end of the last line).
    const Eigen::RowVector3f& pointPosition(std::size_t k) const;
    /// Moves point Pk, k <= n, every copy of it; its index stays.
    void setPointPosition(std::size_t k, const Eigen::RowVector3f& position);
    /// Gives lines 0 .. kept-1 to a new sub-path, which is returned, and removes lines
    /// 0 .. removed-1 from this one (open drops the line between the parts, split does not).
    CSubPath* cutFront(std::size_t kept, std::size_t removed);

    std::vector<CLine> m_lines;
};

} // namespace LibStrokeset
