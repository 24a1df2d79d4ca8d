// Stk files: the words of a stream, each as two bytes, most significant byte first.

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <vector>

#include <LibStrokeset/CStrokeset.h>

namespace LibStrokeset {

namespace {
// The byte count is held as a signed 32-bit number.
constexpr std::streamoff largestFileSize = 2147483647;
} // namespace

bool CStrokeset::readStkFile(const std::string& fileName, std::vector<unsigned short>& words,
                             std::string& error) {
    // A folder opens as a stream on this platform but holds no words.
    std::error_code ignored;
    std::ifstream file(fileName, std::ios::in | std::ios::binary | std::ios::ate);
    if (!file.is_open() || std::filesystem::is_directory(fileName, ignored)) {
        error = "File could not be opened!";
        return false;
    }
    const std::streamoff size = file.tellg();
    if (size < 0) {
        error = "File could not be read!";
        return false;
    }
    if (size > largestFileSize) {
        error = "File is too large!";
        return false;
    }
    if (size % 2 != 0) {
        error = "File has wrong length!";
        return false;
    }
    std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
    file.seekg(0, std::ios::beg);
    file.read(reinterpret_cast<char*>(bytes.data()), size);
    if (file.gcount() != size) {
        // The file shrank, or is no regular file: never hand out words that were not read.
        error = "File could not be read!";
        return false;
    }
    words.resize(bytes.size() / 2);
    for (std::size_t i = 0; i < words.size(); ++i) {
        words[i] = static_cast<unsigned short>((bytes[2 * i] << 8) | bytes[2 * i + 1]);
    }
    return true;
}

bool CStrokeset::writeStkFile(const std::string& fileName, std::vector<unsigned short>& words,
                              std::string& error) {
    std::ofstream file(fileName, std::ios::out | std::ios::binary | std::ios::trunc);
    if (!file.is_open()) {
        error = "File to save could not be opened!";
        return false;
    }
    std::vector<unsigned char> bytes(words.size() * 2);
    for (std::size_t i = 0; i < words.size(); ++i) {
        bytes[2 * i] = static_cast<unsigned char>(words[i] >> 8);
        bytes[2 * i + 1] = static_cast<unsigned char>(words[i] & 0xFFu);
    }
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    return true;
}

} // namespace LibStrokeset
