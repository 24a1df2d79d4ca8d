#pragma once

#include <cstddef>
#include <string_view>

// Reads the small grammars inside SVG attributes: numbers, arc flags, names and the
// comma-or-space separators between them.
namespace LibStrokeset::Formats::Svg {

class CScanner {
public:
    explicit CScanner(std::string_view text) : m_text(text) {}

    /// Skips white space and at most one comma (with white space around it).
    void skipSeparator();
    void skipSpace();
    bool atEnd() const { return m_at >= m_text.size(); }
    /// The next character, or 0 at the end.
    char peek() const { return atEnd() ? '\0' : m_text[m_at]; }
    void advance() { ++m_at; }
    /// Consumes `c` when it is next.
    bool accept(char c);
    std::size_t position() const { return m_at; }

    /// An SVG number ("-1.5e3", ".5"; "1.5.5" is two numbers). Leaves the position alone and
    /// returns false when none starts here. Out-of-range values become infinity or zero.
    bool number(double& value);
    /// An arc flag: a single '0' or '1', which needs no separator after it.
    bool flag(bool& value);
    /// A run of letters, for the names in transform lists and units.
    std::string_view word();
    /// What is left, from the position on.
    std::string_view rest() const { return m_text.substr(m_at); }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
};

bool isSpace(char c);

} // namespace LibStrokeset::Formats::Svg
