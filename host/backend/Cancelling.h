/// The end that somebody else wants: the scheduler sends SIGTERM when a job is cancelled.
#pragma once

#include <string>
#include <vector>

/// From now on SIGTERM is remembered, passed on to the program that RunToEnd runs, and ends reads
/// and sleeps; and it comes when the scheduler dies, which will print the job again. SIGPIPE is
/// ignored.
void HeedCancelling();

[[nodiscard]] bool IsCancelled();

/// The status of a program that could not be started.
inline constexpr int kNotRun = 127;

/// Runs `words` (the first is a path) in a process group of its own, without standard input, with
/// standard output and standard error in new files; waits for its end. Its exit status; kNotRun
/// when it could not be started, and `errors` then tells why; 128 and more: a signal. It dies with
/// this process.
[[nodiscard]] int RunToEnd(const std::vector<std::string> &words, const std::string &output,
                           const std::string &errors);
