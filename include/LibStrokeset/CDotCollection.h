#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <vector>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CDot.h>
#include <LibStrokeset/IFirstPosition.h>
#include <LibStrokeset/ILastPosition.h>

namespace LibStrokeset {

/// A run of dots that stood next to each other in the stream.
class LIBSTROKESET_API CDotCollection : public CCollection,
                                        public IFirstPosition,
                                        public ILastPosition {
public:
    using iterator = std::vector<CDot>::iterator;
    using const_iterator = std::vector<CDot>::const_iterator;
    using const_reverse_iterator = std::vector<CDot>::const_reverse_iterator;

    CDotCollection();
    CDotCollection(const CDotCollection& other);
    CDotCollection(CDotCollection&& other) noexcept;
    CDotCollection& operator=(const CDotCollection& other);
    CDotCollection& operator=(CDotCollection&& other) noexcept;
    ~CDotCollection() override;

    /// Appends a copy of the dot and widens the range by its index.
    void addDot(CDot& dot);
    /// Puts a new, unnumbered dot directly after the dot with this index, with that dot's pen.
    bool insertDot(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// Takes the dot with this index out and hands back its position and pen.
    bool removeAndGetParams(unsigned int opcodeIndex, Eigen::RowVector3f& position,
                            unsigned short& penNumber);
    /// Takes the last dot out and hands back its position and pen.
    bool removeAndGetParamsLast(Eigen::RowVector3f& position, unsigned short& penNumber);

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

    void serialize(CSerializationState& state) override;
    void iterate(IIteratorCallback& callback) override;
    bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transformPoints(std::set<unsigned int> opcodeIndices,
                         Eigen::Matrix<float, 3, 4>& matrix) override;
    bool transform(Eigen::Matrix<float, 3, 4>& matrix) override;
    bool deletePoint(unsigned int opcodeIndex) override;
    bool deletePoints(std::set<unsigned int> opcodeIndices) override;
    bool changePen(const std::set<unsigned int>& opcodeIndices, unsigned short penNumber) override;
    bool setPenNumber(unsigned int opcodeIndex, unsigned short penNumber) override;
    unsigned int getStartIndex() const override;
    unsigned int getEndIndex() const override;
    unsigned short getLastPenNumber() const override;
    bool isCompleteCollection(const std::set<unsigned int>& opcodeIndices) override;
    void copyAll(CSerializationState& state) const override;
    bool copy(const std::set<unsigned int>& opcodeIndices,
              CSerializationState& state) const override;
    bool isEmpty() const override;
    bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) const override;
    bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber) const override;
    EOpcodeType getOpcodeType(unsigned int opcodeIndex) const override;
    unsigned int getPointsCount() const override;
    bool getOpcodeTypes(std::vector<EOpcodeType>& types) const override;
    bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position) override;

    /// Position of the first dot; the collection must not be empty.
    const Eigen::RowVector3f& getFirstPosition() const override;
    /// Position of the last dot; the collection must not be empty.
    const Eigen::RowVector3f& getLastPosition() const override;

private:
    iterator findDot(unsigned int opcodeIndex);
    const_iterator findDot(unsigned int opcodeIndex) const;

    std::vector<CDot> m_dots;
};

} // namespace LibStrokeset
