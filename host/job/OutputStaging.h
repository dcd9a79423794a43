/// A hidden folder in which the driver writes, so that a document appears in its own folder only
/// when it is complete and only in one piece.
#pragma once

#include "ZELExtensions.h"
#include "host/job/StagingFolder.h"
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct FinishedFile {
    std::string path;
    uint64_t bytes = 0;
};

/// Whether documents are on the disk, and not only in the system's memory, before they get their
/// name.
enum class Sync { Yes, No };

/// The driver's functions that staging uses. Without `move` hard links give files their names;
/// without `inheritRights` they keep the rights that they have beside the folder.
struct StagingFunctions {
    decltype(&ZELPrMoveWithoutReplacing) move = nullptr;
    RightsFunction inheritRights = nullptr;
};

class OutputStaging {
public:
    /// Makes the hidden folder: beside `folder` if files can be moved from there and get the same
    /// rights, else inside it; removes those that killed processes have left. Throws HostError
    /// (Output) when `folder` cannot take files. The hidden folder goes with its owner, and
    /// everything that is still in it.
    explicit OutputStaging(const std::string &folder, const StagingFunctions &driver = {},
                           Sync sync = Sync::Yes);

    /// Where the driver writes.
    [[nodiscard]] const std::string &Folder() const { return mStaging->Path(); }
    /// Names of the files there, in the order of the pages. Throws HostError (Output).
    [[nodiscard]] std::vector<std::string> Files() const;

    /// Gives files that the driver could not create at once, and so has numbered ("title_01.ps"),
    /// the `names` that they were meant to have.
    void RestoreNames(const std::vector<std::string> &names) const;

    /// Moves the files to the final folder: all, or none. The first is called `name` there if that
    /// is not empty, and replaces what has the name; every other file takes its own name, with a
    /// number from 01 to 99 behind it when the name is taken. Throws HostError (Output).
    [[nodiscard]] std::vector<FinishedFile> Publish(const std::string &name);

private:
    [[nodiscard]] std::vector<FinishedFile> MoveAll(const std::vector<std::string> &files,
                                                    const std::string &name) const;
    [[nodiscard]] std::string MoveUnique(const std::string &name) const;
    [[nodiscard]] std::string MoveOver(const std::string &file, const std::string &name) const;

    void SynchronizeFiles(const std::vector<std::string> &files) const;

    std::string mFolder;
    StagingFunctions mDriver;
    Sync mSync;
    std::unique_ptr<StagingFolder> mStaging;
};

/// Throws HostError (Output) when something other than a regular file has the name that a new file
/// is to take: a folder could not be replaced, and a device must not be.
void CheckReplaceable(const std::string &path);

/// Throws HostError (Output) when `folder` has less room left than `least` bytes.
void CheckRoom(const std::string &folder, uint64_t least);

/// What is wrong with a finished file, for a message; empty when it ends as a document must
/// and is from `least` to `most` bytes long.
[[nodiscard]] std::string CheckFinishedFile(int fd, uint64_t least, uint64_t most);
