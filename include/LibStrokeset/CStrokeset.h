#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <atomic>
#include <functional>
#include <list>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <Eigen/Core>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/COptimizationParameters.h>
#include <LibStrokeset/COptimizationResults.h>
#include <LibStrokeset/EOpcodeType.h>
#include <LibStrokeset/IIteratorCallback.h>

namespace LibStrokeset {

class CSubPath;

/// The document: a drawing held as an ordered list of collections, addressed point by point
/// through opcode indices, the ordinals of the numbered records of the stream last loaded or
/// written. Only serialize renumbers; every other command keeps the indices as they are.
class LIBSTROKESET_API CStrokeset {
public:
    using CollectionList = std::list<CCollection*>;

    CStrokeset();
    explicit CStrokeset(const std::vector<unsigned short>& words);
    /// Serializes the source (renumbering it) and loads the words it wrote.
    CStrokeset(const CStrokeset& other);
    CStrokeset& operator=(const CStrokeset& other);
    ~CStrokeset();

    // Collections. What the host puts into or takes out of the list passes into or out of
    // the document's ownership.
    CollectionList& getCollections();
    const CollectionList& getCollections() const;
    CollectionList::iterator begin();
    CollectionList::iterator end();
    CollectionList::const_iterator begin() const;
    CollectionList::const_iterator end() const;
    CollectionList::const_iterator cbegin() const;
    CollectionList::const_iterator cend() const;
    CollectionList::const_reverse_iterator rbegin() const;
    CollectionList::const_reverse_iterator rend() const;
    CollectionList::const_reverse_iterator crbegin() const;
    CollectionList::const_reverse_iterator crend() const;

    // Queries.
    unsigned int getOpcodeCount();
    unsigned int getPointsCount();
    unsigned int getUnsupportedOpcodeCount();
    /// First collection in list order whose index range holds the index; null when none.
    CCollection* getCollectionIncludingPoint(unsigned int opcodeIndex);
    /// List position of that collection; 4294967295 when none.
    unsigned int getCollectionIndexOfPoint(unsigned int opcodeIndex);
    EOpcodeType getOpcodeType(unsigned int opcodeIndex);
    /// Kind of every index below the opcode count; false while some element has no index.
    bool getOpcodeTypes(std::vector<EOpcodeType>& types);
    void iterate(IIteratorCallback& callback);

    // Writing and loading.
    /// Appends the drawing to words, renumbering it; indexMap (optional) receives, at every
    /// old index, the new one. Returns the new opcode count.
    ///
    /// With an index map, an element whose index is at or beyond the opcode count makes it
    /// throw the C string "memory corruption" (a const char*), the one exception the library
    /// throws; the words and map entries written before it remain. Loading and the editing
    /// commands keep every index below the opcode count, with one exception: sub-path edits
    /// that remove lines renumber the sub-path's end copies on from its first point's index,
    /// which after a reverse, or when the first line is removed, can reach the opcode count
    /// (load A, B, C as 0, 1, 2; reverse; delete B: A answers to 3). Where such an index
    /// equals another element's old index, that old index's map entry is overwritten.
    /// Without a map, serialize never throws.
    unsigned int serialize(std::vector<unsigned short>& words, std::vector<unsigned int>* indexMap);
    /// Empties the document and loads words as paste does; returns what paste returns.
    bool setBinaryStrokesetData(const std::vector<unsigned short>& words);
    /// Appends the collections read from words, numbered on from the opcode count.
    ///
    /// Returns false when the words end in a cut record: one whose parameter or length words,
    /// or whose long-form length, run past the end, or whose long-form length is below 3.
    /// Every whole record before it is loaded; that record and every word after it are
    /// dropped, so that nothing written later behind the drawing can be swallowed by it.
    bool paste(const std::vector<unsigned short>& words);
    /// Word position at which the cut record of words starts (see paste); 4294967295 when
    /// every record lies wholly inside words.
    static unsigned int getCutRecordPosition(const std::vector<unsigned short>& words);
    /// Appends the selected points to words as a new stream.
    bool copy(const std::vector<unsigned int>& opcodeIndices, std::vector<unsigned short>& words);

    static bool readStkFile(const std::string& fileName, std::vector<unsigned short>& words,
                            std::string& error);
    static bool writeStkFile(const std::string& fileName, std::vector<unsigned short>& words,
                             std::string& error);

    // Editing by opcode index.
    bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber);
    bool setPenNumber(unsigned int opcodeIndex, unsigned short& penNumber);
    bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix);
    bool deletePoint(unsigned int opcodeIndex);
    bool changePen(const std::vector<unsigned int>& opcodeIndices, unsigned short penNumber);
    bool deletePoints(const std::vector<unsigned int>& opcodeIndices);
    bool transformPoints(const std::vector<unsigned int>& opcodeIndices,
                         Eigen::Matrix<float, 3, 4>& matrix);
    bool transform(Eigen::Matrix<float, 3, 4>& matrix);
    bool insertDot(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    bool newDot(Eigen::RowVector3f& position);

    // Line drawing.
    bool newLine(Eigen::RowVector3f& start, Eigen::RowVector3f& end);
    bool appendLine(Eigen::RowVector3f& position);
    bool appendLine(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    bool prependLine(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    bool insertLine(unsigned int opcodeIndex, Eigen::RowVector3f& start, Eigen::RowVector3f& end);
    bool insertLinePoint(unsigned int opcodeIndex, Eigen::RowVector3f& position);

    // Sub-path commands and collection order.
    bool closeSubpath(unsigned int opcodeIndex);
    bool openSubpath(unsigned int opcodeIndex);
    bool splitSubpath(unsigned int opcodeIndex);
    bool joinSubpath(unsigned int endIndex, unsigned int startIndex);
    bool connectSubpath(unsigned int endIndex, unsigned int startIndex);
    bool reverseSubpathDirection(unsigned int opcodeIndex);
    bool setClosedSubpathStart(unsigned int startIndex, unsigned int newStartIndex);
    bool collectionMakeFirst(unsigned int opcodeIndex);
    bool collectionMakeLast(unsigned int opcodeIndex);
    bool collectionMoveDown(unsigned int opcodeIndex);
    bool collectionMoveUp(unsigned int opcodeIndex);

    // Optimization.
    /// Runs the clean-up phases the parameters switch on, then reorders to cut pen-up
    /// travel. progress(stage, percent) is called at most every 0.33 s.
    bool optimize(const COptimizationParameters& parameters, COptimizationResults& results,
                  std::function<void(int, float)> progress);
    /// Asks a running optimize (on another thread) to stop.
    void setOptimizationAborted();
    bool isOptimizationAborted();
    /// Puts every dot and every collection into a random order.
    bool shuffle();
    /// Simplifies every sub-path with the tolerance.
    void simplify(float tolerance);

private:
    void clearData();
    /// Empties the document and loads words as paste does.
    bool reload(const std::vector<unsigned short>& words);
    CollectionList::iterator getIteratorToCollectionIncludingPoint(unsigned int opcodeIndex);
    bool mapIndicesToCollections(const std::vector<unsigned int>& opcodeIndices,
                                 std::map<CCollection*, std::set<unsigned int>>& groups);
    /// The collection that holds the index as a sub-path; null when it is another kind.
    CSubPath* getSubPathIncludingPoint(unsigned int opcodeIndex);
    /// appendLine and prependLine by index: grows the sub-path whose first point has the
    /// index at its end or start, or makes a line from the dot with the index.
    bool extendAt(unsigned int opcodeIndex, const Eigen::RowVector3f& position, bool atEnd);
    /// Cuts the sub-path holding the index with open or split and links the front part in.
    bool cutSubpath(unsigned int opcodeIndex, CSubPath* (CSubPath::*cut)(unsigned int));
    /// For join and connect: the sub-path whose last point has endIndex, and the collection
    /// that holds startIndex, a sub-path that starts there; false when either is missing.
    bool findPathsToMeet(unsigned int endIndex, unsigned int startIndex, CSubPath*& first,
                         CollectionList::iterator& second);
    /// The collection whose first opcode has this index; end() when there is none.
    CollectionList::iterator getIteratorToCollectionNamedByStart(unsigned int opcodeIndex);

    CollectionList m_collections;
    unsigned int m_opcodeCount;
    unsigned short m_currentPenNumber;
    std::atomic<bool> m_optimizationAborted;
};

} // namespace LibStrokeset
