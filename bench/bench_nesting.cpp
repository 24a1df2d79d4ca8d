// Inner first on generated parts: a grid of parts, each an outline with holes nested two deep
// and a few open paths. The containment search through the box index against every pair
// (on a size every pair can do), and optimizeTravel with inner first against without it.

#include <benchmark/benchmark.h>

#include <LibStrokeset/LibStrokeset.h>

#include <cmath>
#include <vector>

#include "StreamBuilder.h"
#include "optimize/travel/CContainment.h"

namespace {

using namespace LibStrokeset;

/// Closed contours of `parts` parts: an outline of 24 points, a hole in it, and an island in
/// the hole (3 contours per part, each a 24-gon).
std::vector<std::vector<Eigen::Vector2d>> partContours(std::size_t parts) {
    std::vector<std::vector<Eigen::Vector2d>> contours;
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(parts))));
    for (std::size_t part = 0; part < parts; ++part) {
        const double cx = 30.0 * static_cast<double>(part % side);
        const double cy = 30.0 * static_cast<double>(part / side);
        for (const double radius : {12.0, 8.0, 3.0}) {
            std::vector<Eigen::Vector2d> points;
            for (int k = 0; k < 24; ++k) {
                const double angle = 2.0 * M_PI * k / 24 + 0.01 * static_cast<double>(part % 7);
                points.emplace_back(cx + radius * std::cos(angle), cy + radius * std::sin(angle));
            }
            contours.push_back(points);
        }
    }
    return contours;
}

void containment(benchmark::State& state, EContainmentRoute route) {
    const auto shapes = partContours(static_cast<std::size_t>(state.range(0)) / 3);
    std::size_t pairs = 0;
    for (auto _ : state) {
        std::vector<CContourPolygon> contours;
        contours.reserve(shapes.size());
        for (const auto& shape : shapes) {
            contours.emplace_back(shape, route == EContainmentRoute::eIndexed);
        }
        pairs = CContainment::of(contours, route).size();
    }
    state.counters["contours"] = static_cast<double>(shapes.size());
    state.counters["pairs"] = static_cast<double>(pairs);
}

void BM_ContainmentAllPairs(benchmark::State& state) {
    containment(state, EContainmentRoute::eAllPairs);
}
void BM_ContainmentIndexed(benchmark::State& state) {
    containment(state, EContainmentRoute::eIndexed);
}
BENCHMARK(BM_ContainmentAllPairs)->Arg(3000)->Arg(12000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ContainmentIndexed)
    ->Arg(3000)
    ->Arg(12000)
    ->Arg(100000)
    ->Arg(300000)
    ->Unit(benchmark::kMillisecond);

/// The parts as a drawing, outlines first (the order a cutter must not follow), shuffled
/// among the parts by a fixed stride.
std::vector<unsigned short> partDrawing(std::size_t contours) {
    const auto shapes = partContours(contours / 3);
    test::StreamBuilder words;
    words.pen(1);
    const std::size_t parts = shapes.size() / 3;
    for (std::size_t k = 0; k < parts; ++k) {
        const std::size_t part = k * 7919 % parts;
        for (std::size_t depth = 0; depth < 3; ++depth) {
            const auto& shape = shapes[3 * part + depth];
            words.moveTo(static_cast<float>(shape[0].x()), static_cast<float>(shape[0].y()));
            for (std::size_t i = 1; i <= shape.size(); ++i) {
                const Eigen::Vector2d& p = shape[i % shape.size()];
                words.lineTo(static_cast<float>(p.x()), static_cast<float>(p.y()));
            }
        }
    }
    return words.words();
}

void travel(benchmark::State& state, bool innerFirst) {
    const std::vector<unsigned short> words = partDrawing(static_cast<std::size_t>(state.range(0)));
    CTravelOptimizationResults results;
    for (auto _ : state) {
        state.PauseTiming();
        CStrokeset drawing(words);
        state.ResumeTiming();
        drawing.optimizeTravel(CTravelOptimizationParameters(false, true, false, 0.0, innerFirst),
                               results, [](int, float) {});
    }
    state.counters["travelBefore"] = results.travelBefore();
    state.counters["travel"] = results.travelAfter();
}

void BM_TravelClosedStarts(benchmark::State& state) { travel(state, false); }
void BM_TravelClosedStartsInnerFirst(benchmark::State& state) { travel(state, true); }
BENCHMARK(BM_TravelClosedStarts)->Arg(12000)->Arg(100000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_TravelClosedStartsInnerFirst)->Arg(12000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace
