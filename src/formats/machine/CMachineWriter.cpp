#include "CMachineWriter.h"

#include <cmath>

#include <LibStrokeset/CDrawingElement.h>

#include "../Numbers.h"

namespace LibStrokeset::Formats::Machine {

namespace {

double distance(const SBedPoint& a, const SBedPoint& b) { return std::hypot(b.x - a.x, b.y - a.y); }

/// `text` with every `key` replaced by `value`.
std::string replaceAll(std::string text, const std::string& key, const std::string& value) {
    for (std::size_t at = text.find(key); at != std::string::npos;
         at = text.find(key, at + value.size())) {
        text.replace(at, key.size(), value);
    }
    return text;
}

} // namespace

CMachineWriter::CMachineWriter(const SDeviceProfile& profile, IMachineDialect& dialect,
                               SMachineExport& result)
    : m_profile(profile), m_dialect(dialect), m_result(result), m_placement(profile) {}

void CMachineWriter::begin() {
    writeLines(m_profile.header);
    m_dialect.begin(m_result.text);
    writeLines(m_profile.penUp);
}

void CMachineWriter::end() {
    writeLines(m_profile.footer);
    if (m_result.skippedRecords > 0) {
        m_result.warnings.push_back("left out " + std::to_string(m_result.skippedRecords) +
                                    " unsupported records, which no machine language carries");
    }
    if (m_result.pointsOutside > 0) {
        m_result.warnings.push_back(
            std::to_string(m_result.pointsOutside) + " points lie outside the bed of " +
            shortDecimals(m_profile.bedWidth, 3) + " x " + shortDecimals(m_profile.bedHeight, 3));
    }
    if (m_wrappedPens) {
        m_result.warnings.push_back("the machine has pens 1 to " +
                                    std::to_string(m_profile.penCount) +
                                    ": higher pens wrap round and pen 0 draws as pen 1");
    }
}

void CMachineWriter::onPath(const CSubPath& path) {
    // A pen change inside a path lifts the pen there: each run of one pen is a stroke.
    std::vector<SBedPoint> run;
    unsigned short runPen = CDrawingElement::noPen;
    for (const CLine& line : path) {
        const SBedPoint end =
            m_placement.place(line.getEndPosition().x(), line.getEndPosition().y());
        if (run.empty() || line.getEndPenNumber() != runPen) {
            if (run.size() > 1) {
                writeRun(runPen, run);
            }
            const SBedPoint start =
                run.empty() ? m_placement.place(line.getPosition().x(), line.getPosition().y())
                            : run.back();
            run.assign(1, start);
            runPen = line.getEndPenNumber();
        }
        run.push_back(end);
    }
    writeRun(runPen, run);
    if (!m_profile.clip) {
        const auto outside = [&](const Eigen::RowVector3f& p) {
            return m_placement.onBed(m_placement.place(p.x(), p.y())) ? 0 : 1;
        };
        m_result.pointsOutside += outside(path.getFirstPosition());
        for (const CLine& line : path) {
            m_result.pointsOutside += outside(line.getEndPosition());
        }
    }
}

void CMachineWriter::onDot(const CDot& dot) {
    const SBedPoint point = m_placement.place(dot.getPosition().x(), dot.getPosition().y());
    if (!m_placement.onBed(point)) {
        if (m_profile.clip) {
            return;
        }
        ++m_result.pointsOutside;
    }
    writeStroke(dot.getPenNumber(), {point}, true);
}

void CMachineWriter::onRecord(const CUnsupportedElement&) { ++m_result.skippedRecords; }

void CMachineWriter::onJump(const Eigen::RowVector3f&, const Eigen::RowVector3f&) {
    // Travel is measured between what was written, which clipping may shorten.
}

void CMachineWriter::writeRun(unsigned short pen, const std::vector<SBedPoint>& points) {
    if (!m_profile.clip) {
        writeStroke(pen, points, false);
        return;
    }
    std::vector<SBedPoint> piece;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const auto kept = m_placement.clip(points[i - 1], points[i]);
        if (!kept) {
            continue;
        }
        if (!piece.empty() && !(piece.back() == kept->first)) {
            writeStroke(pen, piece, false);
            piece.clear();
        }
        if (piece.empty()) {
            piece.push_back(kept->first);
        }
        piece.push_back(kept->second);
    }
    if (!piece.empty()) {
        writeStroke(pen, piece, false);
    }
}

void CMachineWriter::writeStroke(unsigned short pen, const std::vector<SBedPoint>& points,
                                 bool dot) {
    // Points that the machine's numbers cannot tell apart are one point.
    std::vector<SBedPoint> kept;
    std::vector<std::pair<std::string, std::string>> written;
    for (const SBedPoint& point : points) {
        std::pair<std::string, std::string> text(number(m_placement.machineX(point)),
                                                 number(m_placement.machineY(point)));
        if (written.empty() || text != written.back()) {
            written.push_back(std::move(text));
            kept.push_back(point);
        }
    }
    changePen(pen);
    std::string& out = m_result.text;
    if (m_lifted) {
        m_result.estimate.travelLength += distance(*m_lifted, kept.front());
    }
    m_dialect.travelTo(out, written.front().first, written.front().second);
    writeLines(m_profile.penDown);
    m_dialect.startStroke(out);
    if (kept.size() == 1) {
        m_dialect.touch(out);
    }
    for (std::size_t i = 1; i < kept.size(); ++i) {
        m_dialect.drawTo(out, written[i].first, written[i].second);
        m_result.estimate.drawLength += distance(kept[i - 1], kept[i]);
    }
    m_dialect.endStroke(out);
    writeLines(m_profile.penUp);
    m_lifted = kept.back();
    ++m_result.estimate.penLifts;
    ++m_result.strokes;
    m_result.dots += dot ? 1 : 0;
}

void CMachineWriter::changePen(unsigned short pen) {
    const unsigned short wanted = machinePen(pen);
    if (wanted == CDrawingElement::noPen || (m_pen && *m_pen == wanted)) {
        return;
    }
    m_pen = wanted;
    if (!m_profile.toolChange.empty()) { // a machine with one tool changes nothing
        writeLines(m_profile.toolChange);
        ++m_result.estimate.toolChanges;
    }
}

unsigned short CMachineWriter::machinePen(unsigned short pen) {
    const unsigned int count = m_profile.penCount;
    if (pen == CDrawingElement::noPen || count == 0 || (pen >= 1 && pen <= count)) {
        return pen;
    }
    m_wrappedPens = true;
    return static_cast<unsigned short>(pen == 0 ? 1 : (pen - 1) % count + 1);
}

void CMachineWriter::writeLines(const std::string& lines) {
    if (lines.empty()) {
        return;
    }
    std::string text = lines;
    if (text.find('{') != std::string::npos) {
        const unsigned short pen = m_pen.value_or(0);
        const double power = pen >= 1 && pen <= m_profile.penPower.size()
                                 ? m_profile.penPower[pen - 1]
                                 : m_profile.power;
        text = replaceAll(replaceAll(text, "{pen}", std::to_string(pen)), "{power}",
                          shortDecimals(power, 3));
    }
    m_result.text += text;
    if (text.back() != '\n') {
        m_result.text += '\n';
    }
}

std::string CMachineWriter::number(double value) const {
    return fixedDecimals(value, m_profile.decimals);
}

} // namespace LibStrokeset::Formats::Machine
