#include "Files.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <iostream>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ExitCodes.h"
#include "Interrupt.h"

namespace Strokeset {

namespace {

std::string systemError() { return std::strerror(errno); }

/// Creates an empty, hidden file next to `path` and returns its name; empty on failure.
/// O_EXCL makes sure that no other file is ever reused or overwritten.
std::string createTemporaryFile(const std::string& path, std::string& error) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string candidate = folder + "." + name + "." + std::to_string(getpid()) + "." +
                                      std::to_string(attempt) + ".tmp";
        const int fd = open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0) {
            close(fd);
            return candidate;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    error = systemError();
    return {};
}

/// Flushes the file to the disk, so that the rename never exposes a file still in flight.
bool syncFile(const std::string& path, std::string& error) {
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool synced = fd >= 0 && fsync(fd) == 0;
    if (!synced) {
        error = systemError();
    }
    if (fd >= 0) {
        close(fd);
    }
    return synced;
}

} // namespace

namespace {

/// What a user needs beside the library's fixed message about a file of odd length.
std::string explainReadError(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || status.st_size % 2 == 0) {
        return {};
    }
    return " It is " + std::to_string(status.st_size) +
           " bytes long, an odd number: an Stk file holds 16-bit words, two bytes each, so "
           "the file is cut short or is not an Stk file.";
}

} // namespace

void printError(const std::string& what, const std::string& message) {
    std::cerr << "strokeset: " << what << ": " << message << '\n';
}

bool loadDrawing(const std::string& path, bool salvage, LibStrokeset::CStrokeset& drawing,
                 SCutRecord* cut) {
    std::vector<unsigned short> words;
    std::string error;
    if (!LibStrokeset::CStrokeset::readStkFile(path, words, error)) {
        printError(path, error + explainReadError(path));
        return false;
    }
    if (drawing.setBinaryStrokesetData(words)) {
        return true;
    }
    SCutRecord found;
    found.present = true;
    found.word = LibStrokeset::CStrokeset::getCutRecordPosition(words);
    found.unreadWords = words.size() - found.word;
    const std::string facts = "the stream ends in a cut record at word " +
                              std::to_string(found.word) + " (counted from 0); " +
                              std::to_string(found.unreadWords) + " words could not be read";
    if (cut != nullptr) {
        *cut = found;
    }
    if (!salvage) {
        printError(path, facts + " (--salvage loads the records before it)");
        return false;
    }
    printError("warning", path + ": " + facts + "; going on with the records before it");
    return true;
}

int writeAtomically(
    const std::string& path,
    const std::function<bool(const std::string& temporary, std::string& error)>& write) {
    std::string error;
    const std::string temporary = createTemporaryFile(path, error);
    if (temporary.empty()) {
        printError(path, "cannot create a file here: " + error);
        return exitFailed;
    }
    const bool written = write(temporary, error) && syncFile(temporary, error);
    if (written && !interrupted()) {
        if (std::rename(temporary.c_str(), path.c_str()) == 0) {
            return exitOk;
        }
        error = systemError();
    }
    std::remove(temporary.c_str());
    if (interrupted()) {
        std::cerr << "strokeset: interrupted; " << path << " was not written\n";
        return exitInterrupted;
    }
    printError(path, error);
    return exitFailed;
}

int saveDrawing(const std::string& path, LibStrokeset::CStrokeset& drawing) {
    std::vector<unsigned short> words;
    drawing.serialize(words, nullptr);
    return writeAtomically(path, [&words](const std::string& temporary, std::string& error) {
        if (!LibStrokeset::CStrokeset::writeStkFile(temporary, words, error)) {
            return false;
        }
        // The writer does not report a short write (a full disk, say): check the size.
        struct stat status = {};
        if (stat(temporary.c_str(), &status) != 0 ||
            static_cast<std::size_t>(status.st_size) != words.size() * 2) {
            error = "the file was not written completely";
            return false;
        }
        return true;
    });
}

int saveText(const std::string& path, const std::string& text) {
    return writeAtomically(path, [&text](const std::string& temporary, std::string& error) {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        file << text;
        file.close();
        if (!file) {
            error = "the file was not written completely";
        }
        return !file.fail();
    });
}

bool readWholeFile(const std::string& path, std::string& contents) {
    std::ifstream in(path, std::ios::binary);
    struct stat status = {};
    if (!in || stat(path.c_str(), &status) != 0 || S_ISDIR(status.st_mode)) {
        printError(path, "File could not be opened!");
        return false;
    }
    contents.assign(std::istreambuf_iterator<char>(in), {});
    if (in.bad()) {
        printError(path, "File could not be read!");
        return false;
    }
    return true;
}

} // namespace Strokeset
