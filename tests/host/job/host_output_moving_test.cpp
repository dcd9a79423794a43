// How a document gets its name on file systems that cannot do all that others can: the functions of
// the system that staging moves files with are replaced in this program.
#include "host/job/OutputStaging.h"
#include "host/terminal/ExitStatus.h"

#include <cerrno>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// What the file system answers; 0: it does as it is told.
int renameWithoutReplacingFails = 0;
int linkFails = 0;
/// What bringing a file to the disk answers.
int fsyncFails = 0;
int filesSynchronized = 0;
/// Whether an empty file was ever seen under the final name.
bool wasHeld = false;

bool IsEmptyFile(const char *path) {
    struct stat info {};
    return stat(path, &info) == 0 && info.st_size == 0;
}

template <typename Function>
Function *Real(const char *name) {
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" {

int link(const char *from, const char *to) noexcept {
    errno = linkFails;
    if (errno != 0) return -1;
    return Real<int(const char *, const char *)>("link")(from, to);
}

int rename(const char *from, const char *to) noexcept {
    wasHeld = wasHeld || IsEmptyFile(to);
    return Real<int(const char *, const char *)>("rename")(from, to);
}

int fsync(int fd) {
    ++filesSynchronized;
    errno = fsyncFails;
    if (errno != 0) return -1;
    return Real<int(int)>("fsync")(fd);
}

} // extern "C"

namespace {

/// What the driver does.
int32_t MoveInOneStep(const char *from, const char *to) {
    return renameWithoutReplacingFails != 0 ? renameWithoutReplacingFails
                                            : PlatformMoveWithoutReplacing(from, to);
}

namespace fs = std::filesystem;

struct FileSystem {
    const char *name;
    int renameFails, linkFails;
    bool holds; ///< the name with an empty file
};

class OutputMoving : public testing::TestWithParam<FileSystem> {
protected:
    OutputMoving() {
        std::string name = (fs::temp_directory_path() / "moving-XXXXXX").string();
        mRoot = mkdtemp(name.data());
        fs::create_directory(mRoot / "hot");
        renameWithoutReplacingFails = GetParam().renameFails;
        linkFails = GetParam().linkFails;
        wasHeld = false;
    }
    ~OutputMoving() override {
        renameWithoutReplacingFails = linkFails = 0;
        fs::remove_all(mRoot);
    }
    static void Write(const fs::path &path, const std::string &text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    static std::string Read(const fs::path &path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    [[nodiscard]] std::string Publish() const {
        OutputStaging staging((mRoot / "hot").string(), {MoveInOneStep, nullptr});
        Write(fs::path(staging.Folder()) / "report.ps", "new");
        return fs::path(staging.Publish("")[0].path).filename();
    }

    fs::path mRoot;
};

TEST_P(OutputMoving, ToAFreeName_GivesItThat) {
    EXPECT_EQ(Publish(), "report.ps");
    EXPECT_EQ(Read(mRoot / "hot/report.ps"), "new");
    EXPECT_EQ(wasHeld, GetParam().holds);
    EXPECT_EQ(std::distance(fs::directory_iterator(mRoot), {}), 1);
}

TEST_P(OutputMoving, ToATakenName_ReplacesNothing) {
    Write(mRoot / "hot/report.ps", "old");
    Write(mRoot / "hot/report_01.ps", "");
    EXPECT_EQ(Publish(), "report_02.ps");
    EXPECT_EQ(Read(mRoot / "hot/report.ps"), "old");
    EXPECT_EQ(Read(mRoot / "hot/report_01.ps"), "");
    EXPECT_EQ(Read(mRoot / "hot/report_02.ps"), "new");
    EXPECT_EQ(fs::hard_link_count(mRoot / "hot/report_02.ps"), 1U);
}

TEST_P(OutputMoving, WhatDoesNotReachTheDiskGetsNoName) {
    fsyncFails = ENOSPC;
    EXPECT_THROW((void)Publish(), HostError);
    fsyncFails = 0;
    EXPECT_TRUE(fs::is_empty(mRoot / "hot"));
}

TEST_P(OutputMoving, WithoutSynchronizing_NothingIsWaitedFor) {
    for (const Sync sync : {Sync::No, Sync::Yes}) {
        filesSynchronized = 0;
        OutputStaging staging((mRoot / "hot").string(), {MoveInOneStep, nullptr}, sync);
        Write(fs::path(staging.Folder()) / "report.ps", "new");
        (void)staging.Publish("");
        EXPECT_EQ(filesSynchronized, sync == Sync::No ? 0 : 2) << "the file and its folder";
    }
}

INSTANTIATE_TEST_SUITE_P(FileSystems, OutputMoving,
                         testing::Values(FileSystem{"Full", 0, 0, false},
                                         FileSystem{"WithoutLinks", 0, EPERM, false},
                                         FileSystem{"WithoutFlags", EINVAL, 0, false},
                                         FileSystem{"OldSystem", ENOSYS, 0, false},
                                         FileSystem{"GuardedSystem", EPERM, 0, false},
                                         FileSystem{"WithNeither", EINVAL, EPERM, true},
                                         FileSystem{"OldWithoutLinks", ENOSYS, ENOTSUP, true}),
                         [](const auto &info) { return info.param.name; });

} // namespace
