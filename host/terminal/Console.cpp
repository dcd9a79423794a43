#include "host/terminal/Console.h"

#include "host/terminal/ExitStatus.h"
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace {

bool isQuiet = false;

} // namespace

std::string PlainText(const std::string &utf8) {
    std::string text;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        const bool c1 = c == 0xC2 && i + 1 < utf8.size() && (utf8[i + 1] & 0xE0) == 0x80;
        const bool control = c < 0x20 || c == 0x7F || c1;
        text += control ? '?' : utf8[i];
        i += c1;
    }
    return text;
}

void Answer(const std::string &text) {
    if (fwrite(text.data(), 1, text.size(), stdout) == text.size() && fflush(stdout) == 0) return;
    throw HostError(ExitStatus::Output,
                    std::string("cannot write to standard output: ") + strerror(errno));
}

void SetQuiet(bool quiet) {
    isQuiet = quiet;
}

void Complain(const std::string &message) {
    if (!isQuiet) ComplainOfFailure(message);
}

void ComplainOfFailure(const std::string &message) {
    (void)fprintf(stderr, "zelprint: %s\n", PlainText(message).c_str());
}
