/// The pages of a TIFF file, and what their samples mean.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <tiffio.h>
#include <vector>

struct CloseTIFF {
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TIFFPtr = std::unique_ptr<TIFF, CloseTIFF>;

/// What libtiff complains about, while a file is open.
struct TIFFComplaints {
    std::string error;  ///< the first error
    std::string damage; ///< the first complaint of a decoder that went on all the same
};

/// Opens a file for reading; `complaints` has to live as long. Null when it is no TIFF file.
[[nodiscard]] TIFFPtr OpenTIFF(const std::string &path, TIFFComplaints &complaints);

/// Whether a complaint is a decoder's, by the name of the function that complains. The others are
/// about fields that nobody needs to know.
[[nodiscard]] bool IsFromDecoder(const char *module);

/// The value of a field, or `absent`.
template <typename T>
T TIFFFieldOr(TIFF *tiff, uint32_t tag, T absent) {
    T value = absent;
    return TIFFGetFieldDefaulted(tiff, tag, &value) ? value : absent;
}

/// One directory of a file that is a page.
struct TIFFPage {
    uint32_t number = 0; ///< of the directory, from 0
    uint64_t offset = 0; ///< of the directory in the file
    int samples = 1;     ///< a pixel
    int beyond = 0;      ///< how many of them, the last ones, are no colours
    int alpha = -1;      ///< which sample is alpha; -1: none. Only what the file calls so is.
    std::string problem; ///< why it cannot be printed; empty when it can

    /// Samples that are neither colours nor alpha: spot plates, masks.
    [[nodiscard]] int LeftOut() const { return beyond - (alpha >= 0 ? 1 : 0); }
};

/// What the samples of the directory that libtiff is at mean.
[[nodiscard]] TIFFPage DescribeTIFFPage(TIFF *tiff);

/// Whether the directory that libtiff is at is a thumbnail, a smaller version or a mask of another.
[[nodiscard]] bool IsSubordinate(TIFF *tiff);

/// All pages of a file that people call `name`: every directory but those that are subordinate, or
/// simply every one when all are. Throws HostError (Input) when there is one that cannot be read:
/// none must get lost.
[[nodiscard]] std::vector<TIFFPage> ListTIFFPages(const std::string &path, const std::string &name);
