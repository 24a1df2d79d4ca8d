#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <memory>
#include <set>
#include <vector>

#include <Eigen/Core>

#include <LibStrokeset/EOpcodeType.h>

namespace LibStrokeset {

class CSerializationState;
class IIteratorCallback;
class CCollectionLookup;
class CRangeChangeCounter;
struct SElementPositions;

/// Abstract base of the document's collections: dots, sub-paths and unsupported records.
/// Carries the opcode index range [min, max] by which the document finds a collection: the
/// first collection in list order whose range holds an index is the one asked about it.
///
/// Index arguments are opcode indices; "the point with index i" is the element (dot,
/// sub-path point or record) whose opcode index is i. Edits never renumber: deleted points
/// leave gaps, new points carry 4294967295 and cannot be addressed until the document is
/// serialized again. Only serialize rebuilds the range of a dot or record collection.
class LIBSTROKESET_API CCollection {
protected:
    /// Widens the range by the index; the "no index" value is ignored.
    virtual void addIndex(unsigned int opcodeIndex);
    /// Empties the range: min 4294967295, max 0.
    virtual void resetIndexRange();

public:
    /// An empty collection: the range holds nothing.
    CCollection();
    /// Copies the range.
    CCollection(const CCollection& other);
    /// Copies the range.
    CCollection& operator=(const CCollection& other);
    /// The document deletes its collections through this destructor.
    virtual ~CCollection();

    /// Writes every element through the writer, renumbering it: each element hands the
    /// writer its current index and takes the new one. The range is rebuilt from the new
    /// indices; an empty collection writes nothing and ends with the empty range.
    virtual void serialize(CSerializationState& state) = 0;
    /// Calls the callback once per element, in element order.
    virtual void iterate(IIteratorCallback& callback) = 0;
    /// Maps the point with this index by the affine matrix: (x, y, z) becomes
    /// matrix * (x, y, z, 1). The point keeps its index, and is 3D from then on when its new
    /// z is not 0. False, with nothing changed, when no point has the index.
    virtual bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) = 0;
    /// Maps every point whose index is in the set (the set is the collection's own copy).
    /// False unless every member was found; the points found stay mapped.
    virtual bool transformPoints(std::set<unsigned int> opcodeIndices,
                                 Eigen::Matrix<float, 3, 4>& matrix) = 0;
    /// Maps every point. True, also when the collection is empty; false for a collection
    /// that has no positions.
    virtual bool transform(Eigen::Matrix<float, 3, 4>& matrix) = 0;
    /// Removes the point with this index; false, with nothing changed, when there is none.
    /// The collection stays in the document even when it becomes empty.
    virtual bool deletePoint(unsigned int opcodeIndex) = 0;
    /// Removes the points whose indices are in the set (the collection's own copy). False
    /// when some member was not found; the points found are removed all the same.
    virtual bool deletePoints(std::set<unsigned int> opcodeIndices) = 0;
    /// Sets the pen of every point whose index is in the set. False when some member was not
    /// found; the points found keep the new pen. An empty set's answer depends on the kind.
    virtual bool changePen(const std::set<unsigned int>& opcodeIndices,
                           unsigned short penNumber) = 0;
    /// Sets the pen of the point with this index; false, with nothing changed, when none.
    virtual bool setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) = 0;
    /// Index of the collection's first opcode; 4294967295 when it is empty or not numbered.
    virtual unsigned int getStartIndex() const = 0;
    /// Index of the collection's last opcode; 4294967295 when it is empty or not numbered.
    virtual unsigned int getEndIndex() const = 0;
    /// Pen of the collection's last point; 65535 (no pen) when it has none.
    virtual unsigned short getLastPenNumber() const;
    /// True when the set names the whole collection: as many members as getPointsCount(),
    /// the smallest equal to getStartIndex() and the greatest to getEndIndex(). The document
    /// then deletes, transforms or copies the collection as a whole. An empty set gives false.
    virtual bool isCompleteCollection(const std::set<unsigned int>& opcodeIndices) = 0;
    /// Writes every element as new opcodes: nothing enters an index map and the elements
    /// keep their own indices.
    virtual void copyAll(CSerializationState& state) const = 0;
    /// Writes, in element order and as new opcodes, the elements whose index is in the set;
    /// the elements keep their indices. Whether the selection could be copied depends on the
    /// kind.
    virtual bool copy(const std::set<unsigned int>& opcodeIndices,
                      CSerializationState& state) const = 0;
    /// True when the collection holds no element.
    virtual bool isEmpty() const = 0;
    /// Copies the position of the point with this index into position; false, with
    /// position untouched, when there is none.
    virtual bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const = 0;
    /// Copies the pen of the point with this index into penNumber; false, with penNumber
    /// untouched, when there is none.
    virtual bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const = 0;
    /// Kind of the opcode with this index; eNone when the collection does not hold it.
    virtual EOpcodeType getOpcodeType(unsigned int opcodeIndex) const = 0;
    /// Number of unsupported records held: 0 unless the collection holds records.
    virtual unsigned int getUnsupportedOpcodeCount() const;
    /// Number of addressable items: dots, sub-path points (lines + 1) or records.
    virtual unsigned int getPointsCount() const = 0;
    /// Writes the kind of each element at types[its index] (indices beyond the vector are
    /// skipped). False at the first element without an index, that is after an edit added
    /// one and before the next serialize; the entries already written stay.
    virtual bool getOpcodeTypes(std::vector<EOpcodeType>& types) const = 0;
    /// Replaces the position of the point with this index; the point keeps its index. False,
    /// with nothing changed, when there is none.
    virtual bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) = 0;

    /// Smallest index of the range; 4294967295 when the range is empty.
    unsigned int getMinOpcodeIndex() const;
    /// Greatest index of the range; 0 when the range is empty.
    unsigned int getMaxOpcodeIndex() const;

protected:
    /// What the lookups know of the elements' indices, made empty when there is nothing yet.
    SElementPositions& positions() const;
    /// Drops what the lookups know of the indices: every edit that may change an index or
    /// the number of elements calls it, and so does every non-const access to the elements.
    void forgetPositions();

    /// The common completeness test: the set names exactly this collection's opcodes.
    bool coversIndices(const std::set<unsigned int>& opcodeIndices, unsigned int firstIndex,
                       unsigned int lastIndex) const;

private:
    friend class CCollectionLookup;

    void setRange(unsigned int minOpcodeIndex, unsigned int maxOpcodeIndex);

    unsigned int m_minOpcodeIndex;
    unsigned int m_maxOpcodeIndex;
    // Counts the range changes of every collection that a document's lookup index was built
    // over, so that the index knows it is stale whoever changed a range. Not copied: a copy
    // belongs to no index until a document builds one over it.
    CRangeChangeCounter* m_rangeChanges;
    // Beside the range, which writing and loading touch anyway: a long collection's tables of
    // first positions (built by its lookups).
    mutable std::unique_ptr<SElementPositions> m_positions;
};

} // namespace LibStrokeset
