#include "host/readers/pdf/Ghostscript.h"

#include "host/driver/ProgramPath.h"
#include "host/terminal/Cancellation.h"
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

/// How long a call of Read may take: who cancels does not wait for the renderer.
constexpr int kPatience = 50; // ms
constexpr size_t kLongestLine = 1000;
/// More than any page needs, compressed pictures of 400 million samples included; what a malicious
/// file can take of a machine.
constexpr uint64_t kMostMemory = uint64_t{2} << 30;

/// The PDF file is open as 3, so that its name is nobody's option, pipe or device. The password
/// comes through standard input: arguments are everybody's to read. VerboseErrors makes the
/// interpreter tell at once, and so of which page, what it tells at the end anyway.
const char kPrologue[] = R"(
/zelIn (%stdin) (r) file def
/newpdf_gather_parameters where {
    pop
    /zelParameters /newpdf_gather_parameters load def
    /newpdf_gather_parameters {
        zelParameters dup /VerboseErrors true put dup /VerboseWarnings true put
    } def
} if
zelIn 65535 string readline pop dup length 0 gt { /PDFPassword exch def } { pop } ifelse
(/dev/fd/3) (r) file runpdfbegin
)";

std::string FindGhostscript() {
    std::string path = FindInPath("gs");
    if (path.empty())
        throw HostError(ExitStatus::Driver, "PDF files are drawn by Ghostscript, and there is no "
                                            "gs in $PATH; install the package ghostscript");
    return path;
}

/// GS_OPTIONS and its kin could undo what the arguments say.
std::vector<std::string> CleanEnvironment() {
    std::vector<std::string> environment = {"LC_ALL=C"};
    for (const char *name : {"PATH", "TMPDIR"})
        if (const char *value = getenv(name))
            environment.push_back(std::string(name) + "=" + value);
    return environment;
}

Descriptor OpenFile(const std::string &path) {
    Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.IsOpen())
        throw HostError(ExitStatus::Input,
                        path + ": " + strerror(errno) + "; check its permissions");
    return file;
}

struct CloseStream {
    void operator()(FILE *stream) const { (void)fclose(stream); }
};
using Stream = std::unique_ptr<FILE, CloseStream>;

/// A file without a name that holds these bytes.
Stream FileOf(const std::string &bytes) {
    Stream file(tmpfile());
    if (!file || fwrite(bytes.data(), 1, bytes.size(), file.get()) != bytes.size() ||
        fflush(file.get()) != 0)
        throw HostError(ExitStatus::Driver, std::string("cannot hand a profile to the renderer: ") +
                                                strerror(errno) + "; make room in /tmp");
    rewind(file.get());
    return file;
}

std::unique_ptr<ChildProcess> Start(const GhostscriptPlan &plan) {
    ChildPlan child;
    child.program = FindGhostscript();
    child.environment = CleanEnvironment();
    child.memory = kMostMemory;
    child.input = plan.password + "\n";
    child.arguments = {"-dSAFER",    "-dBATCH",          "-dNOPAUSE",
                       "-dNOPROMPT", "-sstdout=%stderr", "--permit-file-read=/dev/fd/3"};
    child.arguments.insert(child.arguments.end(), plan.arguments.begin(), plan.arguments.end());
    child.arguments.insert(child.arguments.end(), {"-c", kPrologue + plan.program});
    const Descriptor file = OpenFile(plan.path);
    child.files = {file.Get()};
    std::vector<Stream> profiles;
    for (const std::string &profile : plan.profiles) {
        profiles.push_back(FileOf(profile));
        child.files.push_back(fileno(profiles.back().get()));
    }
    return std::make_unique<ChildProcess>(child);
}

size_t ReadSome(int fd, void *bytes, size_t size, bool &ended) {
    const ssize_t count = read(fd, bytes, size);
    if (count < 0 && (errno == EINTR || errno == EAGAIN)) return 0;
    if (count <= 0) ended = true;
    return count > 0 ? static_cast<size_t>(count) : 0;
}

} // namespace

std::string Ghostscript::ProfileFile(int index) {
    constexpr int kFirst = 4;
    return "/dev/fd/" + std::to_string(kFirst + index);
}

Ghostscript::Ghostscript(const GhostscriptPlan &plan, Listener listener)
    : mProcess(Start(plan)), mListener(std::move(listener)) {}

size_t Ghostscript::Read(uint8_t *samples, size_t size) {
    // As long as samples come, nobody is asked whether they do.
    const size_t there =
        size > 0 && !mOutputEnded ? ReadSome(mProcess->Output(), samples, size, mOutputEnded) : 0;
    if (there > 0) return there;
    std::array<pollfd, 2> sources = {};
    sources[0] = {mMessagesEnded ? -1 : mProcess->Messages(), POLLIN, 0};
    sources[1] = {mOutputEnded || size == 0 ? -1 : mProcess->Output(), POLLIN, 0};
    int ready = 0;
    do
        ready = poll(sources.data(), sources.size(), kPatience);
    while (ready < 0 && errno == EINTR);
    if (ready <= 0) return 0;
    if (sources[0].revents != 0) ReadMessages();
    if (sources[1].revents == 0) return 0;
    return ReadSome(mProcess->Output(), samples, size, mOutputEnded);
}

void Ghostscript::ReadMessages() {
    char text[4096];
    const size_t count = ReadSome(mProcess->Messages(), text, sizeof text, mMessagesEnded);
    for (size_t i = 0; i < count; ++i) {
        if (text[i] != '\n') {
            if (mLine.size() < kLongestLine) mLine += text[i];
            continue;
        }
        mListener(mLine);
        mLine.clear();
    }
}

std::string Ghostscript::Listen(std::chrono::milliseconds longest) {
    const auto end = std::chrono::steady_clock::now() + longest;
    EndInput();
    while (!HasEnded() && !Cancellation::IsWanted()) {
        uint8_t nothing[256];
        (void)Read(nothing, sizeof nothing);
        if (std::chrono::steady_clock::now() > end) {
            mProcess->Kill();
            (void)Wait();
            return "it takes the renderer longer than " + std::to_string(longest.count() / 1000) +
                   " seconds";
        }
    }
    Cancellation::Check();
    return Wait();
}
