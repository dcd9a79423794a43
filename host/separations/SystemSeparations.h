/// Separations for the whole machine: what print queues can use. The driver looks into its user's
/// own folder only; a queue's backend makes this folder that of the print system's user.
#pragma once

#include <cstdlib>
#include <string>

/// The folder that stands for a user's library: $ZEL_SYSTEM_LIBRARY, else below /var/lib.
[[nodiscard]] inline std::string SystemLibrary() {
    const char *other = std::getenv("ZEL_SYSTEM_LIBRARY");
    return other && *other ? other : "/var/lib/zel";
}

/// The folder of the separation profiles in it; it need not exist.
[[nodiscard]] inline std::string SystemSeparationsFolder() {
    return SystemLibrary() + "/ApplicationSupport/ZEL/Profiles/Postscript";
}
