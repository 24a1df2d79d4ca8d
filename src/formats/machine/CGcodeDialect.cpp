#include "CGcodeDialect.h"

#include <utility>

namespace LibStrokeset::Formats::Machine {

CGcodeDialect::CGcodeDialect(std::string units, std::string drawFeed)
    : m_units(std::move(units)), m_drawFeed(std::move(drawFeed)) {}

void CGcodeDialect::begin(std::string& out) {
    if (m_units == "mm") {
        out += "G21\n";
    } else if (m_units == "in") {
        out += "G20\n";
    }
    out += "G90\n";
}

void CGcodeDialect::travelTo(std::string& out, const std::string& x, const std::string& y) {
    out += "G0 X" + x + " Y" + y + "\n";
}

void CGcodeDialect::startStroke(std::string&) { m_feedWritten = false; }

void CGcodeDialect::drawTo(std::string& out, const std::string& x, const std::string& y) {
    out += "G1 X" + x + " Y" + y;
    if (!m_feedWritten) {
        out += " F" + m_drawFeed;
        m_feedWritten = true;
    }
    out += "\n";
}

void CGcodeDialect::touch(std::string&) {}

void CGcodeDialect::endStroke(std::string&) {}

} // namespace LibStrokeset::Formats::Machine
