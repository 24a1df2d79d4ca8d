#include "SvgImporter.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <regex>
#include <set>
#include <unordered_map>

#include <pugixml.hpp>

#include <LibStrokeset/CDrawingElement.h>

#include "Lengths.h"
#include "ShapeOutlines.h"
#include "Style.h"

namespace LibStrokeset::Formats::Svg {

namespace {

constexpr int kDepthLimit = 200;
constexpr std::size_t kLocatedWarnings = 100;

// Elements that never draw on their own: definitions, metadata, paint servers, animation.
const std::set<std::string_view> kQuietElements = {"defs",
                                                   "symbol",
                                                   "clipPath",
                                                   "mask",
                                                   "marker",
                                                   "pattern",
                                                   "linearGradient",
                                                   "radialGradient",
                                                   "filter",
                                                   "style",
                                                   "script",
                                                   "title",
                                                   "desc",
                                                   "metadata",
                                                   "foreignObject",
                                                   "view",
                                                   "cursor",
                                                   "font",
                                                   "font-face",
                                                   "animate",
                                                   "animateMotion",
                                                   "animateTransform",
                                                   "set",
                                                   "stop",
                                                   "solidColor"};

/// An element's name without the "svg:" prefix; empty for elements of other vocabularies.
std::string_view localName(const pugi::xml_node& node) {
    std::string_view name = node.name();
    const std::size_t colon = name.find(':');
    if (colon == std::string_view::npos) {
        return name;
    }
    return name.substr(0, colon) == "svg" ? name.substr(colon + 1) : std::string_view();
}

/// What an element inherits from where it stands.
struct SContext {
    SAffine toOutput;
    SStyle style;
    std::string layerKey, layerName;
    /// The pen a layer's id names ("pen3", "pen3-2", "nopen"), when every layer names one.
    std::optional<unsigned short> layerPen;
    double viewportWidth = 0.0, viewportHeight = 0.0; ///< in user units, for percentages
    int depth = 0;
};

/// Walks the document once, drawing shapes into a flattener.
class CSvgImporter {
public:
    CSvgImporter(const std::string& text, const SImportOptions& options)
        : m_text(text), m_options(options), m_flattener(options.tolerance, options.pointLimit) {}

    SImport run();

private:
    void walk(const pugi::xml_node& element, const SContext& parent);
    /// Draws one element of a known kind, and what it holds.
    void draw(const pugi::xml_node& element, std::string_view name, const SContext& parent);
    void walkChildren(const pugi::xml_node& element, const SContext& context);
    void nestedViewport(const pugi::xml_node& element, SContext& context) const;
    void use(const pugi::xml_node& element, SContext& context);
    void shape(const pugi::xml_node& element, std::string_view name, const SContext& context);
    unsigned short penOf(const SContext& context);
    /// A length attribute in user units; percentages are of the viewport's width, height or
    /// diagonal (`axis` 0, 1, 2). Missing or unreadable lengths are `fallback`.
    std::optional<double> length(const pugi::xml_node& element, const char* name, int axis,
                                 const SContext& context) const;
    double length0(const pugi::xml_node& element, const char* name, int axis,
                   const SContext& context) const {
        return length(element, name, axis, context).value_or(0.0);
    }
    SContext rootContext(const pugi::xml_node& root);
    std::vector<bool> layerFlags(const pugi::xml_node& root) const;
    /// The pen a layer id of an export names, if it names one.
    static std::optional<unsigned short> penNamedBy(const char* id);
    /// Whether every layer names its pen, as an export does: its pens are kept then.
    static bool layersNamePens(const pugi::xml_node& root, const std::vector<bool>& layers);
    void warn(const pugi::xml_node& element, const std::string& message);
    void fail(const pugi::xml_node& element, const std::string& message);
    std::string where(const pugi::xml_node& element) const;
    void collectIds(const pugi::xml_node& root);

    const std::string& m_text;
    const SImportOptions& m_options;
    CFlattener m_flattener;
    CPenTable m_penTable;
    SImport m_result;
    std::unordered_map<std::string, pugi::xml_node> m_ids;
    /// The elements being drawn, the current one and all that contain it, so that a use of
    /// one of them (which would draw forever) is caught.
    std::set<const void*> m_ancestors;
    std::size_t m_visits = 0;
    std::map<std::string, int> m_skipped; ///< text, images and unknown elements by name
    bool m_tooDeep = false;
};

std::string CSvgImporter::where(const pugi::xml_node& element) const {
    const std::ptrdiff_t offset = element.offset_debug();
    if (offset < 0 || static_cast<std::size_t>(offset) > m_text.size()) {
        return std::string("<") + element.name() + ">";
    }
    const auto line = 1 + std::count(m_text.begin(), m_text.begin() + offset, '\n');
    return "line " + std::to_string(line) + ", <" + element.name() + ">";
}

void CSvgImporter::warn(const pugi::xml_node& element, const std::string& message) {
    // Finding the line takes a pass over the text: only the first warnings say where.
    const bool located = m_result.warnings.size() < kLocatedWarnings;
    m_result.warnings.push_back((located ? where(element) + ": " : std::string()) + message);
}

void CSvgImporter::fail(const pugi::xml_node& element, const std::string& message) {
    if (m_result.error.empty()) {
        m_result.error = where(element) + ": " + message;
    }
}

void CSvgImporter::collectIds(const pugi::xml_node& root) {
    for (pugi::xml_node node = root; node; node = node.next_sibling()) {
        // An explicit stack: the document may nest deeper than the call stack allows.
        std::vector<pugi::xml_node> stack{node};
        while (!stack.empty()) {
            const pugi::xml_node element = stack.back();
            stack.pop_back();
            const pugi::xml_attribute id = element.attribute("id");
            if (id) {
                m_ids.emplace(id.value(), element); // the first of equal ids wins
            }
            for (pugi::xml_node child = element.last_child(); child;
                 child = child.previous_sibling()) {
                if (child.type() == pugi::node_element) {
                    stack.push_back(child);
                }
            }
        }
    }
}

std::optional<double> CSvgImporter::length(const pugi::xml_node& element, const char* name,
                                           int axis, const SContext& context) const {
    const pugi::xml_attribute attribute = element.attribute(name);
    if (!attribute) {
        return std::nullopt;
    }
    const double w = context.viewportWidth, h = context.viewportHeight;
    const double reference = axis == 0 ? w : axis == 1 ? h : std::hypot(w, h) / std::sqrt(2.0);
    return parseLength(attribute.value(), reference);
}

std::optional<unsigned short> CSvgImporter::penNamedBy(const char* id) {
    static const std::regex named("(?:pen([0-9]{1,5})|(nopen))(?:-[0-9]+)?");
    std::cmatch match;
    if (!std::regex_match(id, match, named)) {
        return std::nullopt;
    }
    if (match[2].matched) {
        return LibStrokeset::CDrawingElement::noPen;
    }
    const unsigned long number = std::stoul(match[1].str());
    if (number >= LibStrokeset::CDrawingElement::noPen) {
        return std::nullopt;
    }
    return static_cast<unsigned short>(number);
}

bool CSvgImporter::layersNamePens(const pugi::xml_node& root, const std::vector<bool>& layers) {
    std::size_t i = 0, named = 0;
    for (const pugi::xml_node& child : root.children()) {
        if (layers[i++]) {
            if (!penNamedBy(child.attribute("id").value())) {
                return false;
            }
            ++named;
        }
    }
    return named > 0;
}

std::vector<bool> CSvgImporter::layerFlags(const pugi::xml_node& root) const {
    std::vector<bool> flags;
    bool inkscapeLayers = false;
    for (const pugi::xml_node& child : root.children()) {
        const bool group = child.type() == pugi::node_element && localName(child) == "g";
        const bool layer =
            group && std::strcmp(child.attribute("inkscape:groupmode").value(), "layer") == 0;
        inkscapeLayers = inkscapeLayers || layer;
        flags.push_back(layer);
    }
    if (!inkscapeLayers) { // without marked layers every top-level group is one
        std::size_t i = 0;
        for (const pugi::xml_node& child : root.children()) {
            flags[i++] = child.type() == pugi::node_element && localName(child) == "g";
        }
    }
    return flags;
}

SContext CSvgImporter::rootContext(const pugi::xml_node& root) {
    SContext context;
    const std::optional<SViewBox> box = parseViewBox(root.attribute("viewBox").value());
    context.viewportWidth =
        box ? box->width : parseLength(root.attribute("width").value()).value_or(100.0);
    context.viewportHeight =
        box ? box->height : parseLength(root.attribute("height").value()).value_or(100.0);
    if (m_options.units == EUnits::eMillimetres) {
        context.toOutput = userUnitsToMillimetres(
            {root.attribute("width").value(), root.attribute("height").value(),
             root.attribute("viewBox").value(), root.attribute("preserveAspectRatio").value()});
    }
    context.style = context.style.child(
        [&root](const char* name) { return std::string_view(root.attribute(name).value()); });
    return context;
}

SImport CSvgImporter::run() {
    pugi::xml_document document;
    const pugi::xml_parse_result parsed = document.load_buffer(m_text.data(), m_text.size());
    if (!parsed) {
        const auto line =
            1 + std::count(m_text.begin(),
                           m_text.begin() + std::min<std::size_t>(parsed.offset, m_text.size()),
                           '\n');
        m_result.error = std::string("not a readable XML document: ") + parsed.description() +
                         " on line " + std::to_string(line);
        return m_result;
    }
    const pugi::xml_node root = document.document_element();
    if (localName(root) != "svg") {
        m_result.error = std::string("not an SVG drawing: the document is a <") + root.name() + ">";
        return m_result;
    }
    collectIds(root);
    const SContext context = rootContext(root);
    if (!context.style.displayed) {
        m_result.warnings.push_back("the drawing is hidden (display: none)");
    } else {
        const std::vector<bool> layers = layerFlags(root);
        const bool pensNamed = layersNamePens(root, layers);
        std::size_t i = 0, layerCount = 0;
        for (const pugi::xml_node& child : root.children()) {
            SContext inLayer = context;
            if (layers[i++]) {
                const char* label = child.attribute("inkscape:label").value();
                const char* id = child.attribute("id").value();
                inLayer.layerKey = "layer " + std::to_string(++layerCount);
                inLayer.layerName = *label ? label : *id ? id : inLayer.layerKey;
                if (pensNamed) {
                    inLayer.layerPen = penNamedBy(id);
                }
            }
            walk(child, inLayer);
        }
    }
    if (!m_result.error.empty()) {
        return SImport{m_result.error, {}, {}, {}, {}};
    }
    for (const auto& [name, count] : m_skipped) {
        m_result.warnings.push_back("skipped " + std::to_string(count) + " <" + name + "> element" +
                                    (count == 1 ? "" : "s") + " (no strokes to draw)");
    }
    m_result.strokes = std::move(m_flattener.strokes());
    m_result.penTable = m_penTable.pens();
    if (m_result.strokes.empty()) {
        m_result.warnings.push_back("the drawing draws nothing");
    }
    return m_result;
}

void CSvgImporter::walkChildren(const pugi::xml_node& element, const SContext& context) {
    for (const pugi::xml_node& child : element.children()) {
        walk(child, context);
    }
}

void CSvgImporter::walk(const pugi::xml_node& element, const SContext& parent) {
    if (element.type() != pugi::node_element || !m_result.error.empty()) {
        return;
    }
    if (++m_visits > m_options.elementLimit) {
        fail(element, "more than " + std::to_string(m_options.elementLimit) +
                          " elements to draw (uses of uses multiply them)");
        return;
    }
    if (parent.depth >= kDepthLimit) {
        if (!m_tooDeep) {
            warn(element, "elements nested deeper than " + std::to_string(kDepthLimit) +
                              " levels were skipped");
        }
        m_tooDeep = true;
        return;
    }
    const std::string_view name = localName(element);
    if (name.empty() || kQuietElements.count(name) > 0) {
        return;
    }
    m_ancestors.insert(element.internal_object());
    draw(element, name, parent);
    m_ancestors.erase(element.internal_object());
}

void CSvgImporter::draw(const pugi::xml_node& element, std::string_view name,
                        const SContext& parent) {
    SContext context = parent;
    ++context.depth;
    context.style = parent.style.child(
        [&element](const char* n) { return std::string_view(element.attribute(n).value()); });
    if (!context.style.displayed) {
        return;
    }
    SAffine transform;
    if (!parseTransform(element.attribute("transform").value(), transform)) {
        warn(element, "its transform could not be read and was left out");
    }
    context.toOutput = compose(parent.toOutput, transform);
    if (name == "g" || name == "a" || name == "switch") {
        walkChildren(element, context);
    } else if (name == "svg") {
        nestedViewport(element, context);
        walkChildren(element, context);
    } else if (name == "use") {
        use(element, context);
    } else if (name == "path" || name == "rect" || name == "circle" || name == "ellipse" ||
               name == "line" || name == "polyline" || name == "polygon") {
        shape(element, name, context);
    } else {
        // Text, images and unknown elements: not drawn, nor what they hold.
        ++m_skipped[std::string(name)];
    }
}

void CSvgImporter::nestedViewport(const pugi::xml_node& element, SContext& context) const {
    const double x = length0(element, "x", 0, context), y = length0(element, "y", 1, context);
    context.toOutput = compose(context.toOutput, SAffine::translation(x, y));
    const double width = length(element, "width", 0, context).value_or(context.viewportWidth);
    const double height = length(element, "height", 1, context).value_or(context.viewportHeight);
    const std::optional<SViewBox> box = parseViewBox(element.attribute("viewBox").value());
    if (box) {
        context.toOutput = compose(
            context.toOutput, viewBoxTransform(*box, width, height,
                                               element.attribute("preserveAspectRatio").value()));
    }
    context.viewportWidth = box ? box->width : width;
    context.viewportHeight = box ? box->height : height;
}

void CSvgImporter::use(const pugi::xml_node& element, SContext& context) {
    std::string_view reference = element.attribute("href").value();
    if (reference.empty()) {
        reference = element.attribute("xlink:href").value();
    }
    const auto found = reference.size() > 1 && reference[0] == '#'
                           ? m_ids.find(std::string(reference.substr(1)))
                           : m_ids.end();
    if (found == m_ids.end()) {
        warn(element, "refers to \"" + std::string(reference) + "\", which the drawing lacks");
        return;
    }
    const pugi::xml_node target = found->second;
    if (m_ancestors.count(target.internal_object()) > 0) {
        warn(element, "refers to an element that contains it; left out");
        return;
    }
    const double x = length0(element, "x", 0, context), y = length0(element, "y", 1, context);
    context.toOutput = compose(context.toOutput, SAffine::translation(x, y));
    if (localName(target) == "symbol") {
        // A symbol draws only through a use, as a group would.
        SContext inside = context;
        inside.style = context.style.child(
            [&target](const char* n) { return std::string_view(target.attribute(n).value()); });
        if (inside.style.displayed) {
            m_ancestors.insert(target.internal_object());
            walkChildren(target, inside);
            m_ancestors.erase(target.internal_object());
        }
    } else {
        walk(target, context);
    }
}

unsigned short CSvgImporter::penOf(const SContext& context) {
    switch (m_options.pens) {
    case EPens::eLayer:
        if (context.layerPen) {
            return m_penTable.penNumbered(*context.layerPen, context.layerName);
        }
        return m_penTable.penFor(context.layerKey,
                                 context.layerKey.empty() ? "(outside layers)" : context.layerName);
    case EPens::eStroke: return m_penTable.penFor(context.style.colour(), context.style.colour());
    default: return 65535;
    }
}

void CSvgImporter::shape(const pugi::xml_node& element, std::string_view name,
                         const SContext& context) {
    if (!context.style.draws()) {
        return;
    }
    const auto number = [&](const char* n, int axis) { return length0(element, n, axis, context); };
    m_flattener.setTransform(context.toOutput);
    const std::size_t before = m_flattener.strokes().size();
    if (name == "path") {
        const SPathData data = parsePathData(element.attribute("d").value());
        if (data.errorAt != std::string_view::npos) {
            warn(element, "its path data has an error at character " +
                              std::to_string(data.errorAt + 1) + "; drawn up to there");
        }
        m_flattener.addPath(data.segments, context.style.capsDrawDots);
    } else if (name == "rect") {
        m_flattener.addPath(rectangleOutline(number("x", 0), number("y", 1), number("width", 0),
                                             number("height", 1), length(element, "rx", 0, context),
                                             length(element, "ry", 1, context)),
                            false);
    } else if (name == "circle") {
        const double r = number("r", 2);
        m_flattener.addEllipse({number("cx", 0), number("cy", 1)}, r, r);
    } else if (name == "ellipse") {
        m_flattener.addEllipse({number("cx", 0), number("cy", 1)}, number("rx", 0),
                               number("ry", 1));
    } else if (name == "line") {
        m_flattener.addPath(
            lineOutline({number("x1", 0), number("y1", 1)}, {number("x2", 0), number("y2", 1)}),
            false);
    } else {
        bool complete = true;
        m_flattener.addPath(
            pointsOutline(element.attribute("points").value(), name == "polygon", complete),
            context.style.capsDrawDots);
        if (!complete) {
            warn(element, "its points end in an error; drawn up to there");
        }
    }
    if (!m_flattener.error().empty()) {
        fail(element, m_flattener.error());
        return;
    }
    const std::size_t added = m_flattener.strokes().size() - before;
    if (added > 0) {
        m_result.pens.insert(m_result.pens.end(), added, penOf(context));
    }
}

} // namespace

SImport importStrokes(const std::string& text, const SImportOptions& options) {
    return CSvgImporter(text, options).run();
}

} // namespace LibStrokeset::Formats::Svg
