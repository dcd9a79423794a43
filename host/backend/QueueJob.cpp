#include "host/backend/QueueJob.h"

#include "host/queue/QueueOptions.h"
#include <cstdio>
#include <cstring>
#include <cups/cups.h>
#include <memory>
#include <strings.h>

// The library marks what has to do with PPD files as old; there is nothing else for queues that
// have one.
#pragma clang diagnostic ignored "-Wdeprecated-declarations"
#include <cups/ppd.h>

namespace {

/// The queue's choices with the job's over them.
class MarkedOptions {
public:
    explicit MarkedOptions(const QueueJob &job)
        : mPPD(ppdOpenFile(job.ppd.c_str())),
          mCount(cupsParseOptions(job.options.c_str(), 0, &mOptions)) {
        if (!mPPD) return;
        ppdMarkDefaults(mPPD);
        cupsMarkOptions(mPPD, mCount, mOptions);
    }
    MarkedOptions(const MarkedOptions &) = delete;
    MarkedOptions &operator=(const MarkedOptions &) = delete;
    ~MarkedOptions() {
        cupsFreeOptions(mCount, mOptions);
        if (mPPD) ppdClose(mPPD);
    }

    [[nodiscard]] bool IsReadable() const { return mPPD != nullptr; }
    [[nodiscard]] const ppd_size_t *Page() const { return ppdPageSize(mPPD, nullptr); }
    [[nodiscard]] std::string Choice(const char *option) const {
        const ppd_choice_t *choice = ppdFindMarkedChoice(mPPD, option);
        return choice ? choice->choice : "";
    }
    [[nodiscard]] std::string Attribute(const char *name, const char *of) const {
        const ppd_attr_t *attribute = ppdFindAttr(mPPD, name, of);
        return attribute && attribute->value ? attribute->value : "";
    }
    /// What the client has sent itself; empty when nothing.
    [[nodiscard]] std::string Sent(const char *option) const {
        const char *value = cupsGetOption(option, mCount, mOptions);
        return value ? value : "";
    }

private:
    ppd_file_t *mPPD;
    cups_option_t *mOptions = nullptr;
    int mCount;
};

std::string Title(const QueueJob &job) {
    const size_t slash = job.title.rfind('/');
    std::string name = slash == std::string::npos ? job.title : job.title.substr(slash + 1);
    return name.empty() ? "job " + job.number : name;
}

std::string Media(const MarkedOptions &options) {
    const ppd_size_t *page = options.Page();
    if (!page) return {};
    if (strncasecmp(page->name, "Custom", 6) != 0) return page->name;
    char text[64];
    (void)snprintf(text, sizeof text, "%.2fx%.2fpt", static_cast<double>(page->width),
                   static_cast<double>(page->length));
    return text;
}

/// Clients of IPP say 300x300dpi, which no PPD file calls its choice; zelprint finds the nearest.
std::string Resolution(const MarkedOptions &options) {
    std::string asked = options.Sent("printer-resolution");
    if (!asked.empty() && options.Sent("Resolution").empty()) return asked;
    return options.Choice("Resolution");
}

std::string ColourSpace(const MarkedOptions &options) {
    // What phones send for black and white.
    if (options.Sent("print-color-mode").find("monochrome") != std::string::npos &&
        options.Sent(queue_option::kColourSpace).empty())
        return "gray";
    const std::string choice = options.Choice(queue_option::kColourSpace);
    return choice == "Gray" ? "gray" : choice == "RGB" ? "rgb" : "cmyk";
}

/// PDFs come as whole sheets, laid out and scaled by filters; what lies outside of the imageable
/// area is to be cut.
void AddPlacement(const QueueJob &job, const MarkedOptions &options,
                  std::vector<std::string> &words) {
    const std::string scaling = options.Choice(queue_option::kScaling);
    if (!job.isPicture)
        words.insert(words.end(), {"--scale=none", "--no-auto-rotate"});
    else if (!scaling.empty() && scaling != "auto")
        words.push_back("--scale=" + scaling);
    words.emplace_back(options.Choice(queue_option::kRotation) == "Turned" ? "--rotate"
                                                                           : "--no-rotate");
}

} // namespace

std::string HotFolderOfURI(const std::string &uri) {
    char scheme[32], user[256], host[256], path[1024];
    int port = 0;
    if (httpSeparateURI(HTTP_URI_CODING_ALL, uri.c_str(), scheme, sizeof scheme, user, sizeof user,
                        host, sizeof host, &port, path, sizeof path) < HTTP_URI_STATUS_OK)
        return {};
    return host[0] || path[0] != '/' || !path[1] ? std::string() : path;
}

std::vector<std::string> OptionsOf(const QueueJob &job) {
    const MarkedOptions options(job);
    if (!options.IsReadable()) return {};
    std::vector<std::string> words = {"--json",
                                      "--no-queue",
                                      "--no-flip-h",
                                      "--no-flip-v",
                                      "--ppd=" + job.ppd,
                                      "--hot-folder=" + job.folder,
                                      "--title=" + Title(job)};
    const std::string media = Media(options), resolution = Resolution(options);
    if (!media.empty()) words.push_back("--media=" + media);
    if (!resolution.empty()) words.push_back("--resolution=" + resolution);
    const std::string space = ColourSpace(options);
    words.push_back("--colour-space=" + space);
    if (space == "cmyk") {
        const std::string name = options.Attribute(
            queue_option::kSeparationName, options.Choice(queue_option::kSeparation).c_str());
        words.push_back("--separation=" + (name.empty() ? "Standard" : name));
    }
    words.emplace_back(options.Choice(queue_option::kFormat) == "EPS" ? "--eps" : "--ps");
    words.push_back("--copies=" + std::to_string(job.copies));
    AddPlacement(job, options, words);
    return words;
}
