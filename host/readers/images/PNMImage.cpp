#include "host/readers/images/PNMImage.h"

#include "host/readers/ByteReader.h"
#include "host/readers/images/PNMSources.h"

namespace {

/// Takes the source.
int LoadSource(VipsSource *source, VipsAccess access, VipsImage **out) {
    if (!source) return -1;
    const int result =
        vips_ppmload_source(source, out, "access", access, "fail_on", VIPS_FAIL_ON_ERROR, nullptr);
    g_object_unref(source);
    return result;
}

/// Samples whose largest value is not the largest of their size, spread over all of it. libvips
/// only tells the largest value.
int SpreadSamples(VipsImage *in, VipsImage **out) {
    double most = 0;
    const VipsBandFormat format = vips_image_get_format(in);
    const double full = format == VIPS_FORMAT_USHORT ? 65535 : 255;
    if (format == VIPS_FORMAT_FLOAT)
        most = 1; // 1 is white
    else if (vips_image_get_typeof(in, "ppm-max-value") != 0 &&
             vips_image_get_double(in, "ppm-max-value", &most) != 0)
        return -1;
    if (most < 1 || most == full) return vips_copy(in, out, nullptr); // bits have none
    VipsImage *spread = nullptr;
    if (vips_linear1(in, &spread, full / most, 0.5, nullptr) != 0) return -1;
    const int result =
        vips_cast(spread, out, format == VIPS_FORMAT_USHORT ? format : VIPS_FORMAT_UCHAR, nullptr);
    g_object_unref(spread);
    return result;
}

/// A PFM file, whose rows go from bottom to top.
int LoadFloats(const char *path, VipsImage **out) {
    VipsImage *image = nullptr;
    if (vips_ppmload(path, &image, "access", VIPS_ACCESS_RANDOM, nullptr) != 0) return -1;
    const int result = vips_flip(image, out, VIPS_DIRECTION_VERTICAL, nullptr);
    g_object_unref(image);
    return result;
}

int LoadAsItIs(const char *path, VipsAccess access, VipsImage **out) {
    ByteReader file(path);
    (void)file.Next();
    const int kind = file.Next();
    if (kind == '1') return LoadSource(NewPlainBitsSource(path), access, out);
    if (kind == 'f' || kind == 'F') return LoadFloats(path, out);
    if (access == VIPS_ACCESS_SEQUENTIAL) return LoadSource(NewStreamedSource(path), access, out);
    return vips_ppmload(path, out, "access", access, "fail_on", VIPS_FAIL_ON_ERROR, nullptr);
}

} // namespace

int LoadPNM(const char *path, VipsAccess access, VipsImage **out) {
    VipsImage *image = nullptr;
    if (LoadAsItIs(path, access, &image) != 0) return -1;
    const int result = SpreadSamples(image, out);
    g_object_unref(image);
    return result;
}
