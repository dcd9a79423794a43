/// Services that have no common API on the two platforms.
#pragma once
#include <CoreFoundation/CoreFoundation.h>
#include <ctime>
#include <string>
#include <sys/stat.h>

#pragma GCC visibility push(default)

/// `value` in the user's locale without grouping; `decimals` is clipped to 0..20.
std::string PlatformFormatNumber(double value, int decimals);

/// Reads a number written in the user's locale. The whole text must be the number; blanks around
/// it are allowed.
bool PlatformScanNumber(const std::string &text, double &value);

/// Is the item, or a folder that holds it, in a trash folder of the user?
bool PlatformIsInTrash(const std::string &path);

/// When a file's content was changed last, and when anything of it was.
struct FileTimes {
    timespec modified, changed;
};
FileTimes PlatformTimesOf(const struct stat &info);

/// Asks the system not to keep what is written to `fd` in its file cache. A hint; never fails.
void PlatformDisableFileCache(int fd);

/// Asks the allocator to keep up to `bytes` of freed memory for its next use instead of giving it
/// back to the system, for a program that allocates the same large blocks again and again. A hint.
void PlatformKeepFreedMemory(int bytes);

/// Gives the file `from` the name `to`, in one step, unless something has it. Returns 0 or an errno
/// value: EEXIST when the name is taken; when the system cannot do it on that file system, EINVAL,
/// ENOSYS or another.
[[nodiscard]] int PlatformMoveWithoutReplacing(const std::string &from, const std::string &to);

/// Makes the folder `to`, which only its owner may use, give the group and the access rights to
/// files made in it that the folder `from` gives. Returns 0 or an errno value: EPERM when the user
/// may not.
[[nodiscard]] int PlatformInheritRights(const std::string &from, const std::string &to);

/// Runs `program` (a path) with `arguments` (argument 0 not included) and waits for its end.
/// Returns its exit status, or 1 when it could not be started or was ended by a signal.
int PlatformRunTask(const char *program, const char *const *arguments, int count);

/// Whether this process opens windows and looks at the keyboard; it does unless told otherwise.
/// Any thread.
void PlatformUseWindows(bool use);

/// Is there a window system, and may it be used? The system is asked once.
bool PlatformHasWindowServer();

/// The user's Application Support folder; it need not exist. Empty when it cannot be told.
std::string PlatformApplicationSupportFolder();

#pragma GCC visibility pop
