/// What the driver's tests share: the bundle loaded as a host loads it, and a host's belongings.
#pragma once

#include "ZELExtensions.h"
#include "ZELPrint.h"
#include "support/CFRef.h"

#include <filesystem>
#include <string>
#include <vector>

/// The driver's functions by their exported names. Nothing of the driver is linked into the test.
struct DriverFunctions {
#define ZEL_EACH_FUNCTION(X)                                                                       \
    X(ZELPrCanShowDialogs)                                                                         \
    X(ZELPrClose)                                                                                  \
    X(ZELPrCloseDoc)                                                                               \
    X(ZELPrClosePage)                                                                              \
    X(ZELPrCopyJobSettings)                                                                        \
    X(ZELPrCopyUsersHotFolder)                                                                     \
    X(ZELPrCopyUsersPrinter)                                                                       \
    X(ZELPrDefaults)                                                                               \
    X(ZELPrDocumentLength)                                                                         \
    X(ZELPrErrorString)                                                                            \
    X(ZELPrGetInfo)                                                                                \
    X(ZELPrGetRecordSettings)                                                                      \
    X(ZELPrInheritRights)                                                                          \
    X(ZELPrJob)                                                                                    \
    X(ZELPrJobMerge)                                                                               \
    X(ZELPrKeepFreedMemory)                                                                        \
    X(ZELPrMoveWithoutReplacing)                                                                   \
    X(ZELPrOpen)                                                                                   \
    X(ZELPrOpenDoc)                                                                                \
    X(ZELPrOpenPage)                                                                               \
    X(ZELPrOpenWithPrinter)                                                                        \
    X(ZELPrPrintBitmap)                                                                            \
    X(ZELPrSetError)                                                                               \
    X(ZELPrSetJobName)                                                                             \
    X(ZELPrSetJobSettings)                                                                         \
    X(ZELPrSetPrinter)                                                                             \
    X(ZELPrSetRecordSettings)                                                                      \
    X(ZELPrSetSendToPrintQueue)                                                                    \
    X(ZELPrStyle)                                                                                  \
    X(ZELPrSuggestPage)                                                                            \
    X(ZELPrUserHasChosenPrinter)                                                                   \
    X(ZELPrUserSendsToPrintQueue)                                                                  \
    X(ZELPrValidate)
#define ZEL_DECLARE(name) decltype(&::name) name = nullptr;
    ZEL_EACH_FUNCTION(ZEL_DECLARE)
#undef ZEL_DECLARE
};

/// The one loaded bundle of the test program; ends the program when it cannot be loaded.
CFBundleRef LoadedBundle();
const DriverFunctions &Driver();

/// A string that lives for ever.
CFStringRef ApplicationID();
CFRef<CFStringRef> MakeString(const std::string &utf8);
CFRef<CFURLRef> MakeURL(const std::filesystem::path &path);
CFRef<CFNumberRef> MakeNumber(int64_t value);
CFRef<CFNumberRef> MakeNumber(double value);
CFRef<CFDataRef> MakeData(const std::string &bytes);
/// Null when the item does not exist.
CFRef<CFDataRef> MakeBookmark(const std::filesystem::path &path);
CFRef<CFMutableDictionaryRef> MakeDictionary();

/// The user's preferences of the driver; null takes a key away.
void SetPreference(CFStringRef key, CFTypeRef value);
CFRef<CFPropertyListRef> CopyPreference(CFStringRef key);
/// Takes away every key that the driver knows.
void ClearPreferences();

/// A folder of its own, removed with all that is in it.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder &) = delete;
    ScratchFolder &operator=(const ScratchFolder &) = delete;
    const std::filesystem::path &Path() const { return mPath; }
    /// Writes a file; returns its path.
    std::filesystem::path Write(const std::string &name, const std::string &content) const;
    /// Names of the entries, sorted.
    std::vector<std::string> Names() const;

private:
    std::filesystem::path mPath;
};

std::string ReadFile(const std::filesystem::path &path);

/// Collects what is written to standard error while it lives.
class StderrCapture {
public:
    StderrCapture();
    ~StderrCapture();
    StderrCapture(const StderrCapture &) = delete;
    StderrCapture &operator=(const StderrCapture &) = delete;
    /// All that was written so far.
    std::string Text() const;

private:
    int mFile, mSavedStderr;
};

/// A memory handle of the host.
class RecordHandle {
public:
    explicit RecordHandle(Size size = sizeof(PSHPrint)) : mHandle(NewHandleClear(size)) {}
    explicit RecordHandle(const std::string &bytes);
    ~RecordHandle() { DisposeHandle(mHandle); }
    RecordHandle(const RecordHandle &) = delete;
    RecordHandle &operator=(const RecordHandle &) = delete;
    Handle Get() const { return mHandle; }
    /// The record; only for handles of at least 416 bytes.
    PSHPrint &Record() const { return *reinterpret_cast<PSHPrint *>(*mHandle); }
    std::string Bytes() const { return {*mHandle, static_cast<size_t>(GetHandleSize(mHandle))}; }

private:
    Handle mHandle;
};

/// An open driver that keeps the messages of its opening to itself.
class Session {
public:
    Session();
    ~Session() { (void)Close(); }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;
    DriverContext *Get() const { return mContext; }
    const std::string &OpeningMessages() const { return mOpeningMessages; }
    /// Closes now; later calls do nothing and return the same.
    int32_t Close();
    /// Sets the hot folder in the way of a host without dialogs.
    bool SetHotFolder(Handle record, const std::filesystem::path &folder) const;
    /// Suggests a page of that many pixels at the given resolution.
    void Suggest(int32_t width, int32_t height, double dpi, uint16_t depth = 32) const;
    /// Prints one page of one colour from one band of the page's size. The first code that is not
    /// 0.
    int32_t PrintPage(int32_t width, int32_t height, uint16_t pixelFormat = 32,
                      uint8_t sample = 128) const;

private:
    DriverContext *mContext = nullptr;
    std::string mOpeningMessages;
    int32_t mClosed = 0;
};
