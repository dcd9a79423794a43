// One thousand random sequences of calls, right and wrong, with failures injected: every call's
// result is compared with a model of the session, and at the end nothing is left that should not
// be.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <sstream>
#include <sys/resource.h>

namespace fs = std::filesystem;

namespace {

constexpr int kSequences = 1000;
constexpr int32_t kWidth = 20;
constexpr int32_t kHeight = 10;

size_t EntriesOf(const char *folder) {
    size_t count = 0;
    for ([[maybe_unused]] const auto &entry : fs::directory_iterator(folder))
        ++count;
    return count;
}

/// No file of this process can grow while it lives: a full disk.
void SetDiskFull(bool full) {
    static const rlim_t unlimited = [] {
        rlimit limit = {};
        getrlimit(RLIMIT_FSIZE, &limit);
        return limit.rlim_max;
    }();
    const rlimit limit = {full ? 0 : unlimited, unlimited};
    setrlimit(RLIMIT_FSIZE, &limit);
}

/// What the session's rules say must happen.
struct Model {
    bool ended = false; ///< an error or the host's own is latched
    int32_t error = 0;
    uint16_t depth = 32;
    bool hasRecord = false, shortRecord = false, unknownName = false, eps = false;
    bool hasFolder = false, diskFull = false;
    // The open document:
    bool open = false, documentEPS = false, pageSeen = false, pagePending = false;
    bool pageBegun = false; ///< rows can be printed
    uint16_t documentDepth = 0;
    size_t files = 0; ///< finished ones

    int32_t Latch(int32_t result) {
        if (result && !ended) {
            ended = true;
            error = result;
        }
        return error;
    }
    int32_t SetError(int32_t code) {
        if (!ended) error = code;
        ended = true;
        return 0;
    }
    /// The text collected for a page reaches the file when the file is closed.
    void FinishPage() {
        if (pagePending && !diskFull) ++files;
        pagePending = false;
    }

    int32_t OpenDoc() {
        if (ended) return error;
        if (open || !hasRecord || shortRecord) return Latch(kZELBadParameter);
        if (depth != 8 && depth != 32 && depth != 33) return Latch(kZELBadParameter);
        if (!eps && unknownName) return Latch(kZELBadParameter);
        if (!eps && !hasFolder) return Latch(kZELFileNotCreated);
        open = true;
        documentEPS = eps;
        documentDepth = depth;
        pageSeen = pagePending = pageBegun = false;
        return 0;
    }
    int32_t OpenPage() {
        if (ended) return error;
        if (!open) return Latch(kZELBadParameter);
        if (documentEPS) {
            const bool fails = pagePending && diskFull;
            FinishPage();
            if (fails) return Latch(EFBIG);
            if (!folderAtOpening) return Latch(kZELFileNotCreated);
        }
        pageSeen = pagePending = pageBegun = true;
        return 0;
    }
    int32_t PrintBitmap(bool hasBand, uint16_t format) {
        if (ended) return error;
        if (!open || !hasBand) return Latch(kZELBadParameter);
        return format == documentDepth ? 0 : Latch(kZELPixelFormatDiffers);
    }
    int32_t ClosePage() {
        if (ended) return error;
        if (!open || (documentEPS && !pageSeen)) return Latch(kZELBadParameter);
        return 0;
    }
    int32_t CloseDoc() {
        if (!ended && !open) Latch(kZELBadParameter);
        if (!ended) FinishPage();
        open = pagePending = false;
        return error;
    }

    bool folderAtOpening = false;
};

class Sequence {
public:
    explicit Sequence(uint32_t seed) : mRandom(seed) {
        Driver().ZELPrDefaults(mSession.Get(), mGood.Get());
        Shrink();
        mModel.hasRecord = true;
    }
    void Run() {
        const int steps = 5 + Pick(40);
        const int faults = Pick(3) * 8; // of 100 steps
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            if (Pick(100) < faults)
                AnyStep();
            else
                GoodStep();
        }
        Finish();
    }
    std::string Trace() const { return mTrace.str(); }
    const Model &End() const { return mModel; }

private:
    int Pick(int count) { return static_cast<int>(mRandom() % static_cast<uint32_t>(count)); }
    void Expect(const char *call, int32_t result, int32_t expected) {
        mTrace << call << " = " << result << '\n';
        EXPECT_EQ(result, expected) << call;
    }
    PSHPrint &Record() { return mGood.Record(); }
    /// A page of few pixels, in colours that go with the depth.
    void Shrink() {
        Record().mPageWidth_be = DoubleToBigEndian(kWidth);
        Record().mPageHeight_be = DoubleToBigEndian(kHeight);
        Record().mXDpi_be = Record().mYDpi_be = DoubleToBigEndian(72);
        Record().mColourSpace_be = SwapBigEndian(uint32_t{1});
    }

    /// What a well-behaved host would do next.
    void GoodStep() {
        if (!mModel.hasFolder || mModel.shortRecord) return GoodFolder();
        if (!mModel.open) {
            static void (Sequence::*const between[])() = {
                &Sequence::OpenDoc,  &Sequence::OpenDoc,  &Sequence::WholeDocument,
                &Sequence::Validate, &Sequence::Defaults, &Sequence::ToggleEPS,
                &Sequence::SetName,  &Sequence::Inform,   &Sequence::Suggest};
            return (this->*between[Pick(std::size(between))])();
        }
        if (mPageIsOpen) return Pick(3) ? Print(false) : ClosePage();
        return Pick(3) ? OpenPage() : CloseDoc();
    }
    /// Anything, in any order.
    void AnyStep() {
        static void (Sequence::*const steps[])() = {
            &Sequence::OpenDoc,        &Sequence::OpenPage,  &Sequence::PrintAnything,
            &Sequence::ClosePage,      &Sequence::CloseDoc,  &Sequence::BadFolder,
            &Sequence::SuggestWrong,   &Sequence::Defaults,  &Sequence::Validate,
            &Sequence::ShortRecord,    &Sequence::SpoilName, &Sequence::ToggleEPS,
            &Sequence::SetName,        &Sequence::Inform,    &Sequence::RefusedPrinter,
            &Sequence::DiskFull,       &Sequence::DiskFull,  &Sequence::HostError,
            &Sequence::CancelledDialog};
        (this->*steps[Pick(std::size(steps))])();
    }

    void OpenDoc() {
        const bool wasOpen = mModel.open;
        const int32_t expected = mModel.OpenDoc();
        if (mModel.open && !wasOpen) mModel.folderAtOpening = mModel.hasFolder;
        mPageIsOpen = false;
        Expect("OpenDoc", Driver().ZELPrOpenDoc(mSession.Get()), expected);
    }
    void OpenPage() {
        Expect("OpenPage", Driver().ZELPrOpenPage(mSession.Get(), nullptr, nullptr),
               mModel.OpenPage());
        mPageIsOpen = true;
    }
    void PrintAnything() { Print(true); }
    void Print(bool withFaults) {
        const int kind = withFaults ? Pick(4) : 4;
        const uint16_t right = mModel.documentDepth ? mModel.documentDepth : 32;
        const uint16_t format = kind == 0 ? 36 : right;
        const std::vector<uint8_t> pixels(kWidth * kHeight * 12, 77);
        const ZELRect bounds = {0, 0, kHeight, kWidth};
        const ZELRect dest = {Pick(12) - 3, Pick(9) - 3, 4 + Pick(12), 4 + Pick(30)};
        const ZELBand band = {pixels.data(), bounds, kWidth * 4, format};
        const bool hasBand = kind != 1;
        Expect("PrintBitmap",
               Driver().ZELPrPrintBitmap(mSession.Get(), hasBand ? &band : nullptr, &bounds, &dest),
               mModel.PrintBitmap(hasBand, format));
    }
    void ClosePage() {
        Expect("ClosePage", Driver().ZELPrClosePage(mSession.Get()), mModel.ClosePage());
        mPageIsOpen = false;
    }
    void CloseDoc() {
        Expect("CloseDoc", Driver().ZELPrCloseDoc(mSession.Get()), mModel.CloseDoc());
        mPageIsOpen = false;
    }
    void WholeDocument() {
        OpenDoc();
        for (int page = 1 + Pick(3); page > 0; --page) {
            OpenPage();
            Print(false);
            ClosePage();
        }
        CloseDoc();
    }
    void GoodFolder() {
        const bool taken = mSession.SetHotFolder(mGood.Get(), mFolder.Path());
        Expect("SetJobSettings", taken, true);
        mModel.hasFolder = true;
        mModel.hasRecord = true;
        mModel.shortRecord = false;
    }
    void BadFolder() {
        const CFRef<CFMutableDictionaryRef> settings = MakeDictionary();
        CFDictionarySetValue(settings.Get(), CFSTR("outputFolder"), MakeData("x").Get());
        Expect("SetJobSettings",
               Driver().ZELPrSetJobSettings(mSession.Get(), mGood.Get(), settings.Get()), false);
        mModel.shortRecord = false;
    }
    void Suggest() {
        static const uint16_t depths[] = {0, 8, 32, 33};
        Suggest(depths[Pick(std::size(depths))]);
    }
    void SuggestWrong() { Suggest(16); }
    void Suggest(uint16_t depth) {
        Driver().ZELPrSuggestPage(mSession.Get(), nullptr, nullptr, depth);
        if (depth) mModel.depth = depth;
        mTrace << "SuggestPage " << depth << '\n';
    }
    void RecordIsNew() {
        Shrink();
        mModel.shortRecord = mModel.unknownName = mModel.eps = false;
    }
    void Defaults() {
        Driver().ZELPrDefaults(mSession.Get(), mGood.Get());
        mTrace << "Defaults\n";
        RecordIsNew();
    }
    void Validate() {
        const bool expected = !mModel.ended && mModel.unknownName;
        Expect("Validate", Driver().ZELPrValidate(mSession.Get(), mGood.Get()), expected);
        mModel.shortRecord = false;
        if (expected) RecordIsNew();
    }
    void ShortRecord() {
        mTrace << "CopyJobSettings of a short record\n";
        EXPECT_EQ(Driver().ZELPrCopyJobSettings(mSession.Get(), mShort.Get()), nullptr);
        mModel.shortRecord = true;
    }
    void SpoilName() {
        mTrace << "unknown page\n";
        std::strcpy(Record().mPageName, "??");
        mModel.unknownName = true;
    }
    void ToggleEPS() {
        mTrace << "EPS or not\n";
        Record().mEPSFormat_be ^= 1;
        mModel.eps = !mModel.eps;
    }
    void SetName() {
        const CFRef<CFStringRef> name = MakeString("Job " + std::to_string(Pick(3)));
        Expect("SetJobName", Driver().ZELPrSetJobName(mSession.Get(), nullptr, name.Get()),
               mModel.error);
    }
    void Inform() {
        ZELDriverInfo info = {};
        unsigned char text[256];
        Expect("GetInfo", Driver().ZELPrGetInfo(mSession.Get(), mGood.Get(), &info), 1);
        EXPECT_EQ(info.widthPixels, kWidth);
        Expect("ErrorString", Driver().ZELPrErrorString(mSession.Get(), mModel.error, text),
               mModel.error == kZELUserCancelled ? 26 : 31);
        Driver().ZELPrJobMerge(mSession.Get(), mGood.Get(), mGood.Get());
    }
    void RefusedPrinter() {
        Expect("SetPrinter",
               Driver().ZELPrSetPrinter(mSession.Get(), MakeURL("/dev/null").Get(), nullptr),
               kZELFileNotFound);
    }
    void DiskFull() {
        mModel.diskFull = !mModel.diskFull;
        mTrace << (mModel.diskFull ? "disk full\n" : "disk free\n");
        SetDiskFull(mModel.diskFull);
    }
    /// Without a window system a dialog is as good as cancelled.
    void CancelledDialog() {
        const bool style = Pick(2) != 0;
        Expect(style ? "Style" : "Job",
               (style ? Driver().ZELPrStyle : Driver().ZELPrJob)(mSession.Get(), mGood.Get()),
               false);
        mModel.shortRecord = false;
        mModel.ended = true;
    }
    void HostError() {
        static const int32_t codes[] = {kZELUserCancelled, 0, 1, -1, 12345};
        const int32_t code = codes[Pick(std::size(codes))];
        Driver().ZELPrSetError(mSession.Get(), code);
        mTrace << "SetError " << code << '\n';
        mModel.SetError(code);
    }
    void Finish() {
        if (Pick(2)) CloseDoc();
        Expect("Close", mSession.Close(), mModel.error);
        SetDiskFull(false);
        EXPECT_EQ(mFolder.Names().size(), mModel.files);
        for (const std::string &name : mFolder.Names()) {
            const std::string document = ReadFile(mFolder.Path() / name);
            EXPECT_EQ(document.rfind("%%EOF\n"), document.size() - 6) << name;
        }
    }

    std::mt19937 mRandom;
    std::ostringstream mTrace;
    ScratchFolder mFolder;
    RecordHandle mGood, mShort{Size{100}};
    Session mSession;
    Model mModel;
    bool mPageIsOpen = false;
};

TEST(RandomSequences, EndWithTheStatedResultsAndLeaveNothing) {
    ClearPreferences();
    std::signal(SIGXFSZ, SIG_IGN);
    // On the built-in printer a Gray record is good.
    { Sequence(0).Run(); }
    const size_t descriptors = EntriesOf("/proc/self/fd");
    const size_t threads = EntriesOf("/proc/self/task");
    size_t files = 0;
    std::map<int32_t, int> ends;
    for (uint32_t seed = 1; seed <= kSequences; ++seed) {
        StderrCapture messages;
        Sequence sequence(seed);
        sequence.Run();
        files += sequence.End().files;
        ++ends[sequence.End().error];
        ASSERT_FALSE(HasFailure()) << "seed " << seed << ":\n" << sequence.Trace();
    }
    EXPECT_GT(files, 300U) << "enough of them print";
    for (int32_t code : {0, 1, EFBIG, 12345, int32_t{kZELFileNotCreated}, int32_t{kZELBadParameter},
                         int32_t{kZELUserCancelled}, int32_t{kZELPixelFormatDiffers}})
        EXPECT_GT(ends[code], 0) << "no sequence ended with " << code;
    EXPECT_EQ(EntriesOf("/proc/self/fd"), descriptors);
    EXPECT_EQ(EntriesOf("/proc/self/task"), threads);
}

} // namespace
