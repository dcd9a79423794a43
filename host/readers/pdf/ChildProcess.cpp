#include "host/readers/pdf/ChildProcess.h"

#include "host/terminal/ExitStatus.h"
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Below are the numbers that the child knows its files by.
constexpr int kFirstFree = 32;
constexpr int kNotStarted = 127;
/// Of the pipe with its output: the program goes on while the reader is busy elsewhere, and both
/// are woken for many rows at once. What is in such a pipe stays in a processor's cache.
[[maybe_unused]] constexpr int kPipeBytes = 256 << 10;

[[noreturn]] void ThrowNotStarted(const std::string &program) {
    throw HostError(ExitStatus::Driver, "cannot start " + program + ": " + strerror(errno));
}

struct Pipe {
    explicit Pipe(const std::string &program) {
        int ends[2];
        if (pipe(ends) != 0) ThrowNotStarted(program);
        for (const int end : ends)
            (void)fcntl(end, F_SETFD, FD_CLOEXEC);
        read = Descriptor(ends[0]);
        write = Descriptor(ends[1]);
    }
    Descriptor read, write;
};

/// Where pipes can be made wider.
void Widen([[maybe_unused]] const Descriptor &pipe) {
#ifdef F_SETPIPE_SZ
    (void)fcntl(pipe.Get(), F_SETPIPE_SZ, kPipeBytes);
#endif
}

std::vector<char *> Pointers(const std::string *first, const std::vector<std::string> &texts) {
    std::vector<char *> pointers;
    if (first) pointers.push_back(const_cast<char *>(first->c_str()));
    for (const std::string &text : texts)
        pointers.push_back(const_cast<char *>(text.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

// What runs in the child before the program calls nothing that may hold a lock: other threads of
// zelprint are not there to give it back.

/// Gives files[i] the number i. All are first moved out of the way of these numbers.
bool TakeFiles(int *files, int count) {
    for (int i = 0; i < count; ++i)
        if ((files[i] = fcntl(files[i], F_DUPFD_CLOEXEC, kFirstFree)) < 0) return false;
    for (int i = 0; i < count; ++i)
        if (dup2(files[i], i) < 0) return false;
    return true;
}

/// What zelprint ignores or blocks for its own sake.
void ResetSignals() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGPIPE, SIGXFSZ, SIGIO})
        (void)signal(number, SIG_DFL);
    sigset_t none;
    (void)sigemptyset(&none);
    (void)sigprocmask(SIG_SETMASK, &none, nullptr);
}

/// When nobody can write into this pipe any more, since zelprint has ended, this process gets
/// SIGIO, which ends it: a page that never ends would never notice otherwise. Systems without that
/// print all the same.
void EndWith(int pipe) {
    if (fcntl(pipe, F_SETOWN, getpid()) == 0) (void)fcntl(pipe, F_SETFL, O_ASYNC);
}

bool LimitMemory(uint64_t bytes) {
    if (bytes == 0) return true;
    const rlimit limit = {bytes, bytes};
    return setrlimit(RLIMIT_AS, &limit) == 0;
}

bool WriteAll(int fd, const std::string &text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t count = write(fd, text.data() + done, text.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        done += static_cast<size_t>(count);
    }
    return true;
}

} // namespace

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept {
    if (this != &other) {
        Close();
        mDescriptor = other.Detach();
    }
    return *this;
}

void Descriptor::Close() {
    if (mDescriptor >= 0) (void)close(mDescriptor);
    mDescriptor = -1;
}

int Descriptor::Detach() {
    const int fd = mDescriptor;
    mDescriptor = -1;
    return fd;
}

ChildProcess::ChildProcess(const ChildPlan &plan) {
    Pipe input(plan.program);
    Pipe output(plan.program);
    Pipe messages(plan.program);
    Pipe lifeline(plan.program);
    Widen(output.read);
    (void)fcntl(output.read.Get(), F_SETFL, O_NONBLOCK);
    // While both ends are here nobody can be missing to read it.
    if (!WriteAll(input.write.Get(), plan.input)) ThrowNotStarted(plan.program);
    std::vector<int> files = {input.read.Get(), output.write.Get(), messages.write.Get()};
    files.insert(files.end(), plan.files.begin(), plan.files.end());
    files.push_back(lifeline.read.Get());
    const std::vector<char *> arguments = Pointers(&plan.program, plan.arguments);
    const std::vector<char *> environment = Pointers(nullptr, plan.environment);
    mProcess = fork();
    if (mProcess < 0) ThrowNotStarted(plan.program);
    if (mProcess == 0) {
        // A group of its own: Ctrl-C is for zelprint, which then ends it.
        (void)setpgid(0, 0);
        ResetSignals();
        const int count = static_cast<int>(files.size());
        const bool ready = TakeFiles(files.data(), count);
        EndWith(count - 1);
        if (ready && LimitMemory(plan.memory))
            (void)execve(plan.program.c_str(), arguments.data(), environment.data());
        _exit(kNotStarted);
    }
    mInput = std::move(input.write);
    mOutput = std::move(output.read);
    mMessages = std::move(messages.read);
    mLifeline = std::move(lifeline.write);
}

ChildProcess::~ChildProcess() {
    Kill();
    (void)Wait();
}

bool ChildProcess::Write(const std::string &text) const {
    return WriteAll(mInput.Get(), text);
}

void ChildProcess::Kill() const {
    if (mProcess > 0) (void)kill(mProcess, SIGKILL);
}

std::string ChildProcess::Wait() {
    if (mProcess < 0) return mEnd;
    int status = 0;
    while (waitpid(mProcess, &status, 0) < 0)
        if (errno != EINTR) break;
    mProcess = -1;
    if (WIFSIGNALED(status))
        mEnd = "ended by signal " + std::to_string(WTERMSIG(status));
    else if (WEXITSTATUS(status) != 0)
        mEnd = "exit status " + std::to_string(WEXITSTATUS(status));
    return mEnd;
}
