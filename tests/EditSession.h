#pragma once

// Drawings in the state a host leaves them after a session of edits, for the differential
// tests and the selection fuzzer: ranges that overlap (split, open, prepend, collections the
// host made itself), empty collections and empty ranges, unnumbered points, and a collection
// list the host rearranged through getCollections(). The same choices give the same drawing,
// so two documents built alike are twins.

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <list>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "StreamBuilder.h"
#include "stream/CSerializationState.h"

namespace test {

using Indices = std::vector<unsigned int>;

/// Gives numbers in [0, n): from a seeded generator in the tests, from input bytes when fuzzing.
using Chooser = std::function<unsigned int(unsigned int n)>;

inline Chooser seededChooser(unsigned int seed) {
    auto generator = std::make_shared<std::mt19937>(seed);
    return [generator](unsigned int n) {
        return n < 2 ? 0u : std::uniform_int_distribution<unsigned int>(0, n - 1)(*generator);
    };
}

/// The collection written on its own, as if it were a whole drawing: numbered from 0, its
/// range moves to the front.
inline void writeAlone(LibStrokeset::CCollection& collection) {
    Words words;
    LibStrokeset::CSerializationState state(words, nullptr);
    collection.serialize(state);
}

class EditSession {
public:
    explicit EditSession(Chooser choose) : m_choose(std::move(choose)) {}

    /// Loads a drawing of a few parts into the document and edits it `edits` times.
    void build(LibStrokeset::CStrokeset& document, unsigned int edits) {
        document.setBinaryStrokesetData(drawing());
        for (unsigned int k = 0; k < edits; ++k) {
            edit(document);
        }
    }

    /// Indices as a host selects them: everything held, a random handful with repeats, every
    /// second index, or a handful with one index that nothing holds.
    Indices selection(LibStrokeset::CStrokeset& document) {
        Indices held;
        for (unsigned int i = 0; i <= document.getOpcodeCount(); ++i) {
            if (document.getCollectionIncludingPoint(i) != nullptr) {
                held.push_back(i);
            }
        }
        Indices chosen;
        const unsigned int mode = m_choose(4);
        for (std::size_t k = 0; k < held.size(); ++k) {
            if (mode == 0 || (mode == 1 && k % 2 == 0) || (mode >= 2 && m_choose(3) == 0)) {
                chosen.push_back(held[k]);
            }
        }
        if (!chosen.empty() && mode >= 2) { // a repeat, somewhere
            chosen.insert(chosen.begin() + m_choose(static_cast<unsigned int>(chosen.size())),
                          chosen[m_choose(static_cast<unsigned int>(chosen.size()))]);
        }
        if (mode == 3) {
            const Indices unknown = {document.getOpcodeCount() + 7,
                                     LibStrokeset::CElement::noIndex};
            chosen.insert(chosen.begin() + m_choose(static_cast<unsigned int>(chosen.size() + 1)),
                          unknown[m_choose(2)]);
        }
        std::reverse(chosen.begin(),
                     chosen.begin() + m_choose(static_cast<unsigned int>(chosen.size() + 1)));
        return chosen;
    }

private:
    float coordinate() {
        switch (m_choose(12)) {
        case 0: return std::numeric_limits<float>::quiet_NaN();
        case 1: return std::numeric_limits<float>::infinity();
        case 2: return -0.0f;
        default: return static_cast<float>(m_choose(10));
        }
    }

    Eigen::RowVector3f position() {
        return Eigen::RowVector3f(coordinate(), coordinate(),
                                  m_choose(4) == 0 ? coordinate() : 0.0f);
    }

    Words drawing() {
        StreamBuilder builder;
        for (unsigned int part = 0, parts = 1 + m_choose(8); part < parts; ++part) {
            const unsigned int kind = m_choose(4);
            const unsigned int count = 1 + m_choose(kind == 1 ? 6 : 4);
            for (unsigned int k = 0; k < count && kind < 3; ++k) {
                const Eigen::RowVector3f p = position();
                if (kind == 0) {
                    builder.dot(p.x(), p.y(), p.z());
                } else if (kind == 1) {
                    k == 0 ? builder.moveTo(p.x(), p.y(), p.z())
                           : builder.lineTo(p.x(), p.y(), p.z());
                } else {
                    builder.raw({0x3001, static_cast<unsigned short>(m_choose(60000))});
                }
            }
            builder.pen(static_cast<unsigned short>(m_choose(4)));
        }
        return builder;
    }

public:
    /// One edit that the choices pick: a command by index, a paste, a serialization, or the
    /// host rearranging the list or putting a collection of its own into it.
    void edit(LibStrokeset::CStrokeset& document) {
        const unsigned int count = document.getOpcodeCount();
        const unsigned int i =
            m_choose(9) == 0 ? LibStrokeset::CElement::noIndex : m_choose(count + 2);
        const unsigned int j = m_choose(count + 2);
        Eigen::RowVector3f p = position();
        Eigen::RowVector3f q = position();
        switch (m_choose(18)) {
        case 0: document.splitSubpath(i); break;
        case 1: document.openSubpath(i); break;
        case 2: document.deletePoint(i); break;
        case 3: document.insertLinePoint(i, p); break;
        case 4: document.prependLine(i, p); break;
        case 5: document.appendLine(i, p); break;
        case 6: document.insertDot(i, p); break;
        case 7: document.newDot(p); break;
        case 8: document.joinSubpath(i, j); break;
        case 9: document.reverseSubpathDirection(i); break;
        case 10: document.closeSubpath(i); break;
        case 11: document.setClosedSubpathStart(i, j); break;
        case 12: document.insertLine(i, p, q); break;
        case 13: rearrange(document.getCollections()); break;
        case 14: hostCollection(document.getCollections(), i); break;
        case 15: document.paste(drawing()); break;
        case 16: document.deletePoints(selection(document)); break;
        default:
            if (m_choose(3) == 0) {
                Words words;
                document.serialize(words, nullptr);
            } else {
                document.collectionMoveUp(i);
            }
        }
    }

    /// One command by index of any kind, picked by the choices; returns the command and what
    /// it answered, so that twins that find collections by different routes can compare.
    std::string command(LibStrokeset::CStrokeset& document) {
        using LibStrokeset::CElement;
        const unsigned int count = document.getOpcodeCount();
        const unsigned int i = m_choose(9) == 0 ? CElement::noIndex : m_choose(count + 2);
        const unsigned int j = m_choose(count + 2);
        Eigen::RowVector3f p = position();
        Eigen::RowVector3f q = position();
        Eigen::Matrix<float, 3, 4> matrix;
        matrix << 1, 0, 0, 0.5f, 0, -1, 0, 1, 0, 0, 1, 0;
        unsigned short pen = static_cast<unsigned short>(m_choose(5));
        const auto answer = [](const char* name, bool result) {
            return std::string(name) + (result ? " true" : " false");
        };
        switch (m_choose(26)) {
        case 0: return answer("setPosition", document.setPosition(i, p));
        case 1: return answer("setPenNumber", document.setPenNumber(i, pen));
        case 2: return answer("transformPoint", document.transformPoint(i, matrix));
        case 3:
            return answer("transformPoints", document.transformPoints(selection(document), matrix));
        case 4: return answer("changePen", document.changePen(selection(document), pen));
        case 5: return answer("deletePoint", document.deletePoint(i));
        case 6: return answer("deletePoints", document.deletePoints(selection(document)));
        case 7: return answer("insertDot", document.insertDot(i, p));
        case 8: return answer("newDot", document.newDot(p));
        case 9: return answer("newLine", document.newLine(p, q));
        case 10: return answer("appendLine", document.appendLine(p));
        case 11: return answer("appendLine at", document.appendLine(i, p));
        case 12: return answer("prependLine", document.prependLine(i, p));
        case 13: return answer("insertLine", document.insertLine(i, p, q));
        case 14: return answer("insertLinePoint", document.insertLinePoint(i, p));
        case 15: return answer("closeSubpath", document.closeSubpath(i));
        case 16: return answer("openSubpath", document.openSubpath(i));
        case 17: return answer("splitSubpath", document.splitSubpath(i));
        case 18: return answer("joinSubpath", document.joinSubpath(i, j));
        case 19: return answer("connectSubpath", document.connectSubpath(i, j));
        case 20: return answer("reverseSubpathDirection", document.reverseSubpathDirection(i));
        case 21: return answer("setClosedSubpathStart", document.setClosedSubpathStart(i, j));
        case 22: return answer("collectionMakeFirst", document.collectionMakeFirst(i));
        case 23: return answer("collectionMakeLast", document.collectionMakeLast(i));
        case 24: return answer("collectionMoveDown", document.collectionMoveDown(i));
        default: return answer("collectionMoveUp", document.collectionMoveUp(i));
        }
    }

    /// A host edits a collection it took from the const list: the document is not told, the
    /// collection's range changes all the same.
    void editHeldCollection(LibStrokeset::CStrokeset& document) {
        using namespace LibStrokeset;
        const Chooser& choose = m_choose;
        const auto& list = std::as_const(document).getCollections();
        if (list.empty()) {
            return;
        }
        CCollection* collection =
            *std::next(list.begin(), choose(static_cast<unsigned int>(list.size())));
        const unsigned int index = choose(document.getOpcodeCount() + 2);
        switch (choose(4)) {
        case 0: writeAlone(*collection); break;
        case 1:
            if (auto* dots = dynamic_cast<CDotCollection*>(collection)) {
                CDot dot(Eigen::RowVector3f(1.0f, 2.0f, 0.0f), 3, index);
                dots->addDot(dot);
            }
            break;
        case 2:
            if (auto* path = dynamic_cast<CSubPath*>(collection)) {
                path->reverse();
            }
            break;
        default:
            if (auto* path = dynamic_cast<CSubPath*>(collection)) {
                delete path->split(index); // the host keeps the rest and drops the cut-off part
            }
        }
    }

private:
    /// The host moves one collection elsewhere, or turns the whole list around.
    void rearrange(std::list<LibStrokeset::CCollection*>& list) {
        if (list.size() < 2) {
            return;
        }
        if (m_choose(3) == 0) {
            list.reverse();
            return;
        }
        const auto size = static_cast<unsigned int>(list.size());
        list.splice(std::next(list.begin(), m_choose(size + 1)), list,
                    std::next(list.begin(), m_choose(size)));
    }

    /// The host puts in a collection of its own: empty, or holding indices in use elsewhere.
    void hostCollection(std::list<LibStrokeset::CCollection*>& list, unsigned int index) {
        using namespace LibStrokeset;
        std::unique_ptr<CCollection> made;
        switch (m_choose(4)) {
        case 0: made = std::make_unique<CSubPath>(); break;
        case 1: made = std::make_unique<CUnsupportedElementCollection>(); break;
        case 2: {
            auto records = std::make_unique<CUnsupportedElementCollection>();
            std::vector<unsigned short> words = {0x3001, 0x1234};
            CUnsupportedElement record(words, index);
            records->addElement(record);
            made = std::move(records);
            break;
        }
        default: {
            auto dots = std::make_unique<CDotCollection>();
            for (unsigned int k = 0, n = m_choose(4); k < n; ++k) {
                CDot dot(position(), static_cast<unsigned short>(k), index + m_choose(3));
                dots->addDot(dot);
            }
            made = std::move(dots);
        }
        }
        const auto size = static_cast<unsigned int>(list.size());
        list.insert(std::next(list.begin(), m_choose(size + 1)), made.release());
    }

    Chooser m_choose;
};

} // namespace test
