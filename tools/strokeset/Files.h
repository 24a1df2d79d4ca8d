#pragma once

#include <functional>
#include <string>

#include <LibStrokeset/CStrokeset.h>

// Reading drawings and writing output files for the sub-commands.
namespace Strokeset {

/// Reads an Stk file into the document. On failure prints the library's message and returns
/// false; the caller exits with exitBadInput.
bool loadDrawing(const std::string& path, LibStrokeset::CStrokeset& drawing);

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
