#pragma once

/// Whether this process uses windows at all: see PlatformUseWindows.
bool WindowsMayBeUsed();

/// Asks the system.
bool IsWindowServerThere();
