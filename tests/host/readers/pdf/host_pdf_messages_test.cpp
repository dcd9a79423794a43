#include "host/readers/pdf/PDFMessages.h"

#include <gtest/gtest.h>
#include <string>

namespace {

PDFMessages After(const std::string &line) {
    PDFMessages messages;
    messages.Add(line);
    return messages;
}

TEST(PDFMessages, OfWhatIsMissingOnThePage_AreLosses) {
    const std::pair<const char *, const char *> cases[] = {
        {"   **** Error: Page drawing error occurred.", "Error: Page drawing error occurred"},
        {"               Could not draw this page at all, page will be missing in the output.",
         "Could not draw this page at all, page will be missing in the output"},
        {"Function 'pdfi_interpret_content_stream' set pdfi error 22 - error reading a stream.",
         "error reading a stream"},
        {"\tSetting pdfi error 16 - error executing PDF token.", "error executing PDF token"},
        {"Function 'f' set pdfi error 7 - request for unknown filter.",
         "request for unknown filter"},
        {"warning: ignoring zlib error: invalid distance too far back",
         "warning: ignoring zlib error: invalid distance too far back"},
        {"GPL Ghostscript 10.00.0: Unrecoverable error, exit code 1",
         "GPL Ghostscript 10.00.0: Unrecoverable error, exit code 1"},
        {"zelprint failed typecheck", "zelprint failed typecheck"},
    };
    for (const auto &[line, lost] : cases) {
        EXPECT_EQ(After(line).Lost(), lost);
        EXPECT_EQ(After(line).Repaired(), "") << line;
    }
}

TEST(PDFMessages, OfWhatIsMended_AreRepairs) {
    const std::pair<const char *, const char *> cases[] = {
        {"Function 'pdfi_read_num' set pdfi error 11 - missing white space after number.",
         "missing white space after number"},
        {"Function 'f' set pdfi error 2 - PDF file was repaired.", "PDF file was repaired"},
        {"warning: ignoring zlib error: incorrect data check",
         "warning: ignoring zlib error: incorrect data check"},
    };
    for (const auto &[line, repaired] : cases) {
        EXPECT_EQ(After(line).Repaired(), repaired);
        EXPECT_EQ(After(line).Lost(), "") << line;
    }
}

TEST(PDFMessages, OfSoundPages_MeanNothing) {
    for (const char *line :
         {"", "Page 3", "Processing pages 1 through 1.", "\tIgnoring missing white space",
          "Loading font Helvetica (or substitute) from /usr/share/fonts/NimbusSans-Regular",
          "Function 'f' set pdfi warning 12 - invalid operator used in text block."}) {
        EXPECT_EQ(After(line).Lost(), "") << line;
        EXPECT_EQ(After(line).Repaired(), "") << line;
    }
}

TEST(PDFMessages, KeepTheFirstOfEachKindUntilCleared) {
    PDFMessages messages;
    messages.Add("set pdfi error 22 - error reading a stream.");
    messages.Add("   **** Error: Page drawing error occurred.");
    EXPECT_EQ(messages.Lost(), "error reading a stream");
    EXPECT_EQ(messages.Last(), "Error: Page drawing error occurred");
    messages.Clear();
    EXPECT_EQ(messages.Lost(), "");
    EXPECT_EQ(messages.Last(), "");
}

TEST(PDFMessages, TellAboutPasswords) {
    EXPECT_TRUE(After("   **** This file requires a password for access.").NeedsPassword());
    EXPECT_TRUE(After("   **** Error: Password did not work.").IsWrongPassword());
    EXPECT_FALSE(After("Page 1").NeedsPassword());
}

} // namespace
