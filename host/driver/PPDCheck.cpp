#include "host/driver/PPDCheck.h"

#include "host/driver/CFOwner.h"
#include "host/terminal/ExitStatus.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Far beyond printers' descriptions. The driver reads the file once a keyword.
constexpr off_t kLargestPPD = 4 << 20;

} // namespace

std::string WhyRefused(const std::string &ppd, CFStringRef message) {
    const int fd = open(ppd.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat info {};
    char bytes[4096];
    ssize_t count = fd >= 0 && fstat(fd, &info) == 0 && S_ISREG(info.st_mode) ? 1 : 0;
    while (count > 0)
        count = read(fd, bytes, sizeof bytes);
    const int code = errno;
    if (fd >= 0) (void)close(fd);
    return count < 0 ? std::string("it cannot be read: ") + strerror(code)
                     : TextOfCFString(message);
}

void CheckPPDSize(const std::string &ppd) {
    struct stat info {};
    if (stat(ppd.c_str(), &info) != 0 || info.st_size <= kLargestPPD) return;
    throw HostError(ExitStatus::Input, kAboutPrinter,
                    ppd + ": larger than 4 MB, as no printer's description is; "
                          "check the name of the PPD file");
}

void CheckPPDName(const std::string &ppd) {
    if (access(ppd.c_str(), R_OK) != 0)
        throw HostError(ExitStatus::Input, kAboutPrinter,
                        ppd + ": " + strerror(errno) + "; check the name of the PPD file");
    CheckPPDSize(ppd);
}

void RefusePPD(const std::string &ppd, CFStringRef message) {
    throw HostError(ExitStatus::Input, kAboutPrinter,
                    ppd + ": refused as a PPD file: " + WhyRefused(ppd, message));
}
