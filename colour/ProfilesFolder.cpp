#include "colour/ProfilesFolder.h"
#include "colour/EightColourLUT.h"

#include "platform/Platform.h"
#include "support/CFText.h"
#include <filesystem>
#include <vector>

namespace {

namespace fs = std::filesystem;

const UInt8 *Bytes(const std::string &text) {
    return reinterpret_cast<const UInt8 *>(text.data());
}

CFRef<CFURLRef> FileURL(const std::string &path) {
    return CFRef(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, Bytes(path),
                                                         static_cast<CFIndex>(path.size()), false));
}

bool IsProfile(const fs::path &path) {
    const CFRef<CFURLRef> url = FileURL(path.native());
    return url && IsEightColourLUT(url.Get());
}

void AppendName(const std::string &name, CFMutableArrayRef names) {
    const CFRef string(CFStringCreateWithBytes(kCFAllocatorDefault, Bytes(name),
                                               static_cast<CFIndex>(name.size()),
                                               kCFStringEncodingUTF8, false));
    if (string) CFArrayAppendValue(names, string.Get());
}

/// Appends the profiles of one folder to `names` and the folders in it to `folders`.
void ListFolder(const fs::path &folder, CFMutableArrayRef names, std::vector<fs::path> &folders) {
    std::error_code error;
    fs::directory_iterator item(folder, error);
    for (; !error && item != fs::directory_iterator(); item.increment(error)) {
        std::error_code ignored; // what cannot be looked at is no folder
        // Links to folders are not followed, so that a loop of them ends.
        if (item->symlink_status(ignored).type() == fs::file_type::directory)
            folders.push_back(item->path());
        else if (IsProfile(item->path()))
            AppendName(item->path().filename().native(), names);
    }
}

} // namespace

std::string ProfilesFolder() {
    const std::string support = PlatformApplicationSupportFolder();
    return support.empty() ? support : support + "/ZEL/Profiles/Postscript";
}

CFRef<CFURLRef> ProfileURL(CFStringRef name) {
    const std::string folder = ProfilesFolder();
    const std::string file = UTF8Text(name).value_or("");
    // A stored name may come from somebody else's document: it must not lead out of the folder.
    if (folder.empty() || file.empty() || file.find('/') != std::string::npos) return {};
    return FileURL(folder + "/" + file);
}

CFRef<CFMutableArrayRef> ProfileNames(const std::string &folder) {
    CFRef names(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    std::vector<fs::path> folders{folder};
    while (!folders.empty()) {
        const fs::path next = std::move(folders.back());
        folders.pop_back();
        ListFolder(next, names.Get(), folders);
    }
    return names;
}
