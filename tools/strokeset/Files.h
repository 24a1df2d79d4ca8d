#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include <LibStrokeset/CStrokeset.h>

// Reading drawings and writing output files for the sub-commands.
namespace Strokeset {

/// Where a stream's cut record starts (a record that runs past the end of the file) and how
/// many words, from there to the end, could not be read.
struct SCutRecord {
    bool present = false;
    std::size_t word = 0;
    std::size_t unreadWords = 0;
};

/// Reads an Stk file into the document. A file the library cannot read, and one whose stream
/// ends in a cut record, print their message and give false; the caller exits with
/// exitBadInput. With `salvage` a cut record is only warned about and the records before it
/// are loaded. `cut` (optional) receives where the cut record is.
bool loadDrawing(const std::string& path, bool salvage, LibStrokeset::CStrokeset& drawing,
                 SCutRecord* cut = nullptr);

/// Writes the file's contents through `write`, which is given a temporary name in the folder
/// of `path`, and renames that over `path` once it is complete. On failure or Ctrl-C the
/// temporary file is removed and `path` is left as it was. Returns the exit status.
int writeAtomically(
    const std::string& path,
    const std::function<bool(const std::string& temporary, std::string& error)>& write);

/// Serializes the document and writes it as an Stk file with writeAtomically.
int saveDrawing(const std::string& path, LibStrokeset::CStrokeset& drawing);

/// Writes `text` as the file's contents with writeAtomically.
int saveText(const std::string& path, const std::string& text);

/// Reads a whole file (an SVG, say) into `contents`. On failure prints why and returns false;
/// the caller exits with exitBadInput.
bool readWholeFile(const std::string& path, std::string& contents);

/// Prints "strokeset: <what>: <message>" on standard error.
void printError(const std::string& what, const std::string& message);

} // namespace Strokeset
