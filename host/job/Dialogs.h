/// The driver's dialogs, as zelprint runs them.
#pragma once

#include "host/driver/Driver.h"

/// To be alive while the driver may show windows: when the window system goes away then, the
/// program ends with a line that says so. One at a time.
class WindowSystem {
public:
    /// Throws HostError (Usage) when there is none.
    explicit WindowSystem(const DriverBundle &bundle);
    ~WindowSystem();
    WindowSystem(const WindowSystem &) = delete;
    WindowSystem &operator=(const WindowSystem &) = delete;
};

/// Runs a dialog and returns when the user has confirmed it. Ctrl-C and its kin cancel it. Throws
/// HostError when it was cancelled or could not be shown.
void RunDialog(const DriverSession &session, Boolean (*dialog)(DriverContext *, Handle),
               Handle record);
