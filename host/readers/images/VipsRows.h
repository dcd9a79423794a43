/// The rows of a libvips image, from top to bottom.
#ifndef ZEL_HOST_IMAGES_VIPSROWS_H
#define ZEL_HOST_IMAGES_VIPSROWS_H

#include "host/readers/ImageFile.h"
#include "host/readers/images/VipsSupport.h"
#include <atomic>

class VipsRows : public PageRows {
public:
    /// Page `page` of the file `path` as `image`. `straight`: nothing is computed that a second
    /// processor could help with.
    VipsRows(std::string path, int page, VipsImagePtr image, bool straight);
    void Read(const Take &take) override;
    void Stop() override;

private:
    [[nodiscard]] bool ReadStraight(const Take &take);
    [[nodiscard]] bool ReadScaled(const Take &take);

    std::string mPath;
    int mPage;
    VipsImagePtr mImage;
    bool mStraight;
    std::atomic<bool> mStopped = false;
};

#endif
