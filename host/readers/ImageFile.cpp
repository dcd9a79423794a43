#include "host/readers/ImageFile.h"

#include "host/readers/SpooledInput.h"
#include "host/terminal/ExitStatus.h"

DocumentPage PageOf(const SourcePage &page) {
    if (page.drawnWidth <= 0) return PageOfImage(page.size);
    return {page.drawnWidth, page.drawnHeight, true, page.isPicture};
}

void ThrowUnreadable(const std::string &path, int page, const std::string &why) {
    throw HostError(ExitStatus::Input, NameOfInput(path) + ": page " + std::to_string(page + 1) +
                                           " cannot be read (" + why +
                                           "); the file is damaged or not supported");
}
