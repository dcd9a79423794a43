// Opening and modelling a large printer description: 2 MB, hundreds of entries, translated into
// many languages, the pages at the front and what the model asks for last at the end.
#include "ppd/PostscriptPrinterInfo.h"

#include "ppd/MiniParser.h"
#include "support/CFRef.h"

#include <unistd.h>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int kSizes = 300;
constexpr const char *kLanguages[] = {"cs", "da", "de", "el", "es",    "fi",   "fr",
                                      "hu", "it", "ja", "ko", "nb",    "nl",   "pl",
                                      "pt", "ru", "sv", "tr", "zh_CN", "zh_TW"};

std::string Option(int i) {
    return "Size" + std::to_string(i);
}

std::string Pages() {
    std::string text = "*OpenUI *PageSize/Media Size: PickOne\n*DefaultPageSize: Size7\n";
    for (int i = 0; i < kSizes; ++i)
        text += "*PageSize " + Option(i) + "/Sheet of size " + std::to_string(i) + ": \"\n  <<" +
                " /PageSize [595 842] /ImagingBBox null\n  >> setpagedevice\"\n*End\n";
    text += "*CloseUI: *PageSize\n";
    for (int i = 0; i < kSizes; ++i)
        text += "*ImageableArea " + Option(i) + ": \"12.5 12.5 582.5 829.5\"\n*PaperDimension " +
                Option(i) + ": \"595 842\"\n";
    return text;
}

std::string Translations(size_t size) {
    std::string text;
    for (int group = 0; text.size() < size; ++group)
        for (const char *language : kLanguages)
            for (int i = 0; i < 10; ++i)
                text += "*" + std::string(language) + ".Option" + std::to_string(group) + " " +
                        Option(i) + "/Bezeichnung der Auswahl <e4> " + std::to_string(i) +
                        ": \"\"\n";
    return text;
}

std::string LargePPD() {
    return "*PPD-Adobe: \"4.3\"\n" + Pages() + Translations(2000000) +
           "*ColorDevice: True\n*LanguageLevel: \"3\"\n*DefaultResolution: 600dpi\n"
           "*Resolution 600dpi: \"code\"\n*Resolution 1200dpi: \"code\"\n"
           "*CustomPageSize True: \"code\"\n*ParamCustomPageSize Width: 1 points 72 1008\n";
}

/// The file, for as long as the program runs.
class File {
public:
    File() : mPath("/tmp/ppd-bench-XXXXXX") {
        const int descriptor = mkstemp(mPath.data());
        const std::string content = LargePPD();
        mSize = content.size();
        std::FILE *file = descriptor < 0 ? nullptr : fdopen(descriptor, "wb");
        if (!file || std::fwrite(content.data(), 1, mSize, file) != mSize || std::fclose(file) != 0)
            std::abort();
        mURL = CFRef<CFURLRef>(CFURLCreateFromFileSystemRepresentation(
            nullptr, reinterpret_cast<const UInt8 *>(mPath.data()),
            static_cast<CFIndex>(mPath.size()), false));
    }
    ~File() { unlink(mPath.c_str()); }
    File(const File &) = delete;
    File &operator=(const File &) = delete;
    CFURLRef URL() const { return mURL.Get(); }
    int64_t Size() const { return static_cast<int64_t>(mSize); }

private:
    std::string mPath;
    size_t mSize;
    CFRef<CFURLRef> mURL;
};

const File &LargeFile() {
    static const File file;
    return file;
}

void OpenAndModel(benchmark::State &state) {
    while (state.KeepRunning()) {
        const PostscriptPrinterInfo info(LargeFile().URL());
        if (info.Pages().NumPages() != kSizes || info.Resolutions().NumResolutions() != 2 ||
            !info.HasColour() || !info.Pages().HasCustomPageSetup())
            state.SkipWithError("the model is wrong");
    }
}
BENCHMARK(OpenAndModel)->Unit(benchmark::kMillisecond);

/// One pass over the whole file for a keyword that is not there.
void ScanOnce(benchmark::State &state) {
    PPD::MiniParser parser(LargeFile().URL());
    while (state.KeepRunning())
        benchmark::DoNotOptimize(parser.GetOptionEntry("*NoSuchKeyword"));
    state.SetBytesProcessed(state.iterations() * LargeFile().Size());
}
BENCHMARK(ScanOnce)->Unit(benchmark::kMillisecond);

} // namespace
