#include "CHpglDialect.h"

namespace LibStrokeset::Formats::Machine {

void CHpglDialect::begin(std::string&) {}

void CHpglDialect::travelTo(std::string& out, const std::string& x, const std::string& y) {
    out += "PU" + x + "," + y + ";\n";
}

void CHpglDialect::startStroke(std::string&) {
    m_points.clear();
    m_pointCount = 0;
}

void CHpglDialect::drawTo(std::string& out, const std::string& x, const std::string& y) {
    m_points += (m_pointCount == 0 ? "" : ",") + x + "," + y;
    if (++m_pointCount == kPointsPerCommand) {
        flush(out);
    }
}

void CHpglDialect::touch(std::string& out) { out += "PD;\n"; }

void CHpglDialect::endStroke(std::string& out) {
    flush(out);
    out += "PU;\n";
}

void CHpglDialect::flush(std::string& out) {
    if (m_pointCount > 0) {
        out += "PD" + m_points + ";\n";
    }
    m_points.clear();
    m_pointCount = 0;
}

} // namespace LibStrokeset::Formats::Machine
