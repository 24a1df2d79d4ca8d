#pragma once

#include <cstddef>

namespace LibStrokeset {

/// Counts the range changes of the collections a document's lookup index was built over.
/// The index and every such collection hold it, each by one plain pointer (a collection
/// carries no more than that for its document), and the last holder to let go deletes it, so
/// a collection that outlives its document, or moves to another, never writes to freed memory.
class CRangeChangeCounter {
public:
    /// A counter with one holder, its creator.
    CRangeChangeCounter() = default;
    CRangeChangeCounter(const CRangeChangeCounter&) = delete;
    CRangeChangeCounter& operator=(const CRangeChangeCounter&) = delete;

    void hold() { ++m_holders; }
    /// The holder lets go; the counter deletes itself when it was the last.
    void letGo() {
        if (--m_holders == 0) {
            delete this;
        }
    }

    void count() { ++m_changes; }
    unsigned long long changes() const { return m_changes; }

private:
    ~CRangeChangeCounter() = default;

    unsigned long long m_changes = 0;
    std::size_t m_holders = 1;
};

} // namespace LibStrokeset
