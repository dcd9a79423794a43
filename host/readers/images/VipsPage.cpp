#include "host/readers/images/VipsPage.h"

#include "host/separations/ProfileCheck.h"
#include "host/terminal/ExitStatus.h"
#include <algorithm>
#include <cstring>

namespace {

/// A chain of libvips operations on one page; the first that fails ends it.
class Chain {
public:
    Chain(const VipsLoader &file, int page, VipsImagePtr image)
        : mFile(file), mPage(page), mImage(std::move(image)) {}

    [[nodiscard]] VipsImage *Get() const { return mImage.get(); }
    [[nodiscard]] VipsImagePtr Take() { return std::move(mImage); }

    /// operation(in, &out) is a call of libvips.
    template <typename Operation>
    void Apply(const Operation &operation) {
        VipsImage *out = nullptr;
        if (operation(mImage.get(), &out) != 0) {
            if (out) g_object_unref(out);
            mFile.ThrowUnreadable(mPage);
        }
        mImage.reset(out);
    }

    /// The same, but goes on with what it has when the operation is refused.
    template <typename Operation>
    bool TryApply(const Operation &operation) {
        VipsImage *out = nullptr;
        if (operation(mImage.get(), &out) != 0) {
            if (out) g_object_unref(out);
            vips_error_clear();
            return false;
        }
        mImage.reset(out);
        return true;
    }

private:
    const VipsLoader &mFile;
    int mPage;
    VipsImagePtr mImage;
};

void MakeUpright(Chain &chain, int orientation, bool turned) {
    if (orientation != 1)
        chain.Apply([](VipsImage *in, VipsImage **out) { return vips_autorot(in, out, nullptr); });
    if (turned)
        chain.Apply([](VipsImage *in, VipsImage **out) {
            return vips_rot(in, out, VIPS_ANGLE_D270, nullptr);
        });
}

/// Puts the image on white paper, which is full light or no ink.
void Flatten(Chain &chain) {
    if (!vips_image_hasalpha(chain.Get())) return;
    const bool ink = vips_image_guess_interpretation(chain.Get()) == VIPS_INTERPRETATION_CMYK;
    const VipsBandFormat format = vips_image_get_format(chain.Get());
    // libvips takes the range of 16-bit inks for that of 8-bit ones.
    const double full = format == VIPS_FORMAT_USHORT ? 65535 : 255;
    VipsArrayDouble *background = vips_array_double_newv(1, ink ? 0 : full);
    chain.Apply([background, full](VipsImage *in, VipsImage **out) {
        return vips_flatten(in, out, "background", background, "max_alpha", full, nullptr);
    });
    vips_area_unref(VIPS_AREA(background));
}

/// The whole image in `width` by `height` pixels.
void Resize(Chain &chain, int width, int height) {
    const double across = static_cast<double>(width) / vips_image_get_width(chain.Get());
    const double down = static_cast<double>(height) / vips_image_get_height(chain.Get());
    chain.Apply([across, down](VipsImage *in, VipsImage **out) {
        return vips_resize(in, out, across, "vscale", down, nullptr);
    });
}

void Crop(Chain &chain, const Placement &place) {
    if (!place.IsCropped()) return;
    chain.Apply([&place](VipsImage *in, VipsImage **out) {
        return vips_extract_area(in, out, place.cropLeft, place.cropTop, place.width, place.height,
                                 nullptr);
    });
}

bool HasForeignProfile(VipsImage *image) {
    const void *data = nullptr;
    size_t size = 0;
    if (vips_image_get_typeof(image, VIPS_META_ICC_NAME) == 0 ||
        vips_image_get_blob(image, VIPS_META_ICC_NAME, &data, &size) != 0)
        return false;
    return !IsNearlySRGB(data, size);
}

static_assert(static_cast<int>(ColourIntent::Perceptual) == VIPS_INTENT_PERCEPTUAL &&
                  static_cast<int>(ColourIntent::Relative) == VIPS_INTENT_RELATIVE &&
                  static_cast<int>(ColourIntent::Saturation) == VIPS_INTENT_SATURATION &&
                  static_cast<int>(ColourIntent::Absolute) == VIPS_INTENT_ABSOLUTE,
              "the order of the intents");

/// Ink darker than the darkest light would otherwise be gray: black point compensation, which has
/// no place where colours are to be the same in every light.
int ToSRGBByProfile(VipsImage *in, VipsImage **out, ColourIntent intent) {
    // The input profile is what counts when none is embedded, or when the embedded one is unfit.
    if (vips_image_guess_interpretation(in) == VIPS_INTERPRETATION_CMYK)
        return vips_icc_transform(in, out, "srgb", "embedded", TRUE, "input_profile", "cmyk",
                                  "intent", static_cast<VipsIntent>(intent),
                                  "black_point_compensation", intent != ColourIntent::Absolute,
                                  nullptr);
    return vips_icc_transform(in, out, "srgb", "embedded", TRUE, "intent", VIPS_INTENT_RELATIVE,
                              nullptr);
}

void ToLight(Chain &chain, PixelKind kind, ColourIntent intent) {
    const bool byProfile = kind == PixelKind::CMYK || HasForeignProfile(chain.Get());
    const auto convert = [intent](VipsImage *in, VipsImage **out) {
        return ToSRGBByProfile(in, out, intent);
    };
    if (byProfile && chain.TryApply(convert)) return;
    const VipsInterpretation wanted =
        kind == PixelKind::Gray ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB;
    if (vips_image_guess_interpretation(chain.Get()) == wanted) return;
    chain.Apply([wanted](VipsImage *in, VipsImage **out) {
        return vips_colourspace(in, out, wanted, nullptr);
    });
}

void ToBytes(Chain &chain) {
    const VipsBandFormat format = vips_image_get_format(chain.Get());
    if (format == VIPS_FORMAT_UCHAR) return;
    if (format == VIPS_FORMAT_USHORT)
        chain.Apply([](VipsImage *in, VipsImage **out) { return vips_msb(in, out, nullptr); });
    else
        chain.Apply([](VipsImage *in, VipsImage **out) {
            return vips_cast(in, out, VIPS_FORMAT_UCHAR, nullptr);
        });
}

/// Drops samples beyond the colours, such as spot inks.
void KeepBands(Chain &chain, int bands) {
    if (vips_image_get_bands(chain.Get()) == bands) return;
    chain.Apply([bands](VipsImage *in, VipsImage **out) {
        return vips_extract_band(in, out, 0, "n", bands, nullptr);
    });
}

void ConvertColours(Chain &chain, PixelKind kind, const PageTarget &target) {
    if (target.pixels == DocumentPixels::CMYK && kind == PixelKind::CMYK) {
        ToBytes(chain);
        KeepBands(chain, 4);
        return;
    }
    ToLight(chain, kind, target.intent);
    ToBytes(chain);
    KeepBands(chain, vips_image_get_bands(chain.Get()) < 3 ? 1 : 3);
}

/// A row more or less, by rounding, is no reason to resample what was drawn.
void TrimDrawing(Chain &chain, const Placement &place) {
    const int width = vips_image_get_width(chain.Get());
    const int height = vips_image_get_height(chain.Get());
    if (width == place.scaledWidth && height == place.scaledHeight) return;
    constexpr int kRounding = 2;
    if (std::abs(width - place.scaledWidth) > kRounding ||
        std::abs(height - place.scaledHeight) > kRounding)
        Resize(chain, place.scaledWidth, place.scaledHeight);
    else
        chain.Apply([&place](VipsImage *in, VipsImage **out) {
            return vips_embed(in, out, 0, 0, place.scaledWidth, place.scaledHeight, "extend",
                              VIPS_EXTEND_WHITE, nullptr);
        });
}

/// Drawings are drawn in the size that they have on the page.
VipsPage OpenDrawing(const VipsLoader &file, int page, const SourcePage &source,
                     const PageTarget &target) {
    const bool turned = target.placement.turned;
    VipsPage result;
    result.placement = LayOut(target.grid, source.size, target.placement);
    const Placement &place = result.placement;
    const double across = turned ? source.size.height : source.size.width;
    const double down = turned ? source.size.width : source.size.height;
    const double scale = std::max(place.scaledWidth / across, place.scaledHeight / down);
    Chain chain(file, page, file.Load(page, scale, !turned));
    MakeUpright(chain, 1, turned);
    Flatten(chain);
    TrimDrawing(chain, place);
    Crop(chain, place);
    result.pixels = chain.Take();
    return result;
}

VipsPage OpenPicture(const VipsLoader &file, int page, const SourcePage &source,
                     const PageTarget &target) {
    const bool turned = target.placement.turned;
    VipsPage result;
    result.placement = LayOut(target.grid, source.size, target.placement);
    const bool inOrder = source.orientation <= 2 && !turned;
    Chain chain(file, page, file.Load(page, 1.0, inOrder));
    MakeUpright(chain, source.orientation, turned);
    Flatten(chain);
    if (!result.placement.pixelByPixel)
        Resize(chain, result.placement.scaledWidth, result.placement.scaledHeight);
    Crop(chain, result.placement);
    result.pixels = chain.Take();
    return result;
}

} // namespace

VipsPage OpenVipsPage(const VipsLoader &file, int page, const SourcePage &source,
                      const PageTarget &target) {
    VipsPage result = source.drawnWidth > 0 ? OpenDrawing(file, page, source, target)
                                            : OpenPicture(file, page, source, target);
    Chain chain(file, page, std::move(result.pixels));
    ConvertColours(chain, source.kind, target);
    result.pixels = chain.Take();
    return result;
}
