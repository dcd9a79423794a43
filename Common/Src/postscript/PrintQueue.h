/// Hand-off of finished files to the system's default print queue.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

/// Runs "/usr/bin/lpr -o raw -r PATH" and waits for it: the data are sent as they are and the
/// print command removes the file once it has it. Returns its exit status, 1 when it cannot be
/// started.
[[nodiscard]] int CopyFileToPrinter(CFURLRef file);

/// The same without "-r": the file stays.
[[nodiscard]] int PrintCopyOfFile(const char *path);
