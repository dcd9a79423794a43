// Preferences whose lock is taken, cannot be made, or was left by a killed process, and whose disk
// fails. The functions below stand before the system's.
#include "tests/platform/CFTest.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#import <Foundation/Foundation.h>

namespace fs = std::filesystem;

namespace {

/// What making the lock, and bringing a file to the disk, fail with; 0: they work.
int gLockError = 0;
int gDiskError = 0;
int gLocksTried = 0;

const CFStringRef kApplication = CFSTR("com.zel.test.lock");

bool IsLock(const char *path) {
    const char *name = strrchr(path, '/');
    return name && strcmp(name, "/.GNUstepDefaults.lck") == 0;
}

fs::path Folder() {
    @autoreleasepool {
        return [GSDefaultsRootForUser(NSUserName()) fileSystemRepresentation];
    }
}

fs::path Lock() { return Folder() / ".lck" / ".GNUstepDefaults.lck"; }

} // namespace

extern "C" __attribute__((visibility("default"))) int mkdir(const char *path,
                                                            mode_t mode) noexcept {
    if (IsLock(path)) ++gLocksTried;
    if (gLockError == 0 || !IsLock(path)) return (int)syscall(SYS_mkdirat, AT_FDCWD, path, mode);
    errno = gLockError;
    return -1;
}

extern "C" __attribute__((visibility("default"))) int fsync(int fd) {
    if (gDiskError == 0) return (int)syscall(SYS_fsync, fd);
    errno = gDiskError;
    return -1;
}

/// Defaults as GNUstep's own classes make them. They stay: those that go leave the path of their
/// file behind.
static NSUserDefaults *MakeDefaults() {
    static NSMutableArray *all = [[NSMutableArray alloc] init];
    [all addObject:[[[NSUserDefaults alloc] init] autorelease]];
    return [all lastObject];
}

/// A lock that nobody has at the start, and preferences with one value.
class PreferencesLock : public testing::Test {
  protected:
    PreferencesLock() {
        fs::create_directories(Folder() / ".lck");
        fs::remove_all(Lock());
        Set("old");
        EXPECT_TRUE(Synchronize());
    }
    ~PreferencesLock() override {
        gLockError = gDiskError = 0;
        fs::remove_all(Lock());
    }

    static void Set(const char *value) {
        CFPreferencesSetAppValue(CFSTR("key"), Str(value).Get(), kApplication);
    }
    static bool Synchronize() { return CFPreferencesAppSynchronize(kApplication) != 0; }
    static std::string InMemory() {
        const CFRef value(CFPreferencesCopyAppValue(CFSTR("key"), kApplication));
        return Text(static_cast<CFStringRef>(value.Get()));
    }
    /// What another process would read.
    static std::string InFile() {
        FILE *tool = popen("defaults read com.zel.test.lock key 2>&1", "r");
        char text[200] = "";
        (void)fgets(text, sizeof text, tool);
        pclose(tool);
        const char *value = strrchr(text, ' ');
        return value ? std::string(value + 1, strcspn(value + 1, "\n")) : "";
    }
    /// Files that writing has left.
    static size_t Drafts() {
        size_t count = 0;
        for (const auto &entry : fs::directory_iterator(Folder()))
            count += entry.path().string().find(".plist.") != std::string::npos ? 1 : 0;
        return count;
    }
};

TEST_F(PreferencesLock, OfAKilledProcessOfOursIsTakenAway) {
    fs::create_directory(Lock());
    fs::create_symlink("owner", Lock() / "zel");
    Set("new");
    EXPECT_TRUE(Synchronize());
    EXPECT_EQ(InFile(), "new");
    EXPECT_FALSE(fs::exists(Lock()));
}

TEST_F(PreferencesLock, ThatIsOldIsTakenAway) {
    fs::create_directory(Lock());
    fs::last_write_time(Lock(), fs::file_time_type::clock::now() - std::chrono::minutes(1));
    Set("new");
    EXPECT_TRUE(Synchronize());
    EXPECT_EQ(InFile(), "new");
    EXPECT_FALSE(fs::exists(Lock()));
}

TEST_F(PreferencesLock, ThatAnotherKeepsDelaysButDoesNotPrevent) {
    fs::create_directory(Lock());
    for (const char *value : {"one", "two"}) {
        Set(value);
        testing::internal::CaptureStderr();
        EXPECT_TRUE(Synchronize());
        const bool isFirst = strcmp(value, "one") == 0;
        EXPECT_EQ(testing::internal::GetCapturedStderr().find("without its lock") !=
                      std::string::npos,
                  isFirst);
        EXPECT_TRUE(fs::exists(Lock())) << "it is not ours";
    }
    fs::remove(Lock());
    EXPECT_EQ(InFile(), "two");
}

TEST_F(PreferencesLock, OfALivingProcessOfOursIsRespected) {
    const int file = open((Folder() / ".lck" / "zel.lock").c_str(), O_RDWR);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    Set("new");
    EXPECT_FALSE(Synchronize());
    EXPECT_EQ(InFile(), "old");
    close(file);
    EXPECT_TRUE(Synchronize());
    EXPECT_EQ(InFile(), "new");
}

TEST_F(PreferencesLock, ThatCannotBeMadePreventsNothing) {
    for (const int code : {ENOSPC, EDQUOT, EACCES, EROFS}) {
        gLockError = code;
        Set(strerror(code));
        gLocksTried = 0;
        EXPECT_TRUE(Synchronize());
        EXPECT_EQ(gLocksTried, 1) << "it waited for what will not be";
        EXPECT_EQ(InMemory(), strerror(code));
    }
}

TEST_F(PreferencesLock, IsNotNeededForReading) {
    gLocksTried = 0;
    EXPECT_TRUE(Synchronize());
    EXPECT_EQ(InMemory(), "old");
    EXPECT_EQ(gLocksTried, 0);
}

TEST_F(PreferencesLock, ThatCannotBeMadeDoesNotKeepGNUstepsOwnClassesWaiting) {
    gLockError = ENOSPC;
    gLocksTried = 0;
    @autoreleasepool {
        NSUserDefaults *defaults = MakeDefaults();
        (void)[defaults synchronize];
    }
    EXPECT_LE(gLocksTried, 2);
}

TEST_F(PreferencesLock, IsKeptByGNUstepsOwnClassesAsWell) {
    @autoreleasepool {
        NSUserDefaults *defaults = MakeDefaults();
        gLocksTried = 0;
        [defaults setPersistentDomain:[NSDictionary dictionaryWithObject:@"theirs" forKey:@"key"]
                              forName:@"com.zel.test.theirs"];
        EXPECT_TRUE([defaults synchronize]);
    }
    EXPECT_GE(gLocksTried, 1);
    EXPECT_FALSE(fs::exists(Lock()));
    const CFRef value(CFPreferencesCopyAppValue(CFSTR("key"), CFSTR("com.zel.test.theirs")));
    EXPECT_EQ(Text(static_cast<CFStringRef>(value.Get())), "theirs");
}

TEST_F(PreferencesLock, DiskThatFailsIsReportedAndNothingIsLost) {
    gDiskError = ENOSPC;
    Set("new");
    EXPECT_FALSE(Synchronize());
    EXPECT_EQ(InFile(), "old");
    EXPECT_EQ(InMemory(), "new");
    EXPECT_EQ(Drafts(), 0U);
    EXPECT_FALSE(Synchronize()) << "it is still not on the disk";
    gDiskError = 0;
    EXPECT_TRUE(Synchronize());
    EXPECT_EQ(InFile(), "new");
}
