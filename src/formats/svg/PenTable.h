#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

// Pen numbers for layers or colours, from 1 in the order in which they first draw something.
namespace LibStrokeset::Formats::Svg {

class CPenTable {
public:
    struct SPen {
        unsigned short number;
        std::string name;
    };

    /// The pen of `key`, numbered on first use; `name` is what the table shows for it.
    /// Returns 0 once every pen number is taken (the drawing keeps pen 0 then).
    unsigned short penFor(const std::string& key, const std::string& name);
    /// A pen whose number the drawing fixes (an export's layers name their pens); listed
    /// once, under the name it first came with.
    unsigned short penNumbered(unsigned short number, const std::string& name);
    const std::vector<SPen>& pens() const { return m_pens; }

private:
    std::map<std::string, unsigned short> m_numbers;
    std::set<unsigned short> m_taken;
    std::vector<SPen> m_pens;
};

} // namespace LibStrokeset::Formats::Svg
