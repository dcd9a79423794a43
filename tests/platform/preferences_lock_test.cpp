// Preferences while other processes take their lock away. The function below stands before the
// system's: GNUstep looks with it at the lock that it has just made.
#include "tests/platform/CFTest.h"

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// How often a process may still look at its lock before it loses it; 0: as often as it likes.
int gLooks = 0;

bool IsLock(const char *path) {
    const char *name = strrchr(path, '/');
    return name && strcmp(name, "/.GNUstepDefaults.lck") == 0;
}

const CFStringRef kApplication = CFSTR("com.zel.test.lock");

/// What another process would read.
std::string ValueInFile() {
    FILE *tool = popen("defaults read com.zel.test.lock key 2>&1", "r");
    char text[200] = "";
    (void)fgets(text, sizeof text, tool);
    pclose(tool);
    return text;
}

} // namespace

extern "C" __attribute__((visibility("default"))) int stat(const char *path,
                                                           struct stat *status) noexcept {
    const int result = fstatat(AT_FDCWD, path, status, 0);
    if (gLooks == 0 || !IsLock(path) || result != 0 || --gLooks > 0) return result;
    (void)rmdir(path);
    return fstatat(AT_FDCWD, path, status, 0);
}

class PreferencesLock : public testing::TestWithParam<int> {};

TEST_P(PreferencesLock, LostAtAnyLook_IsTakenAgainAndNothingIsLost) {
    const std::string value = "lost at look " + std::to_string(GetParam());
    CFPreferencesSetAppValue(CFSTR("key"), Str(value).Get(), kApplication);
    gLooks = GetParam();
    EXPECT_TRUE(CFPreferencesAppSynchronize(kApplication));
    EXPECT_EQ(gLooks, 0) << "it was looked at less often";
    gLooks = 0;
    EXPECT_NE(ValueInFile().find("'" + value + "'"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Looks, PreferencesLock, testing::Range(1, 5));
