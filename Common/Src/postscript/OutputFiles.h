/// Names, creation and deletion of the output files.
#pragma once

#include "support/CFRef.h"
#include <sys/types.h>

/// Longest file system path that the driver opens, its terminating zero included.
constexpr CFIndex kOutputPathSize = 1024;

/// Opens the file of `url`; the descriptor is not inherited by programs the host starts. 0, the
/// `errno` value of `open`, or -1 when the URL has no path or too long a one; `*outFd` is -1 unless
/// the result is 0.
[[nodiscard]] int OpenFileAtURL(CFURLRef url, int flags, mode_t mode, int *outFd);

/// Creates or overwrites the file `name`. Returns its descriptor and stores its URL into `fileURL`;
/// -1 and null on failure.
[[nodiscard]] int CreateFileInFolder(CFURLRef folder, CFStringRef name, mode_t mode,
                                     CFRef<CFURLRef> &fileURL);

/// Creates "base.extension", or the first of "base_01.extension" to "base_99.extension" that can be
/// created as a new file. Results as CreateFileInFolder.
[[nodiscard]] int CreateAndOpenUniqueFileInFolder(CFURLRef folder, CFStringRef base,
                                                  CFStringRef extension, mode_t mode,
                                                  CFRef<CFURLRef> &fileURL);

/// "base(HH_MM_SS)extension" with the local time. `base` is cut so that the name has at most 128
/// characters (UTF-16 units).
[[nodiscard]] CFRef<CFStringRef> CreatePSFilename(CFStringRef base, CFStringRef extension);

/// Unlinks the file. The result of `unlink`, or 2 when the URL has no path.
int DeleteFileAtURL(CFURLRef url);

/// The last path component of `name` without its extension; null for a name that is no UTF-8.
[[nodiscard]] CFRef<CFStringRef> CreateBaseName(CFStringRef name);
