/// Opens files that somebody else put where we look: whatever lies there, opening it neither waits
/// nor has an effect.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <string>
#include <utility>

/// Owns an open descriptor, or none (-1).
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : mDescriptor(fd) {}
    FileDescriptor(FileDescriptor &&other) noexcept
        : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor();

    int Get() const { return mDescriptor; }
    explicit operator bool() const { return mDescriptor >= 0; }
    /// Hands the descriptor to the caller.
    [[nodiscard]] int Detach() { return std::exchange(mDescriptor, -1); }

private:
    int mDescriptor = -1;
};

/// Opens a regular file for reading, symbolic links followed. Empty when the path cannot be opened
/// or is anything but a regular file (folder, FIFO, device, socket). The descriptor does not pass
/// to programs that are started.
[[nodiscard]] FileDescriptor OpenRegularFile(const std::string &path);

/// The file-system path of a URL; empty when it has none.
[[nodiscard]] std::string PathOfURL(CFURLRef url);
