/// A temporary file without a name: it is gone when its owner is, however that ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

class UnnamedFile {
public:
    /// Makes one in $TMPDIR, or else in /var/tmp. Throws HostError (Output).
    UnnamedFile();
    ~UnnamedFile();
    UnnamedFile(const UnnamedFile &) = delete;
    UnnamedFile &operator=(const UnnamedFile &) = delete;

    /// A path that opens the file as long as it is there.
    [[nodiscard]] std::string Path() const;
    /// Where it was made.
    [[nodiscard]] const std::string &Folder() const { return mFolder; }
    /// Bytes that its file system has left for an ordinary user.
    [[nodiscard]] uint64_t Room() const;

    /// Writes all of the bytes; false, and `errno` is set, when they could not be.
    [[nodiscard]] bool Write(const void *bytes, size_t count, uint64_t at) const;
    /// Reads as many bytes; false when there are not so many, or they cannot be read.
    [[nodiscard]] bool Read(void *bytes, size_t count, uint64_t at) const;
    /// Gives back what is from there on.
    void Truncate(uint64_t size) const;

private:
    std::string mFolder;
    int mDescriptor = -1;
};
