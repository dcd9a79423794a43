#pragma once

/// Lets the keys of today's desktops cut, copy, paste and select all in text fields: AppKit has
/// them in a menu alone, which a print dialog has not. When the application has started.
void UseEditingKeys(void);
