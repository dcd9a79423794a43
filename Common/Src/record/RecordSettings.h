/// A print record as hosts read and change it: native numbers in a structure that may grow.
#pragma once

#include "ZELExtensions.h"

class PostscriptPrinterInfo;

/// See ZELPrGetRecordSettings.
[[nodiscard]] int32_t GetRecordSettings(Handle handle, ZELRecordSettings *settings);

/// See ZELPrSetRecordSettings; `printer` is the context's, or null.
[[nodiscard]] int32_t SetRecordSettings(const PostscriptPrinterInfo *printer, Handle handle,
                                        const ZELRecordSettings *settings);
