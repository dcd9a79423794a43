/// The rows of a libvips image, from top to bottom.
#pragma once

#include "host/readers/ImageFile.h"
#include "host/readers/images/VipsSupport.h"
#include <atomic>

/// Looks for damage that libvips does not tell, in the whole file; ends soon when the flag becomes
/// true.
using FileCheck = std::function<Damage(const std::atomic<bool> &stopped)>;

class VipsRows : public PageRows {
public:
    /// Page `page` of the file `path` as `image`. `straight`: nothing is computed that a second
    /// processor could help with. `check`, if there is one, runs beside the reading.
    VipsRows(std::string path, int page, VipsImagePtr image, bool straight, FileCheck check);
    void Read(const Take &take) override;
    void Stop() override;
    [[nodiscard]] Damage TellDamage() override { return mDamage; }

private:
    [[nodiscard]] bool ReadStraight(const Take &take);
    [[nodiscard]] bool ReadScaled(const Take &take);

    std::string mPath;
    int mPage;
    VipsImagePtr mImage;
    bool mStraight;
    FileCheck mCheck;
    Damage mDamage;
    std::atomic<bool> mStopped = false;
    std::atomic<bool> mCheckStopped = false;
};
