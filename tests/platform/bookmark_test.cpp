// Bookmarks: what is found again, what is not, and data that are not a bookmark.
#include "tests/platform/CFTest.h"
#include <cstdlib>
#include <gtest/gtest.h>
#include <platform/Platform.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

struct Resolution {
    std::string path; ///< "(none)" when it is not found
    bool stale = false;
};

CFRef<CFDataRef> Mark(const fs::path &path) {
    const auto url = FileURL(path);
    return CFRef(CFURLCreateBookmarkData(nullptr, url.Get(),
                                         kCFURLBookmarkCreationSuitableForBookmarkFile, nullptr,
                                         nullptr, nullptr));
}

Resolution Resolve(const CFRef<CFDataRef> &bookmark) {
    Boolean stale = 0;
    const CFRef url(CFURLCreateByResolvingBookmarkData(nullptr, bookmark.Get(),
                                                       kCFURLBookmarkResolutionWithoutUIMask,
                                                       nullptr, nullptr, &stale, nullptr));
    return {Path(url), stale != 0};
}

class Bookmark : public testing::Test {
protected:
    void SetUp() override {
        const char *data = getenv("XDG_DATA_HOME");
        mOldData = data ? data : "";
        setenv("XDG_DATA_HOME", (Top() / "data").c_str(), 1);
        Write("a/b/caf\xc3\xa9 1.ppd");
        mFile = Top() / "a/b/caf\xc3\xa9 1.ppd";
        mBookmark = Mark(mFile);
        ASSERT_TRUE(mBookmark);
    }
    void TearDown() override { setenv("XDG_DATA_HOME", mOldData.c_str(), 1); }

    const fs::path &Top() const { return mFolder.Path(); }
    void Write(const fs::path &name) {
        fs::create_directories((Top() / name).parent_path());
        std::ofstream(Top() / name) << "*PPD-Adobe: \"4.3\"\n";
    }
    void Move(const fs::path &from, const fs::path &to) {
        fs::create_directories((Top() / to).parent_path());
        fs::rename(Top() / from, Top() / to);
    }
    void ExpectAt(const fs::path &name, bool stale = true) {
        const Resolution now = Resolve(mBookmark);
        EXPECT_EQ(now.path, (Top() / name).string());
        EXPECT_EQ(now.stale, stale);
    }
    void ExpectGone() { EXPECT_EQ(Resolve(mBookmark).path, "(none)"); }

    const char *mName = "a/b/caf\xc3\xa9 1.ppd";
    TempFolder mFolder;
    fs::path mFile;
    CFRef<CFDataRef> mBookmark;
    std::string mOldData;
};

} // namespace

TEST_F(Bookmark, OfAnUntouchedFileIsFresh) {
    ExpectAt(mName, false);
}

TEST_F(Bookmark, OfNothingIsNotMade) {
    EXPECT_FALSE(Mark(Top() / "nothing"));
    EXPECT_EQ(CFURLCreateBookmarkData(nullptr, nullptr, 0, nullptr, nullptr, nullptr), nullptr);
}

TEST_F(Bookmark, FollowsRenaming) {
    Move(mName, "a/b/new.ppd");
    ExpectAt("a/b/new.ppd");
}

TEST_F(Bookmark, FollowsRenamedFolders) {
    Move("a", "z");
    ExpectAt("z/b/caf\xc3\xa9 1.ppd");
    Move("z/b", "z/c");
    ExpectAt("z/c/caf\xc3\xa9 1.ppd");
    Move("z/c/caf\xc3\xa9 1.ppd", "z/c/new.ppd");
    ExpectAt("z/c/new.ppd");
}

TEST_F(Bookmark, FollowsMovesDownAsideAndUp) {
    for (const char *place : {"a/b/deep/er/x.ppd", "a/aside/x.ppd", "else/where/x.ppd", "x.ppd"}) {
        SCOPED_TRACE(place);
        Write("keep"); // so that no inode is used again
        Move(fs::relative(Resolve(mBookmark).path, Top()), place);
        ExpectAt(place);
    }
}

TEST_F(Bookmark, FollowsAMovedFolder) {
    fs::create_directories(Top() / "archive/2024");
    Move("a/b", "archive/2024/b");
    ExpectAt("archive/2024/b/caf\xc3\xa9 1.ppd");
}

TEST_F(Bookmark, FollowsIntoTheTrash) {
    Move(mName, "data/Trash/files/caf\xc3\xa9 1.ppd");
    ExpectAt("data/Trash/files/caf\xc3\xa9 1.ppd");
    EXPECT_TRUE(PlatformIsInTrash(Resolve(mBookmark).path));
}

TEST_F(Bookmark, FollowsAFolderIntoTheTrash) {
    Move("a", "data/Trash/files/a.2");
    ExpectAt("data/Trash/files/a.2/b/caf\xc3\xa9 1.ppd");
}

TEST_F(Bookmark, FollowsIntoTheTrashOfTheVolume) {
    const std::string trash = ".Trash-" + std::to_string(getuid()) + "/files/x.ppd";
    Move(mName, trash);
    ExpectAt(trash);
}

TEST_F(Bookmark, TakesAnotherFileInTheSamePlaceAndIsStale) {
    Write("a/b/new"); // made while the old one exists: another inode
    Move("a/b/new", mName);
    ExpectAt(mName, true);
}

TEST_F(Bookmark, PrefersThePlaceToTheFile) {
    Move(mName, "a/b/moved.ppd");
    Write(mName);
    ExpectAt(mName, true);
}

TEST_F(Bookmark, OfARemovedFileIsNotFound) {
    fs::remove(mFile);
    ExpectGone();
    fs::remove_all(Top() / "a");
    ExpectGone();
}

TEST_F(Bookmark, OfACopyIsNotFound) {
    fs::copy_file(mFile, Top() / "a/b/copy.ppd");
    fs::remove(mFile);
    ExpectGone();
}

TEST_F(Bookmark, DoesNotFollowToAnotherFileSystem) {
    char pattern[] = "/dev/shm/zelXXXXXX";
    if (!mkdtemp(pattern)) GTEST_SKIP() << "no second file system to write to";
    const fs::path other = fs::path(pattern) / "x.ppd";
    fs::copy_file(mFile, other); // what moving is, across file systems
    fs::remove(mFile);
    ExpectGone();
    fs::remove_all(pattern);
}

TEST_F(Bookmark, OfAFolderIsAFoldersURL) {
    const auto bookmark = Mark(Top() / "a/b");
    Move("a/b", "a/hot");
    const CFRef url(CFURLCreateByResolvingBookmarkData(nullptr, bookmark.Get(), 0, nullptr, nullptr,
                                                       nullptr, nullptr));
    EXPECT_EQ(Path(url), (Top() / "a/hot").string());
}

TEST_F(Bookmark, OfTheRootResolves) {
    const Resolution root = Resolve(Mark("/"));
    EXPECT_EQ(root.path, "/");
    EXPECT_FALSE(root.stale);
}

TEST_F(Bookmark, SurvivesThePreferences) {
    const CFStringRef application = CFSTR("com.zel.test.bookmark");
    CFPreferencesSetAppValue(CFSTR("HotFolderBookmark"), mBookmark.Get(), application);
    ASSERT_TRUE(CFPreferencesAppSynchronize(application));
    const CFRef back(
        static_cast<CFDataRef>(CFPreferencesCopyAppValue(CFSTR("HotFolderBookmark"), application)));
    EXPECT_EQ(Resolve(back).path, mFile.string());
}

TEST_F(Bookmark, DamagedDataAreNotFound) {
    const std::string whole = Bytes(mBookmark.Get());
    for (size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(Resolve(Data(whole.substr(0, length))).path, "(none)") << length;
    for (size_t i = 0; i < whole.size(); ++i) {
        std::string damaged = whole;
        damaged[i] = char(damaged[i] ^ 0x40);
        (void)Resolve(Data(damaged)); // somewhere or nowhere
    }
    EXPECT_EQ(Resolve(Data("")).path, "(none)");
    EXPECT_EQ(Resolve(Data("no bookmark at all")).path, "(none)");
    EXPECT_EQ(Resolve(CFRef<CFDataRef>()).path, "(none)");
}

TEST_F(Bookmark, ListsOfTheWrongFormAreNotFound) {
    const auto resolve = [](CFPropertyListRef list) {
        return Resolve(CFRef(CFPropertyListCreateData(
                           nullptr, list, kCFPropertyListBinaryFormat_v1_0, 0, nullptr)))
            .path;
    };
    const auto list = Dictionary();
    EXPECT_EQ(resolve(list.Get()), "(none)");
    EXPECT_EQ(resolve(CFSTR("/tmp")), "(none)");
    const auto set = [&](const char *key, CFTypeRef value) {
        CFDictionarySetValue(list.Get(), Str(key).Get(), value);
    };
    set("path", CFSTR("/tmp"));
    EXPECT_EQ(resolve(list.Get()), "(none)");
    const auto ids = Array();
    set("ids", ids.Get());
    EXPECT_EQ(resolve(list.Get()), "(none)");
    for (int i = 0; i < 5; ++i)
        CFArrayAppendValue(ids.Get(), CFSTR("x"));
    EXPECT_EQ(resolve(list.Get()), "(none)");
    CFArrayAppendValue(ids.Get(), CFSTR("x"));
    EXPECT_EQ(resolve(list.Get()), "/tmp"); // a good form; it says nothing about what is there
    set("path", CFSTR("tmp"));
    EXPECT_EQ(resolve(list.Get()), "(none)");
    set("path", Number(1).Get());
    EXPECT_EQ(resolve(list.Get()), "(none)");
}

TEST(AliasRecord, IsNeverConverted) {
    EXPECT_EQ(CFURLCreateBookmarkDataFromAliasRecord(nullptr, Data("alias").Get()), nullptr);
    EXPECT_EQ(CFURLCreateBookmarkDataFromAliasRecord(nullptr, nullptr), nullptr);
}
