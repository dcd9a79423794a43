/// The printer model as a property list, for hosts.
#pragma once

#include "ppd/PostscriptPrinterInfo.h"
#include "ppd/SheetSizes.h"
#include "support/CFRef.h"

#include <CoreFoundation/CoreFoundation.h>

/// The dictionary that ZELPrCopyPrinterInfo describes; pages that `sheets` does not name have no
/// sheet in it.
CFRef<CFDictionaryRef> CreatePrinterInfoDictionary(const PostscriptPrinterInfo &info,
                                                   const PPD::SheetSizes &sheets);

/// The same with the sheets of the description's own file; without them when it cannot be read any
/// more.
CFRef<CFDictionaryRef> CreatePrinterInfoDictionary(const PostscriptPrinterInfo &info);
