// A record read and changed with native numbers: ZELPrGetRecordSettings and ZELPrSetRecordSettings.
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <limits>
#include <random>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <size_t N>
void SetText(char (&field)[N], const std::string &text) {
    std::memset(field, 0, N);
    std::memcpy(field, text.data(), std::min(text.size(), N));
}

/// A record of a printer with A4 (575 by 818 points), Letter and custom pages of 100 to 800 by 200
/// to 1000 points.
class RecordSettings : public testing::Test {
protected:
    RecordSettings() {
        ClearPreferences();
        TestPPD ppd;
        ppd.custom = TestPPD::CustomPages();
        UsePrinter(ppd);
        Driver().ZELPrDefaults(session.Get(), record.Get());
    }
    ~RecordSettings() override { ClearPreferences(); }

    void UsePrinter(const TestPPD &ppd) {
        const CFRef<CFURLRef> url = MakeURL(folder.Write("Test.ppd", ppd.Text()));
        ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), url.Get(), nullptr), 0);
    }
    ZELRecordSettings Get() const {
        ZELRecordSettings settings = {};
        settings.size = sizeof settings;
        EXPECT_EQ(Driver().ZELPrGetRecordSettings(record.Get(), &settings), 0);
        return settings;
    }
    /// With the session's printer, or without any.
    int32_t Set(const ZELRecordSettings &settings) {
        return Driver().ZELPrSetRecordSettings(session.Get(), record.Get(), &settings);
    }
    int32_t SetUnasked(const ZELRecordSettings &settings) {
        return Driver().ZELPrSetRecordSettings(nullptr, record.Get(), &settings);
    }
    bool ValidateChanges() { return Driver().ZELPrValidate(session.Get(), record.Get()) != 0; }

    ScratchFolder folder;
    RecordHandle record;
    Session session;
};

TEST_F(RecordSettings, Get_TellsTheDefaults) {
    const ZELRecordSettings settings = Get();
    EXPECT_EQ(settings.size, sizeof settings);
    EXPECT_EQ(settings.colourSpace, static_cast<uint32_t>(kZELColourSpaceCMYK));
    EXPECT_EQ(settings.pageWidth, 575);
    EXPECT_EQ(settings.pageHeight, 818);
    EXPECT_EQ(settings.xDpi, 600);
    EXPECT_EQ(settings.yDpi, 600);
    EXPECT_EQ(settings.copies, 1);
    EXPECT_EQ(settings.firstPage, 1);
    EXPECT_EQ(settings.lastPage, 999);
    EXPECT_STREQ(settings.pageName, "A4");
    EXPECT_STREQ(settings.resolutionName, "600dpi");
    EXPECT_STREQ(settings.separationName, "");
    EXPECT_FALSE(settings.pageIsCustom || settings.mirrorHorizontal || settings.mirrorVertical ||
                 settings.rotated || settings.eps);
}

// ---- every field, in the bytes that records have

struct FieldCase {
    const char *name;
    size_t offset;
    std::string bytes; ///< the record's
    std::function<void(ZELRecordSettings &)> change;
};

class RecordSettingsField : public RecordSettings, public testing::WithParamInterface<FieldCase> {};

TEST_P(RecordSettingsField, Set_ChangesItsBytesAndNoOthers) {
    const FieldCase &field = GetParam();
    std::string expected = record.Bytes();
    ASSERT_NE(expected.substr(field.offset, field.bytes.size()), field.bytes);
    expected.replace(field.offset, field.bytes.size(), field.bytes);
    ZELRecordSettings settings = Get();
    field.change(settings);
    ASSERT_EQ(SetUnasked(settings), 0);
    EXPECT_EQ(record.Bytes(), expected);
    const ZELRecordSettings again = Get();
    EXPECT_EQ(std::memcmp(&again, &settings, sizeof again), 0) << "and is told as it was set";
}

std::string Bytes(std::initializer_list<int> bytes) {
    return {bytes.begin(), bytes.end()};
}

const std::string kFlag = Bytes({0, 0, 0, 1});

const FieldCase kFields[] = {
    {"Width", 8, Bytes({0x40, 0x82, 0x9C, 0, 0, 0, 0, 0}),
     [](ZELRecordSettings &s) { s.pageWidth = 595.5; }},
    {"Height", 16, Bytes({0x40, 0x8A, 0x50, 0, 0, 0, 0, 0}),
     [](ZELRecordSettings &s) { s.pageHeight = 842; }},
    {"XDpi", 24, Bytes({0x40, 0x72, 0xC0, 0, 0, 0, 0, 0}),
     [](ZELRecordSettings &s) { s.xDpi = 300; }},
    {"YDpi", 32, Bytes({0x40, 0x92, 0xC0, 0, 0, 0, 0, 0}),
     [](ZELRecordSettings &s) { s.yDpi = 1200; }},
    {"PageName", 40, "Letter" + std::string(35, '\0'),
     [](ZELRecordSettings &s) { SetText(s.pageName, "Letter"); }},
    {"LongestPageName", 40, std::string(40, 'n') + std::string(1, '\0'),
     [](ZELRecordSettings &s) { SetText(s.pageName, std::string(40, 'n')); }},
    {"ResolutionName", 81, "300dpi" + std::string(35, '\0'),
     [](ZELRecordSettings &s) { SetText(s.resolutionName, "300dpi"); }},
    {"Custom", 124, kFlag, [](ZELRecordSettings &s) { s.pageIsCustom = 1; }},
    {"Gray", 128, Bytes({0, 0, 0, 1}),
     [](ZELRecordSettings &s) { s.colourSpace = kZELColourSpaceGray; }},
    {"RGB", 128, Bytes({0, 0, 0, 2}),
     [](ZELRecordSettings &s) { s.colourSpace = kZELColourSpaceRGB; }},
    {"MirrorHorizontal", 132, kFlag, [](ZELRecordSettings &s) { s.mirrorHorizontal = 1; }},
    {"MirrorVertical", 136, kFlag, [](ZELRecordSettings &s) { s.mirrorVertical = 1; }},
    {"Rotated", 140, kFlag, [](ZELRecordSettings &s) { s.rotated = 1; }},
    {"EPS", 144, kFlag, [](ZELRecordSettings &s) { s.eps = 1; }},
    {"Copies", 148, Bytes({1, 2}), [](ZELRecordSettings &s) { s.copies = 0x0102; }},
    {"FirstPage", 150, Bytes({0, 7}), [](ZELRecordSettings &s) { s.firstPage = 7; }},
    {"LastPage", 152, Bytes({1, 0}), [](ZELRecordSettings &s) { s.lastPage = 256; }},
    {"Separation", 154, "\x08Standard" + std::string(247, '\0'),
     [](ZELRecordSettings &s) { SetText(s.separationName, "Standard"); }},
    {"LongestSeparation", 154, "\xFF" + std::string(255, 's'),
     [](ZELRecordSettings &s) { SetText(s.separationName, std::string(255, 's')); }},
};
INSTANTIATE_TEST_SUITE_P(, RecordSettingsField, testing::ValuesIn(kFields),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- what a printer can print

struct LimitCase {
    const char *name;
    int32_t code, codeUnasked;
    std::function<void(ZELRecordSettings &)> change;
};

class RecordSettingsLimit : public RecordSettings, public testing::WithParamInterface<LimitCase> {};

TEST_P(RecordSettingsLimit, Set_RefusesWhatValidationWouldReplace) {
    const LimitCase &limit = GetParam();
    const std::string before = record.Bytes();
    ZELRecordSettings settings = Get();
    limit.change(settings);
    EXPECT_EQ(Set(settings), limit.code);
    EXPECT_EQ(record.Bytes() == before, limit.code != 0);
    const std::string set = record.Bytes();
    EXPECT_FALSE(ValidateChanges());
    EXPECT_EQ(record.Bytes(), set);
    EXPECT_EQ(SetUnasked(settings), limit.codeUnasked);
}

void Custom(ZELRecordSettings &settings, double width, double height) {
    settings.pageIsCustom = 1;
    settings.pageWidth = width;
    settings.pageHeight = height;
}

const LimitCase kLimits[] = {
    {"OtherPage", 0, 0,
     [](ZELRecordSettings &s) {
         SetText(s.pageName, "Letter");
         s.pageWidth = 576;
         s.pageHeight = 720;
     }},
    {"UnknownPage", -50, 0, [](ZELRecordSettings &s) { SetText(s.pageName, "B5"); }},
    {"PageOfOtherWidth", -50, 0, [](ZELRecordSettings &s) { s.pageWidth = 576; }},
    {"WidthNaN", -50, 0, [](ZELRecordSettings &s) { s.pageWidth = kNaN; }},
    {"PageOfNoSize", -50, 0, [](ZELRecordSettings &s) { s.pageWidth = s.pageHeight = 0; }},
    {"PageBelowNothing", -50, 0, [](ZELRecordSettings &s) { s.pageHeight = -818; }},
    {"PageInfinite", -50, 0, [](ZELRecordSettings &s) { s.pageHeight = kInfinity; }},
    {"SmallestCustom", 0, 0, [](ZELRecordSettings &s) { Custom(s, 100, 200); }},
    {"LargestCustom", 0, 0, [](ZELRecordSettings &s) { Custom(s, 800, 1000); }},
    {"CustomTooWide", -50, 0, [](ZELRecordSettings &s) { Custom(s, 800.01, 1000); }},
    {"CustomTooHigh", -50, 0, [](ZELRecordSettings &s) { Custom(s, 800, 1000.01); }},
    {"CustomNaN", -50, 0, [](ZELRecordSettings &s) { Custom(s, kNaN, kNaN); }},
    {"CustomTurned", 0, 0,
     [](ZELRecordSettings &s) {
         Custom(s, 1000, 800);
         s.rotated = 1;
     }},
    {"UnknownResolution", -50, 0, [](ZELRecordSettings &s) { SetText(s.resolutionName, "72dpi"); }},
    {"LowestDpi", 0, 0, [](ZELRecordSettings &s) { s.xDpi = s.yDpi = 10; }},
    {"HighestDpi", 0, 0, [](ZELRecordSettings &s) { s.xDpi = s.yDpi = 10000; }},
    {"XDpiTooLow", -50, 0, [](ZELRecordSettings &s) { s.xDpi = 9.99; }},
    {"YDpiTooHigh", -50, 0, [](ZELRecordSettings &s) { s.yDpi = 10000.01; }},
    {"DpiNaN", -50, 0, [](ZELRecordSettings &s) { s.xDpi = kNaN; }},
    {"UnknownColourSpace", -50, 0, [](ZELRecordSettings &s) { s.colourSpace = 3; }},
    {"CopiesNone", -50, 0, [](ZELRecordSettings &s) { s.copies = 0; }},
    {"CopiesMost", 0, 0, [](ZELRecordSettings &s) { s.copies = 999; }},
    {"CopiesTooMany", -50, 0, [](ZELRecordSettings &s) { s.copies = 1000; }},
    {"CopiesBeyondTheField", -50, -50, [](ZELRecordSettings &s) { s.copies = 32768; }},
    {"CopiesBelowTheField", -50, -50, [](ZELRecordSettings &s) { s.copies = -32769; }},
    {"FirstPageNone", -50, 0, [](ZELRecordSettings &s) { s.firstPage = 0; }},
    {"FirstPageBeyondTheField", -50, -50, [](ZELRecordSettings &s) { s.firstPage = 65537; }},
    {"LastPageBeforeFirst", -50, 0,
     [](ZELRecordSettings &s) {
         s.firstPage = 3;
         s.lastPage = 2;
     }},
    {"OnePage", 0, 0, [](ZELRecordSettings &s) { s.firstPage = s.lastPage = 3; }},
    {"LastPageTooHigh", -50, 0, [](ZELRecordSettings &s) { s.lastPage = 1000; }},
    {"LastPageBeyondTheField", -50, -50, [](ZELRecordSettings &s) { s.lastPage = 32768; }},
    {"PageNameTooLong", -50, -50,
     [](ZELRecordSettings &s) { SetText(s.pageName, std::string(41, 'n')); }},
    {"PageNameWithoutEnd", -50, -50,
     [](ZELRecordSettings &s) { SetText(s.pageName, std::string(42, 'n')); }},
    {"ResolutionNameTooLong", -50, -50,
     [](ZELRecordSettings &s) { SetText(s.resolutionName, std::string(41, 'n')); }},
    {"SeparationByName", 0, 0, [](ZELRecordSettings &s) { SetText(s.separationName, "Standard"); }},
    {"SeparationMissing", -43, 0, [](ZELRecordSettings &s) { SetText(s.separationName, "Gone"); }},
    {"SeparationMissingButUnused", 0, 0,
     [](ZELRecordSettings &s) {
         SetText(s.separationName, "Gone");
         s.colourSpace = kZELColourSpaceRGB;
     }},
    {"SeparationNotUTF8", -43, 0,
     [](ZELRecordSettings &s) { SetText(s.separationName, "\xFF\xFE"); }},
    {"SeparationWithoutEnd", -50, -50,
     [](ZELRecordSettings &s) { SetText(s.separationName, std::string(256, 's')); }},
    {"ReservedByte", -50, -50, [](ZELRecordSettings &s) { s.reserved[2] = 1; }},
    {"SizeOfNothing", -50, -50, [](ZELRecordSettings &s) { s.size = 0; }},
    {"SizeTooSmall", -50, -50, [](ZELRecordSettings &s) { s.size = sizeof s - 1; }},
    {"SizeNeverWritten", -50, -50, [](ZELRecordSettings &s) { s.size = 0xCCCCCCCC; }},
};
INSTANTIATE_TEST_SUITE_P(, RecordSettingsLimit, testing::ValuesIn(kLimits),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_F(RecordSettings, Set_PrinterWithoutColour_TakesGrayOnly) {
    TestPPD ppd;
    ppd.colour = "False";
    UsePrinter(ppd);
    ZELRecordSettings settings = Get();
    for (uint32_t colourSpace : {0U, 2U}) {
        settings.colourSpace = colourSpace;
        EXPECT_EQ(Set(settings), -50) << colourSpace;
    }
    settings.colourSpace = kZELColourSpaceGray;
    EXPECT_EQ(Set(settings), 0);
    EXPECT_FALSE(ValidateChanges());
}

TEST_F(RecordSettings, Set_PrinterWithoutLevel2OrCustomPages_IsRefused) {
    ZELRecordSettings settings = Get();
    TestPPD ppd;
    UsePrinter(ppd);
    EXPECT_EQ(Set(settings), 0);
    settings.pageIsCustom = 1;
    EXPECT_EQ(Set(settings), -50);
    settings.pageIsCustom = 0;
    ppd.level = "1";
    UsePrinter(ppd);
    EXPECT_EQ(Set(settings), -50);
    EXPECT_EQ(SetUnasked(settings), 0);
}

TEST_F(RecordSettings, Set_InASessionThatHasFailed_Works) {
    Driver().ZELPrSetError(session.Get(), 17);
    ZELRecordSettings settings = Get();
    settings.eps = 1;
    EXPECT_EQ(Set(settings), 0);
    EXPECT_EQ(Get().eps, 1);
    EXPECT_EQ(session.Close(), 17);
}

// ---- handles

TEST_F(RecordSettings, HandleWithoutARecord_IsRefused) {
    ZELRecordSettings settings = Get();
    const std::string good = record.Bytes();
    for (const std::string &bytes :
         {std::string(), good.substr(0, 415), std::string(416, '\0'), "post" + good.substr(4)}) {
        RecordHandle handle(bytes);
        ZELRecordSettings told = settings;
        told.copies = 77;
        EXPECT_EQ(Driver().ZELPrGetRecordSettings(handle.Get(), &told), -50);
        EXPECT_EQ(told.copies, 77) << "nothing is told";
        EXPECT_EQ(Driver().ZELPrSetRecordSettings(nullptr, handle.Get(), &settings), -50);
        EXPECT_EQ(Driver().ZELPrSetRecordSettings(session.Get(), handle.Get(), &settings), -50);
        EXPECT_EQ(handle.Bytes(), bytes);
    }
}

TEST_F(RecordSettings, NullPointers_AreRefused) {
    ZELRecordSettings settings = Get();
    EXPECT_EQ(Driver().ZELPrGetRecordSettings(nullptr, &settings), -50);
    EXPECT_EQ(Driver().ZELPrGetRecordSettings(record.Get(), nullptr), -50);
    EXPECT_EQ(Driver().ZELPrSetRecordSettings(session.Get(), nullptr, &settings), -50);
    EXPECT_EQ(Driver().ZELPrSetRecordSettings(session.Get(), record.Get(), nullptr), -50);
}

TEST_F(RecordSettings, LongerHandle_KeepsWhatFollowsTheRecord) {
    RecordHandle handle(record.Bytes() + "bplist00 of the host");
    ZELRecordSettings settings = Get();
    settings.copies = 2;
    EXPECT_EQ(Driver().ZELPrSetRecordSettings(session.Get(), handle.Get(), &settings), 0);
    EXPECT_EQ(handle.Bytes().substr(416), "bplist00 of the host");
    EXPECT_EQ(handle.Bytes()[149], 2);
}

// ---- structures of versions to come

struct LongerSettings {
    ZELRecordSettings known;
    uint64_t more;
};

TEST_F(RecordSettings, Get_LongerStructure_IsZeroWhereTheDriverKnowsNothing) {
    LongerSettings longer;
    std::memset(&longer, 0xEE, sizeof longer);
    longer.known.size = sizeof longer;
    ASSERT_EQ(Driver().ZELPrGetRecordSettings(record.Get(), &longer.known), 0);
    EXPECT_EQ(longer.known.size, sizeof longer);
    EXPECT_EQ(longer.known.pageWidth, 575);
    EXPECT_EQ(longer.more, 0U);
}

TEST_F(RecordSettings, Set_LongerStructure_IsTakenWhereItAsksForNothingMore) {
    LongerSettings longer = {Get(), 0};
    longer.known.size = sizeof longer;
    longer.known.copies = 5;
    EXPECT_EQ(Set(longer.known), 0);
    EXPECT_EQ(Get().copies, 5);
    longer.more = 1;
    longer.known.copies = 6;
    EXPECT_EQ(Set(longer.known), -50);
    EXPECT_EQ(Get().copies, 5);
}

// ---- at random

TEST_F(RecordSettings, GetAndSet_AnyRecord_StaysByteForByte) {
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes(416, '\0');
        for (char &byte : bytes)
            byte = static_cast<char>(random());
        bytes.replace(0, 4, "POST");
        RecordHandle handle(bytes);
        ZELRecordSettings settings = {};
        settings.size = sizeof settings;
        ASSERT_EQ(Driver().ZELPrGetRecordSettings(handle.Get(), &settings), 0);
        ASSERT_EQ(Driver().ZELPrSetRecordSettings(nullptr, handle.Get(), &settings), 0);
        EXPECT_EQ(handle.Bytes(), bytes) << round;
    }
}

/// Settings among which many are good.
ZELRecordSettings RandomSettings(std::mt19937 &random, ZELRecordSettings settings) {
    const auto pick = [&random](auto... values) {
        const std::common_type_t<decltype(values)...> all[] = {values...};
        return all[random() % sizeof...(values)];
    };
    settings.colourSpace = pick(0U, 0U, 1U, 2U, 3U);
    settings.pageIsCustom = pick(0, 0, 1);
    settings.rotated = pick(0, 1);
    settings.mirrorHorizontal = pick(0, 1, 255);
    settings.eps = pick(0, 1);
    settings.pageWidth = pick(575.0, 575.0, 576.0, 818.0, 100.0, 1000.0, kNaN);
    settings.pageHeight = pick(818.0, 818.0, 720.0, 575.0, 200.0, 800.0, -1.0);
    settings.xDpi = pick(600.0, 300.0, 10.0, 10000.0, 9.0);
    settings.yDpi = pick(600.0, 1200.0, 10000.5);
    settings.copies = pick(1, 1, 2, 999, 0);
    settings.firstPage = pick(1, 1, 2, 50);
    settings.lastPage = pick(999, 999, 20);
    SetText(settings.pageName, pick("A4", "A4", "Letter", "B5"));
    SetText(settings.resolutionName, pick("600dpi", "600dpi", "300dpi", "7dpi"));
    SetText(settings.separationName, pick("", "", "Standard", "Gone"));
    return settings;
}

TEST_F(RecordSettings, Set_Accepted_IsWhatValidationLeavesAndGetTells) {
    std::mt19937 random(11);
    int accepted = 0;
    int refused = 0;
    for (int round = 0; round < 3000; ++round) {
        Driver().ZELPrDefaults(session.Get(), record.Get());
        ZELRecordSettings settings = RandomSettings(random, Get());
        if (Set(settings) != 0) {
            ++refused;
            continue;
        }
        ++accepted;
        EXPECT_FALSE(ValidateChanges()) << round;
        settings.mirrorHorizontal = settings.mirrorHorizontal != 0;
        const ZELRecordSettings told = Get();
        EXPECT_EQ(std::memcmp(&told, &settings, sizeof told), 0) << round;
    }
    EXPECT_GT(accepted, 50);
    EXPECT_GT(refused, 50);
}

} // namespace
