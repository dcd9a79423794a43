/// What the backend tells the scheduler: lines on standard error, each with a word in front that
/// says what becomes of it ("CUPS Design Description", filters and backends).
#pragma once

#include <string>

enum class MessageKind {
    Debug, ///< for the log
    Info,  ///< the printer's message, while it holds
    Error, ///< the same, and the job's
    State, ///< "+KEYWORD" or "-KEYWORD": the printer's state reasons; one stays until it is taken
           ///< back
    Page,  ///< "NUMBER COPIES": counted
};

/// Writes one line, in one step, so that lines of other programs do not get into it. Control
/// characters become "?".
void Tell(MessageKind kind, const std::string &text);
