// Reads an SVG into a drawing and writes it back as SVG, through the installed formats package.
#include <cstdio>
#include <string>

#include <LibStrokeset/Formats/Formats.h>
#include <LibStrokeset/LibStrokeset.h>

int main() {
    const std::string svg = "<svg xmlns='http://www.w3.org/2000/svg' width='10mm' height='10mm' "
                            "viewBox='0 0 10 10'><path d='M1 1 L9 1 L9 9'/></svg>";
    const LibStrokeset::Formats::SSvgImport imported = LibStrokeset::Formats::importSvg(svg);
    if (!imported.ok()) {
        std::printf("import failed: %s\n", imported.error.c_str());
        return 1;
    }
    LibStrokeset::CStrokeset drawing(imported.words);
    const LibStrokeset::Formats::SSvgExport exported = LibStrokeset::Formats::exportSvg(drawing);
    std::printf("paths %zu, points %zu, travel %.1f, exported paths %zu\n", imported.paths,
                imported.points, LibStrokeset::Formats::penUpTravel(drawing), exported.paths);
    return imported.paths == 1 && imported.points == 3 && exported.paths == 1 ? 0 : 1;
}
