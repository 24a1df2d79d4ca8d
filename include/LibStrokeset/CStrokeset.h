#pragma once

#include <LibStrokeset/LibStrokesetExport.h>

#include <atomic>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <Eigen/Core>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/COptimizationParameters.h>
#include <LibStrokeset/COptimizationResults.h>
#include <LibStrokeset/CTravelOptimizationParameters.h>
#include <LibStrokeset/CTravelOptimizationResults.h>
#include <LibStrokeset/EOpcodeType.h>
#include <LibStrokeset/IIteratorCallback.h>

namespace LibStrokeset {

class CSubPath;
class CCollectionLookup;
class CStrokeset;

/// The document's lookup of collections by opcode index: for the library's own tests, which
/// link its objects; not exported.
CCollectionLookup& lookupOf(CStrokeset& document);

/// The document: a drawing held as an ordered list of collections, addressed point by point
/// through opcode indices, the ordinals of the numbered records of the stream last loaded or
/// written. Only serialize renumbers; every other command keeps the indices as they are:
/// new points carry 4294967295 and deleted ones leave gaps until the next serialize.
///
/// Failures are results: false, null, eNone or 4294967295. A command that fails by finding
/// nothing changes nothing; one over several indices keeps what its other groups did. The
/// exceptions to that rule: serialize with an index map can throw the C string "memory
/// corruption"; allocation failures propagate; optimize lets std::bad_function_call out when
/// its progress function is empty. The one output is the diagnostic line that copy may print.
///
/// Lookups by index answer what a walk over the list would (the first collection in list
/// order whose range holds the index) in a logarithm each, from an index of the ranges that
/// the document builds when a lookup needs it. It notices every change made through the
/// document, every change of a collection's range (whoever makes it: the document, the
/// collection's own members, the host), and every call of the non-const getCollections(),
/// begin() and end(), after which the list is assumed changed. After such a change the
/// document walks the list until walking has cost about as much as one build, so commands
/// that change the drawing's structure between single lookups cost no more than the walk.
///
/// What it cannot notice is a change to the list made through a reference or iterator taken
/// before the last index-addressed call: take the list again (non-const getCollections())
/// after such a call before changing it, or the next lookup may answer from the old list,
/// and follow a collection the host has deleted. A change of the list's length or of its
/// first or last entry is noticed even then; a reorder or a replacement inside it is not.
/// To read the list without that cost, use the const overload (std::as_const).
///
/// Not safe for concurrent use, except that setOptimizationAborted and isOptimizationAborted
/// may be called from another thread while optimize runs.
class LIBSTROKESET_API CStrokeset {
public:
    /// The drawing: collections in the order they are drawn and written. The document owns
    /// every collection in it and deletes it through its virtual destructor.
    using CollectionList = std::list<CCollection*>;

    /// An empty document: opcode count 0, current pen 65535 (no pen).
    CStrokeset();
    /// Loads the words as setBinaryStrokesetData does; use getCutRecordPosition to learn
    /// whether a cut record at the end was dropped.
    explicit CStrokeset(const std::vector<unsigned short>& words);
    /// Serializes the source (renumbering it) and loads the words it wrote. The copy is what
    /// loading gives: neighbouring dot collections become one, empty collections vanish.
    CStrokeset(const CStrokeset& other);
    /// As the copy constructor; self-assignment changes nothing, the abort flag stays.
    CStrokeset& operator=(const CStrokeset& other);
    /// Deletes every collection still in the list.
    ~CStrokeset();

    // Collections.
    ///@{
    /// The list itself. Collections the host puts into it or takes out of it pass into or
    /// out of the document's ownership. The non-const overload tells the document that the
    /// list may change: hold the reference only until the next index-addressed call (see
    /// the class description); the const one leaves the lookup index in place.
    CollectionList& getCollections();
    const CollectionList& getCollections() const;
    ///@}
    ///@{
    /// Iterators over the list of collections, in drawing order. The non-const begin() and
    /// end() tell the document, as the non-const getCollections() does, that the list may
    /// change.
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
    ///@}

    // Queries.
    /// Number of numbered opcodes of the stream last loaded or serialized, plus those pasted
    /// since. Edits do not change it.
    unsigned int getOpcodeCount();
    /// Sum of the collections' getPointsCount(): dots, sub-path points and records.
    unsigned int getPointsCount();
    /// Number of pen change records serialize would write: one before each point whose pen
    /// differs from the last one written (which starts as 0); points without a pen never
    /// need one.
    unsigned int getPenChangeCount();
    /// Number of unsupported records in the drawing.
    unsigned int getUnsupportedOpcodeCount();
    /// First collection in list order whose index range holds the index; null when none.
    CCollection* getCollectionIncludingPoint(unsigned int opcodeIndex);
    /// List position of that collection; 4294967295 when none.
    unsigned int getCollectionIndexOfPoint(unsigned int opcodeIndex);
    /// Kind of the opcode with this index; eNone beyond the opcode count, for an index no
    /// collection holds and for a gap left by a deletion or a move-to without lines.
    EOpcodeType getOpcodeType(unsigned int opcodeIndex);
    /// Replaces types by the kind of every index below the opcode count (eNone for gaps).
    /// False while some element has no index, that is after an edit added one and before the
    /// next serialize; every collection is asked all the same.
    bool getOpcodeTypes(std::vector<EOpcodeType>& types);
    /// Visits every collection in list order, the order in which serialize writes them.
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
    ///
    /// A map shorter than the opcode count is first grown to it with 4294967295; it is never
    /// emptied, so entries of indices that no element holds any more (deleted points) keep
    /// what they held: pass an empty vector for a clean map. (Strictly, the throw comes from
    /// an index at or beyond the map's length, which is the opcode count unless the host
    /// passed a longer map.) Elements without an index get one and leave no entry.
    unsigned int serialize(std::vector<unsigned short>& words, std::vector<unsigned int>* indexMap);
    /// Empties the document (opcode count 0, current pen 65535) and loads words as paste
    /// does; returns what paste returns.
    bool setBinaryStrokesetData(const std::vector<unsigned short>& words);
    /// Appends the collections read from words, numbered on from the opcode count; the pen
    /// changes read set the current pen. The first element read opens a new collection.
    ///
    /// Returns false when the words end in a cut record: one whose parameter or length words,
    /// or whose long-form length, run past the end, or whose long-form length is below 3.
    /// Every whole record before it is loaded; that record and every word after it are
    /// dropped, so that nothing written later behind the drawing can be swallowed by it.
    bool paste(const std::vector<unsigned short>& words);
    /// Word position at which the cut record of words starts (see paste); 4294967295 when
    /// every record lies wholly inside words.
    static unsigned int getCutRecordPosition(const std::vector<unsigned short>& words);
    /// Appends the selected points to words as a new stream numbered from 0, ready for paste;
    /// the document and its indices do not change. A collection selected whole is written
    /// whole; from a sub-path, its selected points form one polyline (one point alone writes
    /// nothing). Collections come out in an order of their own, not necessarily the drawing's.
    ///
    /// False, with nothing written, when an index lies in no collection's range; false also
    /// when a dot collection misses a selected index, the rest being written all the same.
    /// When the number of opcodes written differs from the number of indices given
    /// (repetitions counted), copy prints the line "numOfOpcodes=%d; opcodeIndices=%zu"
    /// (written, given) to standard output, the library's only output; it changes neither
    /// the result nor the words.
    bool copy(const std::vector<unsigned int>& opcodeIndices, std::vector<unsigned short>& words);

    /// Reads a Stk file (the words, most significant byte first, no header) into words,
    /// replacing what it held. On failure words stays as it was and error is set to one of:
    /// "File could not be opened!", "File has wrong length!" (an odd byte count),
    /// "File is too large!" (2 GiB or more), "File could not be read!". On success error is
    /// left as it was.
    static bool readStkFile(const std::string& fileName, std::vector<unsigned short>& words,
                            std::string& error);
    /// Writes words (only read) to a Stk file, creating or truncating it. False, with error
    /// set to "File to save could not be opened!", when it cannot be opened; an error while
    /// writing is not reported.
    static bool writeStkFile(const std::string& fileName, std::vector<unsigned short>& words,
                             std::string& error);

    // Editing by opcode index. The collection that holds an index is the first in list
    // order whose range holds it; the command is that collection's operation of the name.
    /// Copies the position of the point with this index into position; false, with position
    /// untouched, when no point has the index (a record, a deleted or unnumbered point).
    bool getPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// Moves the point with this index; it keeps its index. False, with nothing changed,
    /// when no point has the index.
    bool setPosition(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// Copies the pen of the point with this index into penNumber; false, with penNumber
    /// untouched, when no point has the index.
    bool getPenNumber(unsigned int opcodeIndex, unsigned short& penNumber);
    /// Sets the pen of the point with this index to penNumber (only read). False, with
    /// nothing changed, when no point has the index.
    bool setPenNumber(unsigned int opcodeIndex, unsigned short& penNumber);
    /// Maps the point with this index by the affine matrix: (x, y, z) becomes
    /// matrix * (x, y, z, 1); it keeps its index. False, with nothing changed, when no point
    /// has the index.
    bool transformPoint(unsigned int opcodeIndex, Eigen::Matrix<float, 3, 4>& matrix);
    /// Deletes the point with this index; its index becomes a gap until the next serialize.
    /// The collection stays in the list, even when emptied. False, with nothing changed, when
    /// no point has the index.
    bool deletePoint(unsigned int opcodeIndex);
    /// Sets the pen of every listed point; an empty list gives true. False, with nothing
    /// changed, when an index lies in no collection's range. False also when a collection's
    /// own changePen answers false (records have no pens; an index that names no point), the
    /// other collections being changed all the same.
    bool changePen(const std::vector<unsigned int>& opcodeIndices, unsigned short penNumber);
    /// Deletes every listed point; a collection whose every point is listed is removed from
    /// the list and deleted. An empty list gives true. False, with nothing changed, when an
    /// index lies in no collection's range; false also when an index names no point, the
    /// other points being deleted all the same.
    bool deletePoints(const std::vector<unsigned int>& opcodeIndices);
    /// Maps every listed point as transformPoint does; an empty list gives true. Fails as
    /// changePen does (records have no positions).
    bool transformPoints(const std::vector<unsigned int>& opcodeIndices,
                         Eigen::Matrix<float, 3, 4>& matrix);
    /// Maps every point of the drawing. False when the drawing holds records, which have no
    /// positions; every point is mapped all the same.
    bool transform(Eigen::Matrix<float, 3, 4>& matrix);
    /// Puts a new, unnumbered dot after the point with this index: inside a dot collection
    /// with the pen of the dot before it; after the last point of a sub-path or a run of
    /// records, or after every collection when none holds the index, as a new dot collection
    /// with the current pen. False, with nothing changed, when the index lies inside a
    /// sub-path or a run of records, or names no dot of its dot collection.
    bool insertDot(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// Appends a new, unnumbered dot with the current pen at the end of the drawing (into the
    /// last collection when that holds dots). Always true.
    bool newDot(Eigen::RowVector3f& position);

    // Line drawing. New points carry no index and new sub-paths go to the end of the list,
    // except for insertLine. A dot that becomes a line's end leaves its collection, which is
    // deleted when emptied.
    /// Appends a new sub-path of the one line from start to end, both points with the current
    /// pen. Always true.
    bool newLine(Eigen::RowVector3f& start, Eigen::RowVector3f& end);
    /// Draws a line from the drawing's last point to the position: extends the last
    /// sub-path, or makes the last dot the start of a new sub-path at the end (the dot's index
    /// is not kept). False, with nothing changed, when the document is empty or its last
    /// collection holds records or nothing.
    bool appendLine(Eigen::RowVector3f& position);
    /// Extends the sub-path whose first point has this index by a line at its end, or makes
    /// the dot with this index (keeping the index) the start of a new line at the end of the
    /// drawing; 4294967295 does as appendLine(position). False, with nothing changed, for any
    /// other index.
    bool appendLine(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// Puts a line from the position before the sub-path whose first point has this index, or
    /// makes the dot with this index (keeping the index) the end of a new line at the end of
    /// the drawing. False, with nothing changed, for any other index.
    bool prependLine(unsigned int opcodeIndex, Eigen::RowVector3f& position);
    /// Puts a new sub-path of the one line (current pen) directly after the collection whose
    /// last opcode has this index, or at the end when no collection holds the index. False,
    /// with nothing changed, for any other point of a collection.
    bool insertLine(unsigned int opcodeIndex, Eigen::RowVector3f& start, Eigen::RowVector3f& end);
    /// Puts a new point into a sub-path directly after the point with this index, as
    /// CSubPath::insertLinePoint does. False, with nothing changed, when no sub-path's point
    /// has the index.
    bool insertLinePoint(unsigned int opcodeIndex, Eigen::RowVector3f& position);

    // Sub-path commands and collection order. Every check is made before anything changes,
    // so a command that answers false leaves the document as it was.
    /// Closes the sub-path whose first point has this index (CSubPath::close). False for any
    /// other index and for a sub-path of fewer than two lines.
    bool closeSubpath(unsigned int opcodeIndex);
    /// Cuts out the segment leaving the inner point with this index (CSubPath::open); the
    /// part before it becomes a new sub-path in front of the rest. False for a sub-path's
    /// first, last or next-to-last point and for an index no sub-path holds.
    bool openSubpath(unsigned int opcodeIndex);
    /// Cuts the sub-path at the inner point with this index into two that share the point
    /// (CSubPath::split), the first part in front. False for a sub-path's first or last point
    /// and for an index no sub-path holds.
    bool splitSubpath(unsigned int opcodeIndex);
    /// Joins sub-path B, named by its first point, onto sub-path A, named by its last: the
    /// two points become one at their midpoint (CSubPath::joinSubpath) and B is deleted.
    /// False unless the indices name the last point of one sub-path and the first of another.
    bool joinSubpath(unsigned int endIndex, unsigned int startIndex);
    /// Appends sub-path B, named by its first point, to sub-path A, named by its last, with a
    /// bridging line when the two points differ (CSubPath::connectSubpath); B is deleted. Both
    /// ends of one sub-path close it, and give true whatever close answers. False unless the
    /// indices name the last point of a sub-path and the first point of a sub-path.
    bool connectSubpath(unsigned int endIndex, unsigned int startIndex);
    /// Reverses the sub-path whose first point has this index (CSubPath::reverse); false for
    /// any other index.
    bool reverseSubpathDirection(unsigned int opcodeIndex);
    /// Makes the point newStartIndex the start of the closed sub-path whose first point has
    /// startIndex (CSubPath::changeStart); equal indices give true and change nothing. False
    /// for any other startIndex, when the sub-path is not closed, and when newStartIndex is
    /// its last point or lies elsewhere.
    bool setClosedSubpathStart(unsigned int startIndex, unsigned int newStartIndex);
    /// Moves the collection whose first opcode has this index to the front of the list; false
    /// for any other index. Ranges then no longer ascend until the next serialize.
    bool collectionMakeFirst(unsigned int opcodeIndex);
    /// Moves the collection whose first opcode has this index to the end of the list; false
    /// for any other index.
    bool collectionMakeLast(unsigned int opcodeIndex);
    /// Exchanges the collection whose first opcode has this index with the one after it
    /// (true and no change for the last); false for any other index.
    bool collectionMoveDown(unsigned int opcodeIndex);
    /// Exchanges the collection whose first opcode has this index with the one before it
    /// (true and no change for the first); false for any other index.
    bool collectionMoveUp(unsigned int opcodeIndex);

    // Optimization.
    /// Runs the clean-up phases the parameters switch on, then reorders to cut pen-up
    /// travel. progress(stage, percent) is called at most every 0.33 s.
    ///
    /// Runs on the calling thread, clears the abort flag first and fills results at the end
    /// of every normal return. True when the run changed the drawing and was not aborted.
    /// Nothing is renumbered: serialize before addressing points by index again. Paths that
    /// the reordering runs backwards are reversed as CSubPath::reverse does, pens staying in
    /// their fields: a path drawn with several pens can come out with some segments in
    /// another pen (optimizeTravel carries them along instead). progress is
    /// called with stages 1 to 4, plus once with (4, 0) when the reordering starts; an empty
    /// progress function throws std::bad_function_call at its first call, leaving the phases
    /// done so far in place and results untouched.
    bool optimize(const COptimizationParameters& parameters, COptimizationResults& results,
                  std::function<void(int, float)> progress);
    /// Reorders the drawing to shorten pen-up travel beyond what optimize does, by the
    /// switches of the parameters: pens together, closed sub-paths entered at their best
    /// point, and a time-limited refinement of the nearest-neighbour order. Unsupported
    /// records keep their places; the paths and dots between two of them are reordered among
    /// themselves. Each dot becomes a collection of its own, as optimize does.
    ///
    /// Within each pen (or each stretch, without pens together) the result is never longer
    /// than the nearest-neighbour order of optimize: only moves that shorten the travel are
    /// applied. A new order is adopted when it is shorter, or when pens together cut the
    /// pen changes; otherwise the drawing stays as it was. Emptied collections draw nothing
    /// and fence nothing: they go to the end of their stretch.
    ///
    /// What is drawn never changes: every segment keeps the pen that draws it and every point
    /// its position, bit for bit. Paths are reversed, and closed paths whose first and last
    /// points are the same bits rotated, with their indices moved as reverse and changeStart
    /// move them, but unlike reverse each segment takes its pen along (the pens of the points
    /// are rewritten to that end). A point or dot without a pen (65535) is drawn with the pen
    /// in force; when the drawing changes, it is given the pen that was in force where it
    /// stood, so that it keeps drawing with it.
    ///
    /// Clears the abort flag first; an abort seen before the new order is applied leaves the
    /// drawing as it was and answers false. The flag is looked at for the last time before
    /// that: an abort that comes later leaves the flag set, and the run answers true with
    /// the drawing changed. A refinement time limit that is not greater than 0 (NaN among
    /// them) gives refinement no time. progress is called with stage 1 (nearest-neighbour
    /// orders), 2 (refinement, percent of the time limit) and 3 (closed starts), at most every
    /// 0.33 s, and once with (1, 0) at the start; an empty progress function throws
    /// std::bad_function_call at that first call, before anything changed. True when the
    /// drawing changed. results is filled at every return but that throw.
    bool optimizeTravel(const CTravelOptimizationParameters& parameters,
                        CTravelOptimizationResults& results,
                        std::function<void(int, float)> progress);
    /// Asks a running optimize or optimizeTravel (on another thread) to stop. Safe from any thread;
    /// a call made before optimize starts is cleared by that start.
    void setOptimizationAborted();
    /// Whether the abort flag is set; it stays set after an aborted run until the next one.
    bool isOptimizationAborted();
    /// Puts every dot and every collection into a random order. Each dot becomes a collection
    /// of its own without an index until the next serialize. Always true.
    bool shuffle();
    /// Simplifies every sub-path with the tolerance (CSubPath::simplify); nothing else changes.
    void simplify(float tolerance);

private:
    friend CCollectionLookup& lookupOf(CStrokeset& document);

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
    std::unique_ptr<CCollectionLookup> m_lookup;
};

} // namespace LibStrokeset
