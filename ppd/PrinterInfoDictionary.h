/// The printer model as a property list, for hosts.
#pragma once

#include "ppd/PostscriptPrinterInfo.h"
#include "support/CFRef.h"

#include <CoreFoundation/CoreFoundation.h>

/// The dictionary that ZELPrCopyPrinterInfo describes.
CFRef<CFDictionaryRef> CreatePrinterInfoDictionary(const PostscriptPrinterInfo &info);
