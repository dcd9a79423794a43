/// A hidden folder in which the driver writes, so that a document appears in its own folder only
/// when it is complete and only in one piece.
#ifndef ZEL_HOST_OUTPUTSTAGING_H
#define ZEL_HOST_OUTPUTSTAGING_H

#include "ZELExtensions.h"
#include <cstdint>
#include <string>
#include <vector>

struct FinishedFile {
    std::string path;
    uint64_t bytes = 0;
};

/// The driver's function that names a file in one step and replaces nothing.
using NamingFunction = decltype(&ZELPrMoveWithoutReplacing);

class OutputStaging {
public:
    /// Makes the hidden folder: beside `folder` if that is on the same file system and may be
    /// written, else inside it. `inOneStep` gives finished files their names; without it hard links
    /// do. Throws HostError (Output) when `folder` cannot take files.
    explicit OutputStaging(const std::string &folder, NamingFunction inOneStep = nullptr);
    /// Removes the hidden folder with everything that is still in it.
    ~OutputStaging();
    OutputStaging(const OutputStaging &) = delete;
    OutputStaging &operator=(const OutputStaging &) = delete;

    /// Where the driver writes.
    [[nodiscard]] const std::string &Folder() const { return mStaging; }
    /// Names of the files there, in the order of the pages.
    [[nodiscard]] std::vector<std::string> Files() const;

    /// Moves the files to the final folder: all, or none. The first is called `name` there if that
    /// is not empty, and replaces what has the name; every other file takes its own name, with a
    /// number from 01 to 99 behind it when the name is taken. Throws HostError (Output).
    [[nodiscard]] std::vector<FinishedFile> Publish(const std::string &name);

private:
    [[nodiscard]] std::string MoveUnique(const std::string &name) const;
    [[nodiscard]] std::string MoveOver(const std::string &file, const std::string &name) const;

    std::string mFolder;
    std::string mStaging;
    NamingFunction mInOneStep;
};

/// Throws HostError (Output) when something other than a regular file has the name that a new file
/// is to take: a folder could not be replaced, and a device must not be.
void CheckReplaceable(const std::string &path);

/// Throws HostError (Output) when `folder` has less room left than `least` bytes.
void CheckRoom(const std::string &folder, uint64_t least);

/// What is wrong with a finished file, for a message; empty when it ends as a document must
/// and is from `least` to `most` bytes long.
[[nodiscard]] std::string CheckFinishedFile(int fd, uint64_t least, uint64_t most);

#endif
