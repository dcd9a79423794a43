// File URLs: paths in and out, their parts, names that mean something in a URL.
#include "tests/platform/CFTest.h"
#include <gtest/gtest.h>
#include <vector>

// Characters that separate or escape something in a URL, and text beyond ASCII.
static const std::vector<std::string> kNames = {"x y.ps",
                                                "a%20b",
                                                "100%",
                                                "a#b",
                                                "a?b",
                                                "a;b",
                                                "a:b",
                                                "a&b=c",
                                                "a+b",
                                                "a~b",
                                                "a\\b",
                                                "[a]",
                                                "caf\xc3\xa9 1.ppd",
                                                "\xe6\x97\xa5\xe6\x9c\xac",
                                                "\xf0\x9f\x96\xa8",
                                                "cafe\xcc\x81",
                                                "'\"<>|",
                                                "-",
                                                "..."};

TEST(URL, PathsComeBackByteForByte) {
    for (const std::string &name : kNames) {
        EXPECT_EQ(Path(FileURL("/tmp/" + name)), "/tmp/" + name);
        EXPECT_EQ(Text(CFRef(CFURLCopyFileSystemPath(FileURL("/tmp/" + name).Get(),
                                                     kCFURLPOSIXPathStyle))),
                  "/tmp/" + name);
    }
}

TEST(URL, LastComponentIsWhatFollowsTheLastSlash) {
    for (const std::string &name : kNames)
        for (const bool isFolder : {false, true})
            EXPECT_EQ(Text(CFRef(
                          CFURLCopyLastPathComponent(FileURL("/tmp/a b/" + name, isFolder).Get()))),
                      name);
    EXPECT_EQ(Text(CFRef(CFURLCopyLastPathComponent(FileURL("/", true).Get()))), "/");
}

TEST(URL, FolderPathsHaveNoSlashAtTheirEnd) {
    EXPECT_EQ(Path(FileURL("/tmp", true)), "/tmp");
    EXPECT_EQ(Path(FileURL("/tmp/", true)), "/tmp");
    EXPECT_EQ(Path(FileURL("/", true)), "/");
}

TEST(URL, RelativePathsStartAtTheCurrentFolder) {
    EXPECT_EQ(Path(FileURL("x")), (std::filesystem::current_path() / "x").string());
}

TEST(URL, PathsThatAreNoTextOrEmptyHaveNoURL) {
    EXPECT_FALSE(FileURL(std::string("/tmp/\xe9")));
    EXPECT_FALSE(FileURL(""));
    EXPECT_EQ(CFURLCreateWithFileSystemPath(nullptr, nullptr, kCFURLPOSIXPathStyle, false),
              nullptr);
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, nullptr, 0, false), nullptr);
}

TEST(URL, PathNeedsRoomForItsTerminator) {
    const auto url = FileURL("/tmp/ab");
    UInt8 buffer[8];
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url.Get(), true, buffer, 7));
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url.Get(), true, buffer, 8));
    EXPECT_STREQ(reinterpret_cast<char *>(buffer), "/tmp/ab");
}

TEST(URL, NullGivesNull) {
    UInt8 buffer[8];
    EXPECT_EQ(CFURLCopyFileSystemPath(nullptr, kCFURLPOSIXPathStyle), nullptr);
    EXPECT_EQ(CFURLCopyLastPathComponent(nullptr), nullptr);
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(nullptr, true, buffer, 8));
}
