// A session's life and its latched state, through the entry points of the loaded bundle.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <functional>
#include <limits>
#include <sys/resource.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr int32_t kWidth = 2350; // of the built-in A4 page at 300 dpi
constexpr int32_t kHeight = 3425;

size_t OpenDescriptors() {
    size_t count = 0;
    for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator("/proc/self/fd"))
        ++count;
    return count;
}

class SessionTest : public testing::Test {
protected:
    SessionTest() {
        ClearPreferences();
        Driver().ZELPrDefaults(session.Get(), record.Get());
    }
    ~SessionTest() override { ClearPreferences(); }

    int32_t OpenDoc(uint16_t depth = 32) {
        Driver().ZELPrSuggestPage(session.Get(), nullptr, nullptr, depth);
        EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
        return Driver().ZELPrOpenDoc(session.Get());
    }
    void PrintDocument() {
        ASSERT_EQ(OpenDoc(), 0);
        EXPECT_EQ(session.PrintPage(kWidth, kHeight), 0);
        EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    }
    /// A band whose pixel format is not the document's.
    int32_t PrintWrongBand() {
        const uint8_t pixel[4] = {};
        const ZELRect one = {0, 0, 1, 1};
        const ZELBand band = {pixel, one, 4, kZELFormatCMYK32};
        return Driver().ZELPrPrintBitmap(session.Get(), &band, &one, &one);
    }

    ScratchFolder folder;
    RecordHandle record;
    Session session;
    StderrCapture messages;
};

TEST_F(SessionTest, Print_BuiltInPrinter_WritesOneDocument) {
    (void)Driver().ZELPrSetJobName(session.Get(), nullptr, CFSTR("Poster"));
    ASSERT_EQ(OpenDoc(), 0);
    ASSERT_EQ(session.PrintPage(kWidth, kHeight), 0);
    ASSERT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    EXPECT_EQ(session.Close(), 0);
    ASSERT_THAT(folder.Names(), ElementsAre("Poster.ps"));
    const std::string document = ReadFile(folder.Path() / "Poster.ps");
    EXPECT_EQ(document.rfind("%!PS-Adobe-3.0\n", 0), 0U);
    EXPECT_EQ(document.substr(document.size() - 6), "%%EOF\n");
}

TEST_F(SessionTest, DocumentLength_IsThatOfTheFiles) {
    EXPECT_EQ(Driver().ZELPrDocumentLength(session.Get()), 0U);
    PrintDocument();
    EXPECT_EQ(Driver().ZELPrDocumentLength(session.Get()),
              std::filesystem::file_size(folder.Path() / "Untitled.ps"));
}

TEST_F(SessionTest, DocumentLength_CountsAllFilesOfAnEPSDocument) {
    record.Record().mEPSFormat_be = SwapBigEndian(uint32_t{1});
    ASSERT_EQ(OpenDoc(), 0);
    for (const uint8_t sample : {uint8_t{0}, uint8_t{128}})
        ASSERT_EQ(session.PrintPage(kWidth, kHeight, 32, sample), 0);
    ASSERT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    EXPECT_EQ(Driver().ZELPrDocumentLength(session.Get()),
              std::filesystem::file_size(folder.Path() / "Untitled.eps") +
                  std::filesystem::file_size(folder.Path() / "Untitled_p02.eps"));
}

TEST_F(SessionTest, DocumentLength_OfADocumentThrownAwayIsZero) {
    PrintDocument();
    ASSERT_EQ(OpenDoc(), 0);
    Driver().ZELPrSetError(session.Get(), 1);
    (void)Driver().ZELPrCloseDoc(session.Get());
    EXPECT_EQ(Driver().ZELPrDocumentLength(session.Get()), 0U);
}

TEST_F(SessionTest, Open_NoName_DocumentIsUntitled) {
    PrintDocument();
    EXPECT_THAT(folder.Names(), ElementsAre("Untitled.ps"));
}

TEST_F(SessionTest, Open_NoBundle_IsABadParameter) {
    DriverContext *context = session.Get();
    EXPECT_EQ(Driver().ZELPrOpen(nullptr, &context), kZELBadParameter);
    EXPECT_EQ(context, nullptr);
    EXPECT_EQ(Driver().ZELPrOpen(LoadedBundle(), nullptr), kZELBadParameter);
}

TEST_F(SessionTest, Open_BundleWithoutIdentifier_IsABadParameter) {
    std::filesystem::create_directories(folder.Path() / "Empty.bundle" / "Resources");
    const CFRef<CFBundleRef> other(
        CFBundleCreate(kCFAllocatorDefault, MakeURL(folder.Path() / "Empty.bundle").Get()));
    ASSERT_TRUE(other);
    DriverContext *context = session.Get();
    EXPECT_EQ(Driver().ZELPrOpen(other.Get(), &context), kZELBadParameter);
    EXPECT_EQ(context, nullptr);
}

TEST_F(SessionTest, Open_Twice_SessionsAreIndependent) {
    Session other;
    Driver().ZELPrSetError(session.Get(), 7);
    EXPECT_EQ(Driver().ZELPrSetJobName(other.Get(), nullptr, nullptr), 0);
    EXPECT_EQ(other.Close(), 0);
    EXPECT_EQ(session.Close(), 7);
}

TEST_F(SessionTest, Open_NoPPDChosen_SaysSo) {
    EXPECT_EQ(
        session.OpeningMessages().rfind("No PPD file has been selected - using defaults\n", 0), 0U);
}

// ---- the latched state

TEST_F(SessionTest, SetError_IsReturnedByEveryLaterCall) {
    Driver().ZELPrSetError(session.Get(), 4711);
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), 4711);
    EXPECT_EQ(Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr), 4711);
    EXPECT_EQ(PrintWrongBand(), 4711);
    EXPECT_EQ(Driver().ZELPrClosePage(session.Get()), 4711);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), 4711);
    EXPECT_EQ(Driver().ZELPrSetJobName(session.Get(), nullptr, CFSTR("x")), 4711);
    EXPECT_EQ(session.Close(), 4711);
}

TEST_F(SessionTest, SetError_Twice_KeepsTheFirst) {
    Driver().ZELPrSetError(session.Get(), 1);
    Driver().ZELPrSetError(session.Get(), 2);
    EXPECT_EQ(session.Close(), 1);
}

TEST_F(SessionTest, SetError_AfterAFailure_KeepsTheFailure) {
    ASSERT_EQ(OpenDoc(), 0);
    EXPECT_EQ(PrintWrongBand(), kZELPixelFormatDiffers);
    Driver().ZELPrSetError(session.Get(), 99);
    EXPECT_EQ(Driver().ZELPrClosePage(session.Get()), kZELPixelFormatDiffers);
    EXPECT_EQ(session.Close(), kZELPixelFormatDiffers);
}

TEST_F(SessionTest, SetError_Zero_EndsTheSessionWithoutACode) {
    Driver().ZELPrSetError(session.Get(), 0);
    EXPECT_EQ(OpenDoc(), 0);
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_EQ(Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr), 0);
    EXPECT_EQ(session.Close(), 0);
}

TEST_F(SessionTest, SetError_Cancelled_IsTheHostsErrorAndReported) {
    Driver().ZELPrSetError(session.Get(), kZELUserCancelled);
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), kZELUserCancelled);
    EXPECT_EQ(session.Close(), kZELUserCancelled);
}

TEST_F(SessionTest, Failure_InAPage_ThrowsTheDocumentAway) {
    ASSERT_EQ(OpenDoc(), 0);
    ASSERT_EQ(Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr), 0);
    ASSERT_THAT(folder.Names(), ElementsAre("Untitled.ps"));
    EXPECT_EQ(PrintWrongBand(), kZELPixelFormatDiffers);
    EXPECT_EQ(Driver().ZELPrClosePage(session.Get()), kZELPixelFormatDiffers);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), kZELPixelFormatDiffers);
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_EQ(session.Close(), kZELPixelFormatDiffers);
    EXPECT_THAT(messages.Text(), HasSubstr("PrinterDriver PrintBits returned: -157\n"));
}

TEST_F(SessionTest, Failure_LaterPagesAndDocuments_DoNothing) {
    ASSERT_EQ(OpenDoc(), 0);
    (void)PrintWrongBand();
    (void)Driver().ZELPrCloseDoc(session.Get());
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), kZELPixelFormatDiffers);
    EXPECT_EQ(session.PrintPage(8, 8), kZELPixelFormatDiffers);
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(SessionTest, Failure_InformationalCalls_StillWork) {
    Driver().ZELPrSetError(session.Get(), 5);
    std::memset(*record.Get(), 0, sizeof(PSHPrint));
    EXPECT_FALSE(Driver().ZELPrValidate(session.Get(), record.Get())) << "looks at the state";
    EXPECT_EQ(record.Bytes(), std::string(416, '\0'));
    Driver().ZELPrDefaults(session.Get(), record.Get());
    ZELDriverInfo info = {};
    EXPECT_EQ(Driver().ZELPrGetInfo(session.Get(), record.Get(), &info), 1);
    EXPECT_EQ(info.widthPixels, kWidth);
    CFRef<CFDictionaryRef> settings(Driver().ZELPrCopyJobSettings(session.Get(), record.Get()));
    EXPECT_TRUE(settings);
    EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
}

TEST_F(SessionTest, Failure_OfTheFileSystem_IsItsErrno) {
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit limit = before;
    limit.rlim_cur = 65536;
    ASSERT_EQ(OpenDoc(), 0);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    const int32_t result = session.PrintPage(kWidth, kHeight);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(result, EFBIG);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), EFBIG);
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_EQ(session.Close(), EFBIG);
}

TEST_F(SessionTest, DialogWithoutWindowSystem_CancelsWithoutAnError) {
    for (auto dialog : {Driver().ZELPrStyle, Driver().ZELPrJob}) {
        Session fresh;
        const std::string before = record.Bytes();
        EXPECT_FALSE(dialog(fresh.Get(), record.Get()));
        EXPECT_EQ(record.Bytes(), before);
        EXPECT_TRUE(fresh.SetHotFolder(record.Get(), folder.Path()));
        EXPECT_EQ(Driver().ZELPrOpenDoc(fresh.Get()), 0) << "does nothing";
        EXPECT_THAT(folder.Names(), IsEmpty());
        EXPECT_EQ(fresh.PrintPage(8, 8), 0);
        EXPECT_EQ(Driver().ZELPrCloseDoc(fresh.Get()), 0);
        Driver().ZELPrSetError(fresh.Get(), 3);
        EXPECT_EQ(fresh.Close(), 0);
    }
}

TEST_F(SessionTest, Dialog_AfterAnError_IsNotShown) {
    Driver().ZELPrSetError(session.Get(), 3);
    EXPECT_FALSE(Driver().ZELPrStyle(session.Get(), record.Get()));
    EXPECT_FALSE(Driver().ZELPrJob(session.Get(), record.Get()));
    EXPECT_EQ(session.Close(), 3);
}

// ---- calls out of order

TEST_F(SessionTest, OpenDoc_NoRecordSeen_IsABadParameter) {
    Session fresh;
    EXPECT_EQ(Driver().ZELPrOpenDoc(fresh.Get()), kZELBadParameter);
    EXPECT_EQ(fresh.Close(), kZELBadParameter);
}

TEST_F(SessionTest, OpenDoc_ShortRecord_IsABadParameter) {
    RecordHandle shortRecord(415);
    CFRef<CFDictionaryRef> settings(
        Driver().ZELPrCopyJobSettings(session.Get(), shortRecord.Get()));
    EXPECT_FALSE(settings);
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), kZELBadParameter);
}

TEST_F(SessionTest, OpenDoc_NoHotFolder_FileIsNotCreated) {
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), kZELFileNotCreated);
    EXPECT_EQ(session.Close(), kZELFileNotCreated);
    EXPECT_THAT(messages.Text(), HasSubstr("PrinterDriver Output_Create returned: -1\n"));
}

TEST_F(SessionTest, OpenDoc_HotFolderGone_FileIsNotCreated) {
    ScratchFolder *gone = new ScratchFolder;
    EXPECT_TRUE(session.SetHotFolder(record.Get(), gone->Path()));
    delete gone;
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), kZELFileNotCreated);
}

TEST_F(SessionTest, OpenDoc_ReadsTheRecordWhenItIsCalled) {
    EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
    record.Record().mEPSFormat_be = 1;
    ASSERT_EQ(Driver().ZELPrOpenDoc(session.Get()), 0);
    ASSERT_EQ(session.PrintPage(kWidth, kHeight), 0);
    ASSERT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    EXPECT_THAT(folder.Names(), ElementsAre("Untitled.eps"));
}

TEST_F(SessionTest, CloseDoc_NoPagePrinted_LeavesNoFile) {
    ASSERT_EQ(OpenDoc(), 0);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(SessionTest, OpenDoc_WhileOneIsOpen_FailsAndBothAreGone) {
    ASSERT_EQ(OpenDoc(), 0);
    EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), kZELBadParameter);
    EXPECT_EQ(Driver().ZELPrCloseDoc(session.Get()), kZELBadParameter);
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(SessionTest, OpenDoc_Again_AfterClosing_IsASecondDocument) {
    PrintDocument();
    PrintDocument();
    EXPECT_THAT(folder.Names(), ElementsAre("Untitled.ps", "Untitled_01.ps"));
}

TEST_F(SessionTest, PageCalls_WithoutADocument_AreBadParameters) {
    using Call = std::function<int32_t(DriverContext *)>;
    const ZELRect one = {0, 0, 1, 1};
    const uint8_t pixel[4] = {};
    const ZELBand band = {pixel, one, 4, 32};
    const Call calls[] = {
        [](DriverContext *c) { return Driver().ZELPrOpenPage(c, nullptr, nullptr); },
        [&](DriverContext *c) { return Driver().ZELPrPrintBitmap(c, &band, &one, &one); },
        [](DriverContext *c) { return Driver().ZELPrClosePage(c); },
        [](DriverContext *c) { return Driver().ZELPrCloseDoc(c); }};
    for (const Call &call : calls) {
        Session fresh;
        EXPECT_EQ(call(fresh.Get()), kZELBadParameter);
        EXPECT_EQ(fresh.Close(), kZELBadParameter);
    }
}

TEST_F(SessionTest, PrintBitmap_NoBand_IsABadParameter) {
    ASSERT_EQ(OpenDoc(), 0);
    ASSERT_EQ(Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr), 0);
    EXPECT_EQ(Driver().ZELPrPrintBitmap(session.Get(), nullptr, nullptr, nullptr),
              kZELBadParameter);
}

TEST_F(SessionTest, Close_DocumentOpen_ThrowsItAway) {
    const size_t before = OpenDescriptors();
    ASSERT_EQ(OpenDoc(), 0);
    ASSERT_EQ(Driver().ZELPrOpenPage(session.Get(), nullptr, nullptr), 0);
    EXPECT_EQ(OpenDescriptors(), before + 1);
    EXPECT_EQ(session.Close(), 0);
    EXPECT_THAT(folder.Names(), IsEmpty());
    EXPECT_EQ(OpenDescriptors(), before);
}

// ---- what the host tells

TEST_F(SessionTest, SuggestPage_DepthZero_KeepsTheDepth) {
    EXPECT_EQ(OpenDoc(0), 0) << "32 at first";
    Driver().ZELPrCloseDoc(session.Get());
    EXPECT_EQ(OpenDoc(8), 0);
    Driver().ZELPrCloseDoc(session.Get());
    ASSERT_EQ(OpenDoc(0), 0);
    EXPECT_EQ(session.PrintPage(kWidth, kHeight, kZELFormatGray8), 0) << "still 8";
}

TEST_F(SessionTest, SuggestPage_NoPage_KeepsThePage) {
    const CFRef<CFURLRef> ppd = MakeURL(folder.Write("Test.ppd", TestPPD().Text()));
    ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), ppd.Get(), nullptr), 0);
    session.Suggest(777, 999, 111);
    Driver().ZELPrSuggestPage(session.Get(), nullptr, nullptr, 32);
    record.Record().mMagic_be[0] = 'p';
    EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), record.Get()));
    EXPECT_EQ(DoubleFromBigEndian(record.Record().mXDpi_be), 111);
}

TEST_F(SessionTest, SuggestPage_None_RecordIsNotFitted) {
    const CFRef<CFURLRef> ppd = MakeURL(folder.Write("Test.ppd", TestPPD().Text()));
    ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), ppd.Get(), nullptr), 0);
    record.Record().mMagic_be[0] = 'p';
    EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), record.Get()));
    EXPECT_EQ(DoubleFromBigEndian(record.Record().mXDpi_be), 600);
}

TEST_F(SessionTest, OpenWithPrinter_LooksForNoOther) {
    const CFRef<CFURLRef> ppd = MakeURL(folder.Write("Test.ppd", TestPPD().Text()));
    SetPreference(CFSTR("PPDFile"), CFSTR("/nonexistent.ppd"));
    for (CFURLRef printer : {ppd.Get(), CFURLRef{nullptr}}) {
        DriverContext *context = nullptr;
        testing::internal::CaptureStderr();
        ASSERT_EQ(Driver().ZELPrOpenWithPrinter(LoadedBundle(), printer, &context, nullptr), 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        Driver().ZELPrDefaults(context, record.Get());
        EXPECT_EQ(DoubleFromBigEndian(record.Record().mXDpi_be), printer ? 600 : 300);
        EXPECT_EQ(Driver().ZELPrClose(context), 0);
    }
    SetPreference(CFSTR("PPDFile"), nullptr);
}

TEST_F(SessionTest, OpenWithPrinter_RefusedFile_OpensNothingAndSaysWhy) {
    const CFRef<CFURLRef> ppd = MakeURL(folder.Write("Bad.ppd", "rubbish"));
    auto *context = reinterpret_cast<DriverContext *>(&folder);
    CFStringRef message = nullptr;
    EXPECT_EQ(Driver().ZELPrOpenWithPrinter(LoadedBundle(), ppd.Get(), &context, &message),
              kZELFileNotFound);
    EXPECT_EQ(context, nullptr);
    ASSERT_NE(message, nullptr);
    EXPECT_TRUE(CFEqual(message, CFSTR("Not a PPD file")));
    CFRelease(message);
    EXPECT_EQ(Driver().ZELPrOpenWithPrinter(LoadedBundle(), nullptr, nullptr, nullptr),
              kZELBadParameter);
    EXPECT_EQ(Driver().ZELPrOpenWithPrinter(nullptr, nullptr, &context, nullptr), kZELBadParameter);
}

TEST_F(SessionTest, SetJobName_IsRetainedUntilReplaced) {
    const CFRef<CFStringRef> name = MakeString("A name that only this test uses");
    const CFIndex before = CFGetRetainCount(name.Get());
    EXPECT_EQ(Driver().ZELPrSetJobName(session.Get(), nullptr, name.Get()), 0);
    EXPECT_EQ(Driver().ZELPrSetJobName(session.Get(), nullptr, name.Get()), 0);
    EXPECT_EQ(CFGetRetainCount(name.Get()), before + 1);
    (void)session.Close();
    EXPECT_EQ(CFGetRetainCount(name.Get()), before);
}

TEST_F(SessionTest, SetJobName_None_DocumentFailsCleanly) {
    EXPECT_EQ(Driver().ZELPrSetJobName(session.Get(), nullptr, nullptr), 0);
    EXPECT_NE(OpenDoc(), 0);
    EXPECT_THAT(folder.Names(), IsEmpty());
}

TEST_F(SessionTest, JobMerge_CopiesPageRangeAndCopiesOnly) {
    RecordHandle source;
    source.Record().copies_be = 0x1234;
    source.Record().fromPage_be = 0x2345;
    source.Record().toPage_be = 0x3456;
    source.Record().mFlipH_be = 1;
    std::string expected = record.Bytes();
    expected.replace(148, 6, source.Bytes().substr(148, 6));
    Driver().ZELPrJobMerge(session.Get(), source.Get(), record.Get());
    EXPECT_EQ(record.Bytes(), expected);
}

TEST_F(SessionTest, JobMerge_ShortHandle_ChangesNothing) {
    RecordHandle shortRecord(415);
    const std::string before = record.Bytes();
    Driver().ZELPrJobMerge(session.Get(), shortRecord.Get(), record.Get());
    Driver().ZELPrJobMerge(session.Get(), record.Get(), shortRecord.Get());
    Driver().ZELPrJobMerge(session.Get(), nullptr, record.Get());
    EXPECT_EQ(record.Bytes(), before);
    EXPECT_EQ(shortRecord.Bytes(), std::string(415, '\0'));
}

TEST_F(SessionTest, ErrorString_CancelledAndOthers) {
    unsigned char text[256];
    EXPECT_EQ(Driver().ZELPrErrorString(session.Get(), kZELUserCancelled, text), 26);
    EXPECT_EQ(std::string(text, text + 27), "\x1aPrinting cancelled by user");
    for (int32_t code : {0, 1, -1, -50, 1000, 2147483647}) {
        EXPECT_EQ(Driver().ZELPrErrorString(nullptr, code, text), 31);
        EXPECT_EQ(std::string(text, text + 32), "\x1f"
                                                "An error ocurred while printing");
    }
}

// ---- what the driver tells about a record

TEST_F(SessionTest, GetInfo_Defaults) {
    ZELDriverInfo info = {};
    info.result = 77;
    EXPECT_EQ(Driver().ZELPrGetInfo(nullptr, record.Get(), &info), 1);
    EXPECT_EQ(info.result, 0);
    EXPECT_EQ(info.widthPixels, kWidth);
    EXPECT_EQ(info.heightPixels, kHeight);
    EXPECT_EQ(info.widthMM, 564 * 25.4 / 72);
    EXPECT_EQ(info.heightMM, 822 * 25.4 / 72);
    EXPECT_EQ(info.firstPage, 1);
    EXPECT_EQ(info.lastPage, 999);
    EXPECT_EQ(info.copies, 1);
}

struct PixelCase {
    double points, dpi;
    int32_t pixels;
};

class GetInfoPixels : public SessionTest, public testing::WithParamInterface<PixelCase> {};

TEST_P(GetInfoPixels, AreTruncatedTowardZeroAndLimited) {
    auto bigEndian = [](double value) {
        uint64_t word = 0;
        std::memcpy(&word, &value, sizeof word);
        return __builtin_bswap64(word);
    };
    record.Record().mPageWidth_be = record.Record().mPageHeight_be = bigEndian(GetParam().points);
    record.Record().mXDpi_be = record.Record().mYDpi_be = bigEndian(GetParam().dpi);
    ZELDriverInfo info = {};
    (void)Driver().ZELPrGetInfo(session.Get(), record.Get(), &info);
    EXPECT_EQ(info.widthPixels, GetParam().pixels);
    EXPECT_EQ(info.heightPixels, GetParam().pixels);
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
INSTANTIATE_TEST_SUITE_P(, GetInfoPixels,
                         testing::Values(PixelCase{595.276, 300, 2480}, PixelCase{72, 0.999, 0},
                                         PixelCase{-72, 1.5, -1}, PixelCase{kNaN, 300, 0},
                                         PixelCase{72, kNaN, 0},
                                         PixelCase{kInfinity, 300, 2147483647},
                                         PixelCase{-kInfinity, 300, -2147483647 - 1},
                                         PixelCase{kInfinity, 0, 0},
                                         PixelCase{1e300, 1e300, 2147483647}));

TEST_F(SessionTest, GetInfo_ShortHandle_MissingFieldsAreZero) {
    for (Size size = 0; size < 416; ++size) {
        RecordHandle shortRecord(record.Bytes().substr(0, static_cast<size_t>(size)));
        ZELDriverInfo info = {};
        const int32_t copies = Driver().ZELPrGetInfo(session.Get(), shortRecord.Get(), &info);
        EXPECT_EQ(copies, size >= 150 ? 1 : 0) << size;
        EXPECT_EQ(info.copies, copies);
    }
}

TEST_F(SessionTest, GetInfo_NegativeCopies_AreSixteenUnsignedBits) {
    record.Record().copies_be = -1;
    ZELDriverInfo info = {};
    EXPECT_EQ(Driver().ZELPrGetInfo(session.Get(), record.Get(), &info), 65535);
}

} // namespace
