#include "host/backend/Messages.h"

#include <unistd.h>

namespace {

/// What the scheduler reads of a line.
constexpr size_t kLongest = 1000;

const char *WordOf(MessageKind kind) {
    switch (kind) {
        case MessageKind::Debug:
            return "DEBUG: ";
        case MessageKind::Info:
            return "INFO: ";
        case MessageKind::Error:
            return "ERROR: ";
        case MessageKind::State:
            return "STATE: ";
        case MessageKind::Page:
            return "PAGE: ";
    }
    return "";
}

} // namespace

void Tell(MessageKind kind, const std::string &text) {
    std::string line = WordOf(kind) + text.substr(0, kLongest);
    for (char &c : line)
        if (static_cast<unsigned char>(c) < ' ') c = '?';
    line += '\n';
    (void)!write(STDERR_FILENO, line.data(), line.size()); // the scheduler is gone: nobody to tell
}
