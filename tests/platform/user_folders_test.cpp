// Where the user's files are.
#include <gtest/gtest.h>
#include <platform/Platform.h>

TEST(UserFolders, ApplicationSupportIsInTheUsersLibrary) {
    const std::string folder = PlatformApplicationSupportFolder();
    ASSERT_FALSE(folder.empty());
    EXPECT_EQ(folder[0], '/');
    EXPECT_NE(folder.find("Library"), std::string::npos) << folder;
}
