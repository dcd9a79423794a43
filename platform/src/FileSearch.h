// Looking for a file by its identity.
#pragma once
#include "FileIdentity.h"
#include <string>
#include <vector>

/// The entry of `folder` that is the file; empty when there is none.
std::string ChildWithIdentity(const std::string &folder, const FileIdentity &identity);

/// Follows a chain of identities from `folder` down, one level each, whatever the names are now.
/// `begin` is the index of the first one; empty when one is missing.
std::string DescendByIdentity(const std::string &folder,
                              const std::vector<FileIdentity> &identities, size_t begin);

/// Breadth-first searches for one file that share a limit, since a file that is gone would
/// otherwise be looked for in the whole file system.
class FileSearch {
public:
    FileSearch(const FileIdentity &identity, int maximumEntries)
        : mIdentity(identity), mEntriesLeft(maximumEntries) {}

    /// Searches below `root`, but not inside `except` (which may be empty) and not on other file
    /// systems. Empty when it is not found before the limit.
    std::string Below(const std::string &root, const std::string &except);

private:
    std::string Visit(const std::string &folder, const std::string &except,
                      std::vector<std::string> &folders);

    FileIdentity mIdentity;
    int mEntriesLeft;
};
