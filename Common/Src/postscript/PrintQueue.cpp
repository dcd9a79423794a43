#include "Common/Src/postscript/PrintQueue.h"

#include "platform/Platform.h"
#include "support/CFRef.h"
#include "support/CFText.h"
#include <initializer_list>

namespace {

int RunPrintCommand(std::initializer_list<const char *> arguments) {
    return PlatformRunTask("/usr/bin/lpr", arguments.begin(), static_cast<int>(arguments.size()));
}

} // namespace

int CopyFileToPrinter(CFURLRef file) {
    const CFRef<CFStringRef> path(CFURLCopyFileSystemPath(file, kCFURLPOSIXPathStyle));
    const std::optional<std::string> text = UTF8Text(path.Get());
    return text ? RunPrintCommand({"-o", "raw", "-r", text->c_str()}) : 1;
}

int PrintCopyOfFile(const char *path) {
    return RunPrintCommand({"-o", "raw", path});
}
