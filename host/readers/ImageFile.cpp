#include "host/readers/ImageFile.h"

#include "host/command/ExitStatus.h"

void ThrowUnreadable(const std::string &path, int page, const std::string &why) {
    throw HostError(ExitStatus::Input, path + ": page " + std::to_string(page + 1) +
                                           " cannot be read (" + why +
                                           "); the file is damaged or not supported");
}
