/// Reads a page image in bands, from top to bottom, ahead of who prints it.
#pragma once

#include "host/readers/ImageFile.h"
#include <chrono>
#include <memory>
#include <thread>

/// Packed rows.
struct Rows {
    const uint8_t *pixels = nullptr;
    int rowBytes = 0;
    int count = 0; ///< 0: the image is at its end
};

/// A thread of its own reads, scales and packs while the caller prints; it is at most three pieces
/// of about a megabyte ahead, whatever the size of the page.
class RowReader {
public:
    /// Rows come in `format`, in bands of `bandHeight` rows (0: as they come). `separate` makes ink
    /// of light, where there is any of it and the format is CMYK.
    RowReader(std::shared_ptr<PageRows> source, DocumentPixels format, int bandHeight,
              SeparateColours separate = {});
    /// Stops reading, wherever it is. A source that does not stop within a second, because the
    /// library below it is busy with one long piece of work, is left to itself together with the
    /// thread that reads it.
    ~RowReader();
    RowReader(const RowReader &) = delete;
    RowReader &operator=(const RowReader &) = delete;

    /// Waits until Next returns at once, but not longer than told; whether it now does.
    [[nodiscard]] bool Wait(std::chrono::milliseconds longest);
    /// The next band, with fewer rows at the end. Valid until the next call. Throws HostError
    /// (Input) when the file is damaged.
    [[nodiscard]] Rows Next();

    /// Whether a source was ever left to itself. What it uses must stay until the process ends, so
    /// that has to be done without taking libraries down: with _exit.
    [[nodiscard]] static bool HasLeftOne();

private:
    class Reader;
    std::shared_ptr<Reader> mReader; ///< the thread has a share of it
    std::thread mThread;
};
