/// Ghostscript with one PDF file, as a program beside zelprint that reads lines of PostScript and
/// answers with samples and messages.
///
/// What it does and says cannot be taken for true: its exit status is 0 after half a file, and a
/// damaged file may crash it or keep it busy for ever. Whoever uses it counts and listens.
#pragma once

#include "host/readers/pdf/ChildProcess.h"
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct GhostscriptPlan {
    std::string path;     ///< of the PDF file
    std::string password; ///< empty: none
    std::vector<std::string> arguments;
    std::string program;               ///< PostScript that runs with the file open
    std::vector<std::string> profiles; ///< ICC profiles that it may read; see ProfileFile
};

class Ghostscript {
public:
    /// How an argument names the plan's profiles, counted from 0.
    [[nodiscard]] static std::string ProfileFile(int index);

    /// Gets a line of messages, without its end.
    using Listener = std::function<void(const std::string &line)>;

    /// Starts it. Throws HostError: Input when the file cannot be opened, Driver when there is no
    /// Ghostscript.
    Ghostscript(const GhostscriptPlan &plan, Listener listener);

    /// Gives it a line to run; false when that cannot be done.
    [[nodiscard]] bool Send(const std::string &line) const { return mProcess->Write(line + "\n"); }
    /// Lets it come to its end.
    void EndInput() const { mProcess->CloseInput(); }

    /// Waits a moment for what it writes, and passes whole lines of messages on. Puts samples into
    /// `samples`, at most `size` bytes (0: only messages are waited for). Returns their number.
    size_t Read(uint8_t *samples, size_t size);
    /// Whether nothing more can come.
    [[nodiscard]] bool HasEnded() const { return mOutputEnded && mMessagesEnded; }
    [[nodiscard]] bool OutputHasEnded() const { return mOutputEnded; }
    [[nodiscard]] bool MessagesHaveEnded() const { return mMessagesEnded; }
    /// See ChildProcess.
    [[nodiscard]] std::string Wait() const { return mProcess->Wait(); }
    /// Hears one that draws nothing and needs no input to its end, which comes after `longest` at
    /// the latest. How it ended, as Wait says it. Throws HostError when the user cancels.
    [[nodiscard]] std::string Listen(std::chrono::milliseconds longest);

private:
    void ReadMessages();

    std::unique_ptr<ChildProcess> mProcess;
    Listener mListener;
    std::string mLine; ///< the beginning of one
    bool mOutputEnded = false, mMessagesEnded = false;
};
