// The CUPS backend "zelprint": prints a job into the hot folder of its queue's device URI,
// zelprint:/hot/folder. All that is about pages is zelprint's; here is what is about jobs.
#include "host/backend/Cancelling.h"
#include "host/backend/JobFolder.h"
#include "host/backend/Messages.h"
#include "host/backend/QueueJob.h"
#include "host/separations/SystemSeparations.h"
#include "host/terminal/ExitStatus.h"
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cups/backend.h>
#include <fcntl.h>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// The printer's state reasons of ours. One stays until it is taken back.
constexpr char kFolderMissing[] = "com.zel.hot-folder-missing-error";
constexpr char kFolderFull[] = "com.zel.hot-folder-full-error";

std::string Variable(const char *name) {
    const char *value = getenv(name);
    return value ? value : "";
}

/// A failure of the job, or of the whole queue.
int Fail(cups_backend_t status, const std::string &message) {
    Tell(MessageKind::Error, message);
    return status;
}

/// A folder on a share comes back, a full disk is cleared: the job waits here, so that no later one
/// overtakes it. Less than a minute at a time: the scheduler then starts it again, with a new limit
/// of its time.
int WaitForFolder(const char *reason, const std::string &message) {
    constexpr int kSeconds = 30;
    Tell(MessageKind::State, std::string("+") + reason);
    Tell(MessageKind::Info, message);
    for (int i = 0; i < kSeconds && !IsCancelled(); ++i)
        sleep(1);
    return IsCancelled() ? CUPS_BACKEND_OK : CUPS_BACKEND_RETRY_CURRENT;
}

bool WriteAll(int fd, const char *bytes, ssize_t count) {
    for (ssize_t done = 0; done < count;) {
        const ssize_t put = write(fd, bytes + done, static_cast<size_t>(count - done));
        if (put < 0 && errno != EINTR) return false;
        done += std::max<ssize_t>(put, 0);
    }
    return true;
}

/// What the filters write into our standard input: zelprint wants a file that it can seek in.
bool SpoolInput(const std::string &path) {
    const int out = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (out < 0) return false;
    static char buffer[65536];
    ssize_t got = 0;
    bool good = true;
    while (good && !IsCancelled() && (got = read(STDIN_FILENO, buffer, sizeof buffer)) != 0)
        good = got < 0 ? errno == EINTR : WriteAll(out, buffer, got);
    return close(out) == 0 && good && got == 0;
}

std::string WhyNoFolder(const std::string &folder) {
    struct stat info = {};
    if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        return errno == EACCES ? "The hot folder " + folder + " may not be seen by the print system"
                               : "The hot folder " + folder + " is not there";
    if (access(folder.c_str(), W_OK | X_OK) != 0)
        return "The hot folder " + folder + " may not be written by the print system";
    return {};
}

/// Nobody's saved defaults count, nothing is written outside of the job's folder, and the
/// separations are those of the machine.
void IsolatePreferences(const JobFolder &job) {
    constexpr char kConfiguration[] = "/etc/GNUstep/GNUstep.conf";
    const std::string common = TextOfFile(kConfiguration);
    if (common.empty()) return;
    const std::string own = "GNUSTEP_USER_DEFAULTS_DIR=" + job.File("Defaults") +
                            "\nGNUSTEP_USER_DIR_LIBRARY=" + SystemLibrary() + "\n";
    std::ofstream(job.File("GNUstep.conf")) << own << common << "\n" << own;
    setenv("GNUSTEP_CONFIG_FILE", job.File("GNUstep.conf").c_str(), 1);
}

void PrepareEnvironment(const JobFolder &job) {
    setenv("LC_ALL", "C.UTF-8", 1); // the scheduler names a locale that no system has
    setenv("HOME", job.Path().c_str(), 1);
    IsolatePreferences(job);
    // The scheduler allows files for their owner only: who may see the documents is for the folder
    // to say. Not before: GNUstep refuses a configuration that others may write.
    umask(0002);
}

std::string Replaced(std::string text, const std::string &what, const std::string &by) {
    for (size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size())
        text.replace(at, what.size(), by);
    return text;
}

/// What becomes of a job that zelprint could not print. `report` is its JSON, `messages` what came
/// beside it.
int AfterFailure(int status, const nlohmann::json &report, const std::string &messages,
                 const std::string &file) {
    if (status == kNotRun && messages.empty())
        return WaitForFolder(kFolderFull, "zelprint could not be started: there is no room for "
                                          "temporary files, or no memory");
    std::string message =
        status == kNotRun ? messages : "zelprint failed with status " + std::to_string(status);
    std::string about;
    if (report.is_object() && report.contains("error")) {
        message = report["error"].value("message", message);
        about = report["error"].value("about", "");
    }
    message = Replaced(message, file, "the document");
    if (status == static_cast<int>(ExitStatus::Output)) return WaitForFolder(kFolderFull, message);
    if (about == "document") return Fail(CUPS_BACKEND_CANCEL, message);
    // Somebody who knows may put it right, and let the job go on.
    if (about == "separation" || status == static_cast<int>(ExitStatus::Usage))
        return Fail(CUPS_BACKEND_HOLD, message);
    return Fail(CUPS_BACKEND_STOP, message);
}

int AfterSuccess(const nlohmann::json &report, const QueueJob &job) {
    const auto files = report.is_object() ? report.value("files", nlohmann::json::array())
                                          : nlohmann::json::array();
    if (!files.empty()) {
        const std::string more =
            files.size() > 1 ? " and " + std::to_string(files.size() - 1) + " more" : "";
        Tell(MessageKind::Info, "Printed " + files[0].value("path", "") + more);
    }
    // Filters count the pages of what they make.
    if (job.isPicture) Tell(MessageKind::Page, "1 " + std::to_string(job.copies));
    return CUPS_BACKEND_OK;
}

int Print(const QueueJob &job, const JobFolder &folder, const std::string &file) {
    const std::string own = Variable("ZELPRINT");
    std::vector<std::string> words = {own.empty() ? ZEL_ZELPRINT : own};
    const std::vector<std::string> options = OptionsOf(job);
    if (options.empty())
        return Fail(CUPS_BACKEND_STOP,
                    "The queue has no PPD file that can be read; make it with zelprint queue");
    words.insert(words.end(), options.begin(), options.end());
    words.insert(words.end(), {"--", file});
    PrepareEnvironment(folder);
    for (const std::string &word : words)
        Tell(MessageKind::Debug, word);
    Tell(MessageKind::State, std::string("-") + kFolderMissing + "," + kFolderFull);
    Tell(MessageKind::Info, "Printing into " + job.folder);
    if (IsCancelled()) return CUPS_BACKEND_OK;
    const int status = RunToEnd(words, folder.File("report"), folder.File("messages"));
    const std::string messages = TextOfFile(folder.File("messages"));
    Tell(MessageKind::Debug, messages);
    if (IsCancelled()) return CUPS_BACKEND_OK;
    const auto report = nlohmann::json::parse(TextOfFile(folder.File("report")), nullptr, false);
    return status == 0 ? AfterSuccess(report, job) : AfterFailure(status, report, messages, file);
}

int RunJob(QueueJob job, const char *sent) {
    const JobFolder folder;
    if (folder.Path().empty())
        return WaitForFolder(kFolderFull, "There is no room for temporary files");
    const std::string file = sent ? sent : folder.File("document");
    if (!sent && !SpoolInput(file)) {
        if (IsCancelled()) return CUPS_BACKEND_OK;
        return WaitForFolder(kFolderFull,
                             "The document could not be put into the spool folder; make "
                             "room on its disk");
    }
    struct stat info = {};
    if (stat(file.c_str(), &info) == 0 && info.st_size == 0)
        return Fail(CUPS_BACKEND_CANCEL,
                    "The document is damaged: it could not be made into pages");
    const std::string problem = WhyNoFolder(job.folder);
    if (!problem.empty()) return WaitForFolder(kFolderMissing, problem);
    job.isPicture =
        sent != nullptr && Variable("FINAL_CONTENT_TYPE").find("pdf") == std::string::npos;
    return Print(job, folder, file);
}

/// The job as the scheduler's arguments and environment tell it.
QueueJob JobOf(int argc, char **argv) {
    QueueJob job;
    job.number = argv[1];
    job.title = argv[3];
    job.options = argv[5];
    job.folder = HotFolderOfURI(Variable("DEVICE_URI"));
    job.ppd = Variable("PPD");
    // Filters make the copies; a file that comes as it was sent has none.
    if (argc == 7) job.copies = std::max(1, atoi(argv[4]));
    return job;
}

} // namespace

int main(int argc, char **argv) {
    if (argc == 1) {
        (void)puts("direct zelprint \"Unknown\" \"Hot folder (zelprint:/path/to/folder)\"");
        return CUPS_BACKEND_OK;
    }
    if (argc < 6 || argc > 7) {
        (void)fputs("Usage: zelprint job user title copies options [file]\n", stderr);
        return CUPS_BACKEND_FAILED;
    }
    HeedCancelling();
    try {
        const QueueJob job = JobOf(argc, argv);
        if (job.folder.empty())
            return Fail(CUPS_BACKEND_STOP, "The device URI must be zelprint:/path/to/hot-folder");
        return RunJob(job, argc == 7 ? argv[6] : nullptr);
    } catch (...) { // memory is short, which passes
        return CUPS_BACKEND_RETRY_CURRENT;
    }
}
