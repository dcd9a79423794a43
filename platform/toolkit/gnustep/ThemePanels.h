/// How file panels look in the theme.
#pragma once

#import <AppKit/AppKit.h>

/// Makes room in a panel: without icon, heading and the buttons for floppy disks. Does nothing
/// where another theme is in use. May be called again for the same panel.
void UseThemePanel(NSSavePanel *panel);
