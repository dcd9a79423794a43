/// Numbers as a person types them on a command line, the same in every locale.
#pragma once

#include <string>

/// Reads digits with an optional decimal point, and moves `at` behind them. False, with `at` where
/// it was, when there are none or the number is out of range.
[[nodiscard]] bool ReadDecimal(const std::string &text, size_t &at, double &number);
