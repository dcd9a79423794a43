#include "tests/dialogs/TestBundle.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

CFBundleRef TestBundle() {
    static const CFBundleRef bundle = [] {
        CFURLRef url = FolderURL(ZEL_TEST_BUNDLE);
        CFBundleRef created = CFBundleCreate(kCFAllocatorDefault, url);
        CFRelease(url);
        return created;
    }();
    return bundle;
}

CFStringRef TestBundleIdentifier() {
    return CFBundleGetIdentifier(TestBundle());
}

std::string MakeTestFolder() {
    // The test's own temporary folder, which goes even when the test is killed.
    const char *temporary = std::getenv("TEMP");
    std::string path =
        std::string(temporary != nullptr ? temporary : "/tmp") + "/zel-dialogs-XXXXXX";
    EXPECT_NE(mkdtemp(path.data()), nullptr);
    return path;
}

void RemoveTestFolder(const std::string &folder) {
    std::filesystem::remove_all(folder);
}

CFURLRef FolderURL(const std::string &path) {
    return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                   reinterpret_cast<const UInt8 *>(path.data()),
                                                   static_cast<CFIndex>(path.size()), 1);
}

std::string URLPath(CFURLRef url) {
    UInt8 path[4096];
    if (!CFURLGetFileSystemRepresentation(url, 1, path, sizeof path)) return {};
    return reinterpret_cast<const char *>(path);
}

std::string StringText(CFStringRef string) {
    char text[4096];
    if (string == nullptr || !CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8))
        return {};
    return text;
}
