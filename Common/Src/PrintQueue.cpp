#include "Common/Src/PrintQueue.h"

#include "Common/Src/OutputFiles.h"
#include "platform/Platform.h"
#include <iterator>

int CopyFileToPrinter(CFURLRef file) {
    const CFRef<CFStringRef> path(CFURLCopyFileSystemPath(file, kCFURLPOSIXPathStyle));
    char bytes[4 * kOutputPathSize];
    if (!path || !CFStringGetCString(path.Get(), bytes, sizeof bytes, kCFStringEncodingUTF8))
        return 1;
    const char *const arguments[] = {"-o", "raw", "-r", bytes};
    return PlatformRunTask("/usr/bin/lpr", arguments, static_cast<int>(std::size(arguments)));
}
