#include "host/driver/Driver.h"

#include "host/command/ExitStatus.h"
#include "host/driver/PrinterModel.h"
#include "host/driver/ProgramPath.h"
#include <cstdlib>
#include <sys/stat.h>

namespace {

const char kBundleName[] = "ZELPostscript.bundle";

bool IsFolder(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

} // namespace

std::string FindBundle(const std::string &option) {
    const char *environment = getenv("ZEL_BUNDLE");
    const std::string named = !option.empty() ? option : environment ? environment : "";
    if (!named.empty()) {
        if (IsFolder(named)) return RealPath(named);
        throw HostError(ExitStatus::Driver, "there is no driver bundle at " + named +
                                                "; correct --bundle or $ZEL_BUNDLE");
    }
    std::string found = FindBesideProgram(kBundleName);
    if (!found.empty()) return found;
    throw HostError(ExitStatus::Driver, std::string("cannot find ") + kBundleName +
                                            " beside zelprint; name it with --bundle FOLDER or in "
                                            "$ZEL_BUNDLE");
}

DriverBundle::DriverBundle(const std::string &option) : mPath(FindBundle(option)) {
    const CFOwner<CFURLRef> url = MakeFileURL(mPath, true);
    mBundle = CFOwner<CFBundleRef>(CFBundleCreate(kCFAllocatorDefault, url.Get()));
    if (!mBundle) throw HostError(ExitStatus::Driver, mPath + " is not a driver bundle");
    const auto load = [this](const char *name) {
        return CFBundleGetFunctionPointerForName(mBundle.Get(), MakeCFString(name).Get());
    };
#define ZEL_HOST_LOAD(name)                                                                        \
    mFunctions.name = reinterpret_cast<decltype(mFunctions.name)>(load(#name));
    ZEL_HOST_FUNCTIONS(ZEL_HOST_LOAD)
#undef ZEL_HOST_LOAD
    if (!mFunctions.ZELPrOpen || !mFunctions.ZELPrClose)
        throw HostError(ExitStatus::Driver,
                        "the driver bundle " + mPath + " cannot be loaded; install it again");
}

void DriverBundle::KeepFreedMemory(int bytes) const {
    if (mFunctions.ZELPrKeepFreedMemory) mFunctions.ZELPrKeepFreedMemory(bytes);
}

void DriverBundle::ThrowMissing(const char *name) const {
    throw HostError(ExitStatus::Driver, "the driver bundle " + mPath + " is older than zelprint (" +
                                            name + " is missing); install it again");
}

RecordHandle::RecordHandle(Size size) : mHandle(NewHandleClear(size)) {
    if (!mHandle) throw HostError(ExitStatus::Driver, "out of memory");
}

RecordHandle::~RecordHandle() {
    DisposeHandle(mHandle);
}

DriverSession::DriverSession(const DriverBundle &bundle, const std::string &ppd) : mBundle(bundle) {
    CFOwner<CFStringRef> message;
    int32_t code = kZELNoError;
    if (ppd.empty()) {
        code = bundle.Functions().ZELPrOpen(bundle.Bundle(), &mContext);
    } else {
        CheckPPDName(ppd);
        code = ZEL_CALL(bundle, ZELPrOpenWithPrinter)(
            bundle.Bundle(), MakeFileURL(ppd, false).Get(), &mContext, message.Out());
    }
    if (message)
        throw HostError(ExitStatus::Input, kAboutPrinter,
                        ppd + ": refused as a PPD file: " + WhyRefused(ppd, message.Get()));
    if (code != kZELNoError || !mContext)
        throw HostError(ExitStatus::Driver,
                        "the driver cannot be opened (code " + std::to_string(code) + ")");
}

DriverSession::~DriverSession() {
    // The code was reported by the call that failed first.
    (void)mBundle.Functions().ZELPrClose(mContext);
}

std::string DriverSession::ErrorText(int32_t code) const {
    unsigned char text[256] = {0};
    (void)ZEL_CALL(mBundle, ZELPrErrorString)(mContext, code, text);
    return std::string(reinterpret_cast<const char *>(text) + 1, text[0]);
}

std::string DriverSession::UsersPPD() const {
    return PathOfURL(CFOwner<CFURLRef>(ZEL_CALL(mBundle, ZELPrCopyUsersPrinter)(mContext)).Get());
}

std::string DriverSession::UsersHotFolder() const {
    return PathOfURL(CFOwner<CFURLRef>(ZEL_CALL(mBundle, ZELPrCopyUsersHotFolder)(mContext)).Get());
}
