#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <set>
#include <vector>

#include <Eigen/Core>

#include <LibStrokeset/EOpcodeType.h>

namespace LibStrokeset {

class CSerializationState;
class IIteratorCallback;

/// Abstract base of the document's collections: dots, sub-paths and unsupported records.
/// Carries the opcode index range [min, max] by which the document finds a collection.
class LIBSTROKESET_API CCollection {
protected:
    /// Widens the range by the index; the "no index" value is ignored.
    virtual void addIndex(unsigned int opcodeIndex);
    /// Empties the range: min 4294967295, max 0.
    virtual void resetIndexRange();

public:
    CCollection();
    CCollection(const CCollection& other) = default;
    CCollection& operator=(const CCollection& other) = default;
    virtual ~CCollection();

    virtual void serialize(CSerializationState& state) = 0;
    virtual void iterate(IIteratorCallback& callback) = 0;
    virtual bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) = 0;
    virtual bool transformPoints(std::set<unsigned int> opcodeIndices,
                                 Eigen::Matrix<float, 3, 4>& matrix) = 0;
    virtual bool transform(Eigen::Matrix<float, 3, 4>& matrix) = 0;
    virtual bool deletePoint(unsigned int opcodeIndex) = 0;
    virtual bool deletePoints(std::set<unsigned int> opcodeIndices) = 0;
    virtual bool changePen(const std::set<unsigned int>& opcodeIndices,
                           unsigned short penNumber) = 0;
    virtual bool setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) = 0;
    virtual unsigned int getStartIndex() const = 0;
    virtual unsigned int getEndIndex() const = 0;
    virtual unsigned short getLastPenNumber() const;
    virtual bool isCompleteCollection(const std::set<unsigned int>& opcodeIndices) = 0;
    virtual void copyAll(CSerializationState& state) const = 0;
    virtual bool copy(const std::set<unsigned int>& opcodeIndices,
                      CSerializationState& state) const = 0;
    virtual bool isEmpty() const = 0;
    virtual bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const = 0;
    virtual bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const = 0;
    virtual EOpcodeType getOpcodeType(unsigned int opcodeIndex) const = 0;
    virtual unsigned int getUnsupportedOpcodeCount() const;
    virtual unsigned int getPointsCount() const = 0;
    virtual bool getOpcodeTypes(std::vector<EOpcodeType>& types) const = 0;
    virtual bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) = 0;

    unsigned int getMinOpcodeIndex() const;
    unsigned int getMaxOpcodeIndex() const;

protected:
    /// The common completeness test: the set names exactly this collection's opcodes.
    bool coversIndices(const std::set<unsigned int>& opcodeIndices, unsigned int firstIndex,
                       unsigned int lastIndex) const;

private:
    unsigned int m_minOpcodeIndex;
    unsigned int m_maxOpcodeIndex;
};

} // namespace LibStrokeset
