#include <LibStrokeset/Formats/DeviceProfile.h>

#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace LibStrokeset::Formats {

namespace {

std::string builtInNames() {
    std::string names;
    for (const std::string& name : builtInDeviceProfiles()) {
        names += (names.empty() ? "" : ", ") + name;
    }
    return names;
}

bool isFile(const std::string& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

SProfileReading loadDeviceProfile(const std::string& nameOrFile,
                                  const std::vector<std::string>& overrides) {
    std::string text = builtInDeviceProfileText(nameOrFile);
    if (text.empty() || isFile(nameOrFile)) { // a file of that name wins: the user made it
        SProfileReading failed;
        if (!isFile(nameOrFile)) {
            failed.error = nameOrFile +
                           ": no such profile file, and no built-in profile of that name (" +
                           builtInNames() + ")";
            return failed;
        }
        std::ifstream file(nameOrFile, std::ios::binary);
        try {
            text.assign(std::istreambuf_iterator<char>(file), {});
        } catch (const std::ios_base::failure&) { // how the stream reports a read error
            file.setstate(std::ios::badbit);
        }
        if (!file.is_open() || file.bad()) {
            failed.error = nameOrFile + ": the file could not be read";
            return failed;
        }
    }
    SProfileReading reading = readDeviceProfile(text, overrides, nameOrFile);
    if (reading.ok() && reading.profile.name.empty()) {
        reading.profile.name = nameOrFile;
    }
    return reading;
}

} // namespace LibStrokeset::Formats
