#include "host/job/PrintQueue.h"

#include <iterator>
#include <platform/Platform.h>

bool HandToPrintQueue(const std::string &path) {
    // As the driver does it for other hosts, but for -r: the file is ours to remove.
    const char *const arguments[] = {"-o", "raw", path.c_str()};
    return PlatformRunTask("/usr/bin/lpr", arguments, static_cast<int>(std::size(arguments))) == 0;
}
