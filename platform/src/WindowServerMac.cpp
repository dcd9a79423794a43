// macOS has one, but for logins that hosts with pages to print do not run in.
#include <platform/Platform.h>

bool PlatformHasWindowServer() {
    return true;
}
