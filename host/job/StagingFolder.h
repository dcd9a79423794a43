/// A hidden folder of this process's own, in which documents are written before they get their
/// name.
#pragma once

#include "ZELExtensions.h"
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
    explicit StagingFolder(std::string path) : mPath(std::move(path)) {}
    [[nodiscard]] bool Lock();

    std::string mPath;
    int mLock = -1;
};
