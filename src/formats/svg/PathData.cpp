#include "PathData.h"

#include <cctype>

#include "Scanner.h"

namespace LibStrokeset::Formats::Svg {

namespace {

/// How many numbers (arc flags counted) one repetition of a command takes.
int argumentCount(char command) {
    switch (std::toupper(static_cast<unsigned char>(command))) {
    case 'M':
    case 'L':
    case 'T': return 2;
    case 'H':
    case 'V': return 1;
    case 'S':
    case 'Q': return 4;
    case 'C': return 6;
    case 'A': return 7;
    case 'Z': return 0;
    default: return -1;
    }
}

/// Turns commands into absolute segments, remembering what the smooth forms reflect.
class CPathBuilder {
public:
    explicit CPathBuilder(std::vector<SSegment>& out) : m_out(out) {}

    void add(char command, const double* v) {
        const bool relative = std::islower(static_cast<unsigned char>(command)) != 0;
        // Absolute coordinates are taken as written: adding 0 would turn -0 into 0.
        const auto point = [&](int i) {
            const SVec2 p{v[i], v[i + 1]};
            return relative ? m_current + p : p;
        };
        const auto along = [&](double v0, double current) { return relative ? current + v0 : v0; };
        SSegment s;
        switch (std::toupper(static_cast<unsigned char>(command))) {
        case 'M':
            s.kind = ESegment::eMove;
            s.end = m_start = point(0);
            break;
        case 'L': s = line(point(0)); break;
        case 'H': s = line({along(v[0], m_current.x), m_current.y}); break;
        case 'V': s = line({m_current.x, along(v[0], m_current.y)}); break;
        case 'C': s = cubic(point(0), point(2), point(4)); break;
        case 'S': s = cubic(reflect(ESegment::eCubic), point(0), point(2)); break;
        case 'Q': s = quadratic(point(0), point(2)); break;
        case 'T': s = quadratic(reflect(ESegment::eQuadratic), point(0)); break;
        case 'A':
            s.kind = ESegment::eArc;
            s.radiusX = v[0];
            s.radiusY = v[1];
            s.rotation = v[2];
            s.largeArc = v[3] != 0.0;
            s.sweep = v[4] != 0.0;
            s.end = point(5);
            break;
        default: // 'Z'
            s.kind = ESegment::eClose;
            s.end = m_start;
            break;
        }
        m_current = s.end;
        m_out.push_back(s);
    }

private:
    static SSegment line(SVec2 end) {
        SSegment s;
        s.kind = ESegment::eLine;
        s.end = end;
        return s;
    }
    static SSegment cubic(SVec2 c1, SVec2 c2, SVec2 end) {
        SSegment s;
        s.kind = ESegment::eCubic;
        s.control1 = c1;
        s.control2 = c2;
        s.end = end;
        return s;
    }
    static SSegment quadratic(SVec2 c, SVec2 end) {
        SSegment s;
        s.kind = ESegment::eQuadratic;
        s.control1 = c;
        s.end = end;
        return s;
    }
    /// The first control of a smooth curve: the last control of the segment before mirrored
    /// in the current point when that segment was of the same kind, else the current point.
    SVec2 reflect(ESegment kind) const {
        if (m_out.empty() || m_out.back().kind != kind) {
            return m_current;
        }
        const SSegment& last = m_out.back();
        const SVec2 control = kind == ESegment::eCubic ? last.control2 : last.control1;
        return m_current + (m_current - control);
    }

    std::vector<SSegment>& m_out;
    SVec2 m_current, m_start;
};

/// Reads the numbers of one repetition; arcs take flags in places 3 and 4.
bool readArguments(CScanner& scanner, char command, double* v, int count) {
    const bool arc = std::toupper(static_cast<unsigned char>(command)) == 'A';
    for (int i = 0; i < count; ++i) {
        if (i > 0) {
            scanner.skipSeparator();
        }
        bool flag = false;
        if (arc && (i == 3 || i == 4)) {
            if (!scanner.flag(flag)) {
                return false;
            }
            v[i] = flag ? 1.0 : 0.0;
        } else if (!scanner.number(v[i])) {
            return false;
        }
    }
    return true;
}

} // namespace

SPathData parsePathData(std::string_view text) {
    SPathData data;
    CPathBuilder builder(data.segments);
    CScanner scanner(text);
    scanner.skipSpace();
    char command = 0;
    while (!scanner.atEnd()) {
        const std::size_t at = scanner.position();
        const char next = scanner.peek();
        if (argumentCount(next) >= 0) {
            command = next;
            scanner.advance();
            scanner.skipSpace();
        } else if (command == 0 || argumentCount(command) == 0) {
            data.errorAt = at; // numbers with no command, or after a close
            return data;
        }
        if (data.segments.empty() && command != 'M' && command != 'm') {
            data.errorAt = at; // data must start with a move
            return data;
        }
        double v[7] = {};
        const int count = argumentCount(command);
        if (!readArguments(scanner, command, v, count)) {
            data.errorAt = scanner.position();
            return data;
        }
        builder.add(command, v);
        // Coordinates after a move are implicit lines.
        command = command == 'M' ? 'L' : command == 'm' ? 'l' : command;
        if (count == 0) {
            scanner.skipSpace();
        } else {
            scanner.skipSeparator();
        }
    }
    return data;
}

} // namespace LibStrokeset::Formats::Svg
