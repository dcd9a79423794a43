/// Small pictures in memory: three bytes a pixel, read and written through libvips.
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>
#include <vips/vips.h>

struct Image {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgb;
};

/// The picture, brought to `width` pixels.
inline Image ReadImage(const std::string &path, int width) {
    if (VIPS_INIT("test") != 0) throw std::runtime_error("no libvips");
    VipsImage *vips = nullptr;
    if (vips_thumbnail(path.c_str(), &vips, width, "height", 10000, nullptr) != 0)
        throw std::runtime_error(vips_error_buffer());
    Image image{vips_image_get_width(vips), vips_image_get_height(vips), {}};
    size_t size = 0;
    void *memory = vips_image_write_to_memory(vips, &size);
    image.rgb.resize(size);
    std::memcpy(image.rgb.data(), memory, size);
    g_free(memory);
    g_object_unref(vips);
    return image;
}

/// One channel of 8 bits, as a TIFF or PNG file holds it.
inline std::vector<uint8_t> ReadPlate(const std::string &path) {
    if (VIPS_INIT("test") != 0) throw std::runtime_error("no libvips");
    VipsImage *vips = vips_image_new_from_file(path.c_str(), nullptr);
    if (!vips) throw std::runtime_error(vips_error_buffer());
    size_t size = 0;
    void *memory = vips_image_write_to_memory(vips, &size);
    std::vector<uint8_t> bytes(size);
    std::memcpy(bytes.data(), memory, size);
    g_free(memory);
    g_object_unref(vips);
    return bytes;
}

inline void WriteImage(const std::string &path, const Image &image) {
    if (VIPS_INIT("test") != 0) throw std::runtime_error("no libvips");
    VipsImage *vips = vips_image_new_from_memory(image.rgb.data(), image.rgb.size(), image.width,
                                                 image.height, 3, VIPS_FORMAT_UCHAR);
    const int result =
        vips_image_write_to_file(vips, path.c_str(), "compression", 9, "strip", TRUE, nullptr);
    g_object_unref(vips);
    if (result != 0) throw std::runtime_error(vips_error_buffer());
}
