/// The driver as zelprint sees it: a bundle found at run time, its functions, an open context.
#pragma once

#include "ZELExtensions.h"
#include "ZELPrint.h"
#include "host/driver/CFOwner.h"
#include <optional>
#include <string>

/// Every function that zelprint calls, by its exported name.
#define ZEL_HOST_FUNCTIONS(X)                                                                      \
    X(ZELPrOpen)                                                                                   \
    X(ZELPrOpenWithPrinter)                                                                        \
    X(ZELPrClose)                                                                                  \
    X(ZELPrSuggestPage)                                                                            \
    X(ZELPrValidate)                                                                               \
    X(ZELPrDefaults)                                                                               \
    X(ZELPrStyle)                                                                                  \
    X(ZELPrJob)                                                                                    \
    X(ZELPrGetInfo)                                                                                \
    X(ZELPrGetRecordSettings)                                                                      \
    X(ZELPrSetRecordSettings)                                                                      \
    X(ZELPrSetJobName)                                                                             \
    X(ZELPrCopyJobSettings)                                                                        \
    X(ZELPrSetJobSettings)                                                                         \
    X(ZELPrOpenDoc)                                                                                \
    X(ZELPrOpenPage)                                                                               \
    X(ZELPrPrintBitmap)                                                                            \
    X(ZELPrClosePage)                                                                              \
    X(ZELPrCloseDoc)                                                                               \
    X(ZELPrSetError)                                                                               \
    X(ZELPrErrorString)                                                                            \
    X(ZELPrCopyPrinterInfo)                                                                        \
    X(ZELPrCopySeparationNames)                                                                    \
    X(ZELPrCopySeparationsFolder)                                                                  \
    X(ZELPrCopyPrinter)                                                                            \
    X(ZELPrSetPageCount)                                                                           \
    X(ZELPrDialogFailed)                                                                           \
    X(ZELPrCancelDialog)                                                                           \
    X(ZELPrCreateSeparation)                                                                       \
    X(ZELPrSeparate)                                                                               \
    X(ZELPrReleaseSeparation)                                                                      \
    X(ZELPrSetSendToPrintQueue)                                                                    \
    X(ZELPrDocumentLength)                                                                         \
    X(ZELPrCopyUsersPrinter)                                                                       \
    X(ZELPrUserHasChosenPrinter)                                                                   \
    X(ZELPrSetPrinter)                                                                             \
    X(ZELPrCopyUsersHotFolder)                                                                     \
    X(ZELPrUserSendsToPrintQueue)                                                                  \
    X(ZELPrUsersColourSpace)                                                                       \
    X(ZELPrSaveDefaults)                                                                           \
    X(ZELPrCanShowDialogs)                                                                         \
    X(ZELPrUseWindows)                                                                             \
    X(ZELPrMoveWithoutReplacing)                                                                   \
    X(ZELPrInheritRights)                                                                          \
    X(ZELPrHandToPrintQueue)                                                                       \
    X(ZELPrKeepFreedMemory)

/// The bundle's functions under their own names.
struct DriverFunctions {
// A name after :: takes no parentheses.
#define ZEL_HOST_DECLARE(name)                                                                     \
    decltype(&::name) name = nullptr; // NOLINT(bugprone-macro-parentheses)
    ZEL_HOST_FUNCTIONS(ZEL_HOST_DECLARE)
#undef ZEL_HOST_DECLARE
};

/// The path of the driver's bundle: `option` (--bundle) if not empty, else $ZEL_BUNDLE, else
/// beside the program or where an installation puts it. Throws HostError when there is none.
[[nodiscard]] std::string FindBundle(const std::string &option);

/// A loaded bundle. Bundles are never unloaded. A command answers in its terminal: the driver's
/// messages are lines there, and no alert waits for a click, until a WindowSystem is made.
class DriverBundle {
public:
    /// Loads the bundle that `option` names (see FindBundle). Throws HostError, also when the
    /// bundle lacks a function.
    explicit DriverBundle(const std::string &option);

    [[nodiscard]] CFBundleRef Bundle() const { return mBundle.Get(); }
    [[nodiscard]] const DriverFunctions &Functions() const { return mFunctions; }

    /// See ZELPrKeepFreedMemory.
    void KeepFreedMemory(int bytes) const;

private:
    [[noreturn]] void ThrowMissing(const char *name) const;

    std::string mPath;
    CFOwner<CFBundleRef> mBundle;
    DriverFunctions mFunctions;
};

/// bundle.Functions().name
#define ZEL_CALL(bundle, name) (bundle).Functions().name

/// A memory handle of the host's own.
class RecordHandle {
public:
    explicit RecordHandle(Size size);
    ~RecordHandle();
    RecordHandle(const RecordHandle &) = delete;
    RecordHandle &operator=(const RecordHandle &) = delete;
    [[nodiscard]] Handle Get() const { return mHandle; }

private:
    Handle mHandle;
};

/// An open driver; closed with its owner.
class DriverSession {
public:
    /// With the printer of the PPD file `ppd`, or the built-in one for an empty path; without a
    /// path, with the one that the user has chosen. Where there is none, or none that can be read,
    /// the driver says so and takes the built-in one; with `quiet` it says nothing, and a chosen
    /// printer that cannot be used is a failure. Throws HostError.
    DriverSession(const DriverBundle &bundle, const std::optional<std::string> &ppd, bool quiet);
    ~DriverSession();
    DriverSession(const DriverSession &) = delete;
    DriverSession &operator=(const DriverSession &) = delete;

    [[nodiscard]] const DriverBundle &Bundle() const { return mBundle; }
    [[nodiscard]] DriverContext *Context() const { return mContext; }
    /// The driver's own words for a result code.
    [[nodiscard]] std::string ErrorText(int32_t code) const;
    /// The path of the PPD file that the user has chosen; empty when there is none or it is gone.
    [[nodiscard]] std::string UsersPPD() const;
    /// The hot folder that the user has chosen; empty when there is none or it is gone.
    [[nodiscard]] std::string UsersHotFolder() const;

private:
    void OpenWithPrinter(const std::string &ppd);
    void OpenWithUsersPrinter(bool quiet);
    void Check(int32_t code) const;

    const DriverBundle &mBundle;
    DriverContext *mContext = nullptr;
};
