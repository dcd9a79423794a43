/// What the dialogs' tests share: the driver's bundle and folders to work in.
#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <string>

/// The bundle in the build folder; its code is not loaded.
CFBundleRef TestBundle();
CFStringRef TestBundleIdentifier();

/// A new folder; to be removed with RemoveTestFolder.
std::string MakeTestFolder();
void RemoveTestFolder(const std::string &folder);

/// A URL that the caller owns.
CFURLRef FolderURL(const std::string &path);
std::string URLPath(CFURLRef url);
std::string StringText(CFStringRef string);
