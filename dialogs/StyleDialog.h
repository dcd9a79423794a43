/// The page-setup dialog as the driver calls it.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

class PageSetupModel;

/// Runs the dialog on a page setup, which is changed whatever the user decides; true when the user
/// confirmed. `bundle` has the window. After a cancelled dialog the user's saved printer is again
/// the one that it was before.
bool StyleDialog(CFBundleRef bundle, PageSetupModel &setup);
