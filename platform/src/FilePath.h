// Absolute paths taken apart and put together.
#pragma once
#include <string>
#include <vector>

/// "/a/b" gives "/", "/a", "/a/b".
inline std::vector<std::string> PathAndAncestors(const std::string &path) {
    std::vector<std::string> paths{"/"};
    for (size_t begin = 1; begin < path.size();) {
        size_t end = path.find('/', begin);
        if (end == std::string::npos) end = path.size();
        if (end > begin) paths.push_back(path.substr(0, end));
        begin = end + 1;
    }
    return paths;
}

inline std::string JoinPath(const std::string &folder, const std::string &name) {
    return folder == "/" ? folder + name : folder + "/" + name;
}
