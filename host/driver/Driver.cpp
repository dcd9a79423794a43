#include "host/driver/Driver.h"

#include "host/driver/PPDCheck.h"
#include "host/driver/ProgramPath.h"
#include "host/terminal/ExitStatus.h"
#include <cstdlib>
#include <sys/stat.h>
#include <utility>

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
    // The system says of every name why it is not found: the first tells enough.
    if (!load("ZELPrOpen"))
        throw HostError(ExitStatus::Driver,
                        "the driver bundle " + mPath + " cannot be loaded; install it again");
#define ZEL_HOST_LOAD(name)                                                                        \
    mFunctions.name = reinterpret_cast<decltype(mFunctions.name)>(load(#name));                    \
    if (!mFunctions.name) ThrowMissing(#name);
    ZEL_HOST_FUNCTIONS(ZEL_HOST_LOAD)
#undef ZEL_HOST_LOAD
    mFunctions.ZELPrUseWindows(false);
}

void DriverBundle::KeepFreedMemory(int bytes) const {
    mFunctions.ZELPrKeepFreedMemory(bytes);
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

DriverSession::DriverSession(const DriverBundle &bundle, const std::optional<std::string> &ppd,
                             bool quiet)
    : mBundle(bundle) {
    try {
        if (ppd)
            OpenWithPrinter(*ppd);
        else
            OpenWithUsersPrinter(quiet);
    } catch (...) {
        if (mContext) (void)ZEL_CALL(mBundle, ZELPrClose)(mContext);
        throw;
    }
}

void DriverSession::Check(int32_t code) const {
    if (code != kZELNoError || !mContext)
        throw HostError(ExitStatus::Driver,
                        "the driver cannot be opened (code " + std::to_string(code) + ")");
}

void DriverSession::OpenWithPrinter(const std::string &ppd) {
    if (!ppd.empty()) CheckPPDName(ppd);
    const CFOwner<CFURLRef> url = ppd.empty() ? CFOwner<CFURLRef>() : MakeFileURL(ppd, false);
    CFOwner<CFStringRef> message;
    const int32_t code = ZEL_CALL(mBundle, ZELPrOpenWithPrinter)(mBundle.Bundle(), url.Get(),
                                                                 &mContext, message.Out());
    if (message) RefusePPD(ppd, message.Get());
    Check(code);
}

/// The driver would read any file, and would say on standard error what it does without one.
void DriverSession::OpenWithUsersPrinter(bool quiet) {
    OpenWithPrinter({});
    const std::string ppd = UsersPPD();
    if (quiet && ppd.empty() && ZEL_CALL(mBundle, ZELPrUserHasChosenPrinter)(mContext))
        throw HostError(ExitStatus::Input, kAboutPrinter,
                        "the PPD file that the user has chosen is gone; choose "
                        "the printer with --ppd or --page-setup");
    if (ppd.empty() && quiet) return;
    CFOwner<CFStringRef> message;
    if (!ppd.empty()) {
        CheckPPDSize(ppd);
        if (ZEL_CALL(mBundle, ZELPrSetPrinter)(mContext, MakeFileURL(ppd, false).Get(),
                                               message.Out()) == kZELNoError)
            return;
        // Nobody would hear that another printer is meant.
        if (quiet) RefusePPD(ppd, message.Get());
    }
    (void)ZEL_CALL(mBundle, ZELPrClose)(std::exchange(mContext, nullptr));
    Check(ZEL_CALL(mBundle, ZELPrOpen)(mBundle.Bundle(), &mContext));
}

DriverSession::~DriverSession() {
    // The code was reported by the call that failed first.
    (void)ZEL_CALL(mBundle, ZELPrClose)(mContext);
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
