#include <LibStrokeset/Formats/DeviceProfile.h>

#include <fstream>
#include <sstream>
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
        std::ostringstream contents;
        contents << file.rdbuf();
        if (!file || !contents) {
            failed.error = nameOrFile + ": the file could not be read";
            return failed;
        }
        text = contents.str();
    }
    SProfileReading reading = readDeviceProfile(text, overrides, nameOrFile);
    if (reading.ok() && reading.profile.name.empty()) {
        reading.profile.name = nameOrFile;
    }
    return reading;
}

} // namespace LibStrokeset::Formats
