// What -o and --save-settings do to files that are there already.
#include "tests/host/CommandFixture.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace {

class Replacing : public Command {
protected:
    void ExpectKept(const Names &arguments, const std::string &file, const std::string &why) const {
        const std::string before = ReadFile(file);
        for (const bool dry : {true, false}) {
            Names all = arguments;
            if (dry) all.insert(all.begin(), "--dry-run");
            const RunResult run = Print(all);
            EXPECT_EQ(run.status, 3) << run.err;
            EXPECT_NE(run.Complaint().find(why), std::string::npos) << run.err;
            EXPECT_EQ(ReadFile(file), before);
        }
        EXPECT_EQ(mPlace.Leftovers(), Names{});
    }
};

TEST_F(Replacing, FileThatIsPrinted_IsKeptByWhateverName) {
    fs::copy_file(Source(), mPlace.Hot("a.eps"));
    fs::create_hard_link(mPlace.Hot("a.eps"), mPlace.Hot("hard.eps"));
    fs::create_symlink(mPlace.Hot("a.eps"), mPlace.Hot("soft.eps"));
    for (const char *name : {"a.eps", "hard.eps", "soft.eps"})
        for (const char *force : {"--flip-h", "--force"})
            ExpectKept({force, "-o", name, Source(), mPlace.Hot("a.eps")}, mPlace.Hot("a.eps"),
                       "to be printed");
}

TEST_F(Replacing, OtherFilesThanDocuments_TakeForce) {
    for (const std::string &bytes :
         {std::string("hello"), std::string("\xFF\xD8\xFF"), std::string("%PDF-1.4")}) {
        WriteFile(mPlace.Hot("x.eps"), bytes);
        ExpectKept({"-o", "x.eps", Source()}, mPlace.Hot("x.eps"), "--force");
        EXPECT_EQ(Print({"--force", "-o", "x.eps", Source()}).status, 0);
        EXPECT_EQ(ReadFile(mPlace.Hot("x.eps")).substr(0, 4), "%!PS");
    }
}

TEST_F(Replacing, DocumentsAndEmptyFiles_AreReplaced) {
    for (const std::string &bytes : {std::string("%!PS-Adobe-3.0\n"), std::string("%!\n"),
                                     std::string("\xC5\xD0\xD3\xC6"), std::string()}) {
        WriteFile(mPlace.Hot("x.eps"), bytes);
        const RunResult run = Print({"-o", "x.eps", Source()});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_GT(fs::file_size(mPlace.Hot("x.eps")), 1000U);
    }
}

TEST_F(Replacing, FirstOfManyNamesByMistake_IsKept) {
    // -o *.jpg
    SavePicture(TestPicture(32, 20), mPlace.Path("1.jpg"));
    SavePicture(TestPicture(32, 20), mPlace.Path("2.jpg"));
    const std::string before = ReadFile(mPlace.Path("1.jpg"));
    const RunResult run = mPlace.Run(
        {"--ps", "--colour-space", "rgb", "-o", mPlace.Path("1.jpg"), mPlace.Path("2.jpg")});
    EXPECT_EQ(run.status, 3);
    EXPECT_NE(run.Complaint().find("--force"), std::string::npos) << run.err;
    EXPECT_EQ(ReadFile(mPlace.Path("1.jpg")), before);
}

TEST_F(Replacing, SettingsFiles_ReplaceOnlyTheirLike) {
    const std::string settings = mPlace.Path("settings");
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(Print({"--save-settings", settings, Source()}).status, 0);
    for (const std::string &name : mPlace.HotFiles())
        fs::remove(mPlace.Hot(name));
    ExpectKept({"--save-settings", Source(), Source()}, Source(), "to be printed");
    WriteFile(settings, "hello");
    ExpectKept({"--save-settings", settings, Source()}, settings, "--force");
    EXPECT_EQ(Print({"--force", "--save-settings", settings, Source()}).status, 0);
}

} // namespace
