#pragma once

#include <list>
#include <memory>
#include <set>

#include <LibStrokeset/CCollection.h>

namespace LibStrokeset {

// The document's list owns raw pointers; these helpers keep a new collection owned until the
// list holds it, so an allocation failure never leaks one or leaves a null in the list.

/// Hands the collection to the list, before `position`, and returns it.
template <class T>
T* insertOwned(std::list<CCollection*>& list, std::list<CCollection*>::iterator position,
               std::unique_ptr<T> owned) {
    list.insert(position, owned.get());
    return owned.release();
}

/// Inserts a new, empty T before `position` and returns it.
template <class T>
T* insertNew(std::list<CCollection*>& list, std::list<CCollection*>::iterator position) {
    return insertOwned(list, position, std::make_unique<T>());
}

/// Appends a new, empty T and returns it.
template <class T> T* appendNew(std::list<CCollection*>& list) {
    return insertNew<T>(list, list.end());
}

/// Takes the collection at `position` out of the list and deletes it.
inline std::list<CCollection*>::iterator destroy(std::list<CCollection*>& list,
                                                 std::list<CCollection*>::iterator position) {
    delete *position;
    return list.erase(position);
}

/// Takes the collections named in `doomed` out of the list, each at its first place, and
/// deletes them: one pass over the list however many there are.
inline void destroyAll(std::list<CCollection*>& list, std::set<CCollection*> doomed) {
    for (auto it = list.begin(); it != list.end() && !doomed.empty();) {
        it = doomed.erase(*it) != 0 ? destroy(list, it) : std::next(it);
    }
}

} // namespace LibStrokeset
