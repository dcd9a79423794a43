/// From a print record to an open document.
#pragma once

#include <cstdint>

struct DriverContext;

/// Opens the context's document from its record. 0, or the code of what failed; the user has then
/// been told what the printer lacks.
[[nodiscard]] int16_t DoOpenDocument(DriverContext *context);
