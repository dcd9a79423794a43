#include "host/readers/images/VipsRows.h"

#include "host/readers/images/TIFFDamage.h"
#include "host/terminal/LastResort.h"
#include <algorithm>
#include <functional>
#include <future>
#include <mutex>
#include <new>

namespace {

/// Rows read at once: what is packed next is still in the processor's cache.
constexpr int kStripRows = 32;

struct RegionUnref {
    void operator()(VipsRegion *region) const { g_object_unref(region); }
};
using RegionPtr = std::unique_ptr<VipsRegion, RegionUnref>;

bool Give(VipsRegion *region, const VipsRect &area, const PageRows::Take &take) {
    return take(VIPS_REGION_ADDR(region, 0, area.top), VIPS_REGION_LSKIP(region), area.height);
}

/// What a thread of libvips begins its work with: where its stack runs full, as it does while GLib
/// tells again and again that there is no memory, the end has room.
void *BeginThread(VipsImage *image, void *source, void *) {
    thread_local std::unique_ptr<StackForTheEnd> stack;
    if (!stack) stack.reset(new (std::nothrow) StackForTheEnd);
    return vips_start_one(image, source, nullptr);
}

int PassOn(VipsRegion *region, void *sequence, void *, void *, gboolean *) {
    auto *source = static_cast<VipsRegion *>(sequence);
    const VipsRect *area = &region->valid;
    if (vips_region_prepare(source, area) != 0) return -1;
    return vips_region_region(region, source, area, area->left, area->top);
}

/// The image, computed by threads that have begun as above; null when libvips cannot.
VipsImagePtr WithStacks(VipsImage *image) {
    VipsImagePtr out(vips_image_new());
    const bool made =
        vips_image_pipelinev(out.get(), VIPS_DEMAND_STYLE_ANY, image, nullptr) == 0 &&
        vips_image_generate(out.get(), BeginThread, PassOn, vips_stop_one, image, nullptr) == 0;
    return made ? std::move(out) : nullptr;
}

/// Who takes what libvips gives. libvips calls from one of its threads after the other, never from
/// two at once, and begins and ends on ours; the lock, which is always free, lets the thread
/// sanitizer know that order too.
class Sink {
public:
    explicit Sink(const PageRows::Take &take) : mTake(take) {}
    /// Everything that libvips is asked for; 0, or an error.
    int Fill(VipsImage *image) {
        { const std::lock_guard lock(mMutex); }
        const int result = vips_sink_disc(image, Give, this);
        const std::lock_guard lock(mMutex);
        return result;
    }

private:
    static int Give(VipsRegion *region, VipsRect *area, void *argument) {
        auto *sink = static_cast<Sink *>(argument);
        const std::lock_guard lock(sink->mMutex);
        return ::Give(region, *area, sink->mTake) ? 0 : -1;
    }
    const PageRows::Take &mTake;
    std::mutex mMutex;
};

} // namespace

VipsRows::VipsRows(std::string path, int page, VipsImagePtr image, bool straight, FileCheck check)
    : PageRows(vips_image_get_width(image.get()), vips_image_get_height(image.get()),
               vips_image_get_bands(image.get())),
      mPath(std::move(path)), mPage(page), mImage(std::move(image)), mStraight(straight),
      mCheck(std::move(check)) {}

void VipsRows::Stop() {
    mStopped = mCheckStopped = true;
    vips_image_set_kill(mImage.get(), TRUE);
}

void VipsRows::Read(const Take &take) {
    vips_error_clear();
    (void)TakeLostPixels();
    std::future<Damage> check;
    if (mCheck) check = std::async(std::launch::async, mCheck, std::cref(mCheckStopped));
    const bool whole = mStraight ? ReadStraight(take) : ReadScaled(take);
    vips_thread_shutdown();
    if (!whole) mCheckStopped = true;
    if (!whole && !mStopped) ThrowUnreadable(mPath, mPage, TakeVipsError());
    mDamage = check.valid() ? check.get() : TakeTIFFDamage();
    if (TakeLostPixels()) mDamage = {"part of it could not be read: " + TakeVipsError(), true};
}

bool VipsRows::ReadStraight(const Take &take) {
    const RegionPtr region(vips_region_new(mImage.get()));
    for (int top = 0; top < Height(); top += kStripRows) {
        const VipsRect area = {0, top, Width(), std::min(kStripRows, Height() - top)};
        if (vips_region_prepare(region.get(), &area) != 0) return false;
        if (!Give(region.get(), area, take)) return true;
    }
    return true;
}

/// libvips computes the strips with all processors, and gives them in their order.
bool VipsRows::ReadScaled(const Take &take) {
    const VipsImagePtr image = WithStacks(mImage.get());
    return image && Sink(take).Fill(image.get()) == 0;
}
