// The command line of the real program: its options, its reports, its failures.
#include "tests/host/HostRunner.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Names = std::vector<std::string>;

class Command : public testing::Test {
protected:
    Command() { SavePicture(TestPicture(32, 20), mPlace.Path("s.png")); }
    /// Small pages keep the tests quick.
    [[nodiscard]] RunResult Print(Names arguments) const {
        arguments.insert(arguments.begin(), {"--eps", "--media", "40x50pt", "--resolution", "72"});
        return mPlace.PrintRGB(std::move(arguments));
    }
    /// A failure: one line, the status, nothing left under any name.
    void ExpectRefused(const RunResult &run, int status, const std::string &text) const {
        EXPECT_EQ(run.status, status) << run.err;
        EXPECT_NE(run.Complaint().find(text), std::string::npos) << run.err;
        EXPECT_EQ(mPlace.HotFiles(), Names{});
        EXPECT_EQ(mPlace.Leftovers(), Names{});
    }
    [[nodiscard]] std::string Source() const { return mPlace.Path("s.png"); }
    Workplace mPlace;
};

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

TEST_F(Command, Output_NamesAndReplacesTheFile) {
    WriteFile(mPlace.Path("mine.eps"), "old");
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

TEST_F(Command, FileNameNotUTF8_IsRefused) {
    fs::copy(Source(), mPlace.Path("caf\xE9.png"));
    ExpectRefused(Print({mPlace.Path("caf\xE9.png")}), 2, "UTF-8");
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

struct Refusal {
    const char *name;
    Names arguments;
    int status;
    const char *text;
};

class RefusedUse : public Command, public testing::WithParamInterface<Refusal> {};

TEST_P(RefusedUse, IsOneClearLine) {
    Names arguments = GetParam().arguments;
    for (std::string &argument : arguments)
        if (argument == "SOURCE") argument = Source();
    ExpectRefused(Print(arguments), GetParam().status, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Usage, RefusedUse,
    testing::Values(Refusal{"NoFile", {}, 2, "no file to print"},
                    Refusal{"UnknownOption", {"--nonsense", "SOURCE"}, 2, "--nonsense"},
                    Refusal{"BadRange", {"-P", "0", "SOURCE"}, 2, "page range"},
                    Refusal{"EmptyRange", {"-P", "5-", "SOURCE"}, 2, "in the range"},
                    Refusal{"NoCopies", {"-n", "0", "SOURCE"}, 2, "copies"},
                    Refusal{"TitleNotUTF8", {"-t", "caf\xE9", "SOURCE"}, 2, "UTF-8"},
                    Refusal{"NoSuchColours", {"--colour-space", "lab", "SOURCE"}, 2, "lab"},
                    Refusal{"NoSuchSeparation",
                            {"--colour-space", "cmyk", "--separation", "none", "SOURCE"},
                            1,
                            "no separation called \"none\""},
                    Refusal{"SeparationOfRGB", {"--separation", "Standard", "SOURCE"}, 2, "CMYK"},
                    Refusal{"QueuedEPS", {"--queue", "SOURCE"}, 2, "EPS"},
                    Refusal{"NoSuchPPD", {"--ppd", "/nonexistent.ppd", "SOURCE"}, 1, "PPD"},
                    Refusal{"HugePage", {"--media", "99999999x10mm", "SOURCE"}, 2, "size"},
                    Refusal{"TinyPage", {"--media", "0.001x10mm", "SOURCE"}, 2, "size"},
                    Refusal{"NoSettings", {"--settings", "/nonexistent", "SOURCE"}, 1, "settings"},
                    Refusal{"OutputIsNoName", {"-o", "..", "SOURCE"}, 2, "-o"},
                    Refusal{"NoBundle", {"--bundle", "/nonexistent", "SOURCE"}, 4, "bundle"},
                    Refusal{"NoDisplay", {"--print-dialog", "SOURCE"}, 2, "hot-folder"}),
    [](const auto &info) { return info.param.name; });

TEST_F(Command, DialogsWithoutAWindowSystem_AreRefused) {
    ASSERT_EQ(getenv("DISPLAY"), nullptr);
    for (const char *dialog : {"--page-setup", "--print-dialog"})
        ExpectRefused(mPlace.Run({dialog, "--colour-space", "rgb", Source()}), 2, "window system");
}

TEST_F(Command, WithADisplay_OpensNoWindow) {
    // Nobody listens there; a connection would end the command or wait for ever.
    const RunResult run = mPlace.Run(
        {"--hot-folder", mPlace.Hot(), "--colour-space", "gray", Source()}, {"DISPLAY=:987"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_NE(run.err.find("No PPD file has been selected - using defaults\n"), std::string::npos);
}

TEST_F(Command, NoHotFolder_SaysSo) {
    ExpectRefused(mPlace.Run({"--colour-space", "rgb", Source()}), 2, "--hot-folder");
}

class BadFile : public Command {
protected:
    void ExpectUnreadable(const std::string &name, const std::string &bytes,
                          const std::string &text) const {
        WriteFile(mPlace.Path(name), bytes);
        const RunResult run = Print({mPlace.Path(name)});
        ExpectRefused(run, 1, text);
        EXPECT_NE(run.Complaint().find(name), std::string::npos) << run.err;
    }
};

TEST_F(BadFile, Missing) {
    ExpectRefused(Print({"missing.png"}), 1, "missing.png");
}

TEST_F(BadFile, Folder) {
    ExpectRefused(Print({mPlace.Hot()}), 1, "not a regular file");
}

TEST_F(BadFile, Pipe) {
    ASSERT_EQ(mkfifo(mPlace.Path("pipe").c_str(), 0600), 0);
    ExpectRefused(Print({mPlace.Path("pipe")}), 1, "not a regular file");
}

TEST_F(BadFile, Unreadable) {
    if (geteuid() == 0) GTEST_SKIP() << "the superuser may read anything";
    fs::permissions(Source(), fs::perms::none);
    ExpectRefused(Print({Source()}), 1, "s.png");
}

TEST_F(BadFile, OtherContents) {
    ExpectUnreadable("empty.png", "", "empty");
    ExpectUnreadable("text.png", "hello, world", "not a TIFF");
    ExpectUnreadable("script.ps", "%!PS\nshowpage\n", "not a TIFF");
    ExpectUnreadable("zeros.tif", std::string(100, '\0'), "not a TIFF");
}

TEST_F(BadFile, DamagedHeaders) {
    ExpectUnreadable("a.tif", std::string("II*\0", 4), "cannot be read");
    ExpectUnreadable("b.tif", std::string("II*\0\xFF\xFF\xFF\xFF", 8), "cannot be read");
    ExpectUnreadable("a.png", "\x89PNG\r\n\x1a\n", "cannot be read");
    ExpectUnreadable("a.jpg", "\xFF\xD8\xFF\xE0", "cannot be read");
    ExpectUnreadable("a.ppm", "P6\n", "cannot be read");
    ExpectUnreadable("a.pdf", "%PDF-1.4\n", "cannot be read");
}

TEST_F(BadFile, AbsurdSizes) {
    ExpectUnreadable("zero.ppm", "P6\n0 0\n255\n", "cannot be read");
    ExpectUnreadable("minus.ppm", "P6\n-5 5\n255\n", "cannot be read");
    ExpectUnreadable("huge.ppm", "P6\n2000000000 2000000000\n255\nx", "cannot be read");
    ExpectUnreadable("large.ppm", "P6\n100000 100000\n255\nx", "cannot be read");
}

TEST_F(BadFile, CutAnywhere) {
    for (const char *name : {"c.tif", "c.png", "c.jpg", "c.ppm"}) {
        SavePicture(TestPicture(300, 300), mPlace.Path(name));
        const std::string whole = ReadFile(mPlace.Path(name));
        for (const double part : {0.1, 0.5, 0.9})
            ExpectUnreadable(
                std::string("cut") + name,
                whole.substr(0, static_cast<size_t>(static_cast<double>(whole.size()) * part)),
                "cut");
    }
}

TEST_F(BadFile, SecondPageDamaged_LeavesNothing) {
    SavePages({TestPicture(64, 64), TestPicture(64, 64)}, mPlace.Path("two.tif"));
    std::string bytes = ReadFile(mPlace.Path("two.tif"));
    WriteFile(mPlace.Path("cut.jpg"), "\xFF\xD8\xFF\xE0 nothing");
    ExpectRefused(Print({mPlace.Path("two.tif"), mPlace.Path("cut.jpg")}), 1, "cut.jpg");
}

TEST_F(Command, SettingsFile_Damaged) {
    for (const std::string &bytes :
         {std::string("x"), std::string(416, 'x'), "POST" + std::string(412, '\0'),
          "POST" + std::string(412, '\0') + "bplist00garbage", std::string(2 << 20, 'P')}) {
        WriteFile(mPlace.Path("bad.settings"), bytes);
        ExpectRefused(Print({"--settings", mPlace.Path("bad.settings"), Source()}), 1,
                      "not a settings file");
    }
}

TEST_F(Command, Folder_Missing) {
    ExpectRefused(
        mPlace.Run({"--hot-folder", mPlace.Path("none"), "--colour-space", "rgb", Source()}), 3,
        "none");
}

TEST_F(Command, Folder_IsAFile) {
    ExpectRefused(mPlace.Run({"--hot-folder", Source(), "--colour-space", "rgb", Source()}), 3,
                  "not a folder");
}

TEST_F(Command, Folder_Unwritable) {
    if (geteuid() == 0) GTEST_SKIP() << "the superuser may write anywhere";
    fs::permissions(mPlace.Hot(), fs::perms::owner_read | fs::perms::owner_exec);
    ExpectRefused(Print({Source()}), 3, "hot");
    fs::permissions(mPlace.Hot(), fs::perms::owner_all);
}

TEST_F(Command, Folder_TooDeep) {
    fs::path deep = mPlace.Hot();
    while (deep.string().size() < 1030)
        deep /= std::string(60, 'd');
    fs::create_directories(deep);
    const RunResult run =
        mPlace.Run({"--hot-folder", deep.string(), "--colour-space", "rgb", Source()});
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.Complaint().find("too long"), std::string::npos) << run.err;
    EXPECT_TRUE(fs::is_empty(deep));
}

TEST_F(Command, Folder_FullAtAnyPoint) {
    // A limit on the size of files stands for a full disk; the last ones hit the last write only.
    ASSERT_EQ(Print({"-o", "s.eps", "--media", "200x200pt", Source()}).status, 0);
    const uint64_t whole = fs::file_size(mPlace.Hot("s.eps"));
    fs::remove(mPlace.Hot("s.eps"));
    for (const uint64_t limit : {uint64_t{20000}, whole / 2, whole - 7, whole - 1}) {
        const RunResult run =
            mPlace.Run({"--eps", "--media", "200x200pt", "--resolution", "72", "--colour-space",
                        "rgb", "--hot-folder", mPlace.Hot(), Source()},
                       {}, limit);
        ExpectRefused(run, 3, "hot");
    }
}

class Interrupted : public Command, public testing::WithParamInterface<std::pair<int, int>> {};

TEST_P(Interrupted, LeavesNothingBehind) {
    const auto [signal, status] = GetParam();
    SavePicture(TestPicture(1000, 1400), mPlace.Path("big.tif"));
    const pid_t child = mPlace.Start({"--hot-folder", mPlace.Hot(), "--colour-space", "rgb", "-n",
                                      "400", "--band-height", "1", mPlace.Path("big.tif")});
    // Until the document has grown.
    const auto growing = [this] {
        for (const std::string &folder : mPlace.Leftovers())
            for (const auto &entry : fs::directory_iterator(folder))
                if (fs::file_size(entry.path()) > 500000) return true;
        return false;
    };
    for (int i = 0; i < 600 && !growing(); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    ASSERT_TRUE(growing());
    ASSERT_EQ(kill(child, signal), 0);
    int ended = 0;
    ASSERT_EQ(waitpid(child, &ended, 0), child);
    ASSERT_TRUE(WIFEXITED(ended));
    EXPECT_EQ(WEXITSTATUS(ended), status);
    EXPECT_EQ(mPlace.HotFiles(), Names{});
    EXPECT_EQ(mPlace.Leftovers(), Names{});
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupted,
                         testing::Values(std::pair(SIGINT, 130), std::pair(SIGTERM, 143),
                                         std::pair(SIGHUP, 143)));

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

TEST_F(Command, NoDescriptorsOrFilesGrowWithPages) {
    SavePages(std::vector<Picture>(40, TestPicture(16, 16)), mPlace.Path("many.tif"));
    const RunResult run = Print({"--json", mPlace.Path("many.tif")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(json::parse(run.out)["files"].size(), 40U);
}

} // namespace
