// Drawing: loading and writing words, Stk files, SVG and machine files.

#include <cmath>
#include <fstream>
#include <memory>
#include <optional>
#include <iterator>

#include <LibStrokeset/CElement.h>
#include <LibStrokeset/Formats/DeviceProfile.h>
#include <LibStrokeset/Formats/MachineExport.h>
#include <LibStrokeset/Formats/Svg.h>

#include "Conversions.h"
#include "DrawingBindings.h"

namespace StrokesetPython {

namespace {

using namespace py::literals;
namespace Formats = LibStrokeset::Formats;

std::string pathFrom(const py::object& path) {
    return py::str(py::module_::import("os").attr("fspath")(path)).cast<std::string>();
}

[[noreturn]] void raiseOSError(const std::string& message, const std::string& path) {
    PyErr_SetString(PyExc_OSError, (path + ": " + message).c_str());
    throw py::error_already_set();
}

/// A new drawing of the words; ValueError for a cut record unless salvaging.
std::unique_ptr<CPythonDrawing> drawingOfWords(const std::vector<unsigned short>& words,
                                               bool salvage) {
    auto drawing = std::make_unique<CPythonDrawing>();
    const unsigned int cut = LibStrokeset::CStrokeset::getCutRecordPosition(words);
    if (cut != LibStrokeset::CElement::noIndex && !salvage) {
        throw py::value_error("the words end in a record cut short at word " + std::to_string(cut) +
                              " of " + std::to_string(words.size()) +
                              " (salvage=True loads the records before it)");
    }
    drawing->document().setBinaryStrokesetData(words);
    return drawing;
}

std::string wholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text;
    try {
        text.assign(std::istreambuf_iterator<char>(file), {});
    } catch (const std::ios_base::failure&) { // a read error (a folder, say) throws here
        file.setstate(std::ios::badbit);
    }
    if (!file.is_open() || file.bad()) { // an empty file is read, and left to the importer
        raiseOSError("the file could not be read", path);
    }
    return text;
}

void writeWholeFile(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) {
        raiseOSError("the file could not be written", path);
    }
}

Formats::SSvgImportOptions svgOptions(double tolerance, const std::string& units,
                                      const std::string& pens) {
    if (!(tolerance > 0.0 && std::isfinite(tolerance))) {
        throw py::value_error("the tolerance must be a finite number greater than 0, not " +
                              py::repr(py::float_(tolerance)).cast<std::string>());
    }
    Formats::SSvgImportOptions options;
    options.tolerance = tolerance;
    options.units = units == "mm"     ? Formats::ESvgUnits::eMillimetres
                    : units == "user" ? Formats::ESvgUnits::eUser
                                      : throw py::value_error("units must be \"mm\" or \"user\", "
                                                              "not \"" +
                                                              units + "\"");
    options.pens = pens == "layer"    ? Formats::ESvgPens::eLayer
                   : pens == "stroke" ? Formats::ESvgPens::eStroke
                   : pens == "none"
                       ? Formats::ESvgPens::eNone
                       : throw py::value_error("pens must be \"layer\", \"stroke\" or \"none\", "
                                               "not \"" +
                                               pens + "\"");
    return options;
}

Formats::ESvgUnits svgUnits(const std::string& units) {
    return svgOptions(0.01, units, "layer").units;
}

std::unique_ptr<CPythonDrawing> drawingOfSvg(const std::string& text,
                                             const Formats::SSvgImportOptions& options) {
    const Formats::SSvgImport imported = Formats::importSvg(text, options);
    if (!imported.ok()) {
        throw py::value_error(imported.error);
    }
    for (const std::string& warning : imported.warnings) {
        warn(warning);
    }
    return drawingOfWords(imported.words, false);
}

/// The machine file under a profile; its warnings issued, ValueError when nothing is written.
std::string machineText(CPythonDrawing& drawing, const std::string& profile,
                        const py::object& overrides) {
    const Formats::SProfileReading reading =
        Formats::loadDeviceProfile(profile, profileOverridesFrom(overrides));
    if (!reading.ok()) {
        throw py::value_error(reading.error);
    }
    Formats::SMachineExport run = Formats::exportMachine(drawing.document(), reading.profile);
    if (!run.ok()) {
        throw py::value_error(run.error);
    }
    for (const std::string& warning : run.warnings) {
        warn(warning);
    }
    return std::move(run.text);
}

std::vector<unsigned short> serializeInto(CPythonDrawing& drawing,
                                          std::vector<unsigned int>& indexMap) {
    std::vector<unsigned short> words;
    try {
        drawing.document().serialize(words, &indexMap);
    } catch (const char* message) { // the library's one exception
        throw std::runtime_error(message);
    }
    return words;
}

void bindLoading(py::class_<CPythonDrawing>& drawing) {
    drawing
        .def(py::init([](const py::object& words) {
                 return words.is_none() ? std::make_unique<CPythonDrawing>()
                                        : drawingOfWords(wordsFrom(words), false);
             }),
             "words"_a = py::none(),
             "An empty drawing, or one loaded from words as from_words does.")
        .def_static(
            "from_words",
            [](const py::object& words, bool salvage) {
                return drawingOfWords(wordsFrom(words), salvage);
            },
            "words"_a, "salvage"_a = false,
            "Loads a stream of 16-bit words. ValueError when it ends in a record cut short, "
            "unless salvage: then the records before it are loaded.")
        .def_static(
            "read_stk",
            [](const py::object& path, bool salvage) {
                std::vector<unsigned short> words;
                std::string error;
                const std::string name = pathFrom(path);
                if (!LibStrokeset::CStrokeset::readStkFile(name, words, error)) {
                    raiseOSError(error, name);
                }
                return drawingOfWords(words, salvage);
            },
            "path"_a, "salvage"_a = false,
            "Reads an Stk file. OSError when it cannot be read; ValueError as from_words.")
        .def_static(
            "from_svg",
            [](const std::string& text, double tolerance, const std::string& units,
               const std::string& pens) {
                return drawingOfSvg(text, svgOptions(tolerance, units, pens));
            },
            "text"_a, "tolerance"_a = 0.01, "units"_a = "mm", "pens"_a = "layer",
            "Imports an SVG document held in text: units \"mm\" or \"user\"; pens \"layer\", "
            "\"stroke\" or \"none\". What was skipped or repaired is warned about (UserWarning); "
            "ValueError when the document cannot be used.")
        .def_static(
            "read_svg",
            [](const py::object& path, double tolerance, const std::string& units,
               const std::string& pens) {
                return drawingOfSvg(wholeFile(pathFrom(path)), svgOptions(tolerance, units, pens));
            },
            "path"_a, "tolerance"_a = 0.01, "units"_a = "mm", "pens"_a = "layer",
            "from_svg on the file's contents.")
        .def_static(
            "cut_record_position",
            [](const py::object& words) -> std::optional<unsigned int> {
                const unsigned int cut =
                    LibStrokeset::CStrokeset::getCutRecordPosition(wordsFrom(words));
                return cut == LibStrokeset::CElement::noIndex ? std::nullopt
                                                              : std::optional<unsigned int>(cut);
            },
            "words"_a, "Word position at which a record cut short starts; None when none is.")
        .def(
            "load_words",
            [](CPythonDrawing& self, const py::object& words) {
                return self.document().setBinaryStrokesetData(wordsFrom(words));
            },
            "words"_a,
            "Replaces the drawing by the words; False when they end in a record cut short "
            "(the records before it are loaded).")
        .def(
            "paste",
            [](CPythonDrawing& self, const py::object& words) {
                return self.document().paste(wordsFrom(words));
            },
            "words"_a,
            "Appends the words, numbered on from the opcode count; False as load_words.");
}

void bindWriting(py::class_<CPythonDrawing>& drawing) {
    drawing
        .def(
            "serialize",
            [](CPythonDrawing& self) {
                std::vector<unsigned int> indexMap;
                std::vector<unsigned short> words = serializeInto(self, indexMap);
                return py::make_tuple(arrayOwning(std::move(words)),
                                      arrayOwning(std::move(indexMap)));
            },
            "Writes the drawing, renumbering it: (words, index map), the map giving at every "
            "old index its new one (NO_INDEX for points that are gone). The arrays are the "
            "caller's own.")
        .def(
            "write_stk",
            [](CPythonDrawing& self, const py::object& path) {
                std::vector<unsigned int> indexMap;
                std::vector<unsigned short> words = serializeInto(self, indexMap);
                std::string error;
                const std::string name = pathFrom(path);
                if (!LibStrokeset::CStrokeset::writeStkFile(name, words, error)) {
                    raiseOSError(error, name);
                }
                return arrayOwning(std::move(indexMap));
            },
            "path"_a, "Serializes and writes an Stk file; returns the index map.")
        .def(
            "to_svg",
            [](CPythonDrawing& self, const std::string& units) {
                return Formats::exportSvg(self.document(), svgUnits(units)).svg;
            },
            "units"_a = "mm", "An SVG document of the drawing, a layer per run of a pen.")
        .def(
            "write_svg",
            [](CPythonDrawing& self, const py::object& path, const std::string& units) {
                writeWholeFile(pathFrom(path),
                               Formats::exportSvg(self.document(), svgUnits(units)).svg);
            },
            "path"_a, "units"_a = "mm", "Writes to_svg's document to a file.")
        .def("to_machine", &machineText, "profile"_a = "gcode-servo", "overrides"_a = py::tuple(),
             "The drawing as a machine file (G-code or HPGL) under a device profile: a built-in "
             "name (see device_profiles()) or a TOML file; overrides replace keys, "
             "{\"draw_feed\": 1500} or [\"draw_feed=1500\"]. Warnings are issued as "
             "UserWarning; ValueError when nothing can be written.")
        .def(
            "write_machine",
            [](CPythonDrawing& self, const py::object& path, const std::string& profile,
               const py::object& overrides) {
                writeWholeFile(pathFrom(path), machineText(self, profile, overrides));
            },
            "path"_a, "profile"_a = "gcode-servo", "overrides"_a = py::tuple(),
            "Writes to_machine's file.");
}

} // namespace

void bindDrawingFiles(py::class_<CPythonDrawing>& drawing) {
    bindLoading(drawing);
    bindWriting(drawing);
}

} // namespace StrokesetPython
