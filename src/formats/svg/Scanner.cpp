#include "Scanner.h"

#include <cctype>
#include <cstdlib>
#include <string>

namespace LibStrokeset::Formats::Svg {

namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }

/// Moves `at` past the digits from there; returns how many there were.
std::size_t skipDigits(std::string_view text, std::size_t& at) {
    const std::size_t from = at;
    while (at < text.size() && isDigit(text[at])) {
        ++at;
    }
    return at - from;
}

} // namespace

bool isSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }

void CScanner::skipSpace() {
    while (!atEnd() && isSpace(m_text[m_at])) {
        ++m_at;
    }
}

void CScanner::skipSeparator() {
    skipSpace();
    if (accept(',')) {
        skipSpace();
    }
}

bool CScanner::accept(char c) {
    if (peek() != c) {
        return false;
    }
    ++m_at;
    return true;
}

bool CScanner::number(double& value) {
    std::size_t at = m_at;
    if (at < m_text.size() && (m_text[at] == '+' || m_text[at] == '-')) {
        ++at;
    }
    std::size_t digits = skipDigits(m_text, at);
    if (at < m_text.size() && m_text[at] == '.') {
        std::size_t fraction = at + 1;
        const std::size_t fractionDigits = skipDigits(m_text, fraction);
        if (digits + fractionDigits > 0) {
            at = fraction;
            digits += fractionDigits;
        }
    }
    if (digits == 0) {
        return false;
    }
    // An exponent only when digits follow: "1em" is the number 1 and a unit.
    if (at < m_text.size() && (m_text[at] == 'e' || m_text[at] == 'E')) {
        std::size_t exponent = at + 1;
        if (exponent < m_text.size() && (m_text[exponent] == '+' || m_text[exponent] == '-')) {
            ++exponent;
        }
        if (skipDigits(m_text, exponent) > 0) {
            at = exponent;
        }
    }
    // strtod (in the C locale the tool keeps) turns out-of-range values into infinity or
    // zero. The token is copied: the view need not end in a NUL.
    const std::string token(m_text.substr(m_at, at - m_at));
    value = std::strtod(token.c_str(), nullptr);
    m_at = at;
    return true;
}

bool CScanner::flag(bool& value) {
    if (peek() != '0' && peek() != '1') {
        return false;
    }
    value = peek() == '1';
    ++m_at;
    return true;
}

std::string_view CScanner::word() {
    const std::size_t from = m_at;
    while (!atEnd() && std::isalpha(static_cast<unsigned char>(m_text[m_at]))) {
        ++m_at;
    }
    return m_text.substr(from, m_at - from);
}

} // namespace LibStrokeset::Formats::Svg
