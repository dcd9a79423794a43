/// Base-85 kernels: the plain one, which says what the text is, and vector versions of the same
/// text. One is chosen at run time.
#pragma once

#include "support/VectorKernels.h"
#include <cstddef>
#include <cstdint>

constexpr size_t kASCII85BlockBytes = 64;
/// Characters that a block becomes at most.
constexpr size_t kASCII85BlockText = 80;
/// Characters past the end of its text that a kernel may overwrite.
constexpr size_t kASCII85Slack = 16;

/// Encodes `blocks` blocks of 64 bytes, without line breaks: each group of 4 bytes, big-endian,
/// becomes "z" when it is 0, else its five base-85 digits, most significant first, plus 33.
/// Returns the number of characters. `text` has room for kASCII85BlockText characters a block and
/// kASCII85Slack more; `data` is not read past its end.
using ASCII85Kernel = size_t (*)(const uint8_t *data, size_t blocks, char *text);

size_t ASCII85EncodePlain(const uint8_t *data, size_t blocks, char *text);

using ASCII85NamedKernel = NamedKernel<ASCII85Kernel>;

/// The kernels that this processor runs, the plain one first and the fastest one last.
std::span<const ASCII85NamedKernel> ASCII85Kernels();

/// Found once, then remembered.
ASCII85Kernel ASCII85FastestKernel();

/// Encodes one group of 4 bytes and returns the number of its characters, 1 or 5.
size_t ASCII85EncodeGroup(const uint8_t *bytes, char *text);

/// Encodes the 1 to 3 bytes that are left at the end of a stream as that many characters, and
/// returns their number: the group is filled with zeros, and of its digits come those above the
/// lowest one, up to digit `count`. Deliberately not the published rule, which has one character
/// more and starts at the most significant digit.
size_t ASCII85EncodeFinalGroup(const uint8_t *bytes, size_t count, char *text);
