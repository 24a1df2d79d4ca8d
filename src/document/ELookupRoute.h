#pragma once

namespace LibStrokeset {

/// How a document finds the collection that holds an opcode index. Every route gives the
/// same collection: the first in list order whose range holds the index.
enum class ELookupRoute {
    /// Walks the list for every lookup: linear, the reference.
    eWalk,
    /// Searches an index of the ranges, rebuilt at the first lookup after any change.
    eIndexed,
    /// The index, but after a change the list is walked until the walks have cost about
    /// as much as one build: a host that edits structure between single lookups pays no
    /// more than the walk, one that reads many indices pays a logarithm each.
    eAdaptive
};

} // namespace LibStrokeset
