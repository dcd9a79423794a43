#include "dialogs/DialogsModule.h"

extern "C" __attribute__((visibility("default"))) const DialogFunctions *ZELDialogFunctions() {
    static const DialogFunctions functions = {StyleDialog, JobDialog,        RunAlertWindow,
                                              SoundBeep,   LastDialogFailed, CancelDialog};
    return &functions;
}
