#include "SampleDrawing.h"

#include <cmath>

#include <LibStrokeset/LibStrokeset.h>

namespace LibStrokeset {
namespace Sample {

namespace {

using Point = Eigen::RowVector3f;
using Polyline = std::vector<Point>;

/// SplitMix64: tiny, fast and the same on every platform, unlike the standard distributions.
class CRandom {
public:
    explicit CRandom(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next() {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    /// Uniform in [low, high).
    float uniform(float low, float high) {
        return low + (high - low) * static_cast<float>(next() >> 40) / 16777216.0f;
    }
    /// Uniform in [0, count).
    int below(int count) { return static_cast<int>(next() % static_cast<std::uint64_t>(count)); }

private:
    std::uint64_t m_state;
};

/// Draws through the library's own commands, so the words are exactly what it writes.
class CDrawingBuilder {
public:
    void pen(unsigned short number) { m_document.paste({0x240A, number}); }
    void record(const std::vector<unsigned short>& words) { m_document.paste(words); }
    void dot(Point p) { m_document.newDot(p); }
    void polyline(const Polyline& points) {
        Point start = points[0];
        Point next = points[1];
        m_document.newLine(start, next);
        for (std::size_t i = 2; i < points.size(); ++i) {
            Point p = points[i];
            m_document.appendLine(p);
        }
    }
    std::vector<unsigned short> words() {
        std::vector<unsigned short> words;
        m_document.serialize(words, nullptr);
        return words;
    }

private:
    CStrokeset m_document;
};

class CGenerator {
public:
    explicit CGenerator(const SOptions& options) : m_options(options), m_random(options.seed) {}

    std::vector<unsigned short> run() {
        m_drawing.pen(1);
        // The opaque record stands among the first collections, as a header-like record would.
        bool recordWritten = false;
        bool penChanged = false;
        while (m_made < m_options.collections) {
            if (!recordWritten && m_made >= m_options.collections / 10) {
                m_drawing.record({0x4001, 0x0102, 0x0304, 0x0506});
                recordWritten = true;
            }
            if (!penChanged && m_made >= m_options.collections / 2) {
                m_drawing.pen(2);
                penChanged = true;
            }
            addFeature();
        }
        return m_drawing.words();
    }

private:
    void addFeature() {
        const int choice = m_random.below(100);
        if (choice < 30) {
            hatching();
        } else if (choice < 50) {
            brokenOutline();
        } else if (choice < 60) {
            almostClosedOutline();
        } else if (choice < 75) {
            duplicate();
        } else if (choice < 85) {
            strayLines();
        } else {
            dots();
        }
    }

    Point somewhere() {
        return Point(m_random.uniform(0.0f, m_options.extent),
                     m_random.uniform(0.0f, m_options.extent), 0.0f);
    }

    void draw(const Polyline& points) {
        m_drawing.polyline(points);
        m_recent.push_back(points);
        if (m_recent.size() > 32) {
            m_recent.erase(m_recent.begin());
        }
        ++m_made;
    }

    /// Parallel strokes drawn back and forth, as a fill pattern is.
    void hatching() {
        const Point origin = somewhere();
        const float angle = m_random.uniform(0.0f, 3.14159265f);
        const Point along(std::cos(angle), std::sin(angle), 0.0f);
        const Point across(-along.y(), along.x(), 0.0f);
        const float length = m_random.uniform(5.0f, 40.0f);
        const float spacing = m_random.uniform(0.5f, 2.0f);
        const int strokes = 3 + m_random.below(8);
        for (int i = 0; i < strokes; ++i) {
            const Point a = origin + across * (spacing * static_cast<float>(i));
            const Point b = a + along * length;
            draw(i % 2 == 0 ? Polyline{a, b} : Polyline{b, a});
        }
    }

    Polyline regularPolygon(int corners) {
        const Point centre = somewhere();
        const float radius = m_random.uniform(2.0f, 30.0f);
        const float turn = m_random.uniform(0.0f, 6.2831853f);
        Polyline points;
        for (int i = 0; i < corners; ++i) {
            const float a = turn + 6.2831853f * static_cast<float>(i) / static_cast<float>(corners);
            points.push_back(centre + Point(std::cos(a), std::sin(a), 0.0f) * radius);
        }
        return points;
    }

    /// A closed outline drawn in pieces whose ends miss each other by the gap; some pieces run
    /// backwards, so joining them needs reversal.
    void brokenOutline() {
        const int corners = 8 + m_random.below(17);
        const Polyline ring = regularPolygon(corners);
        const int pieces = 2 + m_random.below(3);
        const Point nudge(m_options.gap, 0.0f, 0.0f);
        for (int piece = 0; piece < pieces; ++piece) {
            const int first = piece * corners / pieces;
            const int last = (piece + 1) * corners / pieces;
            Polyline points;
            for (int i = first; i <= last; ++i) {
                points.push_back(ring[static_cast<std::size_t>(i % corners)]);
            }
            points.front() += nudge; // leaves a gap to the previous piece's end
            if (m_random.below(3) == 0) {
                points.assign(points.rbegin(), points.rend());
            }
            draw(points);
        }
    }

    /// One outline whose end stops the gap short of its start.
    void almostClosedOutline() {
        Polyline points = regularPolygon(4 + m_random.below(12));
        points.push_back(points.front() + Point(0.0f, m_options.gap, 0.0f));
        draw(points);
    }

    /// A path drawn again, as it is or backwards.
    void duplicate() {
        if (m_recent.empty()) {
            hatching();
            return;
        }
        Polyline points =
            m_recent[static_cast<std::size_t>(m_random.below(static_cast<int>(m_recent.size())))];
        if (m_random.below(2) == 0) {
            points.assign(points.rbegin(), points.rend());
        }
        draw(points);
    }

    /// A path with a needless tiny segment inside it, and a lone line too short to draw.
    void strayLines() {
        const Point a = somewhere();
        const Point b =
            a + Point(m_random.uniform(1.0f, 10.0f), m_random.uniform(1.0f, 10.0f), 0.0f);
        const Point blip = b + Point(m_options.strayLength, 0.0f, 0.0f);
        const Point c = blip + Point(m_random.uniform(1.0f, 10.0f), 0.0f, 0.0f);
        draw({a, b, blip, c});
        const Point lone = somewhere();
        draw({lone, lone + Point(0.0f, m_options.strayLength, 0.0f)});
    }

    void dots() {
        const Point centre = somewhere();
        const int count = 3 + m_random.below(8);
        for (int i = 0; i < count; ++i) {
            m_drawing.dot(centre + Point(m_random.uniform(-20.0f, 20.0f),
                                         m_random.uniform(-20.0f, 20.0f), 0.0f));
        }
        ++m_made;
    }

    const SOptions& m_options;
    CRandom m_random;
    CDrawingBuilder m_drawing;
    std::vector<Polyline> m_recent;
    int m_made = 0;
};

} // namespace

std::vector<unsigned short> makeDrawing(const SOptions& options) {
    return CGenerator(options).run();
}

} // namespace Sample
} // namespace LibStrokeset
