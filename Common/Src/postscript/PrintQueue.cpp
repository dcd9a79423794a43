#include "Common/Src/postscript/PrintQueue.h"

#include "platform/Platform.h"
#include "support/CFRef.h"
#include "support/CFText.h"
#include <iterator>

int CopyFileToPrinter(CFURLRef file) {
    const CFRef<CFStringRef> path(CFURLCopyFileSystemPath(file, kCFURLPOSIXPathStyle));
    const std::optional<std::string> text = UTF8Text(path.Get());
    if (!text) return 1;
    const char *const arguments[] = {"-o", "raw", "-r", text->c_str()};
    return PlatformRunTask("/usr/bin/lpr", arguments, static_cast<int>(std::size(arguments)));
}
