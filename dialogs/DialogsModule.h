/// The interface of the module that holds the windows. Driver and module are built and shipped
/// together, so it has no version.
#pragma once

#include "dialogs/AlertWindow.h"
#include "dialogs/Beep.h"
#include "dialogs/DialogEnd.h"
#include "dialogs/JobDialog.h"
#include "dialogs/StyleDialog.h"

/// What the driver calls. What the windows need of the driver comes with the calls: see
/// PageSetupModel.
struct DialogFunctions {
    decltype(&StyleDialog) styleDialog;
    decltype(&JobDialog) jobDialog;
    decltype(&RunAlertWindow) runAlertWindow;
    decltype(&SoundBeep) soundBeep;
    decltype(&LastDialogFailed) lastDialogFailed;
    decltype(&CancelDialog) cancelDialog;
};

/// The module's one export.
extern "C" const DialogFunctions *ZELDialogFunctions();
