/// Exit statuses of zelprint, and the one exception that carries them.
#ifndef ZEL_HOST_EXITSTATUS_H
#define ZEL_HOST_EXITSTATUS_H

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

/// A failure that ends the command. The message is one line that says what to do.
class HostError : public std::runtime_error {
public:
    HostError(ExitStatus status, const std::string &message)
        : std::runtime_error(message), mStatus(status) {}
    [[nodiscard]] ExitStatus Status() const { return mStatus; }

private:
    ExitStatus mStatus;
};

#endif
