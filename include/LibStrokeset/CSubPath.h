#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <memory>
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
///
/// Edits never renumber the whole: new points carry 4294967295 until the document is
/// serialized. Edits that remove lines renumber the end copies (and the range) on from P0's
/// index, and leave the start copies as they were, so the host's indices of P0 .. Pn-1 still
/// find their points until the next serialize.
///
/// A long sub-path finds a point by a table of where each index first occurs, built by the
/// first lookup and dropped by every member that may renumber a line or change their number,
/// and by the non-const getLines(), begin() and end(). A host that keeps the line vector, a
/// line or an iterator from those and renumbers lines, or inserts or removes some, after a
/// later lookup must take them again first; positions and pens it may change at any time.
/// Since a lookup may build that table, even const lookups on one sub-path must not run on
/// several threads at once.
class LIBSTROKESET_API CSubPath : public CCollection, public IFirstPosition, public ILastPosition {
public:
    ///@{
    /// Iterator types over the lines: modifiable, const and const reverse.
    using iterator = std::vector<CLine>::iterator;
    using const_iterator = std::vector<CLine>::const_iterator;
    using const_reverse_iterator = std::vector<CLine>::const_reverse_iterator;
    ///@}

    /// An empty sub-path: no lines, the empty range.
    CSubPath();
    /// Copies the lines as addLine does, so the range is rebuilt from their indices.
    CSubPath(const CSubPath& other);
    /// Copies the range and the lines as they are; self-assignment changes nothing.
    CSubPath& operator=(const CSubPath& other);
    /// Releases the lines.
    ~CSubPath() override;

    ///@{
    /// The lines themselves. Changing them through the reference keeps neither the chain of
    /// point copies nor the range: that is the caller's job. The non-const overload drops the
    /// lookup table; renumber through it only until the next lookup.
    std::vector<CLine>& getLines();
    const std::vector<CLine>& getLines() const;
    ///@}

    ///@{
    /// Iterators over the lines in drawing order; the reverse ones run backwards.
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
    ///@}

    /// Removes one line (without reconnecting its neighbours) and renumbers the end copies;
    /// returns the position the line stood at.
    iterator erase(const_iterator position);
    /// Removes the lines of [first, last) and renumbers the end copies; returns first.
    iterator erase(const_iterator first, const_iterator last);

    // Building a polyline. All but addLine need a line to extend; on an empty sub-path
    // they change nothing.
    /// Appends a copy of the line as it is and widens the range by its two indices.
    void addLine(CLine& line);
    /// Appends the line from Pn to the position, with Pn's pen in both pen fields; the new
    /// point has no index and the range stays.
    void appendLine(const Eigen::RowVector3f& position);
    /// Puts the line from the position to P0 before line 0, with P0's pen in both pen
    /// fields; the new point has no index and the range stays.
    void prependLine(const Eigen::RowVector3f& position);
    /// Moves Pn to the position; its index stays.
    void setEndPosition(const Eigen::RowVector3f& position);

    // Queries.
    unsigned int getStartIndex() const override;
    unsigned int getEndIndex() const override;
    unsigned short getLastPenNumber() const override;
    /// P0; (0, 0, 0) when the sub-path has no lines.
    const Eigen::RowVector3f& getFirstPosition() const override;
    /// Pn; (0, 0, 0) when the sub-path has no lines.
    const Eigen::RowVector3f& getLastPosition() const override;
    /// Lines + 1; an empty sub-path answers 1.
    unsigned int getPointsCount() const override;
    bool isEmpty() const override;
    /// At least three lines and first and last point closer than 2^-23.
    bool isClosed() const;
    /// eSubPathStart for P0, eSubPathPoint for an inner point, eSubPathEnd for Pn, eNone
    /// when the index names no point of this sub-path.
    EOpcodeType getOpcodeType(unsigned int opcodeIndex) const override;
    /// As CCollection::getOpcodeTypes; inner points are read from their end copies.
    bool getOpcodeTypes(std::vector<EOpcodeType>& types) const override;
    bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const override;
    bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const override;

    // Point edits.
    /// As CCollection::setPosition; both copies of an inner point move.
    bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) override;
    /// As CCollection::setPenNumber; both pen copies of an inner point are set.
    bool setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) override;
    /// Sets the pen in the first start copy and the first end copy that carry each index.
    /// True when at least as many copies were set as the set has members: an inner point
    /// counts twice, so an index of no point beside it goes unnoticed. An empty set gives true.
    bool changePen(const std::set<unsigned int>& opcodeIndices, unsigned short penNumber) override;
    bool transform(Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transformPoints(std::set<unsigned int> opcodeIndices,
                         Eigen::Matrix<float, 3, 4>& matrix) override;

    // Visiting and emission.
    void iterate(IIteratorCallback& callback) override;
    /// As CCollection::serialize: a move-to for P0 and a line-to for each further point,
    /// n + 1 consecutive indices; both copies of an inner point take the new index.
    void serialize(CSerializationState& state) override;
    /// As CCollection::copyAll: a move-to for P0 and a line-to for each further point.
    void copyAll(CSerializationState& state) const override;
    /// Writes the selected points as one polyline: a move-to at the first point selected by
    /// its start copy, then a line-to for each later selected point; the points between are
    /// left out. Writes nothing when the set has fewer than two members. Always true.
    bool copy(const std::set<unsigned int>& opcodeIndices,
              CSerializationState& state) const override;
    bool isCompleteCollection(const std::set<unsigned int>& opcodeIndices) override;

    // Structural edits. joinSubpath and connectSubpath change nothing when either
    // sub-path is empty or other is this one.
    /// Appends the line from Pn back to P0 unless the sub-path is closed already. False,
    /// with nothing changed, for fewer than two lines; true otherwise.
    bool close();
    /// Cuts out the segment that leaves the inner point Pk with this index (1 <= k <= n-2)
    /// and returns P0 .. Pk as a new sub-path that the caller owns; this one keeps
    /// Pk+1 .. Pn and renumbers its end copies. Null, with nothing changed, for any other
    /// index.
    CSubPath* open(unsigned int opcodeIndex);
    /// Cuts the polyline at the inner point Pk with this index and returns P0 .. Pk as a new
    /// sub-path that the caller owns; this one keeps Pk .. Pn and renumbers its end copies.
    /// Both hold Pk under the same index until the next serialize. Null, with nothing
    /// changed, for any other index.
    CSubPath* split(unsigned int opcodeIndex);
    /// Makes Pn and other's P0 one unnumbered point at their midpoint and appends other's
    /// lines. Other changes too (its P0 moves there and loses its index) and stays the
    /// caller's to discard.
    void joinSubpath(CSubPath& other);
    /// Appends other's lines, bridged by a new line from Pn to other's P0 unless the two
    /// are exactly equal. Other is not changed and stays the caller's to discard.
    void connectSubpath(CSubPath& other);
    /// Runs the points the other way, Pn .. P0; every point keeps its index and the range
    /// stays. Pens stay in their line fields, so afterwards each point but the last is
    /// written with the pen of the point that follows it.
    void reverse();
    /// Rotates the lines so that the line starting at the point with this index comes
    /// first; meant for closed sub-paths. False, with nothing changed, when no line starts
    /// there (Pn's index among them). Nothing is renumbered.
    bool changeStart(unsigned int opcodeIndex);
    /// Puts a new, unnumbered point directly after the point with this index (after Pn it is
    /// appended). Inside the polyline both new lines carry the pen of the point after the new
    /// one in all four pen fields. False, with nothing changed, when no point has the index.
    bool insertLinePoint(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// As CCollection::deletePoint: the neighbours of an inner point are joined directly.
    /// Renumbers the end copies; the sub-path may become empty.
    bool deletePoint(unsigned int opcodeIndex) override;
    /// As CCollection::deletePoints; every index is resolved before anything is removed, so
    /// each means the point it meant to the host. An empty set gives true.
    bool deletePoints(std::set<unsigned int> opcodeIndices) override;

    // Comparison and simplification.
    /// Exact equality of every position and pen, point by point in the same order; opcode
    /// indices are not compared. False when either sub-path is empty.
    bool isEqual(const CSubPath& other);
    /// True when P0 meets other's P0 and Pn meets other's Pn. Two points meet when the
    /// tolerance is strictly greater than their 3D distance, so 0 (or NaN) never matches.
    /// False when either sub-path is empty.
    bool hasEqualStartAndEndPoints(const CSubPath& other, float tolerance);
    /// True when P0 meets other's Pn and Pn meets other's P0, tested as in
    /// hasEqualStartAndEndPoints.
    bool hasEqualReversedStartAndEndPoints(const CSubPath& other, float tolerance);
    /// The first of these that holds, tested as in hasEqualStartAndEndPoints: 1: this end
    /// meets other start; 2: this end meets other end; 3: this start meets other end; 4: this
    /// start meets other start; 0: no join (also when either sub-path is empty).
    int mayAutoJoin(CSubPath& other, float tolerance);
    /// Removes inner points that stray no more than the tolerance from the chord of a growing
    /// span (measured across the chord in the xy plane). P0, Pn-1 and Pn always stay; fewer
    /// than three points are left alone. Renumbers the end copies as deletePoint does.
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

    /// The first k, 1 <= k < n, where line k-1 ends or line k starts at opcodeIndex; n when
    /// there is none.
    std::size_t findInnerPoint(unsigned int opcodeIndex) const;
    /// Position of the first line whose end index is opcodeIndex; the line count when none.
    std::size_t findLineEndingAt(unsigned int opcodeIndex) const;
    /// First line from `from` on whose start index is opcodeIndex, by a scan.
    std::size_t scanLinesStartingAt(unsigned int opcodeIndex, std::size_t from) const;

    std::vector<CLine> m_lines;
};

} // namespace LibStrokeset
