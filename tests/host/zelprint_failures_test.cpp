// What cannot be printed: one clear line, a documented exit status, and nothing left behind.
#include "tests/host/CommandFixture.h"
#include "tests/host/RunShell.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

TEST_F(Command, FileNameNotUTF8_IsRefused) {
    fs::copy(Source(), mPlace.Path("caf\xE9.png"));
    ExpectRefused(Print({mPlace.Path("caf\xE9.png")}), 2, "UTF-8");
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
    testing::Values(
        Refusal{"NoFile", {}, 2, "no file to print"},
        Refusal{"UnknownOption", {"--nonsense", "SOURCE"}, 2, "--nonsense"},
        Refusal{"BadRange", {"-P", "0", "SOURCE"}, 2, "page range"},
        Refusal{"RangeBeyondNumbers", {"-P", "1-99999999999", "SOURCE"}, 2, "page range"},
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
        Refusal{"EmptyFile", {""}, 2, "FILE: its value is empty"},
        Refusal{"EmptyPPD", {"--ppd", "", "SOURCE"}, 2, "--ppd: its value"},
        Refusal{"EmptySettings", {"--settings", "", "SOURCE"}, 2, "--settings: its"},
        Refusal{"EmptyHotFolder", {"--hot-folder", "", "SOURCE"}, 2, "--hot-folder: "},
        Refusal{"EmptyBundle", {"--bundle", "", "SOURCE"}, 2, "--bundle: its value"},
        Refusal{"PPDIsAFolder", {"--ppd", "/", "SOURCE"}, 1, "Not a PPD file"},
        Refusal{"PPDIsADevice", {"--ppd", "/dev/zero", "SOURCE"}, 1, "Not a PPD file"},
        Refusal{"SettingsAreAFolder", {"--settings", "/", "SOURCE"}, 1, "settings file"},
        Refusal{"SettingsAreADevice", {"--settings", "/dev/zero", "SOURCE"}, 1, "settings file"},
        Refusal{"SettingsOverAFolder", {"--save-settings", "/", "SOURCE"}, 3, "not a regular file"},
        Refusal{"NoRoom",
                {"--media", "999999x999999pt", "-n", "999", "SOURCE"},
                3,
                "there is room for"},
        Refusal{"NoSettings", {"--settings", "/nonexistent", "SOURCE"}, 1, "settings"},
        Refusal{"OutputIsNoName", {"-o", "..", "SOURCE"}, 2, "-o"},
        Refusal{"NoBundle", {"--bundle", "/nonexistent", "SOURCE"}, 4, "bundle"},
        Refusal{"NoDisplay", {"--print-dialog", "SOURCE"}, 2, "hot-folder"}),
    [](const auto &info) { return info.param.name; });

TEST_F(Command, SettingsAreAPipe_IsRefusedWithoutWaiting) {
    ASSERT_EQ(mkfifo(mPlace.Path("pipe").c_str(), 0600), 0);
    ExpectRefused(Print({"--settings", mPlace.Path("pipe"), Source()}), 1, "settings file");
}

TEST_F(Command, OutputOverWhatIsNoFile_IsRefused) {
    const std::string pipe = mPlace.Path("pipe.eps");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink(mPlace.Hot(), mPlace.Path("folder.eps"));
    for (const std::string &name : {pipe, mPlace.Path("folder.eps")})
        for (const char *option : {"--eps", "--dry-run"})
            ExpectRefused(mPlace.Run({"--eps", option, "-o", name, Source()}), 3,
                          "not a regular file");
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(Command, ControlCharactersOfAName_StayOutOfTheComplaint) {
    ExpectRefused(Print({mPlace.Path("a\nb\x1B[31mc.png")}), 1, "a?b?[31mc.png: ");
}

TEST_F(Command, AnswerThatCannotBeWritten_IsAFailure) {
    const std::string arguments = " 2>/dev/null >/dev/full";
    for (const char *asked : {"--help", "--version", "separations", "separations --json"})
        EXPECT_EQ(RunShell(Quoted(ZELPRINT_PROGRAM) + " " + asked + arguments).status, 3) << asked;
    const std::string print = Quoted(ZELPRINT_PROGRAM) + " --eps --media 40x50pt --hot-folder " +
                              Quoted(mPlace.Hot()) + " " + Quoted(Source()) + " ";
    EXPECT_EQ(RunShell(print + "--dry-run" + arguments).status, 3);
    EXPECT_EQ(RunShell(print + "--json" + arguments).status, 3);
    // What only keeps people informed may get lost.
    EXPECT_EQ(RunShell(print + arguments).status, 0);
    EXPECT_EQ(mPlace.HotFiles().size(), 2U);
}

TEST_F(Command, DialogsWithoutAWindowSystem_AreRefused) {
    ASSERT_EQ(getenv("DISPLAY"), nullptr);
    for (const char *dialog : {"--page-setup", "--print-dialog"})
        ExpectRefused(mPlace.Run({dialog, "--colour-space", "rgb", Source()}), 2, "window system");
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

TEST_F(BadFile, Pipe) {}

TEST_F(BadFile, Unreadable) {
    if (geteuid() == 0) GTEST_SKIP() << "the superuser may read anything";
    fs::permissions(Source(), fs::perms::none);
    ExpectRefused(Print({Source()}), 1, "s.png");
}

TEST_F(BadFile, OtherContents) {
    ExpectUnreadable("empty.png", "", "empty");
    ExpectUnreadable("text.png", "hello, world", "not a TIFF");
    ExpectUnreadable("script.ps", "%!PS\nshowpage\n", "PostScript and EPS are programs");
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
    // Its header is whole: the damage shows when the first page is printed already.
    SavePicture(TestPicture(300, 300), mPlace.Path("whole.jpg"));
    const std::string bytes = ReadFile(mPlace.Path("whole.jpg"));
    WriteFile(mPlace.Path("cut.jpg"), bytes.substr(0, bytes.size() / 2));
    ExpectRefused(Print({Source(), mPlace.Path("cut.jpg")}), 1, "cut.jpg");
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

} // namespace
