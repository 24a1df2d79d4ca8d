#include "PenTable.h"

namespace Strokeset::Svg {

unsigned short CPenTable::penFor(const std::string& key, const std::string& name) {
    const auto found = m_numbers.find(key);
    if (found != m_numbers.end()) {
        return found->second;
    }
    // 65535 means no pen in a drawing, so the last number to give out is 65534.
    if (m_pens.size() >= 65534) {
        return 0;
    }
    const auto number = static_cast<unsigned short>(m_pens.size() + 1);
    m_numbers.emplace(key, number);
    m_pens.push_back({number, name});
    return number;
}

} // namespace Strokeset::Svg
