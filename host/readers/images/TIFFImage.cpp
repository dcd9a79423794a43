#include "host/readers/images/TIFFImage.h"

#include <array>

namespace {

/// A libvips operation on an image that is owned; false when it fails.
template <typename Operation>
bool Apply(VipsImagePtr &image, const Operation &operation) {
    VipsImage *out = nullptr;
    if (operation(image.get(), &out) != 0) {
        if (out) g_object_unref(out);
        return false;
    }
    image.reset(out);
    return true;
}

bool KeepBands(VipsImagePtr &image, int first, int count) {
    if (first == 0 && vips_image_get_bands(image.get()) == count) return true;
    return Apply(image, [first, count](VipsImage *in, VipsImage **out) {
        return vips_extract_band(in, out, first, "n", count, nullptr);
    });
}

bool Cast(VipsImagePtr &image, VipsBandFormat format) {
    return Apply(image, [format](VipsImage *in, VipsImage **out) {
        return vips_cast(in, out, format, nullptr);
    });
}

bool Interpret(VipsImagePtr &image, VipsInterpretation interpretation) {
    if (vips_image_get_interpretation(image.get()) == interpretation) return true;
    return Apply(image, [interpretation](VipsImage *in, VipsImage **out) {
        return vips_copy(in, out, "interpretation", interpretation, nullptr);
    });
}

bool IsLab(VipsImage *image) {
    const VipsInterpretation interpretation = vips_image_get_interpretation(image);
    return vips_image_get_coding(image) == VIPS_CODING_LABQ ||
           interpretation == VIPS_INTERPRETATION_LAB || interpretation == VIPS_INTERPRETATION_LABS;
}

/// Through the connection space of ICC profiles, whose white is that of Lab in files.
bool LabToSRGB(VipsImagePtr &image) {
    return Apply(image, [](VipsImage *in, VipsImage **out) {
        return vips_icc_export(in, out, "output_profile", "srgb", "pcs", VIPS_PCS_LAB, "intent",
                               VIPS_INTENT_RELATIVE, "depth", 8, nullptr);
    });
}

/// Floating-point colours are linear light from 0 to 1.
bool LightToSRGB(VipsImagePtr &image, int colours) {
    if (colours == 1 && !Apply(image, [](VipsImage *in, VipsImage **out) {
            std::array<VipsImage *, 3> same = {in, in, in};
            return vips_bandjoin(same.data(), out, 3, nullptr);
        }))
        return false;
    const bool isXYZ = vips_image_get_interpretation(image.get()) == VIPS_INTERPRETATION_XYZ;
    if (!isXYZ && !Interpret(image, VIPS_INTERPRETATION_scRGB)) return false;
    return Apply(image,
                 [](VipsImage *in, VipsImage **out) {
                     return vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
                 }) &&
           Cast(image, VIPS_FORMAT_UCHAR) && KeepBands(image, 0, colours);
}

/// Alpha in 8 bits, from the samples that libvips gives along with Lab and floating-point colours.
bool AlphaToBytes(VipsImagePtr &alpha, bool fromLab) {
    if (!fromLab)
        return Apply(alpha,
                     [](VipsImage *in, VipsImage **out) {
                         return vips_linear1(in, out, 255, 0.5, nullptr);
                     }) &&
               Cast(alpha, VIPS_FORMAT_UCHAR);
    // 16 bits without a sign, in the clothes of the signed colours.
    return Apply(alpha,
                 [](VipsImage *in, VipsImage **out) {
                     return vips_copy(in, out, "format", VIPS_FORMAT_USHORT, nullptr);
                 }) &&
           Apply(alpha, [](VipsImage *in, VipsImage **out) { return vips_msb(in, out, nullptr); });
}

VipsInterpretation InterpretationOf(int colours, VipsBandFormat format) {
    const bool isWide = format == VIPS_FORMAT_USHORT;
    if (colours == 1) return isWide ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W;
    if (colours == 3) return isWide ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB;
    return VIPS_INTERPRETATION_CMYK;
}

/// Makes colours, and `alpha` if there is some, known ones.
bool ToKnownColours(VipsImagePtr &image, VipsImagePtr &alpha, int colours) {
    const bool isLab = IsLab(image.get());
    const bool isLight = vips_image_get_format(image.get()) == VIPS_FORMAT_FLOAT && !isLab;
    if (isLab && !LabToSRGB(image)) return false;
    if (isLight && !LightToSRGB(image, colours)) return false;
    if (alpha && (isLab || isLight) && !AlphaToBytes(alpha, isLab)) return false;
    return Interpret(image, InterpretationOf(colours, vips_image_get_format(image.get())));
}

/// The colours and the alpha of a page, as libvips gives them with everything beside them.
bool SortSamples(VipsImagePtr &image, const TIFFPage &page) {
    // Lab in 8 bits comes packed, other colours of a palette come spread out.
    const bool isPacked = vips_image_get_coding(image.get()) == VIPS_CODING_LABQ;
    const int colours = isPacked ? 3 : vips_image_get_bands(image.get()) - page.beyond;
    VipsImagePtr alpha;
    if (page.alpha >= 0) {
        g_object_ref(image.get());
        alpha.reset(image.get());
        const int firstBeyond = page.samples - page.beyond;
        if (!KeepBands(alpha, colours + page.alpha - firstBeyond, 1)) return false;
    }
    if (!isPacked && !KeepBands(image, 0, colours)) return false;
    if (!ToKnownColours(image, alpha, colours)) return false;
    return !alpha || Apply(image, [&alpha](VipsImage *in, VipsImage **out) {
        return vips_bandjoin2(in, alpha.get(), out, nullptr);
    });
}

} // namespace

int LoadTIFF(const char *path, const TIFFPage &page, VipsAccess access, VipsImage **out) {
    VipsImage *loaded = nullptr;
    const int result = vips_tiffload(path, &loaded, "page", static_cast<int>(page.number), "access",
                                     access, "fail_on", VIPS_FAIL_ON_ERROR, nullptr);
    VipsImagePtr image(loaded);
    if (result != 0 || !SortSamples(image, page)) return -1;
    *out = image.release();
    return 0;
}
