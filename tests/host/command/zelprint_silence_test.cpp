// What zelprint says, and to whom: nothing where nothing was asked, JSON to programs, and help that
// fits.
#include "host/driver/CFOwner.h"
#include "tests/host/CommandFixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

const char kPPD[] = "*PPD-Adobe: \"4.3\"\n"
                    "*LanguageLevel: \"2\"\n"
                    "*ColorDevice: True\n"
                    "*DefaultPageSize: Small\n"
                    "*PageSize Small/Small: \"<</PageSize[100 100]>>setpagedevice\"\n"
                    "*DefaultImageableArea: Small\n"
                    "*ImageableArea Small/Small: \"0 0 100 100\"\n"
                    "*DefaultResolution: 72dpi\n"
                    "*Resolution 72dpi/72 dpi: \"<</HWResolution[72 72]>>setpagedevice\"\n";

class Silence : public Command {
protected:
    Silence() { WriteFile(mPlace.Path("p.ppd"), kPPD); }
    ~Silence() override { ChoosePPD(""); }

    /// The user's choice, as early versions of the driver kept it; empty: none.
    static void ChoosePPD(const std::string &path) {
        const CFOwner<CFStringRef> value =
            path.empty() ? CFOwner<CFStringRef>() : MakeCFString(path);
        CFPreferencesSetAppValue(CFSTR("PPDFile"), value.Get(),
                                 CFSTR("com.zel.PostscriptPrinterDriver"));
        EXPECT_TRUE(CFPreferencesAppSynchronize(CFSTR("com.zel.PostscriptPrinterDriver")));
    }
    [[nodiscard]] RunResult PrintGray(Names arguments) const {
        arguments.insert(arguments.begin(),
                         {"--colour-space", "gray", "--hot-folder", mPlace.Hot()});
        return mPlace.Run(arguments);
    }
};

TEST_F(Silence, PrinterThatIsNamed_IsNoReasonForAWord) {
    for (const Names &printer :
         {Names{"--ppd", mPlace.Path("p.ppd")}, Names{"--built-in-printer"}}) {
        Names arguments = printer;
        arguments.push_back(Source());
        const RunResult run = PrintGray(arguments);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.err, "");
    }
}

TEST_F(Silence, NoPrinterChosen_IsSaid) {
    const RunResult run = PrintGray({Source()});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.err.find("No PPD file has been selected - using defaults"), std::string::npos);
}

TEST_F(Silence, Quiet_SaysNothingOnSuccess) {
    // A file with two images is worth a warning.
    WriteFile(mPlace.Path("two.pgm"), "P5\n1 1\n255\nxP5\n1 1\n255\nx");
    EXPECT_NE(PrintGray({"--built-in-printer", mPlace.Path("two.pgm")}).Complaint(), "");
    for (const std::string &ppd : {std::string(), mPlace.Path("p.ppd")}) {
        ChoosePPD(ppd);
        const RunResult run = PrintGray({"--quiet", Source(), mPlace.Path("two.pgm")});
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out + run.err, "");
    }
}

TEST_F(Silence, Quiet_ChosenPrinterThatIsGone_IsAFailure) {
    ChoosePPD(mPlace.Path("gone.ppd"));
    ExpectRefused(PrintGray({"--quiet", Source()}), 1, "gone.ppd");
    EXPECT_EQ(PrintGray({Source()}).status, 0) << "in front of people the driver says it";
}

TEST_F(Silence, BuiltInPrinter_CountsMoreThanTheUsers) {
    ChoosePPD(mPlace.Path("p.ppd"));
    const std::string users = PrintGray({"--dry-run", Source()}).out;
    const std::string builtIn = PrintGray({"--dry-run", "--built-in-printer", Source()}).out;
    EXPECT_NE(users.find("Small"), std::string::npos) << users;
    EXPECT_NE(builtIn.find("A4"), std::string::npos) << builtIn;
    ExpectRefused(PrintGray({"--built-in-printer", "--ppd", mPlace.Path("p.ppd"), Source()}), 2,
                  "--built-in-printer");
    // So do settings that were saved with it.
    const std::string settings = mPlace.Path("s.settings");
    ASSERT_EQ(PrintGray({"--dry-run", "--built-in-printer", "--save-settings", settings, Source()})
                  .status,
              0);
    EXPECT_NE(PrintGray({"--dry-run", "--settings", settings, Source()}).out.find("A4"),
              std::string::npos);
}

TEST_F(Silence, DryRun_NeedsNoFolder) {
    const Names arguments = {"--dry-run", "--colour-space", "gray", Source()};
    const RunResult run = mPlace.Run(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("still to be chosen"), std::string::npos) << run.out;
    Names asJSON = arguments;
    asJSON.push_back("--json");
    EXPECT_TRUE(json::parse(mPlace.Run(asJSON).out)["folder"].is_null());
}

TEST_F(Silence, JSON_AnswersEveryFailure) {
    const struct {
        Names arguments;
        int status;
    } failures[] = {{{"--json"}, 2},
                    {{"--json", "--nonsense"}, 2},
                    {{"--json", "-n", "0", Source()}, 2},
                    {{"--json", "/nonexistent.png"}, 1},
                    {{"--json", "--bundle", "/nonexistent", Source()}, 4},
                    {{"--json", "-t", "caf\xE9", Source()}, 2},
                    {{"printer-info", "--json"}, 2},
                    {{"printer-info", "--json", "/nonexistent.ppd"}, 1},
                    {{"printer-info", "--json", Source()}, 1},
                    {{"separations", "--json", "--nonsense"}, 2},
                    {{"--bundle", "/nonexistent", "separations", "--json"}, 4},
                    {{"make-separation", "--json"}, 2},
                    {{"make-separation", "--json", "--to", "/nonexistent.icc", "X"}, 1},
                    {{"make-separation", "--json", "--to", Source(), "a/b"}, 2}};
    for (const auto &failure : failures) {
        const RunResult run = mPlace.Run(failure.arguments);
        const std::string which = failure.arguments[0] + " " + failure.arguments.back();
        EXPECT_EQ(run.status, failure.status) << which;
        const json answer = json::parse(run.out, nullptr, false);
        ASSERT_FALSE(answer.is_discarded()) << which << ": " << run.out;
        EXPECT_EQ(answer["error"]["status"], failure.status) << which;
        EXPECT_NE(answer["error"]["message"], "") << which;
        EXPECT_NE(run.Complaint(), "") << which;
    }
}

TEST_F(Silence, Help_FitsAndShowsNoMarks) {
    for (const Names &command :
         {Names{"--help"}, Names{"printer-info", "--help"}, Names{"separations", "--help"},
          Names{"make-separation", "--help"}}) {
        const RunResult run = mPlace.Run(command);
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out.find("{false}"), std::string::npos);
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LT(line.size(), 80U) << line;
    }
}

} // namespace
