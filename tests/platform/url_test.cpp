// File URLs: paths in and out, their parts, names that mean something in a URL.
#include "tests/platform/CFTest.h"
#include <gtest/gtest.h>
#include <vector>

static CFRef<CFURLRef> Append(const CFRef<CFURLRef> &url, const std::string &name) {
    return CFRef(CFURLCreateCopyAppendingPathComponent(nullptr, url.Get(), Str(name).Get(), false));
}

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

TEST(URL, AppendedNamesComeBackByteForByte) {
    const auto folder = FileURL("/tmp/a b", true);
    for (const std::string &name : kNames) {
        const auto file = Append(folder, name);
        EXPECT_EQ(Path(file), "/tmp/a b/" + name);
        EXPECT_EQ(Text(CFRef(CFURLCopyLastPathComponent(file.Get()))), name);
        EXPECT_EQ(Path(CFRef(CFURLCreateCopyDeletingLastPathComponent(nullptr, file.Get()))),
                  "/tmp/a b")
            << name;
    }
}

TEST(URL, FolderPathsHaveNoSlashAtTheirEnd) {
    EXPECT_EQ(Path(FileURL("/tmp", true)), "/tmp");
    EXPECT_EQ(Path(FileURL("/tmp/", true)), "/tmp");
    EXPECT_EQ(Path(FileURL("/", true)), "/");
    EXPECT_EQ(Path(Append(FileURL("/", true), "x")), "/x");
    EXPECT_EQ(Path(Append(FileURL("/tmp", false), "x")), "/tmp/x");
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

TEST(URL, ExtensionsAreToldAndTakenOff) {
    const std::vector<std::vector<std::string>> cases = {
        {"/tmp/a.ppd", "ppd", "/tmp/a"},        {"/tmp/a.b.PS", "PS", "/tmp/a.b"},
        {"/tmp/a", "(null)", "/tmp/a"},         {"/tmp/.name", "(null)", "/tmp/.name"},
        {"/tmp/a.", "(null)", "/tmp/a."},       {"/a.b:c.d", "d", "/a.b:c"},
        {"/tmp/a.b/c", "(null)", "/tmp/a.b/c"}, {"/tmp/x y.icc", "icc", "/tmp/x y"}};
    for (const auto &c : cases) {
        const auto url = FileURL(c[0]);
        EXPECT_EQ(Text(CFRef(CFURLCopyPathExtension(url.Get()))), c[1]);
        EXPECT_EQ(Path(CFRef(CFURLCreateCopyDeletingPathExtension(nullptr, url.Get()))), c[2]);
    }
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
    EXPECT_EQ(CFURLCreateCopyAppendingPathComponent(nullptr, nullptr, CFSTR("x"), false), nullptr);
    EXPECT_EQ(CFURLCreateCopyAppendingPathComponent(nullptr, FileURL("/tmp").Get(), nullptr, false),
              nullptr);
    EXPECT_EQ(CFURLCreateCopyDeletingLastPathComponent(nullptr, nullptr), nullptr);
    EXPECT_EQ(CFURLCreateCopyDeletingPathExtension(nullptr, nullptr), nullptr);
    EXPECT_EQ(CFURLCopyFileSystemPath(nullptr, kCFURLPOSIXPathStyle), nullptr);
    EXPECT_EQ(CFURLCopyLastPathComponent(nullptr), nullptr);
    EXPECT_EQ(CFURLCopyPathExtension(nullptr), nullptr);
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(nullptr, true, buffer, 8));
}
