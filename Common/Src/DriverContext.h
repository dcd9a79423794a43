/// The record behind one open driver.
#pragma once

#include "Common/Src/record/PageInfo.h"
#include "ZELTypes.h"
#include "support/CFRef.h"
#include <CoreServices/CoreServices.h>

#include <memory>
#include <optional>

class PostscriptPrinterInfo;
struct PageOutputSession;
struct Separations;

/// Once a session has left kOk it stays where it is.
enum class SessionState : uint32_t {
    Ok = 0,
    Cancelled = 1, ///< the user cancelled a dialog, or a call returned ZELUserCancelled
    Failed = 2,    ///< a call failed
    HostError = 3  ///< the host latched an error of its own
};

/// Made by ZELPrOpen, freed by ZELPrClose. Used from one thread at a time.
struct DriverContext {
    DriverContext() = default;
    DriverContext(const DriverContext &) = delete;
    DriverContext &operator=(const DriverContext &) = delete;
    ~DriverContext();

    SessionState state = SessionState::Ok;
    int32_t error = 0; ///< what most entry points return
    uint8_t reserved = 0;
    PageInfo_tag pageInfo;
    CFRef<CFBundleRef> bundle;
    CFRef<CFStringRef> bundleIdentifier; ///< names the preferences everywhere
    CFRef<CFStringRef> jobName;          ///< null when the host has taken the name away
    CFRef<CFStringRef> outputFileName;   ///< chosen in the print dialog, or null
    bool hasOutputFileName = false;
    CFRef<CFURLRef> hotFolder;
    PageOutputSession *mPageOutputSession = nullptr; ///< owned while a document is open
    PostscriptPrinterInfo *printerInfo = nullptr;    ///< owned; the page-setup dialog replaces it
    Separations *separations = nullptr;              ///< owned; null when there is no folder

    /// The handle given last to one of the calls that ZELPrOpenDoc names in ZELPrint.h: it has no
    /// record argument. The handle and not a copy, because hosts change the record in between.
    Handle record = nullptr;
    int pageCount = 0; ///< of the host's document, for the print dialog to tell; 0: not known
    /// Set by ZELPrSetSendToPrintQueue; otherwise the user's preference holds.
    std::optional<bool> sendToPrintQueue;
    uint64_t documentLength = 0; ///< of the document closed last: see ZELPrDocumentLength
};

/// Opens a context with that printer; null: with the user's.
int32_t OpenContext(CFBundleRef bundle, std::unique_ptr<PostscriptPrinterInfo> printer,
                    DriverContext **outContext);

/// Latches a result other than 0 unless the session has ended already; returns the latched error.
int32_t LatchResult(DriverContext *context, int32_t result);
