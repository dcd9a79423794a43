#include "host/readers/SpooledInput.h"

#include "host/terminal/ExitStatus.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr uint64_t kMostBytes = uint64_t{4} << 30;
constexpr size_t kPiece = 1 << 20;

/// Readers know inputs by their paths alone. Only who sets a job up takes inputs, before there is a
/// second thread that could ask.
std::map<std::string, std::string> &Names() {
    static std::map<std::string, std::string> names;
    return names;
}

[[noreturn]] void Refuse(const std::string &name, const std::string &why) {
    throw HostError(ExitStatus::Input, name + ": " + why);
}

void Copy(int from, const UnnamedFile &to, const std::string &name) {
    std::vector<char> piece(kPiece);
    uint64_t size = 0;
    for (;;) {
        const ssize_t got = read(from, piece.data(), piece.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) Refuse(name, strerror(errno));
        if (got == 0) break;
        if (size + static_cast<uint64_t>(got) > kMostBytes)
            Refuse(name, "more than 4 GiB came; save it as a file and print that");
        if (!to.Write(piece.data(), static_cast<size_t>(got), size))
            throw HostError(ExitStatus::Output, "cannot keep what comes from " + name + " in " +
                                                    to.Folder() + ": " + strerror(errno) +
                                                    "; name another folder in $TMPDIR");
        size += static_cast<uint64_t>(got);
    }
    if (size == 0) Refuse(name, "nothing came");
}

InputFile Spool(int descriptor, const std::string &name) {
    InputFile input{name, {}, {}};
    const auto file = std::make_shared<UnnamedFile>();
    Copy(descriptor, *file, name);
    input.path = file->Path();
    input.spooled = file;
    Names()[input.path] = name;
    return input;
}

bool IsPipe(const std::string &path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISFIFO(info.st_mode);
}

/// A pipe that a shell has opened has a number for a name.
std::string NameOfPipe(const std::string &path) {
    const bool opened = path.rfind("/dev/fd/", 0) == 0 || path.rfind("/proc/", 0) == 0;
    return opened ? "pipe " + path.substr(path.rfind('/') + 1) : path;
}

InputFile SpoolPipe(const std::string &path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) Refuse(path, std::string(strerror(errno)) + "; check its permissions");
    try {
        InputFile input = Spool(descriptor, NameOfPipe(path));
        (void)close(descriptor);
        return input;
    } catch (...) {
        (void)close(descriptor);
        throw;
    }
}

} // namespace

InputFile TakeInput(const std::string &path) {
    if (path == "-") {
        const char *name = "standard input";
        if (isatty(STDIN_FILENO)) Refuse(name, "it is a terminal; send a file through a pipe");
        return Spool(STDIN_FILENO, name);
    }
    if (IsPipe(path)) return SpoolPipe(path);
    return {path, path, {}};
}

std::string NameOfInput(const std::string &path) {
    const auto found = Names().find(path);
    return found == Names().end() ? path : found->second;
}
