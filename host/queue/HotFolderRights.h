/// May the print system put documents into a folder? Its backends run as a user of their own, with
/// no other groups than that user's.
#pragma once

#include <string>

/// The user that backends run as, unless an administrator has chosen another.
inline constexpr char kPrintUser[] = "lp";

/// Empty when `user` may write into `folder` as far as can be told: root tries it as that user,
/// others look at the modes of the folder and of those above it, and believe in access control
/// lists. Else what is wrong, with the command that mends it. `folder` is an absolute path.
[[nodiscard]] std::string WhyNotWritableBy(const std::string &user, const std::string &folder);
