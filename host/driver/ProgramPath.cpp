#include "host/driver/ProgramPath.h"

#include <climits>
#include <cstdlib>
#include <unistd.h>

namespace {

/// From the programs of an installation to its driver.
constexpr char kInstalled[] = "/../" ZEL_INSTALL_FOLDER "/";

std::string &ProgramPath() {
    static std::string path;
    return path;
}

} // namespace

std::string FindInPath(const std::string &name) {
    const char *path = getenv("PATH");
    std::string rest = path ? path : "";
    while (!rest.empty()) {
        const size_t colon = rest.find(':');
        const std::string folder = rest.substr(0, colon);
        rest = colon == std::string::npos ? "" : rest.substr(colon + 1);
        const std::string candidate = (folder.empty() ? "." : folder) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) return RealPath(candidate);
    }
    return {};
}

std::string RealPath(const std::string &path) {
    char real[PATH_MAX];
    return realpath(path.c_str(), real) ? real : std::string();
}

void SetProgramPath(const char *argv0) {
    const std::string name = argv0 ? argv0 : "";
    ProgramPath() = name.find('/') == std::string::npos ? FindInPath(name) : RealPath(name);
}

std::string FindBesideProgram(const std::string &name) {
    const std::string &program = ProgramPath();
    const std::string folder = program.substr(0, program.rfind('/'));
    for (const char *place : {"/", "/../", "/../resources/", kInstalled, "/../lib/"}) {
        std::string path = RealPath(std::string(folder).append(place).append(name));
        if (!path.empty()) return path;
    }
    return {};
}
