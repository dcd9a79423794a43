/// What lies in a folder.
#pragma once

#include <optional>
#include <string>
#include <vector>

/// The names in a folder, without "." and "..", in no order. None, and `errno` is set, when they
/// cannot all be read.
[[nodiscard]] std::optional<std::vector<std::string>> NamesIn(const std::string &folder);
