// What a host asks of the driver instead of looking at the driver's preferences and platform
// itself.
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>

namespace {

namespace fs = std::filesystem;

class HostExtensions : public testing::Test {
protected:
    HostExtensions() { ClearPreferences(); }
    ~HostExtensions() override { ClearPreferences(); }
    static std::string Path(CFURLRef url) {
        const CFRef<CFURLRef> owned(url);
        char path[1024] = "";
        if (url)
            CFURLGetFileSystemRepresentation(url, true, reinterpret_cast<UInt8 *>(path),
                                             sizeof path);
        return path;
    }

    ScratchFolder folder;
    Session session;
};

struct SavedPlace {
    const char *name;
    const char *bookmarkKey, *pathKey;
    CFURLRef (*DriverFunctions::*ask)(DriverContext *);
};

class SavedPlaces : public HostExtensions, public testing::WithParamInterface<SavedPlace> {
protected:
    std::string Ask() { return Path((Driver().*GetParam().ask)(session.Get())); }
    static void Save(const char *key, CFTypeRef value) {
        SetPreference(MakeString(key).Get(), value);
    }
};

TEST_P(SavedPlaces, NothingSaved_IsNull) {
    EXPECT_EQ(Ask(), "");
}

TEST_P(SavedPlaces, Bookmark_IsFollowedToTheNewName) {
    const fs::path old = folder.Write("old", "x");
    Save(GetParam().bookmarkKey, MakeBookmark(old).Get());
    EXPECT_EQ(Ask(), old);
    fs::rename(old, folder.Path() / "new");
    EXPECT_EQ(Ask(), folder.Path() / "new");
}

TEST_P(SavedPlaces, PathOfAnOldVersion_IsToldEvenIfGone) {
    const fs::path path = folder.Write("old", "x");
    Save(GetParam().pathKey, MakeString(path).Get());
    EXPECT_EQ(Ask(), path);
    fs::remove(path);
    EXPECT_EQ(Ask(), path);
}

TEST_P(SavedPlaces, ItemThatIsGone_IsNull) {
    const fs::path path = folder.Write("old", "x");
    Save(GetParam().bookmarkKey, MakeBookmark(path).Get());
    fs::remove(path);
    EXPECT_EQ(Ask(), "");
}

INSTANTIATE_TEST_SUITE_P(All, SavedPlaces,
                         testing::Values(SavedPlace{"Printer", "PPDBookmark", "PPDFile",
                                                    &DriverFunctions::ZELPrCopyUsersPrinter},
                                         SavedPlace{"HotFolder", "HotFolderBookmark", "HotFolder",
                                                    &DriverFunctions::ZELPrCopyUsersHotFolder}),
                         [](const auto &info) { return info.param.name; });

TEST_F(HostExtensions, UserHasChosenPrinter_AlsoOneThatIsGone) {
    EXPECT_FALSE(Driver().ZELPrUserHasChosenPrinter(session.Get()));
    const std::string path = folder.Write("old.ppd", "x");
    SetPreference(CFSTR("PPDBookmark"), MakeBookmark(path).Get());
    EXPECT_TRUE(Driver().ZELPrUserHasChosenPrinter(session.Get()));
    fs::remove(path);
    EXPECT_TRUE(Driver().ZELPrUserHasChosenPrinter(session.Get()));
}

TEST_F(HostExtensions, UserSendsToPrintQueue_IsWhatIsSaved) {
    EXPECT_FALSE(Driver().ZELPrUserSendsToPrintQueue(session.Get()));
    SetPreference(CFSTR("SendToDefaultPrintQueue"), kCFBooleanTrue);
    EXPECT_TRUE(Driver().ZELPrUserSendsToPrintQueue(session.Get()));
    Driver().ZELPrSetSendToPrintQueue(session.Get(), false);
    EXPECT_TRUE(Driver().ZELPrUserSendsToPrintQueue(session.Get()));
}

TEST_F(HostExtensions, WithoutWindowSystem_NoDialogCanBeShown) {
    ASSERT_EQ(getenv("DISPLAY"), nullptr);
    EXPECT_FALSE(Driver().ZELPrCanShowDialogs());
}

TEST_F(HostExtensions, MoveWithoutReplacing_LeavesATakenNameAlone) {
    const std::string from = folder.Write("from", "new");
    const std::string taken = folder.Write("taken", "old");
    EXPECT_EQ(Driver().ZELPrMoveWithoutReplacing(from.c_str(), taken.c_str()), EEXIST);
    EXPECT_EQ(ReadFile(taken), "old");
    const std::string fresh = folder.Path() / "fresh";
    EXPECT_EQ(Driver().ZELPrMoveWithoutReplacing(from.c_str(), fresh.c_str()), 0);
    EXPECT_EQ(ReadFile(fresh), "new");
    EXPECT_FALSE(fs::exists(from));
}

TEST_F(HostExtensions, InheritRights_NeedsBothFolders) {
    const std::string from = folder.Path().string();
    EXPECT_EQ(Driver().ZELPrInheritRights(from.c_str(), (from + "/none").c_str()), ENOENT);
    EXPECT_EQ(Driver().ZELPrInheritRights((from + "/none").c_str(), from.c_str()), ENOENT);
    fs::create_directory(from + "/new");
    EXPECT_EQ(Driver().ZELPrInheritRights(from.c_str(), (from + "/new").c_str()), 0);
}

TEST_F(HostExtensions, KeepFreedMemory_AllocationGoesOn) {
    Driver().ZELPrKeepFreedMemory(1 << 20);
    EXPECT_NE(std::string(1 << 22, 'x').back(), '\0');
}

} // namespace
