// zelprint queue NAME: a print queue of CUPS in front of a hot folder, so that every program prints
// there.
#include "host/command/CommandLine.h"

#include "host/command/PrinterInfoCommand.h"
#include "host/driver/Driver.h"
#include "host/driver/PPDCheck.h"
#include "host/driver/ProgramPath.h"
#include "host/queue/HotFolderRights.h"
#include "host/queue/QueuePPD.h"
#include "host/queue/RunProgram.h"
#include "host/separations/SystemSeparations.h"
#include "host/terminal/Console.h"
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr char kScheme[] = "zelprint:";

struct Options {
    std::string name, ppd, hotFolder;
    QueuePPDOptions offered;
    bool isDefault = false, share = false, printPPD = false, remove = false;
};

/// What lpadmin takes for the name of a queue.
void CheckName(const std::string &name) {
    const bool good = !name.empty() && name.size() <= 127 && name[0] != '-' &&
                      std::none_of(name.begin(), name.end(), [](char c) {
                          return static_cast<unsigned char>(c) <= ' ' || c == 0x7F || c == '/' ||
                                 c == '#' || c == '?' || c == '\'' || c == '"' || c == '\\';
                      });
    if (!good)
        throw HostError(ExitStatus::Usage, "a queue's name has no blanks, quotes, '/', '#' or '?'; "
                                           "give another one");
}

std::string DeviceURI(const std::string &folder) {
    std::string uri = kScheme;
    for (const char c : folder) {
        const auto byte = static_cast<unsigned char>(c);
        if (isalnum(byte) || strchr("/-._~", c)) {
            uri += c;
        } else {
            char text[4];
            (void)snprintf(text, sizeof text, "%%%02X", byte);
            uri += text;
        }
    }
    return uri;
}

std::string CheckedFolder(const std::string &path) {
    if (path.empty()) throw HostError(ExitStatus::Usage, "give the hot folder with --hot-folder");
    std::string folder = RealPath(path);
    struct stat info = {};
    if (folder.empty() || stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        throw HostError(ExitStatus::Output,
                        "there is no folder " + PlainText(path) + "; make it first");
    const std::string problem = WhyNotWritableBy(kPrintUser, folder);
    if (!problem.empty()) throw HostError(ExitStatus::Output, problem);
    return folder;
}

/// A queue knows the separations of the machine, not those of a user.
void CheckSeparations(const std::vector<std::string> &wanted) {
    for (const std::string &name : wanted) {
        if (name.find_first_of("\"\r\n") != std::string::npos)
            throw HostError(ExitStatus::Usage, "a print queue cannot name the separation '" +
                                                   PlainText(name) +
                                                   "'; give it a name without quotes");
        const std::string path = SystemSeparationsFolder() + "/" + name;
        if (name != "Standard" && access(path.c_str(), R_OK) != 0)
            throw HostError(ExitStatus::Input, kAboutSeparation,
                            "this machine has no separation called '" + PlainText(name) +
                                "'; make it with zelprint make-separation --system");
    }
}

std::string PPDFromOptions(const Options &options, const std::string &bundlePath) {
    if (options.ppd.empty())
        throw HostError(ExitStatus::Usage, "give the printer's PPD file with --ppd");
    CheckPPDName(options.ppd);
    const DriverBundle bundle(bundlePath);
    CheckSeparations(options.offered.separations);
    return MakeQueuePPD(ReadPrinterInfo(bundle, options.ppd), options.offered);
}

/// A file for lpadmin alone, removed again.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string &text) {
        const int fd = mkostemp(mPath, O_CLOEXEC);
        if (fd < 0) throw HostError(ExitStatus::Output, "no temporary file can be made in /tmp");
        const bool whole = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
        if (close(fd) != 0 || !whole) {
            (void)unlink(mPath);
            throw HostError(ExitStatus::Output, "the temporary file in /tmp could not be written");
        }
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile() { (void)unlink(mPath); }
    [[nodiscard]] std::string Path() const { return mPath; }

private:
    char mPath[64] = "/tmp/zelprint-queue-XXXXXX";
};

/// Its first line that says something; a reminder that drivers like ours will go one day does not.
std::string Message(const std::string &output) {
    size_t at = 0;
    while (at < output.size()) {
        const size_t end = std::min(output.find('\n', at), output.size());
        const std::string line = output.substr(at, end - at);
        at = end + 1;
        if (!line.empty() && line.find("deprecated") == std::string::npos) return PlainText(line);
    }
    return {};
}

void RunLpadmin(const std::vector<std::string> &words) {
    std::vector<std::string> all = {"lpadmin"};
    all.insert(all.end(), words.begin(), words.end());
    const ProgramResult result = RunProgram(all);
    if (result.status == 127)
        throw HostError(ExitStatus::Queue,
                        "there is no lpadmin; install CUPS (Debian: apt install cups)");
    if (result.status != 0) {
        const std::string why = Message(result.output);
        throw HostError(ExitStatus::Queue,
                        why.empty() ? "lpadmin failed with status " + std::to_string(result.status)
                                    : why);
    }
}

ExitStatus Make(const Options &options, const std::string &bundle) {
    const std::string folder = CheckedFolder(options.hotFolder);
    const TemporaryFile ppd(PPDFromOptions(options, bundle));
    std::vector<std::string> words = {
        "-p", options.name, "-v", DeviceURI(folder), "-P", ppd.Path(), "-E",
        // The next job would overtake one that failed.
        "-o", "printer-error-policy=stop-printer", "-o",
        std::string("printer-is-shared=") + (options.share ? "true" : "false")};
    if (!options.offered.info.empty()) words.insert(words.end(), {"-D", options.offered.info});
    RunLpadmin(words);
    if (options.isDefault) RunLpadmin({"-d", options.name});
    Answer("The queue " + PlainText(options.name) + " prints into " + PlainText(folder) +
           "\nTry it: lp -d " + ShellWord(options.name) + " FILE.pdf\n");
    return ExitStatus::Success;
}

ExitStatus Remove(const std::string &name) {
    const ProgramResult devices = RunProgram({"lpstat", "-v", name});
    if (devices.status == 127)
        throw HostError(ExitStatus::Queue,
                        "there is no lpstat; install CUPS (Debian: apt install cups)");
    if (devices.status != 0)
        throw HostError(ExitStatus::Queue,
                        "there is no queue called " + PlainText(name) + "; see lpstat -v");
    if (devices.output.find("device for " + name + ": " + kScheme) == std::string::npos)
        throw HostError(ExitStatus::Queue, "the queue " + PlainText(name) +
                                               " does not print into a hot folder; it stays");
    RunLpadmin({"-x", name});
    Answer("The queue " + PlainText(name) + " is removed\n");
    return ExitStatus::Success;
}

ExitStatus Run(const Options &options, const std::string &bundle) {
    CheckName(options.name);
    if (options.remove) return Remove(options.name);
    if (!options.printPPD) return Make(options, bundle);
    Answer(PPDFromOptions(options, bundle));
    return ExitStatus::Success;
}

} // namespace

void AddQueueCommand(CLI::App &app, CommandAction &action, const std::string &bundle) {
    CLI::App *command = app.add_subcommand("queue", "make a print queue in front of a hot folder");
    const auto options = std::make_shared<Options>();
    command->add_option("NAME", options->name, "what the queue is called")
        ->type_name("")
        ->required();
    command->add_option("--ppd", options->ppd, "PPD file of the printer")->type_name("FILE");
    command->add_option("--hot-folder", options->hotFolder, "folder that receives the documents")
        ->type_name("DIR");
    command
        ->add_option("--separation", options->offered.separations,
                     "CMYK separation to offer; the first is the default")
        ->type_name("NAME")
        ->take_all();
    command->add_flag("--eps", options->offered.eps, "EPS is the default");
    command->add_option("--info", options->offered.info, "what people see as the queue's name")
        ->type_name("TEXT");
    command->add_flag("--default", options->isDefault, "make it the default queue");
    command->add_flag("--share", options->share, "let other machines print to it");
    command->add_flag("--print-ppd", options->printPPD, "write its PPD file and change nothing");
    command->add_flag("--remove", options->remove, "remove the queue");
    command->callback([options, &action, &bundle] {
        action = [options, &bundle] { return Run(*options, bundle); };
    });
}
