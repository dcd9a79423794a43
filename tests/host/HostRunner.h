/// Runs zelprint as a user does, and looks at what it leaves behind.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

struct RunResult {
    int status = -1; ///< exit status; 128 + signal when a signal ended it
    std::string out, err;
    /// The one line of zelprint's own on standard error; the driver's notes are left out.
    [[nodiscard]] std::string Complaint() const;
};

/// A folder of the test's own, with a hot folder in it; both go away with it.
class Workplace {
public:
    Workplace();
    ~Workplace();
    Workplace(const Workplace &) = delete;
    Workplace &operator=(const Workplace &) = delete;

    [[nodiscard]] std::string Path(const std::string &name) const {
        return (mRoot / name).string();
    }
    [[nodiscard]] std::string Hot() const { return Path("hot"); }
    [[nodiscard]] std::string Hot(const std::string &name) const { return Path("hot/" + name); }
    /// Names in the hot folder, sorted.
    [[nodiscard]] std::vector<std::string> HotFiles() const;
    /// Everything that zelprint may have left hidden, in the hot folder or beside it.
    [[nodiscard]] std::vector<std::string> Leftovers() const;

    /// Runs zelprint and waits. `environment` has entries NAME=VALUE.
    [[nodiscard]] RunResult Run(const std::vector<std::string> &arguments,
                                const std::vector<std::string> &environment = {},
                                uint64_t fileSizeLimit = 0) const;
    /// The same with the hot folder and --colour-space rgb.
    [[nodiscard]] RunResult PrintRGB(std::vector<std::string> arguments) const;
    /// Starts zelprint; the caller waits.
    [[nodiscard]] pid_t Start(const std::vector<std::string> &arguments) const;

private:
    std::filesystem::path mRoot;
};

/// A picture in memory: `bands` samples a pixel.
struct Picture {
    int width = 0, height = 0, bands = 3;
    std::vector<uint8_t> samples;
    [[nodiscard]] const uint8_t *At(int x, int y) const {
        return &samples[(static_cast<size_t>(y) * static_cast<size_t>(width) +
                         static_cast<size_t>(x)) *
                        static_cast<size_t>(bands)];
    }
};

/// Red grows to the right, green downwards; a blue quarter at the top left tells up from down.
[[nodiscard]] Picture TestPicture(int width, int height);
/// One colour everywhere.
[[nodiscard]] Picture PlainPicture(int width, int height, const std::vector<uint8_t> &colour);

/// How a picture is written to a file; the name's extension tells the format.
struct SaveOptions {
    double dpi = 0;      ///< 0: not told
    int orientation = 1; ///< EXIF
    bool cmyk = false;   ///< four bands are inks, not RGB and alpha
    std::vector<uint8_t> profile;
};
void SavePicture(const Picture &picture, const std::string &path, const SaveOptions &options = {});
/// A TIFF of several pages of equal size.
void SavePages(const std::vector<Picture> &pages, const std::string &path);

/// Ghostscript's rendering of page `page` (from 1); EPS files are cropped to their bounding box.
/// Fails the test when Ghostscript complains.
[[nodiscard]] Picture Render(const std::string &path, int dpi, int page = 1,
                             const char *device = "ppmraw");
/// Number of pages that Ghostscript finds.
[[nodiscard]] int CountPages(const std::string &path);
/// The file's bytes without its creation date.
[[nodiscard]] std::string ReadWithoutDate(const std::string &path);
[[nodiscard]] std::string ReadFile(const std::string &path);
void WriteFile(const std::string &path, const std::string &bytes);

/// Mean difference of two pictures of one size and number of bands.
[[nodiscard]] double MeanDifference(const Picture &a, const Picture &b);
/// The part of a picture that is not white, and that part resampled.
[[nodiscard]] Picture Trimmed(const Picture &picture);
[[nodiscard]] Picture Resampled(const Picture &picture, int width, int height);
