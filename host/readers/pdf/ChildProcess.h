/// A program that works for zelprint through pipes, with nothing of zelprint's that it is not
/// given: no environment, no open files, limited memory.
#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>
#include <vector>

/// A file descriptor and its owner.
class Descriptor {
public:
    explicit Descriptor(int fd = -1) : mDescriptor(fd) {}
    ~Descriptor() { Close(); }
    Descriptor(Descriptor &&other) noexcept : mDescriptor(other.Detach()) {}
    Descriptor &operator=(Descriptor &&other) noexcept;
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    [[nodiscard]] int Get() const { return mDescriptor; }
    [[nodiscard]] bool IsOpen() const { return mDescriptor >= 0; }
    void Close();

private:
    int Detach();
    int mDescriptor;
};

/// How a program is started.
struct ChildPlan {
    std::string program;                  ///< its path
    std::vector<std::string> arguments;   ///< without argument 0
    std::vector<std::string> environment; ///< all of it: "NAME=value"
    std::vector<int> files;               ///< what it finds open as 3, 4 and so on
    std::string input;                    ///< what it finds to read at first; less than 4 KB
    uint64_t memory = 0;                  ///< most bytes of address space; 0: no limit
};

class ChildProcess {
public:
    /// Starts it. It ends with zelprint, however that ends. Throws HostError (Driver).
    explicit ChildProcess(const ChildPlan &plan);
    /// Kills it if it runs, and waits for its end.
    ~ChildProcess();
    ChildProcess(const ChildProcess &) = delete;
    ChildProcess &operator=(const ChildProcess &) = delete;

    /// Writes to its standard input; false when it does not read any more. SIGPIPE has to be
    /// ignored.
    [[nodiscard]] bool Write(const std::string &text) const;
    void CloseInput() { mInput.Close(); }
    /// Where its standard output and its messages are read; of the output there may be none yet
    /// (EAGAIN).
    [[nodiscard]] int Output() const { return mOutput.Get(); }
    [[nodiscard]] int Messages() const { return mMessages.Get(); }

    void Kill() const;
    /// Waits for its end. How it ended: empty when its exit status is 0, else such as "exit status
    /// 1" or "ended by signal 11".
    [[nodiscard]] std::string Wait();

private:
    pid_t mProcess = -1; ///< -1: it has ended
    std::string mEnd;
    Descriptor mInput, mOutput, mMessages;
    Descriptor mLifeline; ///< nothing is written here: the program ends when it is closed
};
