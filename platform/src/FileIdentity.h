// What stays the same of a file when it is renamed or moved within its file system.
#pragma once
#include <cstdint>
#include <optional>
#include <string>

struct FileIdentity {
    int64_t device = 0;
    int64_t inode = 0;
    int64_t born = 0; ///< nanoseconds since 1970; 0 where the file system does not record it
};

/// The identity of what is at `path` (links are followed); none when there is nothing.
std::optional<FileIdentity> IdentityOf(const std::string &path);

/// Device numbers may change when the system starts anew, and inodes are used again: inode and
/// birth time decide when both birth times are known, else inode and device.
bool IsSameFile(const FileIdentity &a, const FileIdentity &b);
