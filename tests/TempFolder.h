/// A folder of a test's own, and a look into it.
#pragma once

#include "support/CFRef.h"
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

inline CFRef<CFStringRef> Str(const std::string &text) {
    return CFRef(
        CFStringCreateWithCString(kCFAllocatorDefault, text.c_str(), kCFStringEncodingUTF8));
}

/// A string that has no UTF-8 form.
inline CFRef<CFStringRef> HalfACharacter() {
    const CFRef<CFStringRef> whole = Str("\xF0\x9F\x96\xA8");
    return CFRef(CFStringCreateWithSubstring(kCFAllocatorDefault, whole.Get(), CFRangeMake(0, 1)));
}

inline std::string ReadFile(const std::filesystem::path &path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Removed with all it holds when it goes.
class TempFolder {
public:
    TempFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "zelXXXXXX").string();
        mPath = mkdtemp(pattern.data());
        const std::string name = mPath.string();
        mURL = CFRef(CFURLCreateFromFileSystemRepresentation(
            kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(name.data()),
            static_cast<CFIndex>(name.size()), true));
    }
    ~TempFolder() { std::filesystem::remove_all(mPath); }
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    const std::filesystem::path &Path() const { return mPath; }
    CFURLRef URL() const { return mURL.Get(); }
    std::string Read(const std::string &name) const { return ReadFile(mPath / name); }

    /// The names in the folder, sorted.
    std::vector<std::string> Names() const {
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(mPath))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::filesystem::path mPath;
    CFRef<CFURLRef> mURL;
};
