#include "host/Driver.h"

#include "host/ExitStatus.h"
#include <climits>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

const char kBundleName[] = "ZELPostscript.bundle";

std::string &ProgramPath() {
    static std::string path;
    return path;
}

std::string RealPath(const std::string &path) {
    char real[PATH_MAX];
    return realpath(path.c_str(), real) ? real : std::string();
}

/// Searches $PATH as the shell did.
std::string SearchPath(const std::string &name) {
    const char *path = getenv("PATH");
    std::string rest = path ? path : "";
    while (!rest.empty()) {
        const size_t colon = rest.find(':');
        const std::string folder = rest.substr(0, colon);
        rest = colon == std::string::npos ? "" : rest.substr(colon + 1);
        const std::string candidate = (folder.empty() ? "." : folder) + "/" + name;
        if (access(candidate.c_str(), X_OK) == 0) return RealPath(candidate);
    }
    return {};
}

bool IsFolder(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

std::vector<std::string> BundleCandidates() {
    const std::string &program = ProgramPath();
    const std::string folder = program.substr(0, program.rfind('/'));
    std::vector<std::string> candidates;
    for (const char *place : {"/", "/../", "/../resources/", "/../lib/zel/", "/../lib/"})
        candidates.push_back(folder + place + kBundleName);
    return candidates;
}

} // namespace

void SetProgramPath(const char *argv0) {
    const std::string name = argv0 ? argv0 : "";
    ProgramPath() = name.find('/') == std::string::npos ? SearchPath(name) : RealPath(name);
}

std::string FindBundle(const std::string &option) {
    const char *environment = getenv("ZEL_BUNDLE");
    const std::string named = !option.empty() ? option : environment ? environment : "";
    if (!named.empty()) {
        if (IsFolder(named)) return RealPath(named);
        throw HostError(ExitStatus::Driver, "there is no driver bundle at " + named +
                                                "; correct --bundle or $ZEL_BUNDLE");
    }
    for (const std::string &candidate : BundleCandidates())
        if (IsFolder(candidate)) return RealPath(candidate);
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
    ZEL_HOST_LOAD(ZELPrStyle)
    ZEL_HOST_LOAD(ZELPrJob)
    ZEL_HOST_LOAD(ZELPrCopyJobSettings)
    ZEL_HOST_LOAD(ZELPrSetJobSettings)
#undef ZEL_HOST_LOAD
    if (!mFunctions.ZELPrOpen || !mFunctions.ZELPrClose)
        throw HostError(ExitStatus::Driver,
                        "the driver bundle " + mPath + " cannot be loaded; install it again");
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

DriverSession::DriverSession(const DriverBundle &bundle) : mBundle(bundle) {
    const int32_t code = bundle.Functions().ZELPrOpen(bundle.Bundle(), &mContext);
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
