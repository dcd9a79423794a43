/// A hidden folder of this process's own, in which documents are written before they get their
/// name.
#pragma once

#include "ZELExtensions.h"
#include "host/terminal/LastResort.h"
#include <dirent.h>
#include <memory>
#include <string>

/// The driver's function that makes files of a folder as accessible as those of another.
using RightsFunction = decltype(&ZELPrInheritRights);

class StagingFolder {
public:
    /// Makes one in `parent`. Files made in it get the group and the access rights of files made in
    /// `destination`, and can be moved there. Null with errno set when that is not possible.
    [[nodiscard]] static std::unique_ptr<StagingFolder>
    Make(const std::string &parent, const std::string &destination, RightsFunction inheritRights);
    /// Removes it with everything in it.
    ~StagingFolder();
    StagingFolder(const StagingFolder &) = delete;
    StagingFolder &operator=(const StagingFolder &) = delete;

    [[nodiscard]] const std::string &Path() const { return mPath; }

    /// Is it a file that the folder keeps for itself?
    [[nodiscard]] static bool IsOwn(const std::string &name);

    /// Removes the user's folders in `parent` that no living process owns: their processes were
    /// killed, or the power failed.
    static void RemoveAbandoned(const std::string &parent);

private:
    explicit StagingFolder(const std::string &parent);
    [[nodiscard]] bool Create();
    [[nodiscard]] bool Lock();
    /// Needs no memory and no descriptors, which may be what is missing.
    void Remove() const noexcept;

    std::string mPath; ///< a pattern until the folder is made
    bool mIsMade = false;
    DIR *mListing = nullptr;
    int mLock = -1;
    Unfinished mUnfinished;
};
