#include "host/RowReader.h"

#include "host/ExitStatus.h"
#include <algorithm>
#include <vector>

namespace {

struct RegionUnref {
    void operator()(VipsRegion *region) const { g_object_unref(region); }
};

} // namespace

struct RowReader::State {
    VipsImage *image;
    PageReference source;
    DocumentPixels format;
    int bandHeight;
    std::unique_ptr<VipsRegion, RegionUnref> region;
    std::vector<uint8_t> band;
    int top = 0;
};

RowReader::RowReader(const PageImage &image, const PageReference &source, DocumentPixels format,
                     int bandHeight)
    : mState(
          new State{image.pixels.get(),
                    source,
                    format,
                    bandHeight,
                    std::unique_ptr<VipsRegion, RegionUnref>(vips_region_new(image.pixels.get())),
                    {},
                    0}) {}

RowReader::~RowReader() = default;

Rows RowReader::Next() {
    State &state = *mState;
    const int width = vips_image_get_width(state.image);
    const int height = vips_image_get_height(state.image);
    const int count = std::min(state.bandHeight, height - state.top);
    if (count <= 0) return {};
    const VipsRect area = {0, state.top, width, count};
    if (vips_region_prepare(state.region.get(), &area) != 0)
        state.source.file->ThrowUnreadable(state.source.page);
    state.top += count;
    const int rowBytes = width * PixelSize(state.format);
    if (state.format == DocumentPixels::CMYK)
        return {VIPS_REGION_ADDR(state.region.get(), 0, area.top),
                static_cast<int>(VIPS_REGION_LSKIP(state.region.get())), count};
    state.band.resize(static_cast<size_t>(rowBytes) * static_cast<size_t>(count));
    const int bands = vips_image_get_bands(state.image);
    for (int row = 0; row < count; ++row)
        PackPixels(VIPS_REGION_ADDR(state.region.get(), 0, area.top + row), bands, width,
                   state.format, state.band.data() + static_cast<size_t>(row) * rowBytes);
    return {state.band.data(), rowBytes, count};
}
