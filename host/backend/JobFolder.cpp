#include "host/backend/JobFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

JobFolder::JobFolder() {
    const char *folder = getenv("TMPDIR");
    std::string path = std::string(folder ? folder : "/tmp") + "/zelprint.XXXXXX";
    if (mkdtemp(path.data())) mPath = path;
}

JobFolder::~JobFolder() {
    std::error_code ignored; // what stays is swept when the scheduler starts
    if (!mPath.empty()) std::filesystem::remove_all(mPath, ignored);
}

std::string TextOfFile(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
