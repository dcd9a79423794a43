#include "host/readers/ImageModule.h"

#include "host/driver/ProgramPath.h"
#include "host/terminal/ExitStatus.h"
#include "host/terminal/LastResort.h"
#include <cstdlib>
#include <dlfcn.h>
#include <future>

namespace {

const char kModuleName[] = "zelprint-images.so";

[[noreturn]] void ThrowNotLoaded(const std::string &why) {
    throw HostError(ExitStatus::Driver,
                    "the image module cannot be loaded (" + why + "); install zelprint again");
}

template <typename Function>
Function *FindFunction(void *library, const char *name) {
    void *function = dlsym(library, name);
    if (!function) ThrowNotLoaded(std::string(name) + " is missing");
    return reinterpret_cast<Function *>(function);
}

/// Loads the module for good and starts it; returns its function that opens files.
ImageModuleOpen *Load() {
    const StackForTheEnd stack;
    const std::string path = FindBesideProgram(kModuleName);
    if (path.empty())
        ThrowNotLoaded(std::string("there is no ") + kModuleName + " beside zelprint");
    void *library = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
    if (!library) ThrowNotLoaded(dlerror());
    FindFunction<ImageModuleStart>(library, "ZELStartImageModule")();
    return FindFunction<ImageModuleOpen>(library, "ZELOpenImageFile");
}

std::shared_future<ImageModuleOpen *> &Loading() {
    static std::shared_future<ImageModuleOpen *> loading;
    return loading;
}

} // namespace

void StartImageModule(bool withPlugIns) {
    if (Loading().valid()) return;
    // libvips looks for its plug-ins below this folder, and nothing else of it is used. Set before
    // there is a second thread that reads the environment.
    if (!withPlugIns) (void)setenv("VIPSHOME", "/nonexistent", 0);
    Loading() = std::async(std::launch::async, Load).share();
}

std::unique_ptr<ImageFile> OpenWithModule(const std::string &path, FileKind kind,
                                          const std::string &name, bool tolerant) {
    StartImageModule(true);
    return std::unique_ptr<ImageFile>(Loading().get()(path, kind, name, tolerant));
}
