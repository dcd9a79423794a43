// Whole records, byte for byte, against files in golden/ that were packed independently.
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace {

std::string HexDump(const std::string &bytes) {
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        char pair[4];
        std::snprintf(pair, sizeof pair, "%02x", static_cast<unsigned char>(bytes[i]));
        text += pair;
        text += i % 16 == 15 || i + 1 == bytes.size() ? '\n' : ' ';
    }
    return text;
}

std::string Golden(const std::string &name) {
    return ReadFile(std::filesystem::path(ZEL_GOLDEN_FOLDER) / name);
}

class GoldenRecordTest : public testing::Test {
protected:
    GoldenRecordTest() { ClearPreferences(); }
    ~GoldenRecordTest() override { ClearPreferences(); }
    void UsePrinter(const TestPPD &ppd) {
        const CFRef<CFURLRef> url = MakeURL(folder.Write("Test.ppd", ppd.Text()));
        ASSERT_EQ(Driver().ZELPrSetPrinter(session.Get(), url.Get(), nullptr), 0);
    }

    ScratchFolder folder;
    RecordHandle record{Size{0}};
    Session session;
};

TEST_F(GoldenRecordTest, Defaults_BuiltInPrinterNoPreferences) {
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(HexDump(record.Bytes()), Golden("built-in-defaults.hex"));
}

TEST_F(GoldenRecordTest, Defaults_ColourPrinterNoPreferences) {
    UsePrinter({});
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(HexDump(record.Bytes()), Golden("colour-defaults.hex"));
}

TEST_F(GoldenRecordTest, Defaults_EveryPreferenceSet) {
    UsePrinter({});
    const CFRef<CFMutableDictionaryRef> options = MakeDictionary();
    CFDictionarySetValue(options.Get(), CFSTR("FlipH"), kCFBooleanTrue);
    CFDictionarySetValue(options.Get(), CFSTR("Rotate"), kCFBooleanTrue);
    CFDictionarySetValue(options.Get(), CFSTR("Separation"), MakeString("Zeitung 70 µ").Get());
    SetPreference(CFSTR("PageOptions"), options.Get());
    SetPreference(CFSTR("PSColourSpace"), MakeNumber(int64_t{2}).Get());
    SetPreference(CFSTR("FileFormat"), CFSTR("EPS"));
    Driver().ZELPrDefaults(session.Get(), record.Get());
    EXPECT_EQ(HexDump(record.Bytes()), Golden("preferences.hex"));
}

TEST_F(GoldenRecordTest, Validate_FitsACustomPage) {
    TestPPD ppd;
    ppd.custom = TestPPD::CustomPages();
    UsePrinter(ppd);
    session.Suggest(1000, 1500, 100); // only the first byte of the old page name goes
    EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), record.Get()));
    EXPECT_EQ(HexDump(record.Bytes()), Golden("fitted-custom.hex"));
}

TEST_F(GoldenRecordTest, Validate_FitsANamedPage) {
    UsePrinter({});
    const ZELPageRecord page = {1199, 1200, 203, 203.2};
    Driver().ZELPrSuggestPage(session.Get(), nullptr, &page, 0);
    EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), record.Get()));
    EXPECT_EQ(HexDump(record.Bytes()), Golden("fitted-named.hex"));
}

} // namespace
