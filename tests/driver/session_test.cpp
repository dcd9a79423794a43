// A session's life and its latched state, through the entry points of the loaded bundle.
#include "tests/driver/BundleHost.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

class SessionTest : public testing::Test {
protected:
    SessionTest() { ClearPreferences(); }
    ~SessionTest() override { ClearPreferences(); }
    /// Opens a document of the built-in A4 page in the scratch folder.
    int32_t OpenDocument(uint16_t depth = 32) {
        Driver().ZELPrDefaults(session.Get(), record.Get());
        Driver().ZELPrSuggestPage(session.Get(), nullptr, nullptr, depth);
        EXPECT_TRUE(session.SetHotFolder(record.Get(), folder.Path()));
        return Driver().ZELPrOpenDoc(session.Get());
    }

    ScratchFolder folder;
    RecordHandle record;
    Session session;
};

TEST_F(SessionTest, Print_BuiltInPrinter_WritesOneDocument) {
    (void)Driver().ZELPrSetJobName(session.Get(), nullptr, CFSTR("Poster"));
    ASSERT_EQ(OpenDocument(), 0);
    ASSERT_EQ(session.PrintPage(2350, 3425), 0);
    ASSERT_EQ(Driver().ZELPrCloseDoc(session.Get()), 0);
    EXPECT_EQ(session.Close(), 0);
    ASSERT_THAT(folder.Names(), ElementsAre("Poster.ps"));
    const std::string document = ReadFile(folder.Path() / "Poster.ps");
    EXPECT_EQ(document.rfind("%!PS-Adobe-3.0\n", 0), 0U);
    EXPECT_EQ(document.substr(document.size() - 6), "%%EOF\n");
}

} // namespace
