#include "Display.h"
#include "WindowServer.h"
#include <cstdlib>
#include <dlfcn.h>

namespace {

template <class F>
bool Find(void *library, const char *name, F *function) {
    *function = (F)dlsym(library, name);
    return *function != nullptr;
}

X11Functions LoadX11() {
    X11Functions x11 = {};
    void *library = dlopen("libX11.so.6", RTLD_LAZY | RTLD_LOCAL);
    x11.areComplete = library != nullptr && Find(library, "XOpenDisplay", &x11.openDisplay) &&
                      Find(library, "XCloseDisplay", &x11.closeDisplay) &&
                      Find(library, "XKeysymToKeycode", &x11.keysymToKeycode) &&
                      Find(library, "XQueryKeymap", &x11.queryKeymap);
    return x11;
}

} // namespace

const X11Functions &X11() {
    static const X11Functions functions = LoadX11();
    return functions;
}

DisplayOwner OpenDisplay() {
    const char *name = std::getenv("DISPLAY");
    if (!WindowsMayBeUsed() || name == nullptr || *name == 0 || !X11().areComplete) return nullptr;
    return DisplayOwner(X11().openDisplay(name));
}

bool IsWindowServerThere() {
    return OpenDisplay() != nullptr;
}
