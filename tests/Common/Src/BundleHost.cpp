#include "tests/Common/Src/BundleHost.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Die(const std::string &message) {
    std::fprintf(stderr, "%s\n", message.c_str());
    std::exit(1);
}

struct LoadedDriver {
    CFRef<CFBundleRef> bundle;
    DriverFunctions functions;
};

template <class F>
void Resolve(CFBundleRef bundle, const char *name, F &function) {
    function =
        reinterpret_cast<F>(CFBundleGetFunctionPointerForName(bundle, MakeString(name).Get()));
    if (!function) Die(std::string("the bundle does not export ") + name);
}

LoadedDriver Load() {
    // Messages become lines on standard error, but for a test that has brought a display.
    if (!std::getenv("ZEL_TEST_DISPLAY")) unsetenv("DISPLAY");
    LoadedDriver driver;
    driver.bundle =
        CFRef<CFBundleRef>(CFBundleCreate(kCFAllocatorDefault, MakeURL(ZEL_TEST_BUNDLE).Get()));
    if (!driver.bundle) Die("no bundle at " ZEL_TEST_BUNDLE);
#define ZEL_RESOLVE(name) Resolve(driver.bundle.Get(), #name, driver.functions.name);
    ZEL_EACH_FUNCTION(ZEL_RESOLVE)
#undef ZEL_RESOLVE
    return driver;
}

const LoadedDriver &TheDriver() {
    static const LoadedDriver driver = Load();
    return driver;
}

} // namespace

CFBundleRef LoadedBundle() {
    return TheDriver().bundle.Get();
}

const DriverFunctions &Driver() {
    return TheDriver().functions;
}

CFStringRef ApplicationID() {
    return CFSTR("com.zel.PostscriptPrinterDriver");
}

CFRef<CFStringRef> MakeString(const std::string &utf8) {
    return CFRef<CFStringRef>(
        CFStringCreateWithCString(kCFAllocatorDefault, utf8.c_str(), kCFStringEncodingUTF8));
}

CFRef<CFURLRef> MakeURL(const fs::path &path) {
    return CFRef<CFURLRef>(
        CFURLCreateWithFileSystemPath(kCFAllocatorDefault, MakeString(path.string()).Get(),
                                      kCFURLPOSIXPathStyle, fs::is_directory(path)));
}

CFRef<CFNumberRef> MakeNumber(int64_t value) {
    return CFRef<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

CFRef<CFNumberRef> MakeNumber(double value) {
    return CFRef<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberDoubleType, &value));
}

CFRef<CFDataRef> MakeData(const std::string &bytes) {
    return CFRef<CFDataRef>(CFDataCreate(kCFAllocatorDefault,
                                         reinterpret_cast<const UInt8 *>(bytes.data()),
                                         static_cast<CFIndex>(bytes.size())));
}

CFRef<CFDataRef> MakeBookmark(const fs::path &path) {
    return CFRef<CFDataRef>(CFURLCreateBookmarkData(kCFAllocatorDefault, MakeURL(path).Get(),
                                                    kCFURLBookmarkCreationSuitableForBookmarkFile,
                                                    nullptr, nullptr, nullptr));
}

CFRef<CFMutableDictionaryRef> MakeDictionary() {
    return CFRef<CFMutableDictionaryRef>(CFDictionaryCreateMutable(
        kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

void SetPreference(CFStringRef key, CFTypeRef value) {
    CFPreferencesSetAppValue(key, value, ApplicationID());
    (void)CFPreferencesAppSynchronize(ApplicationID());
}

CFRef<CFPropertyListRef> CopyPreference(CFStringRef key) {
    return CFRef<CFPropertyListRef>(CFPreferencesCopyAppValue(key, ApplicationID()));
}

void ClearPreferences() {
    for (CFStringRef key :
         {CFSTR("PPDBookmark"), CFSTR("PPDFile"), CFSTR("HotFolderBookmark"), CFSTR("HotFolder"),
          CFSTR("MeasurementsUnit"), CFSTR("MeasurementUnit"), CFSTR("SendToDefaultPrintQueue"),
          CFSTR("PSColourSpace"), CFSTR("PageOptions"), CFSTR("FileFormat")})
        CFPreferencesSetAppValue(key, nullptr, ApplicationID());
    (void)CFPreferencesAppSynchronize(ApplicationID());
}

ScratchFolder::ScratchFolder() {
    std::string pattern = (fs::temp_directory_path() / "zel-test-XXXXXX").string();
    if (!mkdtemp(pattern.data())) Die("no scratch folder");
    mPath = pattern;
}

ScratchFolder::~ScratchFolder() {
    std::error_code ignored;
    fs::permissions(mPath, fs::perms::owner_all, ignored);
    fs::remove_all(mPath, ignored);
}

fs::path ScratchFolder::Write(const std::string &name, const std::string &content) const {
    std::ofstream(mPath / name, std::ios::binary) << content;
    return mPath / name;
}

std::vector<std::string> ScratchFolder::Names() const {
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(mPath))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadFile(const fs::path &path) {
    std::ostringstream content;
    content << std::ifstream(path, std::ios::binary).rdbuf();
    return content.str();
}

StderrCapture::StderrCapture() {
    std::string pattern = (fs::temp_directory_path() / "zel-stderr-XXXXXX").string();
    mFile = mkstemp(pattern.data());
    if (mFile < 0) Die("no file for standard error");
    unlink(pattern.c_str());
    std::fflush(stderr);
    mSavedStderr = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
    dup2(mFile, STDERR_FILENO);
}

StderrCapture::~StderrCapture() {
    std::fflush(stderr);
    dup2(mSavedStderr, STDERR_FILENO);
    close(mSavedStderr);
    close(mFile);
}

std::string StderrCapture::Text() const {
    std::fflush(stderr);
    std::string text(static_cast<size_t>(lseek(mFile, 0, SEEK_END)), '\0');
    const ssize_t count = pread(mFile, text.data(), text.size(), 0);
    text.resize(count < 0 ? 0 : static_cast<size_t>(count));
    return text;
}

RecordHandle::RecordHandle(const std::string &bytes)
    : mHandle(NewHandle(static_cast<Size>(bytes.size()))) {
    std::memcpy(*mHandle, bytes.data(), bytes.size());
}

Session::Session() {
    StderrCapture capture;
    if (Driver().ZELPrOpen(LoadedBundle(), &mContext) != 0) Die("the driver does not open");
    mOpeningMessages = capture.Text();
}

int32_t Session::Close() {
    if (mContext) mClosed = Driver().ZELPrClose(mContext);
    mContext = nullptr;
    return mClosed;
}

bool Session::SetHotFolder(Handle record, const fs::path &folder) const {
    CFRef<CFMutableDictionaryRef> settings = MakeDictionary();
    CFDictionarySetValue(settings.Get(), CFSTR("outputFolder"), MakeBookmark(folder).Get());
    return Driver().ZELPrSetJobSettings(mContext, record, settings.Get()) != 0;
}

void Session::Suggest(int32_t width, int32_t height, double dpi, uint16_t depth) const {
    const ZELPageRecord page = {width, height, width * 25.4 / dpi, height * 25.4 / dpi};
    Driver().ZELPrSuggestPage(mContext, nullptr, &page, depth);
}

int32_t Session::PrintPage(int32_t width, int32_t height, uint16_t pixelFormat,
                           uint8_t sample) const {
    const int32_t bytesPerPixel = pixelFormat == kZELFormatGray8 ? 1 : 4;
    const std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * bytesPerPixel, sample);
    const ZELRect all = {0, 0, height, width};
    const ZELBand band = {pixels.data(), all, width * bytesPerPixel, pixelFormat};
    (void)Driver().ZELPrOpenPage(mContext, nullptr, nullptr);
    (void)Driver().ZELPrPrintBitmap(mContext, &band, &all, &all);
    return Driver().ZELPrClosePage(mContext);
}
