#include "host/queue/RunProgram.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class FileActions {
public:
    FileActions() { posix_spawn_file_actions_init(&mActions); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&mActions); }
    posix_spawn_file_actions_t *Get() { return &mActions; }

private:
    posix_spawn_file_actions_t mActions = {};
};

std::string ReadToEnd(int fd) {
    std::string text;
    char buffer[4096];
    for (;;) {
        const ssize_t got = read(fd, buffer, sizeof buffer);
        if (got > 0)
            text.append(buffer, static_cast<size_t>(got));
        else if (got == 0 || errno != EINTR)
            return text;
    }
}

int ExitStatusOf(pid_t child) {
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::vector<std::string> EnglishEnvironment() {
    const char *path = getenv("PATH");
    std::vector<std::string> environment = {
        "LC_ALL=C", "PATH=" + std::string(path ? path : "/usr/bin:/bin") + ":/usr/sbin:/sbin"};
    for (const char *name : {"CUPS_SERVER", "HOME", "USER"})
        if (const char *value = getenv(name))
            environment.push_back(std::string(name) + "=" + value);
    return environment;
}

std::vector<char *> Pointers(const std::vector<std::string> &words) {
    std::vector<char *> pointers;
    pointers.reserve(words.size() + 1);
    for (const std::string &word : words)
        pointers.push_back(const_cast<char *>(word.c_str()));
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

ProgramResult RunProgram(const std::vector<std::string> &words) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0) return {127, ""};
    FileActions actions;
    posix_spawn_file_actions_addopen(actions.Get(), 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(actions.Get(), ends[1], 1);
    posix_spawn_file_actions_adddup2(actions.Get(), ends[1], 2);
    const std::vector<std::string> environment = EnglishEnvironment();
    // posix_spawnp looks in this process's PATH.
    setenv("PATH", environment[1].c_str() + 5, 1);
    pid_t child = 0;
    const int code = posix_spawnp(&child, words[0].c_str(), actions.Get(), nullptr,
                                  Pointers(words).data(), Pointers(environment).data());
    close(ends[1]);
    ProgramResult result;
    if (code == 0) result.output = ReadToEnd(ends[0]);
    close(ends[0]);
    result.status = code == 0 ? ExitStatusOf(child) : 127;
    return result;
}

std::string ShellWord(const std::string &word) {
    const char plain[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789/._-+,:@%";
    if (!word.empty() && word.find_first_not_of(plain) == std::string::npos) return word;
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}
