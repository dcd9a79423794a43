// What lies in a trash folder of the user.
#include "tests/TempFolder.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

class Trash : public testing::Test {
protected:
    void SetUp() override {
        const char *data = getenv("XDG_DATA_HOME");
        mOldData = data ? data : "";
        const char *home = getenv("HOME");
        mOldHome = home ? home : "";
    }
    void TearDown() override {
        setenv("XDG_DATA_HOME", mOldData.c_str(), 1);
        setenv("HOME", mOldHome.c_str(), 1);
    }
    fs::path Make(const fs::path &path) {
        fs::create_directories(mFolder.Path() / path);
        return mFolder.Path() / path;
    }
    static bool IsIn(const fs::path &path) { return PlatformIsInTrash(path.string()); }

    TempFolder mFolder;
    std::string mOldData, mOldHome;
};

} // namespace

TEST_F(Trash, IsFoundByXDGDataHome) {
    setenv("XDG_DATA_HOME", (mFolder.Path() / "data").c_str(), 1);
    EXPECT_TRUE(IsIn(Make("data/Trash/files/hot folder")));
    EXPECT_TRUE(IsIn(Make("data/Trash/files/a/b/c")));
    EXPECT_FALSE(IsIn(Make("data/other")));
    EXPECT_FALSE(IsIn(Make("data/Trash2/files/a")));
}

TEST_F(Trash, IsInTheHomeFolderWithoutIt) {
    for (const bool relative : {false, true}) {
        if (relative)
            setenv("XDG_DATA_HOME", "not/absolute", 1);
        else
            unsetenv("XDG_DATA_HOME");
        setenv("HOME", (mFolder.Path() / "home").c_str(), 1);
        EXPECT_TRUE(IsIn(Make("home/.local/share/Trash/files/x")));
        EXPECT_FALSE(IsIn(Make("home/x")));
    }
}

TEST_F(Trash, OfOtherVolumesIsTheUsersOwn) {
    const std::string user = std::to_string(getuid()), other = std::to_string(getuid() + 1);
    EXPECT_TRUE(IsIn(Make("volume/.Trash-" + user + "/files/x")));
    EXPECT_TRUE(IsIn(Make("volume/.Trash/" + user + "/files/x")));
    EXPECT_FALSE(IsIn(Make("volume/.Trash-" + other + "/files/x")));
    EXPECT_FALSE(IsIn(Make("volume/.Trash/" + other + "/files/x")));
    EXPECT_FALSE(IsIn(Make("volume/.Trash-" + user + "0/files/x")));
}

TEST_F(Trash, IsSeenThroughLinks) {
    setenv("XDG_DATA_HOME", (mFolder.Path() / "data").c_str(), 1);
    fs::create_directory_symlink(Make("data/Trash/files/x"), mFolder.Path() / "link");
    EXPECT_TRUE(IsIn(mFolder.Path() / "link"));
}

TEST_F(Trash, HoldsNothingThatDoesNotExist) {
    setenv("XDG_DATA_HOME", (mFolder.Path() / "data").c_str(), 1);
    Make("data/Trash/files");
    EXPECT_FALSE(IsIn(mFolder.Path() / "data/Trash/files/gone"));
    EXPECT_FALSE(IsIn(""));
}
