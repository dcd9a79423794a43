#include "WindowServer.h"
#include <atomic>
#include <platform/Platform.h>

namespace {

std::atomic<bool> windowsMayBeUsed{true};

} // namespace

bool WindowsMayBeUsed() {
    return windowsMayBeUsed;
}

void PlatformUseWindows(bool use) {
    windowsMayBeUsed = use;
}

bool PlatformHasWindowServer() {
    if (!windowsMayBeUsed) return false;
    static const bool has = IsWindowServerThere();
    return has;
}
