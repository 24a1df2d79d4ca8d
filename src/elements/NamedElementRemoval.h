#pragma once

#include <cstddef>
#include <iterator>
#include <set>
#include <utility>
#include <vector>

namespace LibStrokeset {

// Deleting the elements (dots, records) that a set of opcode indices names. Each index takes
// one element: the first that carries it, or the last when `fromBack`; the indices found
// leave the set, so what is left there was not found.

/// One scan marks the elements, a second closes the gaps: linear however many go.
template <class Element>
void eraseNamed(std::vector<Element>& elements, std::set<unsigned int>& named, bool fromBack) {
    const std::size_t count = elements.size();
    std::vector<bool> doomed(count, false);
    bool any = false;
    for (std::size_t step = 0; step < count && !named.empty(); ++step) {
        const std::size_t i = fromBack ? count - 1 - step : step;
        if (named.erase(elements[i].getOpcodeIndex()) != 0) {
            doomed[i] = true;
            any = true;
        }
    }
    if (!any) {
        return;
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (!doomed[i]) {
            if (kept != i) {
                elements[kept] = std::move(elements[i]);
            }
            ++kept;
        }
    }
    elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(kept), elements.end());
}

/// The straightforward form, erasing each element where it is found (elements x found);
/// kept as the reference that eraseNamed must equal.
template <class Element>
void eraseNamedOneByOne(std::vector<Element>& elements, std::set<unsigned int>& named,
                        bool fromBack) {
    if (fromBack) {
        for (std::size_t i = elements.size(); i-- > 0 && !named.empty();) {
            if (named.erase(elements[i].getOpcodeIndex()) != 0) {
                elements.erase(elements.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        return;
    }
    for (auto it = elements.begin(); it != elements.end();) {
        it = named.erase(it->getOpcodeIndex()) != 0 ? elements.erase(it) : std::next(it);
    }
}

} // namespace LibStrokeset
