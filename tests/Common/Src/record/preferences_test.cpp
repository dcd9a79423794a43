// The user's preferences as the entry points read them, of every type under every key.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <map>

using testing::HasSubstr;
using testing::Not;

namespace {

/// One value of every type that a property list can hold.
std::map<std::string, CFRef<CFTypeRef>> OneOfEveryType() {
    auto own = [](auto ref) { return CFRef<CFTypeRef>::Retain(ref.Get()); };
    CFRef<CFMutableArrayRef> array(
        CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
    CFArrayAppendValue(array.Get(), CFSTR("x"));
    CFRef<CFMutableDictionaryRef> dictionary = MakeDictionary();
    CFDictionarySetValue(dictionary.Get(), CFSTR("x"), CFSTR("y"));
    return {{"string", own(MakeString("not what is wanted"))},
            {"empty string", own(MakeString(""))},
            {"number", own(MakeNumber(int64_t{123456789}))},
            {"large number", own(MakeNumber(int64_t{1} << 40))},
            {"real", own(MakeNumber(2.5))},
            {"boolean", CFRef<CFTypeRef>::Retain(kCFBooleanFalse)},
            {"data", own(MakeData("no bookmark"))},
            {"empty data", own(MakeData(""))},
            {"array", own(array)},
            {"dictionary", own(dictionary)}};
}

class PreferencesTest : public testing::Test {
protected:
    PreferencesTest() {
        ClearPreferences();
        ppd = MakeURL(folder.Write("Test.ppd", TestPPD().Text()));
    }
    ~PreferencesTest() override { ClearPreferences(); }
    /// A new record of a colour printer.
    std::string Defaults() {
        Session session;
        EXPECT_EQ(Driver().ZELPrSetPrinter(session.Get(), ppd.Get(), nullptr), 0);
        RecordHandle record;
        Driver().ZELPrDefaults(session.Get(), record.Get());
        return record.Bytes();
    }
    static uint32_t Word(const std::string &record, size_t offset) {
        uint32_t word = 0;
        std::memcpy(&word, record.data() + offset, sizeof word);
        return SwapBigEndian(word);
    }
    static std::string OpeningMessages() { return Session().OpeningMessages(); }

    ScratchFolder folder;
    CFRef<CFURLRef> ppd;
};

constexpr size_t kColourSpace = 128;
constexpr size_t kFlipH = 132;
constexpr size_t kFlipV = 136;
constexpr size_t kRotated = 140;
constexpr size_t kEPS = 144;
constexpr size_t kSeparation = 154;

TEST_F(PreferencesTest, WrongTypeUnderEveryKey_TheDefaultHolds) {
    const std::string defaults = Defaults();
    for (CFStringRef key :
         {CFSTR("PageOptions"), CFSTR("FileFormat"), CFSTR("PSColourSpace"),
          CFSTR("MeasurementsUnit"), CFSTR("MeasurementUnit"), CFSTR("SendToDefaultPrintQueue"),
          CFSTR("HotFolder"), CFSTR("HotFolderBookmark"), CFSTR("PPDBookmark"), CFSTR("PPDFile")}) {
        for (const auto &[type, value] : OneOfEveryType()) {
            if (CFEqual(key, CFSTR("PSColourSpace")) && type == "number") continue;
            SetPreference(key, value.Get());
            EXPECT_EQ(Defaults(), defaults) << type;
        }
        SetPreference(key, nullptr);
    }
}

TEST_F(PreferencesTest, PSColourSpace_AnyIntegerIsTaken) {
    for (int32_t colourSpace : {0, 1, 2, 3, -1, 123456789}) {
        SetPreference(CFSTR("PSColourSpace"), MakeNumber(int64_t{colourSpace}).Get());
        EXPECT_EQ(Word(Defaults(), kColourSpace), static_cast<uint32_t>(colourSpace));
    }
}

TEST_F(PreferencesTest, PSColourSpace_PrinterWithoutColour_IsNotLookedAt) {
    SetPreference(CFSTR("PSColourSpace"), MakeNumber(int64_t{2}).Get());
    Session session;
    RecordHandle record;
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(record.Record().mColourSpace_be, 0U);
}

TEST_F(PreferencesTest, FileFormat_IsComparedIgnoringCase) {
    for (const char *eps : {"eps", "EPS", "ePs"}) {
        SetPreference(CFSTR("FileFormat"), MakeString(eps).Get());
        EXPECT_EQ(Word(Defaults(), kEPS), 1U) << eps;
    }
    for (const char *other : {"ps", "", "eps ", "epsf", "ep"}) {
        SetPreference(CFSTR("FileFormat"), MakeString(other).Get());
        EXPECT_EQ(Word(Defaults(), kEPS), 0U) << other;
    }
}

TEST_F(PreferencesTest, PageOptions_EachFlagGoesToItsField) {
    const std::pair<CFStringRef, size_t> flags[] = {
        {CFSTR("FlipH"), kFlipH}, {CFSTR("FlipV"), kFlipV}, {CFSTR("Rotate"), kRotated}};
    for (const auto &[key, offset] : flags) {
        const CFRef<CFMutableDictionaryRef> options = MakeDictionary();
        CFDictionarySetValue(options.Get(), key, kCFBooleanTrue);
        SetPreference(CFSTR("PageOptions"), options.Get());
        const std::string record = Defaults();
        for (size_t field : {kFlipH, kFlipV, kRotated})
            EXPECT_EQ(Word(record, field), field == offset ? 1U : 0U);
    }
}

TEST_F(PreferencesTest, PageOptions_WrongTypesInside_AreTheirDefaults) {
    const std::string defaults = Defaults();
    for (CFStringRef key : {CFSTR("FlipH"), CFSTR("FlipV"), CFSTR("Rotate"), CFSTR("Separation")}) {
        for (const auto &[type, value] : OneOfEveryType()) {
            if (CFEqual(key, CFSTR("Separation")) && type == "string") continue;
            const CFRef<CFMutableDictionaryRef> options = MakeDictionary();
            CFDictionarySetValue(options.Get(), key, value.Get());
            SetPreference(CFSTR("PageOptions"), options.Get());
            EXPECT_EQ(Defaults(), defaults) << type;
        }
    }
}

TEST_F(PreferencesTest, Separation_UpTo255BytesOfUTF8) {
    auto stored = [this](const std::string &name) {
        const CFRef<CFMutableDictionaryRef> options = MakeDictionary();
        CFDictionarySetValue(options.Get(), CFSTR("Separation"), MakeString(name).Get());
        SetPreference(CFSTR("PageOptions"), options.Get());
        const std::string record = Defaults();
        return record.substr(kSeparation + 1, static_cast<unsigned char>(record[kSeparation]));
    };
    EXPECT_EQ(stored("Zeitungsdruck ä"), "Zeitungsdruck ä");
    EXPECT_EQ(stored(std::string(255, 'x')), std::string(255, 'x'));
    EXPECT_EQ(stored(std::string(256, 'x')), "") << "too long: the default, nothing";
}

TEST_F(PreferencesTest, AreReadAgainWhenAnotherProcessHasChangedThem) {
    if (std::system("command -v defaults >/dev/null") != 0)
        GTEST_SKIP() << "no defaults tool on this system";
    Session session;
    ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), ppd.Get(), nullptr), 0);
    RecordHandle record;
    Driver().ZELPrDefaults(session.Get(), record.Get());
    ASSERT_EQ(record.Record().mEPSFormat_be, 0U);
    ASSERT_EQ(std::system("defaults write com.zel.PostscriptPrinterDriver FileFormat eps"), 0);
    ASSERT_EQ(std::system("defaults write com.zel.PostscriptPrinterDriver PSColourSpace '<*I2>'"),
              0);
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(SwapBigEndian(record.Record().mEPSFormat_be), 1U);
    EXPECT_EQ(SwapBigEndian(record.Record().mColourSpace_be), 2U);
}

// ---- the chosen PPD file

constexpr char kNoneChosen[] = "No PPD file has been selected - using defaults\n";
constexpr char kNotFound[] = "Can't find the PPD file - using defaults\n";

TEST_F(PreferencesTest, PPDBookmark_IsUsed) {
    SetPreference(CFSTR("PPDBookmark"), MakeBookmark(folder.Path() / "Test.ppd").Get());
    Session session;
    EXPECT_EQ(session.OpeningMessages(), "");
    RecordHandle record;
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_STREQ(record.Record().mResolutionName, "600dpi");
}

TEST_F(PreferencesTest, PPDBookmark_FollowsARenamedFile) {
    SetPreference(CFSTR("PPDBookmark"), MakeBookmark(folder.Path() / "Test.ppd").Get());
    std::filesystem::rename(folder.Path() / "Test.ppd", folder.Path() / "Renamed.ppd");
    EXPECT_EQ(OpeningMessages(), "");
}

TEST_F(PreferencesTest, PPDBookmark_FileDeleted_OneMessageThenDefaults) {
    SetPreference(CFSTR("PPDBookmark"), MakeBookmark(folder.Path() / "Test.ppd").Get());
    std::filesystem::remove(folder.Path() / "Test.ppd");
    Session session;
    EXPECT_EQ(session.OpeningMessages().rfind(kNotFound, 0), 0U) << session.OpeningMessages();
    EXPECT_THAT(session.OpeningMessages(), Not(HasSubstr(" PPD File error")));
    RecordHandle record;
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_STREQ(record.Record().mResolutionName, "300dpi");
}

TEST_F(PreferencesTest, PPDBookmark_Damaged_CannotBeFound) {
    std::string bytes;
    {
        const CFRef<CFDataRef> bookmark = MakeBookmark(folder.Path() / "Test.ppd");
        bytes.assign(reinterpret_cast<const char *>(CFDataGetBytePtr(bookmark.Get())),
                     static_cast<size_t>(CFDataGetLength(bookmark.Get())));
    }
    for (size_t length : {size_t{0}, size_t{1}, size_t{8}, bytes.size() / 2, bytes.size() - 1}) {
        SetPreference(CFSTR("PPDBookmark"), MakeData(bytes.substr(0, length)).Get());
        EXPECT_THAT(OpeningMessages(), HasSubstr(kNotFound)) << length;
    }
}

TEST_F(PreferencesTest, PPDBookmark_NotData_CountsAsNone) {
    SetPreference(CFSTR("PPDFile"), MakeString((folder.Path() / "Test.ppd").string()).Get());
    SetPreference(CFSTR("PPDBookmark"), CFSTR("text"));
    EXPECT_THAT(OpeningMessages(), HasSubstr(kNoneChosen));
}

TEST_F(PreferencesTest, PPDFile_StringPath_IsUsedAndNotRewritten) {
    SetPreference(CFSTR("PPDFile"), MakeString((folder.Path() / "Test.ppd").string()).Get());
    EXPECT_EQ(OpeningMessages(), "");
    EXPECT_FALSE(CopyPreference(CFSTR("PPDBookmark")));
}

TEST_F(PreferencesTest, PPDFile_NothingThere_CountsAsNone) {
    for (const char *path : {"", "/no/such/file.ppd", "relative.ppd"}) {
        SetPreference(CFSTR("PPDFile"), MakeString(path).Get());
        EXPECT_THAT(OpeningMessages(), HasSubstr(kNoneChosen)) << path;
    }
}

TEST_F(PreferencesTest, PPDFile_AliasRecordOfAnotherSystem_CountsAsNone) {
    SetPreference(CFSTR("PPDFile"), MakeData(std::string(64, '\x01')).Get());
    EXPECT_THAT(OpeningMessages(), HasSubstr(kNoneChosen));
}

TEST_F(PreferencesTest, PPD_WithAFault_IsReportedAndTheBuiltInPrinterUsed) {
    const struct {
        const char *content, *message;
    } cases[] = {{"", " PPD File error:Not a PPD file Using default settings instead\n"},
                 {"*PPD-Adobe: \"4.3\"\n",
                  " PPD File error:*DefaultPageSize not found Using default settings instead\n"}};
    for (const auto &c : cases) {
        SetPreference(CFSTR("PPDBookmark"),
                      MakeBookmark(folder.Write("Faulty.ppd", c.content)).Get());
        Session session;
        EXPECT_EQ(session.OpeningMessages().rfind(c.message, 0), 0U) << session.OpeningMessages();
        RecordHandle record;
        Driver().ZELPrDefaults(session.Get(), record.Get());
        EXPECT_STREQ(record.Record().mResolutionName, "300dpi");
    }
}

TEST_F(PreferencesTest, PPD_AFolder_IsReportedAndTheBuiltInPrinterUsed) {
    SetPreference(CFSTR("PPDBookmark"), MakeBookmark(folder.Path()).Get());
    EXPECT_THAT(OpeningMessages(), HasSubstr("Using default settings instead\n"));
}

// ---- ZELPrSetPrinter

TEST_F(PreferencesTest, SetPrinter_Refused_KeepsThePrinterAndSaysWhy) {
    Session session;
    ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), ppd.Get(), nullptr), 0);
    CFStringRef message = nullptr;
    const CFRef<CFURLRef> faulty = MakeURL(folder.Write("Faulty.ppd", "nothing"));
    EXPECT_EQ(Driver().ZELPrSetPrinter(session.Get(), faulty.Get(), &message), kZELFileNotFound);
    ASSERT_NE(message, nullptr);
    EXPECT_TRUE(CFEqual(message, CFSTR("Not a PPD file")));
    CFRelease(message);
    RecordHandle record;
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_STREQ(record.Record().mResolutionName, "600dpi") << "still the printer before";
    EXPECT_EQ(session.Close(), 0) << "a refusal is not latched";
}

TEST_F(PreferencesTest, SetPrinter_NoSuchFile_IsRefused) {
    Session session;
    CFStringRef message = nullptr;
    EXPECT_EQ(Driver().ZELPrSetPrinter(session.Get(), MakeURL("/no/such.ppd").Get(), &message),
              kZELFileNotFound);
    ASSERT_NE(message, nullptr);
    CFRelease(message);
    EXPECT_EQ(Driver().ZELPrSetPrinter(session.Get(), nullptr, nullptr), kZELFileNotFound);
}

TEST_F(PreferencesTest, SetPrinter_LeavesTheUsersChoiceAlone) {
    Session session;
    ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), ppd.Get(), nullptr), 0);
    (void)session.Close();
    EXPECT_FALSE(CopyPreference(CFSTR("PPDBookmark")));
}

} // namespace
