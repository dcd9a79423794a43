// What the print system hands to the backend of a queue, of any bytes: device URI, title, options
// and the queue's PPD file. Whatever they are, zelprint gets options, each in one word, and the
// folder is one from the root.
#include "fuzz/MemoryFile.h"
#include "host/backend/QueueJob.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

bool BeginsWith(const std::string &text, const std::string &start) {
    return text.compare(0, start.size(), start) == 0;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    constexpr size_t kLongestText = 200;
    static MemoryFile file;
    FuzzedDataProvider data(bytes, size);
    QueueJob job;
    job.isPicture = data.ConsumeBool();
    job.copies = data.ConsumeIntegralInRange(1, 100);
    // The scheduler hands over C strings.
    const auto text = [&data] {
        return std::string(data.ConsumeRandomLengthString(kLongestText).c_str());
    };
    job.number = "7";
    job.title = text();
    job.options = text();
    job.folder = HotFolderOfURI("zelprint:" + text());
    Require(job.folder.empty() || job.folder[0] == '/');
    const std::string ppd = data.ConsumeRemainingBytesAsString();
    file.Hold(ppd.data(), ppd.size());
    job.ppd = file.Path();
    for (const std::string &word : OptionsOf(job)) {
        Require(BeginsWith(word, "--"));
        if (BeginsWith(word, "--title=")) Require(word.find('/') == std::string::npos);
    }
    return 0;
}
