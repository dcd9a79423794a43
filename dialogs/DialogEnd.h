/// How a dialog ends other than by its buttons.
#pragma once

/// Has the last StyleDialog or JobDialog returned false because it could not be shown, or broke
/// down, rather than because the user cancelled it? A line on standard error has said why. Main
/// thread only.
bool LastDialogFailed();

/// Cancels the dialog that is open, or what is open above it: to be called until the dialog has
/// returned. Any thread; returns at once.
void CancelDialog();
