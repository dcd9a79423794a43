/// A folder for one job alone, in the scheduler's temporary folder; removed with all that is in it.
#pragma once

#include <string>

class JobFolder {
public:
    JobFolder();
    JobFolder(const JobFolder &) = delete;
    JobFolder &operator=(const JobFolder &) = delete;
    ~JobFolder();

    /// Empty when the folder could not be made.
    [[nodiscard]] const std::string &Path() const { return mPath; }
    /// The path of a file in it.
    [[nodiscard]] std::string File(const char *name) const { return mPath + "/" + name; }

private:
    std::string mPath;
};

/// All of a file; empty when it cannot be read.
[[nodiscard]] std::string TextOfFile(const std::string &path);
