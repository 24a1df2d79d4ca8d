#include "PenTable.h"

namespace LibStrokeset::Formats::Svg {

unsigned short CPenTable::penFor(const std::string& key, const std::string& name) {
    const auto found = m_numbers.find(key);
    if (found != m_numbers.end()) {
        return found->second;
    }
    // 65535 means no pen in a drawing, so the last number to give out is 65534; numbers a
    // drawing fixed are passed over.
    unsigned int number = m_pens.size() + 1;
    while (m_taken.count(static_cast<unsigned short>(number)) != 0) {
        ++number;
    }
    if (number >= 65535) {
        return 0;
    }
    const auto pen = static_cast<unsigned short>(number);
    m_numbers.emplace(key, pen);
    m_taken.insert(pen);
    m_pens.push_back({pen, name});
    return pen;
}

unsigned short CPenTable::penNumbered(unsigned short number, const std::string& name) {
    if (m_numbers.emplace("#" + std::to_string(number), number).second) {
        m_taken.insert(number);
        m_pens.push_back({number, name});
    }
    return number;
}

} // namespace LibStrokeset::Formats::Svg
