// The command line of the real program: its options, its reports, and how it ends early.
#include "tests/host/CommandFixture.h"
#include "tests/host/RunShell.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

TEST_F(Command, Help_TellsEveryOption) {
    const RunResult run = mPlace.Run({"--help"});
    EXPECT_EQ(run.status, 0);
    for (const char *option :
         {"--copies",     "--pages",      "--title",         "--ppd",        "--hot-folder",
          "--output",     "--eps",        "--colour-space",  "--separation", "--media",
          "--resolution", "--rotate",     "--flip-h",        "--flip-v",     "--band-height",
          "--queue",      "--page-setup", "--print-dialog",  "--quiet",      "--json",
          "--dry-run",    "--settings",   "--save-settings", "--bundle",     "separations"})
        EXPECT_NE(run.out.find(option), std::string::npos) << option;
}

TEST_F(Command, Report_SaysWhatWasWrittenAndWhere) {
    const RunResult run = Print({Source()});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("hot/s.eps"), std::string::npos) << run.out;
    EXPECT_EQ(run.Complaint(), "");
    EXPECT_EQ(mPlace.Leftovers(), Names{});
}

TEST_F(Command, Quiet_SaysNothing) {
    EXPECT_EQ(Print({"--quiet", Source()}).out, "");
}

TEST_F(Command, JSON_HasItsKeys) {
    const RunResult run = Print({"--json", "-t", "Caf\xC3\xA9", "-n", "2", Source()});
    ASSERT_EQ(run.status, 0);
    const json report = json::parse(run.out);
    EXPECT_EQ(report["title"], "Caf\xC3\xA9");
    EXPECT_EQ(report["format"], "eps");
    EXPECT_EQ(report["colour_space"], "rgb");
    EXPECT_EQ(report["pages"], 1);
    EXPECT_EQ(report["copies"], 2);
    EXPECT_EQ(report["queued"], false);
    EXPECT_EQ(report["width_pixels"], 40);
    EXPECT_EQ(report["height_pixels"], 50);
    EXPECT_EQ(report["media"]["name"], nullptr);
    EXPECT_DOUBLE_EQ(report["media"]["width_pt"], 40);
    EXPECT_DOUBLE_EQ(report["resolution"]["x_dpi"], 72);
    ASSERT_EQ(report["files"].size(), 2U);
    for (const json &file : report["files"])
        EXPECT_EQ(fs::file_size(file["path"].get<std::string>()), file["bytes"].get<uint64_t>());
}

TEST_F(Command, JSON_OfAFailure_TellsStatusAndMessage) {
    const RunResult run = Print({"--json", mPlace.Path("missing.png")});
    const json report = json::parse(run.out);
    EXPECT_EQ(report["error"]["status"], 1);
    EXPECT_EQ("zelprint: " + report["error"]["message"].get<std::string>(), run.Complaint());
}

TEST_F(Command, DryRun_WritesNothing) {
    const RunResult run = Print({"--dry-run", "--json", Source()});
    ASSERT_EQ(run.status, 0) << run.err;
    const json plan = json::parse(run.out);
    EXPECT_EQ(plan["dry_run"], true);
    EXPECT_EQ(plan["expected_bytes"], 40 * 50 * 3 / 4 * 5 + 40 * 50 * 3 / 4 * 5 / 80);
    EXPECT_EQ(mPlace.HotFiles(), Names{});
}

TEST_F(Command, LargeNumbers_AreToldInDigits) {
    const RunResult run = Print({"--dry-run", "--eps", "--media", "5000.44x72pt", "--resolution",
                                 "10000dpi", "--allow-large", Source()});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.out.find("5000.4 x 72 points at 10000 x 10000 dpi"), std::string::npos)
        << run.out;
}

TEST_F(Command, Output_NamesAndReplacesTheFile) {
    WriteFile(mPlace.Path("mine.eps"), "%!old");
    ASSERT_EQ(mPlace
                  .Run({"--eps", "--media", "40x50pt", "--colour-space", "rgb", "-o",
                        mPlace.Path("mine.eps"), Source()})
                  .status,
              0);
    EXPECT_EQ(ReadFile(mPlace.Path("mine.eps")).substr(0, 4), "%!PS");
    ASSERT_EQ(Print({"-o", "second", Source()}).status, 0);
    EXPECT_EQ(mPlace.HotFiles(), Names{"second.eps"});
    ASSERT_EQ(mPlace.PrintRGB({"-o", "any.prn", Source()}).status, 0);
    EXPECT_EQ(mPlace.HotFiles(), (Names{"any.prn", "second.eps"}));
}

TEST_F(Command, TakenName_GetsANumber) {
    WriteFile(mPlace.Hot("s.eps"), "old");
    ASSERT_EQ(Print({Source()}).status, 0);
    EXPECT_EQ(mPlace.HotFiles(), (Names{"s.eps", "s_01.eps"}));
    EXPECT_EQ(ReadFile(mPlace.Hot("s.eps")), "old");
}

TEST_F(Command, HundredTakenNames_AreRefused) {
    for (int i = 0; i < 100; ++i) {
        char name[16];
        (void)snprintf(name, sizeof name, i == 0 ? "s.eps" : "s_%02d.eps", i);
        WriteFile(mPlace.Hot(name), "old");
    }
    const RunResult run = Print({Source()});
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.Complaint().find("taken"), std::string::npos) << run.err;
    EXPECT_EQ(mPlace.HotFiles().size(), 100U);
    EXPECT_EQ(mPlace.Leftovers(), Names{});
}

TEST_F(Command, Title_IsCleanInTheComment) {
    ASSERT_EQ(Print({"-t", "a)\n%%EOF (b/c", "-o", "t.eps", Source()}).status, 0);
    ASSERT_EQ(mPlace.PrintRGB({"-t", "a)\n%%EOF (b/c", Source()}).status, 0);
    const std::string text = ReadFile(mPlace.Hot("a] %%EOF [b-c.ps"));
    EXPECT_NE(text.find("\n%%Title: (a] %%EOF [b-c)\n"), std::string::npos);
}

TEST_F(Command, LastOfSeveralOptions_Holds) {
    const RunResult run = Print({"--dry-run", "--json", "--media", "80x90pt", Source()});
    EXPECT_EQ(json::parse(run.out)["width_pixels"], 80);
}

TEST_F(Command, SavedSettings_RepeatTheJob) {
    const std::string settings = mPlace.Path("job.settings");
    ASSERT_EQ(Print({"--rotate", "-n", "2", "--save-settings", settings, Source()}).status, 0);
    EXPECT_EQ(ReadFile(settings).substr(0, 4), "POST");
    EXPECT_EQ(ReadFile(settings).substr(416, 8), "bplist00");
    const std::string first = ReadWithoutDate(mPlace.Hot("s.eps"));
    for (const std::string &name : mPlace.HotFiles())
        fs::remove(mPlace.Hot(name));
    const RunResult run = mPlace.Run({"--settings", settings, Source()});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(mPlace.HotFiles(), (Names{"s.eps", "s_p02.eps"}));
    EXPECT_TRUE(ReadWithoutDate(mPlace.Hot("s.eps")) == first);
}

TEST_F(Command, Options_LeaveTheSavedDefaultsAlone) {
    const RunResult before = mPlace.Run({"--dry-run", "--json", "--hot-folder", ".", Source()});
    ASSERT_EQ(Print({"--rotate", "--flip-h", Source()}).status, 0);
    EXPECT_EQ(mPlace.Run({"--dry-run", "--json", "--hot-folder", ".", Source()}).out, before.out);
}

TEST_F(Command, PPD_GivesPagesResolutionsAndLimits) {
    WriteFile(mPlace.Path("p.ppd"), "*PPD-Adobe: \"4.3\"\n*LanguageLevel: \"2\"\n"
                                    "*ColorDevice: False\n*DefaultPageSize: A6\n"
                                    "*PageSize A6/Postcard: \"a6code\"\n"
                                    "*ImageableArea A6: \"10 20 290 400\"\n"
                                    "*DefaultResolution: 72dpi\n*Resolution 72dpi: \"rescode\"\n"
                                    "*Resolution 144x72dpi/Fine: \"finecode\"\n");
    const auto run = [this](Names arguments) {
        arguments.insert(arguments.begin(),
                         {"--ppd", mPlace.Path("p.ppd"), "--hot-folder", mPlace.Hot(), Source()});
        return mPlace.Run(arguments);
    };
    ASSERT_EQ(run({"-o", "a.ps"}).status, 0);
    const std::string text = ReadFile(mPlace.Hot("a.ps"));
    EXPECT_NE(text.find("a6code"), std::string::npos);
    EXPECT_NE(text.find("rescode"), std::string::npos);
    EXPECT_NE(text.find("/Width 280 /Height 380"), std::string::npos);
    EXPECT_NE(text.find("/DeviceGray"), std::string::npos); // the printer has no colour
    ASSERT_EQ(run({"-o", "b.ps", "--media", "postcard", "--resolution", "Fine", "--rotate"}).status,
              0);
    const std::string fine = ReadFile(mPlace.Hot("b.ps"));
    EXPECT_NE(fine.find("finecode"), std::string::npos);
    EXPECT_NE(fine.find("/Width 380 /Height 560"), std::string::npos);
    EXPECT_NE(fine.find("90 rotate"), std::string::npos);
    EXPECT_EQ(run({"--colour-space", "rgb"}).status, 2);
    EXPECT_EQ(run({"--media", "A4"}).status, 2);
    EXPECT_EQ(run({"--media", "100x100mm"}).status, 2);
    EXPECT_EQ(run({"--resolution", "best"}).status, 2);
}

TEST_F(Command, SavedSettings_TouchNoOtherFile) {
    WriteFile(mPlace.Path("job.new"), "mine");
    ASSERT_EQ(Print({"--save-settings", mPlace.Path("job"), Source()}).status, 0);
    EXPECT_EQ(ReadFile(mPlace.Path("job.new")), "mine");
    EXPECT_EQ(ReadFile(mPlace.Path("job")).substr(0, 4), "POST");
}

TEST_F(Command, WithoutStandardStreamsAndHome_Prints) {
    ASSERT_EQ(Print({"-o", "a.eps", Source()}).status, 0);
    const Outcome run =
        RunShell("(env -u HOME TERM=dumb " + Quoted(ZELPRINT_PROGRAM) +
                 " --eps --media 40x50pt --resolution 72 --colour-space rgb "
                 "--hot-folder " +
                 Quoted(mPlace.Hot()) + " -o b.eps " + Quoted(Source()) + " <&- >&- 2>&-)");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(ReadWithoutDate(mPlace.Hot("b.eps")).size(),
              ReadWithoutDate(mPlace.Hot("a.eps")).size());
}

TEST_F(Command, FileNamedTwice_IsPrintedTwice) {
    ASSERT_EQ(Print({Source(), Source()}).status, 0);
    EXPECT_EQ(mPlace.HotFiles(), (Names{"s.eps", "s_p02.eps"}));
}

TEST_F(Command, MoreFilesOrPagesThanDescriptors_ArePrinted) {
    std::string files;
    for (int i = 0; i < 60; ++i) {
        const std::string name = mPlace.Path("many" + std::to_string(i) + ".png");
        fs::copy(Source(), name);
        files += " " + Quoted(name);
    }
    SavePages(std::vector<Picture>(60, TestPicture(16, 16)), mPlace.Path("many.tif"));
    const Outcome run =
        RunShell("ulimit -n 48; " + Quoted(ZELPRINT_PROGRAM) +
                 " --eps --media 40x50pt --resolution 72 --colour-space rgb --hot-folder " +
                 Quoted(mPlace.Hot()) + " " + Quoted(mPlace.Path("many.tif")) + files);
    EXPECT_EQ(run.status, 0) << run.output;
    EXPECT_EQ(mPlace.HotFiles().size(), 120U);
}

TEST_F(Command, SecondImageOfAPNMFile_IsNotPassedOverInSilence) {
    for (const std::string &image :
         {std::string("P4\n9 1\n\xAA\x80"), std::string("P5 #c\n2\t1\n255\nab"),
          std::string("P5\n1 1\n65535\nab"), std::string("P6\n1 1\n255\nabc")}) {
        WriteFile(mPlace.Path("one.pnm"), image);
        const RunResult one = Print({mPlace.Path("one.pnm")});
        EXPECT_EQ(one.status, 0) << one.err;
        EXPECT_EQ(one.Complaint(), "") << image;
        WriteFile(mPlace.Path("two.pnm"), image + image);
        const RunResult two = Print({mPlace.Path("two.pnm")});
        EXPECT_EQ(two.status, 0) << two.err;
        EXPECT_NE(two.Complaint().find("two.pnm: it holds several images"), std::string::npos)
            << image;
    }
}

TEST_F(Command, WithADisplay_OpensNoWindow) {
    // Nobody listens there; a connection would end the command or wait for ever.
    const RunResult run = mPlace.Run(
        {"--hot-folder", mPlace.Hot(), "--colour-space", "gray", Source()}, {"DISPLAY=:987"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("No PPD file has been selected - using defaults\n"), std::string::npos);
}

class LongJob : public Command {
protected:
    /// Starts a job of that many pages, and returns when its document has begun to grow.
    [[nodiscard]] pid_t StartAndAwaitGrowth(const char *pages) const {
        SavePicture(TestPicture(1000, 1400), mPlace.Path("big.tif"));
        const pid_t child =
            mPlace.Start({"--hot-folder", mPlace.Hot(), "--colour-space", "rgb", "-n", pages,
                          "--band-height", "1", mPlace.Path("big.tif")});
        for (int i = 0; i < 6000 && !IsGrowing(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_TRUE(IsGrowing());
        return child;
    }
    /// The exit status; -1 when the program did not exit by itself.
    [[nodiscard]] static int Await(pid_t child) {
        int ended = 0;
        EXPECT_EQ(waitpid(child, &ended, 0), child);
        return WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
    }

private:
    [[nodiscard]] bool IsGrowing() const {
        for (const std::string &folder : mPlace.Leftovers())
            for (const auto &entry : fs::directory_iterator(folder))
                if (fs::file_size(entry.path()) > 500000) return true;
        return false;
    }
};

class Interrupted : public LongJob, public testing::WithParamInterface<std::pair<int, int>> {};

TEST_P(Interrupted, LeavesNothingBehind) {
    const auto [signal, status] = GetParam();
    const pid_t child = StartAndAwaitGrowth("100");
    ASSERT_EQ(kill(child, signal), 0);
    EXPECT_EQ(Await(child), status);
    EXPECT_EQ(mPlace.HotFiles(), Names{});
    EXPECT_EQ(mPlace.Leftovers(), Names{});
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupted,
                         testing::Values(std::pair(SIGINT, 130), std::pair(SIGTERM, 143),
                                         std::pair(SIGHUP, 143)));

/// A page that takes the reader ages in one piece, in a small file: forms that draw forms, ten
/// times each.
std::string EndlessPDF() {
    constexpr int kLevels = 12;
    std::string bytes = "%PDF-1.4\n";
    std::vector<size_t> offsets;
    const auto add = [&](const std::string &body) {
        offsets.push_back(bytes.size());
        bytes += std::to_string(offsets.size()) + " 0 obj\n" + body + "\nendobj\n";
    };
    const auto stream = [](const std::string &entries, const std::string &code) {
        return "<< " + entries + " /Length " + std::to_string(code.size()) + " >>\nstream\n" +
               code + "\nendstream";
    };
    const auto uses = [](int form) {
        return "/Resources << /XObject << /F " + std::to_string(form) + " 0 R >> >>";
    };
    add("<< /Type /Catalog /Pages 2 0 R >>");
    add("<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 200] /Contents 4 0 R " + uses(5) + " >>");
    add(stream("", "/F Do"));
    const std::string form = "/Type /XObject /Subtype /Form /BBox [0 0 200 200] ";
    for (int level = 0; level < kLevels; ++level)
        add(stream(form + uses(6 + level),
                   "/F Do /F Do /F Do /F Do /F Do /F Do /F Do /F Do /F Do"));
    add(stream(form, "0 0 100 100 re f"));
    const size_t table = bytes.size();
    const std::string count = std::to_string(offsets.size() + 1);
    bytes += "xref\n0 " + count + "\n0000000000 65535 f \n";
    for (const size_t offset : offsets) {
        char line[32];
        (void)snprintf(line, sizeof line, "%010zu 00000 n \n", offset);
        bytes += line;
    }
    return bytes + "trailer\n<< /Size " + count + " /Root 1 0 R >>\nstartxref\n" +
           std::to_string(table) + "\n%%EOF\n";
}

class InterruptedBeforeTheFirstRow : public LongJob,
                                     public testing::WithParamInterface<std::pair<int, int>> {};

TEST_P(InterruptedBeforeTheFirstRow, LeavesNothingBehind) {
    const auto [signal, status] = GetParam();
    WriteFile(mPlace.Path("endless.pdf"), EndlessPDF());
    for (const char *turn : {"--no-rotate", "--rotate"}) {
        const pid_t child = mPlace.Start({"--hot-folder", mPlace.Hot(), "--colour-space", "rgb",
                                          "--eps", turn, mPlace.Path("endless.pdf")});
        for (int i = 0; i < 6000 && mPlace.Leftovers().empty(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        ASSERT_EQ(mPlace.Leftovers().size(), 1U);
        // The document is open; no row of it will ever come.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        ASSERT_EQ(kill(child, signal), 0);
        EXPECT_EQ(Await(child), status);
        EXPECT_EQ(mPlace.HotFiles(), Names{});
        EXPECT_EQ(mPlace.Leftovers(), Names{});
    }
}

INSTANTIATE_TEST_SUITE_P(Signals, InterruptedBeforeTheFirstRow,
                         testing::Values(std::pair(SIGINT, 130), std::pair(SIGTERM, 143)));

TEST_F(LongJob, WhoseFolderIsRemovedMeanwhile_FailsAndLeavesNothingBehind) {
    const pid_t child = StartAndAwaitGrowth("40");
    fs::remove_all(mPlace.Hot());
    EXPECT_EQ(Await(child), 3);
    fs::create_directory(mPlace.Hot());
    EXPECT_EQ(mPlace.Leftovers(), Names{});
}

TEST_F(Command, QueueThatIsDown_KeepsTheDocument) {
    // A port that nobody listens on.
    const RunResult run =
        mPlace.Run({"--queue", "--hot-folder", mPlace.Hot(), "--colour-space", "gray", Source()},
                   {"CUPS_SERVER=localhost:9"});
    EXPECT_EQ(run.status, 5);
    EXPECT_NE(run.Complaint().find("lpr -o raw"), std::string::npos) << run.err;
    EXPECT_EQ(mPlace.HotFiles(), Names{"s.ps"});
    EXPECT_EQ(mPlace.Leftovers(), Names{});
}

} // namespace
