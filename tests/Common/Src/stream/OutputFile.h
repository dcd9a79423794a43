/// A temporary file without a name, as the target of a Writebuffer.
#pragma once

#include "Common/Src/stream/Writebuffer.h"
#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

class OutputFile {
public:
    OutputFile() : mFile(std::tmpfile(), std::fclose) {}

    int Fd() const { return fileno(mFile.get()); }

    std::string Contents() const {
        std::string bytes(static_cast<size_t>(lseek(Fd(), 0, SEEK_END)), '\0');
        const ssize_t count = pread(Fd(), bytes.data(), bytes.size(), 0);
        bytes.resize(count < 0 ? 0 : static_cast<size_t>(count));
        return bytes;
    }

private:
    std::unique_ptr<FILE, int (*)(FILE *)> mFile;
};

/// Waits until the writer thread has nothing left to do. Only one buffer may be missing from the
/// free queue then, the current one.
inline void WaitForWriter(Writebuffer *wb) {
    std::vector<void *> buffers;
    for (int i = 0; i < wb->bufferCount - 1; ++i)
        buffers.push_back(QueuePop(&wb->freeQueue));
    for (void *buffer : buffers)
        QueuePush(&wb->freeQueue, buffer);
}
