#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <vector>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CDot.h>
#include <LibStrokeset/IFirstPosition.h>
#include <LibStrokeset/ILastPosition.h>

namespace LibStrokeset {

/// A run of dots that stood next to each other in the stream, in stream order. The first dot
/// with the index wins: a short run is scanned, a long one searched by a table of where each
/// index first occurs, built by the first lookup and dropped by every member that may
/// renumber a dot or change their number, and by the non-const begin() and end(). A host that
/// renumbers dots through such an iterator, or inserts or removes dots, after a later lookup
/// must take the iterator again first. Since a lookup may build that table, even const
/// lookups on one run must not run on several threads at once. Only addDot and serialize
/// change the range: deleted dots leave it as it was, and inserted dots carry no index.
class LIBSTROKESET_API CDotCollection : public CCollection,
                                        public IFirstPosition,
                                        public ILastPosition {
public:
    ///@{
    /// Iterator types over the dots: modifiable, const and const reverse.
    using iterator = std::vector<CDot>::iterator;
    using const_iterator = std::vector<CDot>::const_iterator;
    using const_reverse_iterator = std::vector<CDot>::const_reverse_iterator;
    ///@}

    /// An empty collection with the empty range.
    CDotCollection();
    ///@{
    /// Takes over the range and the dots (copied, or moved on a move).
    CDotCollection(const CDotCollection& other);
    CDotCollection(CDotCollection&& other) noexcept;
    CDotCollection& operator=(const CDotCollection& other);
    CDotCollection& operator=(CDotCollection&& other) noexcept;
    ///@}
    /// Releases the dots.
    ~CDotCollection() override;

    /// Appends a copy of the dot and widens the range by its index.
    void addDot(CDot& dot);
    /// Puts a new, unnumbered dot directly after the dot with this index, with that dot's pen.
    /// False, with nothing changed, when no dot has the index. The range stays.
    bool insertDot(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// Takes the dot with this index out and hands back its position and pen. False, with
    /// nothing written, when no dot has the index, and always for 4294967295.
    bool removeAndGetParams(unsigned int opcodeIndex, Eigen::RowVector3f& position,
                            unsigned short& penNumber);
    /// Takes the last dot out and hands back its position and pen; false when empty.
    bool removeAndGetParamsLast(Eigen::RowVector3f& position, unsigned short& penNumber);

    ///@{
    /// Iterators over the dots in stored order; the reverse ones run backwards.
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

    void serialize(CSerializationState& state) override;
    void iterate(IIteratorCallback& callback) override;
    bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) override;
    /// As CCollection::transformPoints; an empty set gives true.
    bool transformPoints(std::set<unsigned int> opcodeIndices,
                         Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transform(Eigen::Matrix<float, 3, 4>& matrix) override;
    bool deletePoint(unsigned int opcodeIndex) override;
    /// As CCollection::deletePoints; an empty set gives true.
    bool deletePoints(std::set<unsigned int> opcodeIndices) override;
    /// As CCollection::changePen; an empty set gives false.
    bool changePen(const std::set<unsigned int>& opcodeIndices, unsigned short penNumber) override;
    bool setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) override;
    unsigned int getStartIndex() const override;
    unsigned int getEndIndex() const override;
    unsigned short getLastPenNumber() const override;
    bool isCompleteCollection(const std::set<unsigned int>& opcodeIndices) override;
    void copyAll(CSerializationState& state) const override;
    /// As CCollection::copy; false when some member of the set names no dot (the dots found
    /// are written all the same).
    bool copy(const std::set<unsigned int>& opcodeIndices,
              CSerializationState& state) const override;
    bool isEmpty() const override;
    bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const override;
    bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const override;
    EOpcodeType getOpcodeType(unsigned int opcodeIndex) const override;
    unsigned int getPointsCount() const override;
    bool getOpcodeTypes(std::vector<EOpcodeType>& types) const override;
    bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) override;

    /// Position of the first dot; (0, 0, 0) when the collection is empty.
    const Eigen::RowVector3f& getFirstPosition() const override;
    /// Position of the last dot; (0, 0, 0) when the collection is empty.
    const Eigen::RowVector3f& getLastPosition() const override;

private:
    iterator findDot(unsigned int opcodeIndex);
    const_iterator findDot(unsigned int opcodeIndex) const;
    /// Position of the first dot with this index; the dot count when none has it.
    std::size_t firstDot(unsigned int opcodeIndex) const;
    /// True, with the table built, when the run is long and the indices few: a search each
    /// then beats a scan of the run.
    bool fewAmongMany(std::size_t indexCount) const;

    std::vector<CDot> m_dots;
};

} // namespace LibStrokeset
