#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <vector>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CUnsupportedElement.h>

namespace LibStrokeset {

/// A run of records the library does not interpret, carried through loading, editing and
/// writing unchanged and in their place. Each record is one opcode with one index. It has no
/// positions and no pens: every geometric or pen operation answers false, changes nothing
/// and writes no out-argument. A long run finds a record by a table that its first lookup
/// builds, so even const lookups on one run must not run on several threads at once.
class LIBSTROKESET_API CUnsupportedElementCollection : public CCollection {
public:
    /// An empty collection with the empty range.
    CUnsupportedElementCollection();
    ///@{
    /// Takes over the range and the records (copied, or moved on a move).
    CUnsupportedElementCollection(const CUnsupportedElementCollection& other);
    CUnsupportedElementCollection(CUnsupportedElementCollection&& other) noexcept;
    CUnsupportedElementCollection& operator=(const CUnsupportedElementCollection& other);
    CUnsupportedElementCollection& operator=(CUnsupportedElementCollection&& other) noexcept;
    ///@}
    /// Releases the records.
    ~CUnsupportedElementCollection() override;

    /// Appends a copy of the record and widens the range by its index.
    void addElement(CUnsupportedElement& element);

    void serialize(CSerializationState& state) override;
    void iterate(IIteratorCallback& callback) override;
    ///@{
    /// Records have no positions: always false, and nothing changes.
    bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transformPoints(std::set<unsigned int> opcodeIndices,
                         Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transform(Eigen::Matrix<float, 3, 4>& matrix) override;
    ///@}
    bool deletePoint(unsigned int opcodeIndex) override;
    /// As CCollection::deletePoints; an empty set gives true.
    bool deletePoints(std::set<unsigned int> opcodeIndices) override;
    ///@{
    /// Records have no pens: always false, and nothing changes.
    bool changePen(const std::set<unsigned int>& opcodeIndices, unsigned short penNumber) override;
    bool setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) override;
    ///@}
    unsigned int getStartIndex() const override;
    unsigned int getEndIndex() const override;
    bool isCompleteCollection(const std::set<unsigned int>& opcodeIndices) override;
    void copyAll(CSerializationState& state) const override;
    /// As CCollection::copy; always true, also when no member of the set names a record.
    bool copy(const std::set<unsigned int>& opcodeIndices,
              CSerializationState& state) const override;
    bool isEmpty() const override;
    ///@{
    /// Records have neither positions nor pens: always false, and the out-argument is not
    /// written.
    bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const override;
    bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const override;
    ///@}
    EOpcodeType getOpcodeType(unsigned int opcodeIndex) const override;
    /// Number of records, the same as getPointsCount().
    unsigned int getUnsupportedOpcodeCount() const override;
    unsigned int getPointsCount() const override;
    bool getOpcodeTypes(std::vector<EOpcodeType>& types) const override;
    /// Records have no positions: always false, and nothing changes.
    bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) override;

    /// The records in stream order.
    const std::vector<CUnsupportedElement>& getElements() const;

private:
    /// Position of the first record with this index; the record count when none has it.
    std::size_t firstRecord(unsigned int opcodeIndex) const;

    std::vector<CUnsupportedElement> m_elements;
};

} // namespace LibStrokeset
