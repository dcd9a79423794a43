/// Reads a page image in bands, from top to bottom.
#ifndef ZEL_HOST_ROWREADER_H
#define ZEL_HOST_ROWREADER_H

#include "host/JobPlan.h"
#include <memory>

/// Packed rows.
struct Rows {
    const uint8_t *pixels = nullptr;
    int rowBytes = 0;
    int count = 0; ///< 0: the image is at its end
};

class RowReader {
public:
    /// `image` and `source` must outlive the reader; rows come in the driver's `format`.
    RowReader(const PageImage &image, const PageReference &source, DocumentPixels format,
              int bandHeight);
    ~RowReader();
    RowReader(const RowReader &) = delete;
    RowReader &operator=(const RowReader &) = delete;

    /// The next band: `bandHeight` rows, fewer at the end. Valid until the next call. Throws
    /// HostError (Input) when the file is damaged.
    [[nodiscard]] Rows Next();

private:
    struct State;
    std::unique_ptr<State> mState;
};

#endif
