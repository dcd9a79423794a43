#include "host/job/OutputStaging.h"

#include "host/job/StagingFolder.h"
#include "host/terminal/ExitStatus.h"
#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <new>
#include <platform/Platform.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

// The thread sanitizer has allocation functions of its own, which nothing can stand in for.
#if !__has_feature(thread_sanitizer)
namespace {

/// How many allocations are still granted; negative: all.
long allocationsLeft = -1;

} // namespace

void *operator new(size_t size) {
    if (allocationsLeft == 0) throw std::bad_alloc();
    if (allocationsLeft > 0) --allocationsLeft;
    void *memory = malloc(size);
    if (!memory) throw std::bad_alloc();
    return memory;
}
void operator delete(void *memory) noexcept {
    free(memory);
}
void operator delete(void *memory, size_t) noexcept {
    free(memory);
}
#endif

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

#if !__has_feature(thread_sanitizer)
TEST_F(OutputStagingTest, Publish_WhenMemoryEnds_AllOrNone) {
    bool isDone = false;
    for (long count = 0; !isDone; ++count) {
        OutputStaging staging(mHot);
        for (const char *name : {"a page with a long name.eps", "a page with a long name_p02.eps",
                                 "a page with a long name_p03.eps"})
            Stage(staging, name, "new");
        allocationsLeft = count;
        try {
            (void)staging.Publish("");
            isDone = true;
        } catch (const std::bad_alloc &) {
        }
        allocationsLeft = -1;
        EXPECT_EQ(Listing(mHot).size(), isDone ? 3U : 0U) << count;
    }
}
#endif

TEST_F(OutputStagingTest, LeftByAKilledProcess_IsRemovedByTheNext) {
    for (const bool isInside : {false, true}) {
        const fs::path left = (isInside ? mHot : mRoot) / ".zelprint-LeftBy";
        fs::create_directory(left);
        Write(left / ".lock", "");
        Write(left / "huge.ps", "gigabytes");
        const OutputStaging staging(mHot);
        EXPECT_FALSE(fs::exists(left));
    }
}

TEST_F(OutputStagingTest, OfAKilledProcess_IsRemovedByTheNext) {
    const pid_t child = fork();
    if (child == 0) {
        OutputStaging staging(mHot);
        Stage(staging, "half.ps", "half");
        (void)raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    ASSERT_EQ(Listing(mRoot).size(), 2U) << "it left nothing";
    { const OutputStaging staging(mHot); }
    EXPECT_EQ(Listing(mRoot), Names{"hot"});
}

TEST_F(OutputStagingTest, OthersThatRemoveWhatIsAbandoned_AreNeverInTheWay) {
    std::atomic<bool> isDone{false};
    const auto sweep = [&] {
        while (!isDone)
            StagingFolder::RemoveAbandoned(mRoot);
    };
    const std::future<void> others[] = {std::async(std::launch::async, sweep),
                                        std::async(std::launch::async, sweep)};
    int refused = 0;
    for (int i = 0; i < 1000; ++i)
        if (!StagingFolder::Make(mRoot, mHot, nullptr)) ++refused;
    isDone = true;
    EXPECT_EQ(refused, 0);
}

TEST_F(OutputStagingTest, OfALivingProcess_IsLeftAlone) {
    OutputStaging first(mHot);
    Stage(first, "first.ps", "first");
    {
        OutputStaging second(mHot);
        Stage(second, "second.ps", "second");
        (void)second.Publish("");
    }
    (void)first.Publish("");
    EXPECT_EQ(Listing(mHot), (Names{"first.ps", "second.ps"}));
}

TEST_F(OutputStagingTest, WhatOnlyLooksLikeOurs_IsLeftAlone) {
    Write(mRoot / ".zelprint-AFile1", "a file");
    fs::create_directory(mRoot / ".zelprint-AFolde");
    Write(mRoot / ".zelprint-AFolde" / "kept", "without a lock");
    fs::create_directory(mRoot / "elsewhere");
    Write(mRoot / "elsewhere" / ".lock", "");
    fs::create_directory_symlink(mRoot / "elsewhere", mRoot / ".zelprint-ALink1");
    { const OutputStaging staging(mHot); }
    EXPECT_EQ(Read(mRoot / ".zelprint-AFile1"), "a file");
    EXPECT_EQ(Read(mRoot / ".zelprint-AFolde" / "kept"), "without a lock");
    EXPECT_TRUE(fs::exists(mRoot / "elsewhere" / ".lock"));
}

/// The document's rights, and those of a file that is made in the hot folder.
class RightsOfADocument : public OutputStagingTest {
protected:
    ~RightsOfADocument() override { (void)umask(mOldMask); }

    void ExpectAsIfMadeThere() const {
        Write(mHot / "made there", "");
        {
            OutputStaging staging(mHot, {nullptr, InheritRights});
            Stage(staging, "document.ps", "");
            (void)staging.Publish("");
        }
        struct stat expected {};
        struct stat document {};
        ASSERT_EQ(stat((mHot / "made there").c_str(), &expected), 0);
        ASSERT_EQ(stat((mHot / "document.ps").c_str(), &document), 0);
        EXPECT_EQ(document.st_mode, expected.st_mode);
        EXPECT_EQ(document.st_gid, expected.st_gid);
        EXPECT_EQ(AccessList(mHot / "document.ps"), AccessList(mHot / "made there"));
        fs::remove(mHot / "made there");
        fs::remove(mHot / "document.ps");
    }
    /// What the driver does.
    static int32_t InheritRights(const char *from, const char *to) {
        return PlatformInheritRights(from, to);
    }
    static std::string AccessList(const fs::path &path) {
        char list[512];
        const ssize_t size = getxattr(path.c_str(), "system.posix_acl_access", list, sizeof list);
        return size < 0 ? "" : std::string(list, static_cast<size_t>(size));
    }
    /// Makes `user` 1 read what is made in the folder. False where there are no such lists.
    static bool SetDefaultList(const fs::path &folder) {
        // version 2; entries: tag, permissions, id
        static const unsigned char list[] = {2,  0, 0, 0,                          //
                                             1,  0, 6, 0, 0xff, 0xff, 0xff, 0xff,  // owner
                                             2,  0, 4, 0, 1,    0,    0,    0,     // user 1
                                             4,  0, 4, 0, 0xff, 0xff, 0xff, 0xff,  // group
                                             16, 0, 6, 0, 0xff, 0xff, 0xff, 0xff,  // mask
                                             32, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}; // others
        return setxattr(folder.c_str(), "system.posix_acl_default", list, sizeof list, 0) == 0;
    }

    mode_t mOldMask = umask(022);
};

TEST_F(RightsOfADocument, FollowTheMask) {
    for (const mode_t mask : {0022, 0077, 0002, 0}) {
        (void)umask(mask);
        ExpectAsIfMadeThere();
    }
}

TEST_F(RightsOfADocument, FollowTheFoldersGroup) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser may choose any group";
    for (const fs::path &folder : {mHot, mRoot}) {
        ASSERT_EQ(chown(folder.c_str(), static_cast<uid_t>(-1), 1234), 0);
        ASSERT_EQ(chmod(folder.c_str(), 02755), 0);
        ExpectAsIfMadeThere();
        ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
    }
}

TEST_F(RightsOfADocument, FollowTheFoldersDefaultList) {
    for (const fs::path &folder : {mRoot, mHot}) {
        if (!SetDefaultList(folder)) GTEST_SKIP() << "the file system has no access lists";
        ExpectAsIfMadeThere();
        (void)removexattr(folder.c_str(), "system.posix_acl_default");
    }
}

TEST_F(OutputStagingTest, FolderMountedASecondTime_StagesInside) {
    const fs::path other = mRoot / "other";
    fs::create_directory(other);
    if (mount(other.c_str(), mHot.c_str(), nullptr, MS_BIND, nullptr) != 0)
        GTEST_SKIP() << "only the superuser may mount";
    {
        OutputStaging staging(mHot);
        EXPECT_EQ(fs::path(staging.Folder()).parent_path(), fs::canonical(mHot));
        Stage(staging, "report.ps", "whole");
        EXPECT_NO_THROW((void)staging.Publish(""));
    }
    EXPECT_EQ(Listing(mHot), Names{"report.ps"});
    (void)umount(mHot.c_str());
    EXPECT_EQ(Listing(mRoot), (Names{"hot", "other"}));
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
