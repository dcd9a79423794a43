#include "host/job/OutputStaging.h"

#include "host/command/ExitStatus.h"
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// The test's own folder, which has a hot folder in it.
class OutputStagingTest : public testing::Test {
protected:
    OutputStagingTest() {
        std::string name = (fs::temp_directory_path() / "staging-XXXXXX").string();
        mRoot = mkdtemp(name.data());
        mHot = mRoot / "hot";
        fs::create_directory(mHot);
    }
    ~OutputStagingTest() override { fs::remove_all(mRoot); }

    static void Write(const fs::path &path, const std::string &text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string Read(const fs::path &path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void Stage(const OutputStaging &staging, const std::string &name,
                      const std::string &text) {
        Write(fs::path(staging.Folder()) / name, text);
    }
    [[nodiscard]] std::vector<std::string> Listing(const fs::path &folder) const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        return names;
    }

    fs::path mRoot, mHot;
};

using Names = std::vector<std::string>;

TEST_F(OutputStagingTest, StagesHiddenBesideTheFolder) {
    const OutputStaging staging(mHot);
    const fs::path folder = staging.Folder();
    EXPECT_EQ(folder.parent_path(), fs::canonical(mRoot));
    EXPECT_EQ(folder.filename().string().substr(0, 10), ".zelprint-");
    EXPECT_TRUE(fs::is_empty(mHot));
}

TEST_F(OutputStagingTest, LeavesNothingBehind) {
    {
        const OutputStaging staging(mHot);
        Stage(staging, "half.ps", "half");
    }
    EXPECT_EQ(Listing(mRoot), Names{"hot"});
    EXPECT_TRUE(fs::is_empty(mHot));
}

TEST_F(OutputStagingTest, Publish_MovesTheFileWhole) {
    OutputStaging staging(mHot);
    Stage(staging, "report.ps", "whole");
    const std::vector<FinishedFile> files = staging.Publish("");
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].path, (fs::canonical(mHot) / "report.ps").string());
    EXPECT_EQ(files[0].bytes, 5U);
    EXPECT_EQ(Read(mHot / "report.ps"), "whole");
    EXPECT_TRUE(staging.Files().empty());
}

TEST_F(OutputStagingTest, Publish_NumbersATakenName) {
    Write(mHot / "report.ps", "old");
    Write(mHot / "report_01.ps", "old");
    OutputStaging staging(mHot);
    Stage(staging, "report.ps", "new");
    EXPECT_EQ(fs::path(staging.Publish("")[0].path).filename(), "report_02.ps");
    EXPECT_EQ(Read(mHot / "report.ps"), "old");
}

TEST_F(OutputStagingTest, Publish_100TakenNames_IsRefused) {
    Write(mHot / "r.ps", "old");
    for (int i = 1; i < 100; ++i) {
        char name[16];
        (void)snprintf(name, sizeof name, "r_%02d.ps", i);
        Write(mHot / name, "old");
    }
    OutputStaging staging(mHot);
    Stage(staging, "r.ps", "new");
    EXPECT_THROW((void)staging.Publish(""), HostError);
    EXPECT_EQ(Listing(mHot).size(), 100U);
    for (const std::string &name : Listing(mHot))
        EXPECT_EQ(Read(mHot / name), "old");
}

TEST_F(OutputStagingTest, Publish_UnderAGivenName_Replaces) {
    Write(mHot / "mine.ps", "old");
    OutputStaging staging(mHot);
    Stage(staging, "title.ps", "new");
    (void)staging.Publish("mine.ps");
    EXPECT_EQ(Listing(mHot), Names{"mine.ps"});
    EXPECT_EQ(Read(mHot / "mine.ps"), "new");
}

TEST_F(OutputStagingTest, Publish_ManyPages_KeepsTheirOrder) {
    OutputStaging staging(mHot);
    for (const char *name : {"c_p100.eps", "c_p02.eps", "c.eps", "c_p99.eps", "c_p10.eps"})
        Stage(staging, name, name);
    const Names wanted = {"c.eps", "c_p02.eps", "c_p10.eps", "c_p99.eps", "c_p100.eps"};
    EXPECT_EQ(staging.Files(), wanted);
    const std::vector<FinishedFile> files = staging.Publish("");
    ASSERT_EQ(files.size(), wanted.size());
    for (size_t i = 0; i < files.size(); ++i)
        EXPECT_EQ(fs::path(files[i].path).filename(), wanted[i]);
}

TEST_F(OutputStagingTest, Publish_AllPagesOrNone) {
    // The second page finds all its names taken.
    Write(mHot / "c_p02.eps", "old");
    for (int i = 1; i < 100; ++i) {
        char name[16];
        (void)snprintf(name, sizeof name, "c_p02_%02d.eps", i);
        Write(mHot / name, "old");
    }
    Write(mHot / "c.eps", "old");
    for (const char *given : {"", "c.eps"}) {
        OutputStaging staging(mHot);
        Stage(staging, "c.eps", "new");
        Stage(staging, "c_p02.eps", "new");
        EXPECT_THROW((void)staging.Publish(given), HostError);
        EXPECT_EQ(Listing(mHot).size(), 101U);
        EXPECT_EQ(Read(mHot / "c.eps"), "old");
    }
}

TEST_F(OutputStagingTest, NoSuchFolder_IsRefused) {
    for (const fs::path &folder : {mRoot / "missing", mRoot / "file"}) {
        Write(mRoot / "file", "");
        try {
            const OutputStaging staging(folder);
            FAIL();
        } catch (const HostError &error) {
            EXPECT_EQ(error.Status(), ExitStatus::Output);
        }
    }
}

TEST_F(OutputStagingTest, PathBeyondTheDriversLimit_IsRefused) {
    fs::path deep = mHot;
    while (deep.string().size() < 1000)
        deep /= std::string(100, 'd');
    fs::create_directories(deep);
    EXPECT_THROW(OutputStaging{deep}, HostError);
    EXPECT_TRUE(fs::is_empty(deep));
}

TEST_F(OutputStagingTest, UnwritableFolder_IsRefused) {
    if (geteuid() == 0) GTEST_SKIP() << "the superuser may write anywhere";
    fs::permissions(mHot, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_THROW(OutputStaging{mHot}, HostError);
    fs::permissions(mHot, fs::perms::owner_all);
}

TEST_F(OutputStagingTest, UnwritableParent_StagesInside) {
    if (geteuid() == 0) GTEST_SKIP() << "the superuser may write anywhere";
    fs::permissions(mRoot, fs::perms::owner_read | fs::perms::owner_exec);
    {
        const OutputStaging staging(mHot);
        EXPECT_EQ(fs::path(staging.Folder()).parent_path(), fs::canonical(mHot));
    }
    fs::permissions(mRoot, fs::perms::owner_all);
    EXPECT_TRUE(fs::is_empty(mHot));
}

class CheckFinishedFileTest : public OutputStagingTest {
protected:
    std::string Check(const std::string &text, uint64_t least, uint64_t most) {
        Write(mHot / "f.ps", text);
        const int fd = open((mHot / "f.ps").c_str(), O_RDONLY);
        const std::string problem = CheckFinishedFile(fd, least, most);
        (void)close(fd);
        return problem;
    }
};

TEST_F(CheckFinishedFileTest, CompleteFile_HasNoProblem) {
    EXPECT_EQ(Check("%!PS\n%%EOF\n", 5, 11), "");
}

TEST_F(CheckFinishedFileTest, MissingEnd_IsAProblem) {
    for (const char *text : {"", "%%EOF", "%!PS\n%%EO", "%!PS\n%%EOF", "%%EOF\n%%EOF\nx"})
        EXPECT_NE(Check(text, 0, 100), "") << text;
}

TEST_F(CheckFinishedFileTest, ImplausibleSize_IsAProblem) {
    EXPECT_NE(Check("%!PS\n%%EOF\n", 12, 100), "");
    EXPECT_NE(Check("%!PS\n%%EOF\n", 0, 10), "");
    EXPECT_NE(CheckFinishedFile(-1, 0, 100), "");
}

} // namespace
