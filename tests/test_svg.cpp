// The SVG import and export: the path and transform grammars, lengths and page mapping,
// colours, flattening measured against the true curves, and the facade hosts call.

#include <algorithm>
#include <cfloat>
#include <map>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <LibStrokeset/CStrokeset.h>
#include <LibStrokeset/Formats/Svg.h>

#include "svg/Affine.h"
#include "svg/Flattener.h"
#include "svg/Lengths.h"
#include "svg/PathData.h"
#include "svg/Style.h"

namespace {

using namespace LibStrokeset::Formats::Svg;
constexpr double kPi = 3.14159265358979323846;

/// The segments as text: kind letter and end point, controls for curves.
std::string describe(const SPathData& data) {
    std::string text;
    char number[64];
    for (const SSegment& s : data.segments) {
        const char* kinds = "MLQCAZ";
        text += kinds[static_cast<int>(s.kind)];
        const auto add = [&](SVec2 p) {
            std::snprintf(number, sizeof number, "%g,%g ", p.x, p.y);
            text += number;
        };
        if (s.kind == ESegment::eQuadratic || s.kind == ESegment::eCubic) add(s.control1);
        if (s.kind == ESegment::eCubic) add(s.control2);
        if (s.kind == ESegment::eArc) {
            std::snprintf(number, sizeof number, "%g %g %g %d%d ", s.radiusX, s.radiusY, s.rotation,
                          s.largeArc, s.sweep);
            text += number;
        }
        add(s.end);
    }
    return text;
}

TEST(SvgPathData, ReadsEveryCommandAbsoluteAndRelativeWithImplicitRepeats) {
    const std::pair<std::string, std::string> cases[] = {
        // Numbers run together: "1.5.5" is 1.5 and .5, "1e-3-2" is 0.001 and -2.
        {"M1.5.5L1e-3-2", "M1.5,0.5 L0.001,-2 "},
        {"m1 1 2 0 0 2", "M1,1 L3,1 L3,3 "}, // pairs after a move are lines, relative here
        {"M0 0H5V5h-5v-5z", "M0,0 L5,0 L5,5 L0,5 L0,0 Z0,0 "},
        {"M0,0 C1,2 3,2 4,0 S7,-2 8,0", "M0,0 C1,2 3,2 4,0 C5,-2 7,-2 8,0 "},
        {"M0 0Q1 1 2 0T4 0t2 0", "M0,0 Q1,1 2,0 Q3,-1 4,0 Q5,1 6,0 "},
        {"M0 0S1 1 2 0", "M0,0 C0,0 1,1 2,0 "}, // no curve before: the control is the point
        {"M0 0T2 0", "M0,0 Q0,0 2,0 "},
        {"M1 1a5 5 30 1010 10", "M1,1 A5 5 30 10 11,11 "}, // flags need no separator
        {"M0 0A1,2,0,0,1,3,4 5 6 0 1 0 7 8", "M0,0 A1 2 0 01 3,4 A5 6 0 10 7,8 "},
        {"M2 2 L3 3 Z l1 0", "M2,2 L3,3 Z2,2 L3,2 "}, // after a close, relative to the start
        {"  M 1 , 2 L +3 -4e+0  ", "M1,2 L3,-4 "},
    };
    for (const auto& [data, expected] : cases) {
        const SPathData parsed = parsePathData(data);
        EXPECT_EQ(describe(parsed), expected) << data;
        EXPECT_EQ(parsed.errorAt, std::string::npos) << data;
    }
}

TEST(SvgPathData, KeepsWhatCameBeforeAnErrorAndSaysWhere) {
    const std::tuple<std::string, std::string, std::size_t> cases[] = {
        {"L1 1", "", 0},                    // must start with a move
        {"M0 0 L1 1 L2", "M0,0 L1,1 ", 12}, // a pair cut short
        {"M0 0 L1 1 X3 3", "M0,0 L1,1 ", 10},
        {"M0 0 Z 1 1", "M0,0 Z0,0 ", 7},      // numbers after a close
        {"M0 0 A1 1 0 2 0 3 3", "M0,0 ", 12}, // a flag must be 0 or 1
        {"M0 0 L1 1,,2 2", "M0,0 L1,1 ", 10},
        {"M 1e999 0", "Minf,0 ", std::string::npos}, // absurd, but a number: the caller checks
    };
    for (const auto& [data, expected, at] : cases) {
        const SPathData parsed = parsePathData(data);
        EXPECT_EQ(describe(parsed), expected) << data;
        EXPECT_EQ(parsed.errorAt, at) << data;
    }
}

TEST(SvgTransform, ReadsEveryFormAndRejectsBrokenLists) {
    const SVec2 p{2.0, 1.0};
    const std::pair<std::string, SVec2> cases[] = {
        {"", {2, 1}},
        {"translate(10)", {12, 1}},
        {"translate(10,-5)", {12, -4}},
        {"scale(3)", {6, 3}},
        {"scale(2 -1)", {4, -1}},
        {"rotate(90)", {-1, 2}},
        {"rotate(90 2 0)", {1, 0}},
        {"skewX(45)", {3, 1}},
        {"skewY(45)", {2, 3}},
        {"matrix(1 2 3 4 5 6)", {10, 14}},
        {"translate(10, 0) scale(2)", {14, 2}}, // the rightmost applies first
        {" scale(2),translate(10 0) ", {24, 2}},
    };
    for (const auto& [text, expected] : cases) {
        SAffine m;
        ASSERT_TRUE(parseTransform(text, m)) << text;
        const SVec2 q = m.apply(p);
        EXPECT_NEAR(q.x, expected.x, 1e-12) << text;
        EXPECT_NEAR(q.y, expected.y, 1e-12) << text;
    }
    for (const char* text :
         {"scale()", "rotate(1 2)", "matrix(1 2 3)", "translate(1", "spin(3)", "scale(1) x"}) {
        SAffine m;
        EXPECT_FALSE(parseTransform(text, m)) << text;
    }
}

TEST(SvgLengths, UnitsPercentagesAndThePageInMillimetres) {
    EXPECT_DOUBLE_EQ(*parseLength("96"), 96.0);
    EXPECT_DOUBLE_EQ(*parseLength("1in"), 96.0);
    EXPECT_DOUBLE_EQ(*parseLength("2.54cm"), 96.0);
    EXPECT_DOUBLE_EQ(*parseLength("72pt"), 96.0);
    EXPECT_DOUBLE_EQ(*parseLength("50%", 300.0), 150.0);
    EXPECT_FALSE(parseLength("50%"));
    EXPECT_FALSE(parseLength("12 apples"));
    EXPECT_EQ(*parseLengthInMillimetres("123.456789mm"), 123.456789); // exact for mm

    const auto page = [](SRootSize root, SVec2 p) { return userUnitsToMillimetres(root).apply(p); };
    const auto near = [](SVec2 a, SVec2 b) { return std::hypot(a.x - b.x, a.y - b.y) < 1e-9; };
    // No size: px at 96 per inch; a viewBox without size is taken in px.
    EXPECT_TRUE(near(page({}, {96, 48}), {25.4, 12.7}));
    EXPECT_TRUE(near(page({"", "", "100 100 300 300", ""}, {100, 196}), {0, 25.4}));
    EXPECT_TRUE(near(page({"100%", "100%", "100 100 300 300", ""}, {100, 196}), {0, 25.4}));
    // A 100 x 50 box on a 200 x 200 mm page: centred and scaled by 2 unless told otherwise.
    EXPECT_TRUE(near(page({"200mm", "200mm", "0 0 100 50", ""}, {0, 0}), {0, 50}));
    EXPECT_TRUE(near(page({"200mm", "200mm", "0 0 100 50", "xMinYMax"}, {0, 0}), {0, 100}));
    EXPECT_TRUE(near(page({"200mm", "200mm", "0 0 100 50", "none"}, {100, 50}), {200, 200}));
    EXPECT_TRUE(
        near(page({"200mm", "200mm", "0 0 100 50", "xMinYMin slice"}, {100, 50}), {400, 200}));
    EXPECT_TRUE(near(page({"200mm", "", "0 0 100 50", ""}, {100, 50}), {200, 100}));
    // Exported pages come back unscaled, to the bit.
    EXPECT_TRUE(userUnitsToMillimetres({"12.5mm", "7mm", "0 0 12.5 7", ""}).isIdentity());
}

TEST(SvgStyle, ColoursHaveOneSpellingAndTheStyleAttributeWins) {
    for (const char* blue : {"#00f", "#0000FF", "blue", " rgb(0, 0, 255) ", "rgb(0%,0%,100%)"}) {
        EXPECT_EQ(normaliseColour(blue), "#0000ff") << blue;
    }
    EXPECT_EQ(normaliseColour("url(#Gradient)"), "url(#gradient)");
    const auto attributes = [](std::map<std::string, std::string> values) {
        return [values](const char* name) {
            const auto found = values.find(name);
            return found == values.end() ? std::string_view() : std::string_view(found->second);
        };
    };
    const SStyle parent = SStyle().child(attributes({{"stroke", "red"}, {"visibility", "hidden"}}));
    EXPECT_FALSE(parent.draws());
    const SStyle child = parent.child(attributes(
        {{"stroke", "green"}, {"style", "stroke: #123 !important; visibility:visible"}}));
    EXPECT_TRUE(child.draws());
    EXPECT_EQ(child.colour(), "#112233");
    EXPECT_FALSE(child.child(attributes({{"style", "display:none"}})).draws());
    EXPECT_TRUE(child.child(attributes({})).displayed); // display is not inherited
    EXPECT_FALSE(child.child(attributes({{"stroke", "none"}, {"fill", "none"}})).draws());
}

/// The shortest distance from p to a curve given on [from, to]: a scan, then the best few
/// samples refined.
double distanceToCurve(SVec2 p, const std::function<SVec2(double)>& curve, double from, double to) {
    const int samples = 300;
    const double step = (to - from) / samples;
    const auto gap = [&](double t) { return length(curve(t) - p); };
    std::vector<std::pair<double, double>> scan;
    for (int i = 0; i <= samples; ++i) {
        scan.emplace_back(gap(from + step * i), from + step * i);
    }
    std::partial_sort(scan.begin(), scan.begin() + 3, scan.end());
    double best = scan[0].first;
    for (int k = 0; k < 3; ++k) {
        double low = std::fmax(from, scan[k].second - step);
        double high = std::fmin(to, scan[k].second + step);
        for (int i = 0; i < 60; ++i) { // unimodal this close to a minimum
            const double a = low + (high - low) / 3.0, b = high - (high - low) / 3.0;
            if (gap(a) < gap(b)) {
                high = b;
            } else {
                low = a;
            }
        }
        best = std::fmin(best, gap((low + high) / 2.0));
    }
    return best;
}

/// Checks every vertex (rounded to float, as the drawing stores it) and points along every
/// chord against the true curve; returns the largest distance found.
double worstDistance(const SStroke& stroke, const std::function<SVec2(double)>& curve, double from,
                     double to) {
    double worst = 0.0;
    const auto asFloat = [](SVec2 p) {
        return SVec2{static_cast<float>(p.x), static_cast<float>(p.y)};
    };
    for (std::size_t i = 0; i + 1 < stroke.points.size(); ++i) {
        const SVec2 a = asFloat(stroke.points[i]), b = asFloat(stroke.points[i + 1]);
        for (double s : {0.0, 0.3, 0.5, 0.7}) {
            worst = std::fmax(worst, distanceToCurve(a + s * (b - a), curve, from, to));
        }
    }
    return worst;
}

/// Within the tolerance, and not with far more segments than it needs.
void checkWithin(const SStroke& stroke, const std::function<SVec2(double)>& curve, double from,
                 double to, double tolerance) {
    const double worst = worstDistance(stroke, curve, from, to);
    EXPECT_LE(worst, tolerance);
    EXPECT_GT(worst, tolerance / 10.0) << stroke.points.size() << " points";
}

SVec2 bezier(const std::vector<SVec2>& p, double t) {
    std::vector<SVec2> q = p; // de Casteljau
    for (std::size_t n = q.size() - 1; n > 0; --n) {
        for (std::size_t i = 0; i < n; ++i)
            q[i] = q[i] + t * (q[i + 1] - q[i]);
    }
    return q[0];
}

const SAffine kSkewed = {1.7, 0.4, -0.9, 0.6, 30.0, -20.0}; // rotates, shears and scales

TEST(SvgFlattening, CurvesStayWithinTheToleranceOfTheTrueCurve) {
    for (double tolerance : {0.1, 0.003}) {
        SCOPED_TRACE(tolerance);
        for (const SAffine& m : {SAffine(), kSkewed}) {
            // Cubic and quadratic, with a sharp turn; given by their controls in user space.
            const std::vector<std::vector<SVec2>> curves = {
                {{0, 0}, {10, 40}, {60, -30}, {70, 10}},
                {{0, 0}, {50, 80}, {100, 0}},
            };
            for (const std::vector<SVec2>& c : curves) {
                CFlattener flattener(tolerance, 1000000);
                flattener.setTransform(m);
                SSegment s;
                s.kind = c.size() == 4 ? ESegment::eCubic : ESegment::eQuadratic;
                s.control1 = c[1];
                s.control2 = c[2];
                s.end = c.back();
                SSegment move;
                move.end = c[0];
                flattener.addPath({move, s}, false);
                ASSERT_EQ(flattener.strokes().size(), 1u);
                std::vector<SVec2> mapped;
                for (SVec2 p : c)
                    mapped.push_back(m.apply(p));
                checkWithin(
                    flattener.strokes()[0], [&](double t) { return bezier(mapped, t); }, 0.0, 1.0,
                    tolerance);
                EXPECT_EQ(flattener.strokes()[0].points.back(), mapped.back());
            }
        }
    }
}

TEST(SvgFlattening, EllipsesAndRotatedArcsStayWithinTheToleranceAndCirclesUseNoMore) {
    for (double tolerance : {0.1, 0.003}) {
        SCOPED_TRACE(tolerance);
        for (const SAffine& m : {SAffine(), kSkewed, SAffine::rotation(36)}) {
            const auto onEllipse = [&](SVec2 c, double rx, double ry, double phi) {
                const SAffine shape = compose(SAffine::rotation(phi), SAffine::scaling(rx, ry));
                return [=](double t) {
                    return m.apply(c + shape.apply({std::cos(t), std::sin(t)}));
                };
            };
            CFlattener flattener(tolerance, 1000000);
            flattener.setTransform(m);
            flattener.addEllipse({10, 20}, 40, 15);
            const SStroke& ellipse = flattener.strokes()[0];
            EXPECT_EQ(ellipse.points.front(), ellipse.points.back()); // closed exactly
            checkWithin(ellipse, onEllipse({10, 20}, 40, 15, 0), 0, 2 * kPi, tolerance);
            if (m.a == m.d) { // a circle stays a circle: one segment less would stray too far
                CFlattener circle(tolerance, 1000000);
                circle.setTransform(m);
                circle.addEllipse({0, 0}, 25, 25);
                const double k = static_cast<double>(circle.strokes()[0].points.size() - 1);
                EXPECT_GT(25.0 * (1 - std::cos(kPi / (k - 1))), tolerance);
            }
            // Arcs from angle t0 to t1 on ellipses rotated by phi, both ways round.
            const double arcs[][6] = {{0, 0, 30, 10, 25, 0.3},
                                      {5, -5, 12, 12, 0, 4.0},
                                      {0, 0, 50, 20, -60, -2.5},
                                      {3, 3, 8, 30, 10, 5.9}};
            for (const auto& a : arcs) {
                const SVec2 c{a[0], a[1]};
                const double t0 = 1.0, t1 = t0 + a[5];
                const auto local = onEllipse(c, a[2], a[3], a[4]);
                const SAffine shape =
                    compose(SAffine::rotation(a[4]), SAffine::scaling(a[2], a[3]));
                SSegment move, arc;
                move.end = c + shape.apply({std::cos(t0), std::sin(t0)});
                arc.kind = ESegment::eArc;
                arc.end = c + shape.apply({std::cos(t1), std::sin(t1)});
                arc.radiusX = a[2];
                arc.radiusY = a[3];
                arc.rotation = a[4];
                arc.largeArc = std::fabs(a[5]) > kPi;
                arc.sweep = a[5] > 0;
                CFlattener arcs(tolerance, 1000000);
                arcs.setTransform(m);
                arcs.addPath({move, arc}, false);
                checkWithin(arcs.strokes()[0], local, std::fmin(t0, t1), std::fmax(t0, t1),
                            tolerance);
            }
        }
    }
}

TEST(SvgFlattening, FarFromTheOriginTheFloatsRoundingCountsIntoTheTolerance) {
    const SVec2 centre{30000.0, -30000.0}; // a float step here is 1/512
    CFlattener flattener(0.003, 1000000);
    flattener.addEllipse(centre, 50, 50);
    const double worst = worstDistance(
        flattener.strokes()[0],
        [&](double t) {
            return centre + 50.0 * SVec2{std::cos(t), std::sin(t)};
        },
        0, 2 * kPi);
    EXPECT_LE(worst, 0.003);
}

TEST(SvgFlattening, DotsClosedPathsLimitsAndOutOfRangeCoordinates) {
    CFlattener flattener(0.5, 1000);
    flattener.addEllipse({7, 8}, 0.3, 0.4);                        // inside the tolerance: a dot
    flattener.addPath(parsePathData("M1 1Z M2 2").segments, true); // caps draw it; a bare move not
    flattener.addPath(parsePathData("M3 3Z").segments, false);     // butt caps draw nothing
    flattener.addPath(parsePathData("M0 0L4 0L4 4Z").segments, false);
    flattener.addPath(parsePathData("M0 0L4 0L4 4L0 0Z").segments, false);
    const std::vector<SStroke>& strokes = flattener.strokes();
    ASSERT_EQ(strokes.size(), 4u);
    EXPECT_EQ(strokes[0].points, (std::vector<SVec2>{{7, 8}}));
    EXPECT_EQ(strokes[1].points, (std::vector<SVec2>{{1, 1}}));
    EXPECT_EQ(strokes[2].points.size(), 4u); // returns to its start
    EXPECT_EQ(strokes[3].points.size(), 4u); // already there: no extra point
    EXPECT_EQ(flattener.error(), "");

    CFlattener limited(1e-6, 1000);
    limited.addEllipse({0, 0}, 1000, 1000);
    EXPECT_NE(limited.error().find("more than 1000 points"), std::string::npos);
    CFlattener huge(0.01, 1000);
    huge.addPath(parsePathData("M0 0L1e39 0").segments, false);
    EXPECT_EQ(huge.error(), "a coordinate is beyond what a drawing can hold");
    CFlattener endless(0.01, 1000);
    endless.addPath(parsePathData("M0 0Q1e300 1e300 0 1").segments, false);
    EXPECT_FALSE(endless.error().empty());
}

} // namespace

namespace {

// What a host gets: results, never printing; an unusable document gives only its error.
TEST(SvgFacade, ResultsCarryErrorsWarningsPensAndWordsThatRoundTrip) {
    namespace F = LibStrokeset::Formats;
    const F::SSvgImport broken = F::importSvg("<svg><path d='M0 0 L1 1'");
    EXPECT_FALSE(broken.ok());
    EXPECT_TRUE(broken.words.empty() && broken.pens.empty() && broken.paths == 0);

    const std::string svg =
        "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 100 100'>"
        "<g id='a'><path d='M10 10 L20 10 L20 20'/><circle cx='50' cy='50' r='0.001'/></g>"
        "<g id='b'><line x1='0' y1='0' x2='5' y2='0'/><text>skipped</text></g></svg>";
    F::SSvgImportOptions options;
    options.units = F::ESvgUnits::eUser;
    const F::SSvgImport imported = F::importSvg(svg, options);
    ASSERT_TRUE(imported.ok()) << imported.error;
    EXPECT_EQ(imported.paths, 2u);
    EXPECT_EQ(imported.dots, 1u);
    EXPECT_EQ(imported.points, 6u);
    ASSERT_EQ(imported.pens.size(), 2u);
    EXPECT_EQ(imported.pens[1].pen, 2);
    EXPECT_EQ(imported.pens[1].name, "b");
    ASSERT_EQ(imported.warnings.size(), 1u);
    EXPECT_NE(imported.warnings[0].find("text"), std::string::npos) << imported.warnings[0];

    LibStrokeset::CStrokeset drawing(imported.words);
    const F::SSvgExport exported = F::exportSvg(drawing, F::ESvgUnits::eUser);
    EXPECT_EQ(exported.paths, 2u);
    EXPECT_EQ(exported.dots, 1u);
    EXPECT_EQ(exported.layers, 2u);
    EXPECT_EQ(F::importSvg(exported.svg, options).words, imported.words);
}

} // namespace
