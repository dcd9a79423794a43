/// What must not be lost when a file takes a name that another has.
#pragma once

#include <string>
#include <vector>

/// Throws HostError (Output) when `path` is one of `files`, which are being printed, by whatever
/// name.
void CheckNotPrinted(const std::string &path, const std::vector<std::string> &files);

/// Throws HostError (Output) when a document must not replace what is at `path`: a file that is
/// being printed, and, without `force`, one that is neither empty nor PostScript.
void CheckDocumentMayReplace(const std::string &path, const std::vector<std::string> &files,
                             bool force);

/// The same for a settings file, which may replace settings files.
void CheckSettingsMayReplace(const std::string &path, const std::vector<std::string> &files,
                             bool force);
