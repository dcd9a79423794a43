// Telling whether a file has changed since it was looked at.
#pragma once
#include <map>
#include <string>
#include <sys/stat.h>

/// Remembers states of files. Not safe for use by several threads at once.
class FileStates {
public:
    using State = struct stat;

    /// The state of the file at `path`; all zero when there is none.
    static State Look(const std::string &path);
    /// `state`, looked up before the file was read, is the one that was read.
    void Remember(const std::string &path, const State &state);
    void Forget(const std::string &path);
    /// Is the file, or its absence, as remembered?
    bool IsUnchanged(const std::string &path) const;

private:
    std::map<std::string, State> mStates;
};
