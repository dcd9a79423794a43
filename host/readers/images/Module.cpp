#include "host/readers/ImageModule.h"
#include "host/readers/images/VipsFile.h"

#define ZEL_MODULE_EXPORT extern "C" __attribute__((visibility("default")))

ZEL_MODULE_EXPORT void ZELStartImageModule() {
    StartVips();
}

ZEL_MODULE_EXPORT ImageFile *ZELOpenImageFile(const std::string &path, FileKind kind,
                                              const std::string &name, bool tolerant) {
    return new VipsFile(path, kind, name, tolerant);
}
