#include "host/job/ImageLimits.h"

#include "host/terminal/ExitStatus.h"
#include <cstdio>
#include <set>
#include <sys/stat.h>

namespace {

/// 5 by 3 metres at 200 dpi.
constexpr double kMostPixels = 1e9;
/// Real images of that size do not shrink as far.
constexpr double kSuspectBytes = 500e6;
constexpr double kMostUnfolding = 200;

[[noreturn]] void Refuse(const std::string &path, const char *format, double value) {
    char text[80];
    (void)snprintf(text, sizeof text, format, value);
    throw HostError(ExitStatus::Input,
                    path + ": " + text + "; print it with --allow-large if that is right");
}

double FileSize(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? static_cast<double>(info.st_size) : 0;
}

void CheckImageSize(const SourceFile &file, int page) {
    const SourcePage image = file.Describe(page);
    const double pixels = static_cast<double>(image.size.width) * image.size.height;
    if (pixels > kMostPixels) Refuse(file.Path(), "an image of %.0f megapixels", pixels / 1e6);
    const double samples = image.kind == PixelKind::Gray ? 1 : image.kind == PixelKind::RGB ? 3 : 4;
    const double bytes = pixels * samples;
    if (bytes > kSuspectBytes && bytes > FileSize(file.Path()) * kMostUnfolding)
        Refuse(file.Path(), "it unfolds to %.0f MB, far more than its file", bytes / 1e6);
}

} // namespace

void CheckImageSizes(const std::vector<PageReference> &pages) {
    std::set<std::pair<const SourceFile *, int>> seen;
    for (const PageReference &page : pages)
        if (page.file->Kind() != FileKind::PDF && seen.insert({page.file, page.page}).second)
            CheckImageSize(*page.file, page.page);
}
