#include "host/backend/Cancelling.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

volatile sig_atomic_t gChild = 0;
volatile sig_atomic_t gCancelled = 0;

void Cancel(int) {
    gCancelled = 1;
    if (gChild > 0) (void)kill(-gChild, SIGTERM);
}

/// Keeps SIGTERM away until the child is known to the handler.
class WithoutSignals {
public:
    WithoutSignals() {
        sigset_t block;
        sigemptyset(&block);
        sigaddset(&block, SIGTERM);
        sigprocmask(SIG_BLOCK, &block, &mOld);
    }
    WithoutSignals(const WithoutSignals &) = delete;
    WithoutSignals &operator=(const WithoutSignals &) = delete;
    ~WithoutSignals() { Restore(); }
    void Restore() const { sigprocmask(SIG_SETMASK, &mOld, nullptr); }

private:
    sigset_t mOld = {};
};

void Redirect(int fd, const char *path, int flags) {
    const int file = open(path, flags, 0600);
    if (file < 0 || dup2(file, fd) < 0) _exit(kNotRun);
}

/// In the child: never returns.
[[noreturn]] void Become(const std::vector<char *> &words, const char *output, const char *errors,
                         pid_t parent, const WithoutSignals &signals) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGTERM); // the scheduler ends a backend with SIGKILL
    if (getppid() != parent) _exit(kNotRun);
    for (const int number : {SIGTERM, SIGPIPE, SIGINT, SIGHUP})
        (void)signal(number, SIG_DFL);
    signals.Restore();
    Redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    Redirect(STDOUT_FILENO, output, O_WRONLY | O_CREAT | O_TRUNC);
    Redirect(STDERR_FILENO, errors, O_WRONLY | O_CREAT | O_TRUNC);
    close_range(STDERR_FILENO + 1, ~0U, 0); // back channel, side channel and status pipes
    execv(words[0], words.data());
    (void)dprintf(STDERR_FILENO, "%s cannot be run: %s", words[0], strerror(errno));
    _exit(kNotRun);
}

} // namespace

void HeedCancelling() {
    struct sigaction action = {};
    action.sa_handler = Cancel; // without SA_RESTART
    sigaction(SIGTERM, &action, nullptr);
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    (void)signal(SIGPIPE, SIG_IGN);
}

bool IsCancelled() {
    return gCancelled != 0;
}

int RunToEnd(const std::vector<std::string> &words, const std::string &output,
             const std::string &errors) {
    std::vector<char *> pointers;
    pointers.reserve(words.size() + 1);
    for (const std::string &word : words)
        pointers.push_back(const_cast<char *>(word.c_str()));
    pointers.push_back(nullptr);
    const pid_t parent = getpid();
    pid_t child = 0;
    {
        const WithoutSignals signals;
        child = fork();
        if (child < 0) return kNotRun;
        if (child == 0) Become(pointers, output.c_str(), errors.c_str(), parent, signals);
        setpgid(child, child);
        gChild = child;
    }
    if (IsCancelled()) (void)kill(-child, SIGTERM);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    gChild = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}
