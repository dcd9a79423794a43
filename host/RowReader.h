/// Reads a page image in bands, from top to bottom, ahead of who prints it.
#ifndef ZEL_HOST_ROWREADER_H
#define ZEL_HOST_ROWREADER_H

#include "host/ImageFile.h"
#include <memory>

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
    /// `source` must outlive the reader; rows come in `format`, in bands of `bandHeight` rows (0:
    /// as they come).
    RowReader(PageRows &source, DocumentPixels format, int bandHeight);
    /// Stops reading, wherever it is.
    ~RowReader();
    RowReader(const RowReader &) = delete;
    RowReader &operator=(const RowReader &) = delete;

    /// The next band, with fewer rows at the end. Valid until the next call. Throws HostError
    /// (Input) when the file is damaged.
    [[nodiscard]] Rows Next();

private:
    class Reader;
    std::unique_ptr<Reader> mReader;
};

#endif
