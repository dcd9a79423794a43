/// What zelprint says: answers on standard output, complaints on standard error.
#pragma once

#include <string>

/// UTF-8 text with "?" for control characters: what a file says, or is called, must neither drive
/// the terminal nor break a line.
[[nodiscard]] std::string PlainText(const std::string &utf8);

/// Writes an answer that was asked for. Throws HostError (Output) when not all of it could be
/// written.
void Answer(const std::string &text);

/// With `quiet`, Complain is silent: what it says is of interest only where somebody reads it.
void SetQuiet(bool quiet);

/// Writes one line that begins with "zelprint: ": something that does not keep the job from being
/// printed.
void Complain(const std::string &message);

/// Writes one line that begins with "zelprint: ", why the command fails.
void ComplainOfFailure(const std::string &message);
