// What people give with -o out of lp's habit, and what they mean to write.
#include "host/command/LpOptions.h"
#include "host/terminal/ExitStatus.h"

#include <gtest/gtest.h>

namespace {

JobOptions Take(const std::vector<std::string> &words) {
    JobOptions options;
    options.outputWords = words;
    TakeOutputWords(options);
    return options;
}

std::string RefusalOf(const std::string &word) {
    try {
        (void)Take({word});
    } catch (const HostError &error) {
        EXPECT_EQ(error.Status(), ExitStatus::Usage);
        return error.what();
    }
    return "none";
}

TEST(LpOptions, Names_AreFilesToWrite) {
    for (const char *name : {"page.ps", "page", "a=b.ps", "./media=A4", "/x=y/page",
                             "fit to page.ps", "two words", "=x", "landscape.ps", "a (1)=2"})
        EXPECT_EQ(Take({name}).output, name);
    EXPECT_EQ(Take({"first.ps", "last.ps"}).output, "last.ps");
    EXPECT_EQ(Take({}).output, std::nullopt);
}

TEST(LpOptions, OtherWords_TellWhichOptionIsMeant) {
    const std::pair<const char *, const char *> words[] = {
        {"media=A4", "--media"},
        {"PageSize=A4", "--media"},
        {"Resolution=600dpi", "--resolution"},
        {"printer-resolution=600dpi", "--resolution"},
        {"ColorModel=Gray", "--colour-space"},
        {"print-color-mode=monochrome", "--colour-space"},
        {"landscape", "--rotate"},
        {"orientation-requested=4", "--rotate"},
        {"mirror", "--flip-h"},
        {"page-ranges=1-4", "--pages"},
        {"copies=2", "--copies"},
        {"sides=two-sided-long-edge", "nothing like it"},
        {"raw", "nothing like it"},
        {"some-option=some.value", "-o './some-option=some.value'"},
        {"media=A4 fit-to-page", "--media"},
    };
    for (const auto &[word, meant] : words) {
        const std::string refusal = RefusalOf(word);
        EXPECT_EQ(refusal.rfind(std::string("-o ") + word, 0) == 0 ||
                      std::string(word).find(' ') != std::string::npos,
                  true)
            << refusal;
        EXPECT_NE(refusal.find(meant), std::string::npos) << refusal;
    }
}

TEST(LpOptions, WordsOfSizeAndPlace_AreTaken) {
    const JobOptions options =
        Take({"fit-to-page", "page.ps", "position=top-left", "print-scaling=fill"});
    EXPECT_EQ(options.output, "page.ps");
    EXPECT_EQ(options.placement.rule, ScaleRule::Fill);
    EXPECT_EQ(options.placement.across, Alignment::Start);
    EXPECT_EQ(Take({"fit-to-page position=bottom"}).placement.down, Alignment::End);
    EXPECT_NE(RefusalOf("print-scaling=huge").find("huge"), std::string::npos);
    EXPECT_NE(RefusalOf("fit-to-page page.ps").find("page.ps"), std::string::npos);
}

} // namespace
