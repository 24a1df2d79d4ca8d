#pragma once

#include <functional>
#include <list>
#include <vector>

#include <LibStrokeset/CCollection.h>

namespace LibStrokeset {

/// The document's collections with every dot split out into a collection of its own, so
/// that each dot can be placed anywhere: the material that ordering and shuffling rearrange.
///
/// The single-dot collections belong to the sequence until `adopt` hands a new order to the
/// document; a sequence that is never adopted deletes them and leaves the document alone.
class CWorkingSequence {
public:
    CWorkingSequence() = default;
    CWorkingSequence(const CWorkingSequence&) = delete;
    CWorkingSequence& operator=(const CWorkingSequence&) = delete;
    ~CWorkingSequence();

    /// Walks the list; `stop` is asked after each collection. False when it stopped early.
    bool build(const std::list<CCollection*>& collections, const std::function<bool()>& stop);

    std::vector<CCollection*>& entries();
    /// Whether entry `index` is a single-dot collection made by build.
    bool isSplitDot(std::size_t index) const;

    /// Replaces the list by `order` (a permutation of the entries) and deletes the dot
    /// collections that were split.
    void adopt(std::list<CCollection*>& collections, const std::vector<CCollection*>& order);

private:
    std::vector<CCollection*> m_entries;
    std::vector<bool> m_isSplitDot;
    /// Single-dot collections made by build, owned until adopted.
    std::vector<CCollection*> m_singleDots;
    /// The document's dot collections that build split.
    std::vector<CCollection*> m_splitDots;
};

} // namespace LibStrokeset
