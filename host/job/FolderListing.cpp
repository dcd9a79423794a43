#include "host/job/FolderListing.h"

#include <cerrno>
#include <dirent.h>
#include <memory>

namespace {

struct Closer {
    void operator()(DIR *listing) const { (void)closedir(listing); }
};

} // namespace

std::optional<std::vector<std::string>> NamesIn(const std::string &folder) {
    const std::unique_ptr<DIR, Closer> listing(opendir(folder.c_str()));
    if (!listing) return std::nullopt;
    std::vector<std::string> names;
    for (;;) {
        errno = 0;
        const dirent *entry = readdir(listing.get());
        if (!entry) break;
        const std::string name = entry->d_name;
        if (name != "." && name != "..") names.push_back(name);
    }
    if (errno != 0) return std::nullopt;
    return names;
}
