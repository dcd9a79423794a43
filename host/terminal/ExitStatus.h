/// Exit statuses of zelprint, and the one exception that carries them.
#pragma once

#include <stdexcept>
#include <string>

/// Documented in docs/zelprint.md; scripts rely on the numbers.
enum class ExitStatus {
    Success = 0,
    Input = 1,        ///< a file to print, a PPD file or a profile cannot be read or is refused
    Usage = 2,        ///< the command line asks for something impossible
    Output = 3,       ///< the document or an answer could not be written whole, or not put in place
    Driver = 4,       ///< a part of the program cannot be loaded, or the driver fails by itself
    Queue = 5,        ///< the print queue did not take the document
    Cancelled = 130,  ///< Ctrl-C, or Cancel in one of the driver's dialogs
    Terminated = 143, ///< ended by a signal that asks politely
};

/// What a failure is about, in a word for programs: what somebody has to look at.
inline constexpr char kAboutDocument[] = "document";     ///< a file to print
inline constexpr char kAboutSeparation[] = "separation"; ///< the CMYK separation
inline constexpr char kAboutPrinter[] = "printer";       ///< the PPD file
inline constexpr char kAboutSettings[] = "settings";     ///< a file of settings
inline constexpr char kAboutProfile[] = "profile";       ///< an ICC profile
inline constexpr char kAboutOptions[] = "options";       ///< the command line
inline constexpr char kAboutFolder[] = "folder";         ///< where the document goes
inline constexpr char kAboutQueue[] = "queue";           ///< the print queue
inline constexpr char kAboutProgram[] = "program";       ///< zelprint or the driver itself
inline constexpr char kAboutUser[] = "user";             ///< who cancelled

/// A failure that ends the command. The message is one line that says what to do.
class HostError : public std::runtime_error {
public:
    HostError(ExitStatus status, const std::string &message)
        : HostError(status, UsuallyAbout(status), message) {}
    HostError(ExitStatus status, const char *about, const std::string &message)
        : std::runtime_error(message), mStatus(status), mAbout(about) {}
    [[nodiscard]] ExitStatus Status() const { return mStatus; }
    /// One of the words above.
    [[nodiscard]] const char *About() const { return mAbout; }

private:
    ExitStatus mStatus;
    const char *mAbout;

    static const char *UsuallyAbout(ExitStatus status) {
        switch (status) {
            case ExitStatus::Success:
            case ExitStatus::Input:
                return kAboutDocument;
            case ExitStatus::Usage:
                return kAboutOptions;
            case ExitStatus::Output:
                return kAboutFolder;
            case ExitStatus::Driver:
                return kAboutProgram;
            case ExitStatus::Queue:
                return kAboutQueue;
            case ExitStatus::Cancelled:
            case ExitStatus::Terminated:
                return kAboutUser;
        }
        return kAboutProgram;
    }
};
