/// What zelprint wants of a file of images: how its pages look, and their pixels from top to
/// bottom.
#pragma once

#include "host/placement/PageLayout.h"
#include "host/readers/PackPixels.h"
#include "host/separations/InkProfile.h"
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

enum class FileKind { TIFF, PNG, JPEG, PNM, WebP, GIF, JPEG2000, HEIF, SVG, PDF };

/// How colours of ink become light: the rendering intents of ICC profiles, in their order.
enum class ColourIntent { Perceptual, Relative, Saturation, Absolute };

enum class PixelKind { Gray, RGB, CMYK };

struct SourcePage {
    ImageSize size; ///< upright, as it is to be looked at
    /// Size in points of a page that is drawn in any number of pixels; 0: it has `size` pixels.
    double drawnWidth = 0, drawnHeight = 0;
    bool isPicture = true; ///< see DocumentPage
    PixelKind kind = PixelKind::RGB;
    int orientation = 1; ///< EXIF orientation that makes it upright
};

/// What a decoder has to say of a file that it did not give up.
struct Damage {
    std::string what;        ///< empty: nothing
    bool isInvented = false; ///< some pixels are its own, or some of the file's are missing
};

/// The pixels of one page: upright, cropped, in their final size and colours, 8 bits a sample.
class PageRows {
public:
    /// Takes `count` rows that lie `rowBytes` apart; false when nobody wants more.
    using Take = std::function<bool(const uint8_t *rows, size_t rowBytes, int count)>;

    /// Memory for the next rows, at most `count` of them; null when nobody wants more.
    struct Space {
        uint8_t *rows = nullptr;
        int count = 0;
    };
    /// Takes the `filled` rows that have been put into the space given last, and gives the next.
    using MakeRoom = std::function<Space(int filled)>;

    PageRows(int width, int height, int bands) : mWidth(width), mHeight(height), mBands(bands) {}
    virtual ~PageRows() = default;
    PageRows(const PageRows &) = delete;
    PageRows &operator=(const PageRows &) = delete;

    [[nodiscard]] int Width() const { return mWidth; }
    [[nodiscard]] int Height() const { return mHeight; }
    /// 1: gray, 3: RGB, 4: CMYK.
    [[nodiscard]] int Bands() const { return mBands; }

    /// Gives all rows, in their order, from the calling thread or others, one call at a time.
    /// May be called once. Throws HostError (Input) when the file is damaged.
    virtual void Read(const Take &take) = 0;
    /// As Read, but puts the rows, one right behind the other, where they are wanted. False: this
    /// source cannot, and has done nothing.
    [[nodiscard]] virtual bool ReadInto(const MakeRoom & /*room*/) { return false; }
    /// Makes Read, which runs in another thread, end soon.
    virtual void Stop() = 0;
    /// What was wrong with the file though Read has given all rows. To be asked after it.
    [[nodiscard]] virtual Damage TellDamage() { return {}; }

private:
    int mWidth, mHeight, mBands;
};

/// What a page is to become.
struct PageTarget {
    PageGrid grid;           ///< the driver's page
    PagePlacement placement; ///< there; `turned` lays the page on its left side
    DocumentPixels pixels = DocumentPixels::XRGB;
    /// The document's way from light to ink and back, for readers that draw; null for others.
    std::shared_ptr<const InkProfile> inks = nullptr;
    ColourIntent intent = ColourIntent::Relative; ///< where ink becomes light
};

/// What counts of a page when it is placed.
[[nodiscard]] DocumentPage PageOf(const SourcePage &page);

struct PageImage {
    std::shared_ptr<PageRows> rows;
    Placement placement;   ///< where they go on the page; the size is theirs
    bool isQuick = false;  ///< to read them again costs no more than to keep them
    std::string note = {}; ///< what of the page is not printed, for a warning; empty: nothing
};

/// An open file. Failures are HostErrors (Input) that name the file.
class ImageFile {
public:
    ImageFile() = default;
    virtual ~ImageFile() = default;
    ImageFile(const ImageFile &) = delete;
    ImageFile &operator=(const ImageFile &) = delete;

    /// Number of pages, at least 1.
    [[nodiscard]] virtual int PageCount() = 0;
    /// Number of pictures in the file that are no pages and left out, such as those of an
    /// animation.
    [[nodiscard]] virtual int FurtherFrames() { return 0; }
    /// Page `page`, counted from 0.
    [[nodiscard]] virtual SourcePage Describe(int page) = 0;
    /// Page `page` for a page of the driver's. Nothing is read yet but the header. No rows: this
    /// reader cannot prepare the page so, another must.
    [[nodiscard]] virtual PageImage OpenPage(int page, const PageTarget &target) = 0;
    /// After the rows of the last page that is wanted: throws HostError (Input) when it turns out
    /// only now that they are not what the file holds.
    virtual void Finish() {}
};

/// Says that page `page` of a file cannot be read, and why. Throws HostError (Input).
[[noreturn]] void ThrowUnreadable(const std::string &path, int page, const std::string &why);
