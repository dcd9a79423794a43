// soak_documents COUNT FOLDER PPD...: a host prints that many small documents, each with a
// record, a printer and a separation of its own; some of them are refused, some fail, some are
// given up. Every file that stands in the hot folder after a document has to be whole, and after
// the first tenth of them nothing of the process may grow. FOLDER is emptied.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/soak/Usage.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <map>
#include <random>

namespace fs = std::filesystem;

namespace {

/// What the allocator and the runtime's caches may keep more than at the first measure: less than
/// two bytes for each of a hundred thousand documents.
constexpr size_t kCaches = 128 * 1024;

struct Folder {
    fs::path path;
    std::vector<fs::path> printers;
};

using Random = std::mt19937;

bool Happens(Random &random, unsigned percent) {
    return random() % 100 < percent;
}

void SetSeparation(PSHPrint &record, const std::string &name) {
    record.cmykSeparationName[0] = static_cast<uint8_t>(name.size());
    std::copy(name.begin(), name.end(), record.cmykSeparationName + 1);
}

void ChooseRecord(PSHPrint &record, Random &random) {
    const auto maybe = [&random](unsigned percent) {
        return SwapBigEndian(uint32_t{Happens(random, percent) ? 1U : 0U});
    };
    record.mColourSpace_be = SwapBigEndian(static_cast<uint32_t>(random() % 3));
    record.mEPSFormat_be = maybe(50);
    record.mFlipH_be = maybe(20);
    record.mFlipV_be = maybe(20);
    record.mRotated_be = maybe(30);
    record.copies_be = Int16ToBigEndian(static_cast<int16_t>(1 + random() % 3));
    SetSeparation(record,
                  std::vector<std::string>{"", "Standard", "press", "nowhere"}[random() % 4]);
    if (Happens(random, 5)) { // what no dialog would make, behind the page's size and resolution
        auto *bytes = reinterpret_cast<uint8_t *>(&record);
        constexpr size_t kFirst = offsetof(PSHPrint, mColourSpace_be);
        for (int i = 0; i < 20; ++i)
            bytes[kFirst + random() % (sizeof record - kFirst)] = static_cast<uint8_t>(random());
    }
}

class Document {
public:
    Document(const Folder &folder, unsigned number) : mFolder(folder), mRandom(number) {}
    ~Document() {
        if (mContext) (void)Driver().ZELPrClose(mContext);
    }
    Document(const Document &) = delete;
    Document &operator=(const Document &) = delete;

    /// Prints it; the code of the first call that failed.
    int32_t Print() {
        const int32_t opened = Open();
        if (opened != 0) return opened;
        Prepare();
        int32_t code = Driver().ZELPrOpenDoc(mContext);
        for (unsigned page = 0; page <= mRandom() % 3 && code == 0; ++page)
            code = PrintPage();
        if (Happens(mRandom, 3)) (void)Driver().ZELPrSetError(mContext, kZELUserCancelled);
        const int32_t closed = Driver().ZELPrCloseDoc(mContext);
        return code != 0 ? code : closed;
    }

private:
    int32_t Open() {
        const CFRef<CFURLRef> url = MakeURL(mFolder.printers[mRandom() % mFolder.printers.size()]);
        CFStringRef message = nullptr;
        const int32_t code =
            Driver().ZELPrOpenWithPrinter(LoadedBundle(), url.Get(), &mContext, &message);
        if (message) CFRelease(message);
        return code;
    }
    void Prepare() {
        Driver().ZELPrDefaults(mContext, mRecord.Get());
        ChooseRecord(mRecord.Record(), mRandom);
        if (Happens(mRandom, 80)) (void)Driver().ZELPrValidate(mContext, mRecord.Get());
        const CFRef<CFMutableDictionaryRef> settings = MakeDictionary();
        if (Happens(mRandom, 97))
            CFDictionarySetValue(settings.Get(), CFSTR("outputFolder"),
                                 MakeBookmark(mFolder.path).Get());
        (void)Driver().ZELPrSetJobSettings(mContext, mRecord.Get(), settings.Get());
        (void)Driver().ZELPrSetJobName(mContext, nullptr, CFSTR("Dauerlauf"));
        const ZELPageRecord page = {kWidth, kHeight, kWidth * 25.4 / 72, kHeight * 25.4 / 72};
        mFormat = std::vector<uint16_t>{kZELFormatGray8, kZELFormatXRGB32,
                                        kZELFormatCMYK32}[mRandom() % 3];
        Driver().ZELPrSuggestPage(mContext, nullptr, &page, mFormat);
    }
    int32_t PrintPage() {
        const uint16_t format = Happens(mRandom, 2) ? kZELFormatGray8 : mFormat;
        const int32_t sample = format == kZELFormatGray8 ? 1 : 4;
        const std::vector<uint8_t> pixels(static_cast<size_t>(kWidth) * kHeight * sample,
                                          static_cast<uint8_t>(mRandom()));
        const ZELRect all = {0, 0, kHeight, kWidth};
        const ZELBand band = {pixels.data(), all, kWidth * sample, format};
        (void)Driver().ZELPrOpenPage(mContext, nullptr, nullptr);
        (void)Driver().ZELPrPrintBitmap(mContext, &band, &all, &all);
        return Driver().ZELPrClosePage(mContext);
    }

    static constexpr int32_t kWidth = 24;
    static constexpr int32_t kHeight = 16;
    const Folder &mFolder;
    Random mRandom;
    RecordHandle mRecord;
    DriverContext *mContext = nullptr;
    uint16_t mFormat = 0;
};

/// Takes all documents from the hot folder; how many of them are not whole.
int TakeDocuments(const fs::path &folder, long &taken) {
    int broken = 0;
    for (const auto &entry : fs::directory_iterator(folder)) {
        const std::string text = ReadFile(entry.path());
        const bool whole = text.rfind("%!PS", 0) == 0 && text.ends_with("%%EOF\n");
        if (!whole) (void)fprintf(stderr, "not whole: %s\n", entry.path().c_str());
        broken += whole ? 0 : 1;
        ++taken;
        fs::remove(entry.path());
    }
    return broken;
}

bool Grew(const Usage &before, const Usage &after) {
    return after.heap > before.heap + kCaches || after.descriptors != before.descriptors ||
           after.threads != before.threads;
}

int Soak(unsigned count, const Folder &folder) {
    std::map<int32_t, long> codes;
    long taken = 0;
    int broken = 0;
    Usage before;
    for (unsigned number = 0; number < count; ++number) {
        if (number == count / 10) {
            before = Usage::Now();
            before.Show("10 %");
        }
        ++codes[Document(folder, number).Print()];
        broken += TakeDocuments(folder.path, taken);
    }
    const Usage after = Usage::Now();
    after.Show("100 %");
    (void)printf("%u documents, %ld files, %d not whole; codes:", count, taken, broken);
    for (const auto &[code, times] : codes)
        (void)printf(" %d (%ld times)", code, times);
    (void)printf("\n");
    const bool varied = codes[0] > count / 3 && codes.size() > 2;
    return broken == 0 && varied && !Grew(before, after) ? 0 : 1;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 4) return 2;
    Folder folder = {argv[2], {argv + 3, argv + argc}};
    // What the driver says of printers and records belongs to nobody here.
    if (!freopen("/dev/null", "w", stderr)) return 2;
    ClearPreferences();
    return Soak(static_cast<unsigned>(std::strtoul(argv[1], nullptr, 10)), folder);
}
