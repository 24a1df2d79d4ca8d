// Imports arbitrary text as SVG. Whatever it is, the import must not crash, and a drawing it
// accepts must be sound: finite float coordinates, a pen for every stroke, a stream that loads
// cleanly, and an export that imports back to the same words.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <LibStrokeset/LibStrokeset.h>

#include <LibStrokeset/Formats/Svg.h>

#include "svg/StrokeWords.h"
#include "svg/SvgImporter.h"

namespace {

using namespace LibStrokeset::Formats::Svg;

void fail(const char* what) {
    std::fprintf(stderr, "SVG import broken: %s\n", what);
    std::abort();
}

void checkSound(const SImport& import) {
    if (import.pens.size() != import.strokes.size()) fail("a stroke without a pen");
    for (const SStroke& stroke : import.strokes) {
        if (stroke.points.empty()) fail("an empty stroke");
        for (const SVec2& p : stroke.points) {
            if (!fitsFloat(p.x) || !fitsFloat(p.y)) fail("a coordinate beyond float");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    // The first byte picks the options, the rest is the document.
    SImportOptions options;
    options.units = data[0] & 1 ? EUnits::eUser : EUnits::eMillimetres;
    options.pens = data[0] & 2 ? EPens::eLayer : EPens::eNone;
    options.tolerance = data[0] & 4 ? 0.5 : 0.01;
    options.pointLimit = 100000; // small, so that a run stays fast
    options.elementLimit = 20000;
    const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
    const SImport first = importStrokes(text, options);
    if (!first.error.empty()) return 0;
    checkSound(first);

    const std::vector<unsigned short> words = strokeWords(first);
    LibStrokeset::CStrokeset drawing;
    if (!drawing.setBinaryStrokesetData(words)) fail("the stream does not load");
    if (options.pens != EPens::eNone) return 0; // pens may come back numbered otherwise

    options.units = EUnits::eUser;
    const LibStrokeset::Formats::SSvgImport second = LibStrokeset::Formats::importSvg(
        LibStrokeset::Formats::exportSvg(drawing, EUnits::eUser).svg, options);
    if (!second.ok()) fail("the export does not import");
    if (second.words != words) fail("export and import changed the drawing");
    return 0;
}
