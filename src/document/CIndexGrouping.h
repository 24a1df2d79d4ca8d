#pragma once

#include <list>
#include <map>
#include <set>
#include <vector>

#include <LibStrokeset/CCollection.h>

namespace LibStrokeset {

class CStrokeset;

/// Groups the opcode indices of a request by the collection that holds them: the first
/// collection in list order whose index range contains the index. Fails as a whole, with
/// no groups, when some index lies in no range. Nothing is kept between calls, since the
/// host may change the list and the collections at any time.
class CIndexGrouping {
public:
    using Groups = std::map<CCollection*, std::set<unsigned int>>;

    /// One pass over the list: each collection in turn claims the still unclaimed indices
    /// inside its range, so a request costs about (collections + indices) x log.
    static bool group(const std::list<CCollection*>& collections,
                      const std::vector<unsigned int>& indices, Groups& groups);

    /// The straightforward form, one walk over the list per index (indices x collections);
    /// kept as the reference that group must equal.
    static bool groupByWalk(CStrokeset& document, const std::vector<unsigned int>& indices,
                            Groups& groups);
};

} // namespace LibStrokeset
