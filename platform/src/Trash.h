// The user's trash folders (freedesktop.org's trash specification 1.0).
#pragma once
#include <string>
#include <vector>

/// The "files" folders of the trashes where an item that was at `path` may be: the home trash,
/// and those at the tops of file systems above `path`. They need not exist.
std::vector<std::string> TrashFoldersFor(const std::string &path);
