#pragma once

#include <typeinfo>

#include <LibStrokeset/CCollection.h>
#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CSubPath.h>
#include <LibStrokeset/CUnsupportedElementCollection.h>

namespace LibStrokeset {

/// dynamic_cast<T*> for the collections of a document, answered from the exact type when
/// the collection is of one of the library's own collection classes, none of which derives
/// from another: a failing dynamic_cast on a class with several bases searches them all,
/// and the optimizer casts every collection in every phase.
template <class T> T* collectionCast(CCollection* collection) {
    if (collection == nullptr) {
        return nullptr;
    }
    const std::type_info& type = typeid(*collection);
    if (type == typeid(T)) {
        return static_cast<T*>(collection);
    }
    if (type == typeid(CSubPath) || type == typeid(CDotCollection) ||
        type == typeid(CUnsupportedElementCollection)) {
        return nullptr;
    }
    return dynamic_cast<T*>(collection); // a class of the host's
}

} // namespace LibStrokeset
