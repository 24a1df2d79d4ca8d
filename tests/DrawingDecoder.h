#pragma once

// Turns a string of bytes into a drawing and optimizer parameters that the optimizer finds
// hard: coordinates on a half-unit grid (equal distances everywhere, ends exactly one
// tolerance apart), paths that continue or repeat earlier ones in either direction and with
// other pens, almost closed paths, zero-length lines, dots, records, sub-paths emptied by
// deletion, 3D points and the odd values (-0, NaN, infinities, 1e30, subnormals). Used by
// the engine comparison tests with seeded random bytes and by the fuzzer with its own.

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "StreamBuilder.h"

namespace test {

/// The bytes, read front to back; zeros once they run out.
class ByteSource {
public:
    ByteSource(const std::uint8_t* data, std::size_t size) : m_data(data), m_size(size) {}

    bool empty() const { return m_position >= m_size; }
    unsigned byte() { return empty() ? 0u : m_data[m_position++]; }
    float rawFloat() {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) {
            bits = bits << 8 | byte();
        }
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_size;
    std::size_t m_position = 0;
};

struct DecodedRun {
    Words words;
    /// Opcode indices to delete after loading; each empties a one-line sub-path.
    std::vector<unsigned int> emptied;
    LibStrokeset::COptimizationParameters parameters{0.0f,  false, false, false,
                                                     false, false, false, false};
};

class DrawingDecoder {
public:
    /// Stops adding to the drawing after about `maxOpcodes` numbered records.
    explicit DrawingDecoder(ByteSource& source, unsigned maxOpcodes = 400)
        : m_source(source), m_maxOpcodes(maxOpcodes) {}

    DecodedRun decode() {
        DecodedRun run;
        run.parameters = parameters();
        while (!m_source.empty() && m_opcodes < m_maxOpcodes) {
            command(run);
        }
        run.words = m_builder.words();
        return run;
    }

private:
    using Point = std::array<float, 3>;
    using Points = std::vector<Point>;

    LibStrokeset::COptimizationParameters parameters() {
        const unsigned flags = m_source.byte();
        m_tolerance = tolerance(m_source.byte());
        return LibStrokeset::COptimizationParameters(m_tolerance, flags & 1, flags & 2, flags & 4,
                                                     flags & 8, flags & 16, flags & 32, flags & 64);
    }

    float tolerance(unsigned choice) {
        const float inf = std::numeric_limits<float>::infinity();
        const float odd[] = {0.0f,   -1.0f,  std::nanf(""), inf,   -inf,    1e30f,
                             1e-30f, 1e-45f, 3.0f,          0.05f, 3.4e38f, 0.25f};
        if (choice < 100) return 0.5f; // the grid step: many ends exactly one tolerance apart
        if (choice < 160) return 1.0f;
        if (choice < 160 + sizeof odd / sizeof odd[0]) return odd[choice - 160];
        return m_source.rawFloat();
    }

    float coordinate() {
        const unsigned choice = m_source.byte();
        if (choice < 200) return 0.5f * static_cast<float>(choice % 9); // the grid
        const float inf = std::numeric_limits<float>::infinity();
        const float odd[] = {-0.0f,
                             std::nanf(""),
                             inf,
                             -inf,
                             1e30f,
                             -1e30f,
                             3.4e38f,
                             1e-40f,
                             std::nextafter(0.5f, 1.0f),
                             std::nextafter(1.0f, 0.0f),
                             0.25f};
        if (choice < 200 + sizeof odd / sizeof odd[0]) return odd[choice - 200];
        if (choice < 240) return m_tolerance; // exactly one tolerance off the origin
        return m_source.rawFloat();
    }

    Point point() {
        const float x = coordinate(), y = coordinate();
        // Mostly flat; now and then a 3D point.
        return {x, y, m_source.byte() < 220 ? 0.0f : coordinate()};
    }

    /// A point near p: the same, one grid step or one tolerance away on one axis.
    Point near(const Point& p) {
        Point q = p;
        const unsigned choice = m_source.byte();
        const float step = choice % 3 == 0 ? 0.0f : choice % 3 == 1 ? 0.5f : m_tolerance;
        q[choice / 3 % 2] += choice / 6 % 2 == 0 ? step : -step;
        return q;
    }

    void command(DecodedRun& run) {
        const unsigned choice = m_source.byte() % 12;
        const Points* previous =
            m_paths.empty() ? nullptr : &m_paths[m_source.byte() % m_paths.size()];
        Points points;
        switch (choice) {
        case 0:
        case 1:
        case 2: // a new path of one to four lines
            for (unsigned n = 2 + m_source.byte() % 4; n > 0; --n)
                points.push_back(point());
            break;
        case 3: // a piece that meets an earlier path at one of its ends, either way round
            if (previous == nullptr) return;
            points = {near(m_source.byte() % 2 ? previous->front() : previous->back()), point()};
            if (m_source.byte() % 2) std::swap(points.front(), points.back());
            break;
        case 4:
        case 5: // an earlier path again, forwards or backwards, maybe with another pen
            if (previous == nullptr) return;
            points = *previous;
            if (choice == 5) points.assign(previous->rbegin(), previous->rend());
            if (m_source.byte() % 3 == 0) pen();
            if (m_source.byte() % 3 == 0) flipZeros(points); // -0 equals +0
            break;
        case 6: // almost closed
            for (unsigned n = 3 + m_source.byte() % 3; n > 0; --n)
                points.push_back(point());
            points.push_back(near(points.front()));
            break;
        case 7: // with a line of length 0
            points = {point(), point()};
            points.insert(points.begin() + 1, points.front());
            break;
        case 8:
            for (unsigned n = 1 + m_source.byte() % 3; n > 0; --n)
                dot(point());
            return;
        case 9:
            m_builder.raw({kRecord[0], kRecord[1], kRecord[2]});
            ++m_opcodes;
            return;
        case 10: pen(); return;
        default: // one line, emptied after loading
            run.emptied.push_back(m_opcodes);
            points = {point(), point()};
            break;
        }
        path(points);
    }

    static void flipZeros(Points& points) {
        for (Point& p : points) {
            for (float& value : p) {
                value = value == 0.0f ? -value : value;
            }
        }
    }

    void pen() { m_builder.pen(static_cast<unsigned short>(m_source.byte() % 3)); }

    void dot(const Point& p) {
        p[2] == 0.0f ? m_builder.dot(p[0], p[1]) : m_builder.dot(p[0], p[1], p[2]);
        ++m_opcodes;
    }

    void path(const Points& points) {
        for (std::size_t i = 0; i < points.size(); ++i) {
            const Point& p = points[i];
            if (i == 0) {
                p[2] == 0.0f ? m_builder.moveTo(p[0], p[1]) : m_builder.moveTo(p[0], p[1], p[2]);
            } else {
                p[2] == 0.0f ? m_builder.lineTo(p[0], p[1]) : m_builder.lineTo(p[0], p[1], p[2]);
            }
        }
        m_opcodes += static_cast<unsigned>(points.size());
        m_paths.push_back(points);
    }

    ByteSource& m_source;
    unsigned m_maxOpcodes;
    StreamBuilder m_builder;
    std::vector<Points> m_paths;
    unsigned m_opcodes = 0;
    float m_tolerance = 0.5f;
};

} // namespace test
