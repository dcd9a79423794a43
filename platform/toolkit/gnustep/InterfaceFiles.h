/// How interface files are read.
#pragma once

/// Lets GNUstep forget an interface file that it has looked at: it keeps a whole copy of each one
/// that it opens, some 300 KB for each dialog. To be called once, before the first file is read.
void ForgetInterfaceFiles(void);
