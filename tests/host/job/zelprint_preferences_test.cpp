// The hot folder in the user's preferences, also as early versions of the driver kept it.
#include "host/driver/CFOwner.h"
#include "tests/host/CommandFixture.h"

#include <CoreFoundation/CoreFoundation.h>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

class SavedHotFolder : public Command {
protected:
    SavedHotFolder() {
        Forget();
        fs::create_directory(Old());
    }
    ~SavedHotFolder() override { Forget(); }

    static void Set(CFStringRef key, CFTypeRef value) {
        CFPreferencesSetAppValue(key, value, CFSTR("com.zel.PostscriptPrinterDriver"));
        EXPECT_TRUE(CFPreferencesAppSynchronize(CFSTR("com.zel.PostscriptPrinterDriver")));
    }
    static void Forget() {
        Set(CFSTR("HotFolder"), nullptr);
        Set(CFSTR("HotFolderBookmark"), nullptr);
    }
    static void SetBookmark(const std::string &folder) {
        const CFOwner<CFDataRef> bookmark(CFURLCreateBookmarkData(
            kCFAllocatorDefault, MakeFileURL(folder, true).Get(),
            kCFURLBookmarkCreationSuitableForBookmarkFile, nullptr, nullptr, nullptr));
        ASSERT_TRUE(bookmark);
        Set(CFSTR("HotFolderBookmark"), bookmark.Get());
    }
    [[nodiscard]] RunResult PrintThere() const {
        return mPlace.Run({"--eps", "--media", "40x50pt", "--colour-space", "rgb", Source()});
    }
    /// A name that is neither ASCII nor one word.
    [[nodiscard]] std::string Old() const { return mPlace.Path("früherer Ordner"); }
};

TEST_F(SavedHotFolder, PathOfAnEarlyVersion_ReceivesTheDocument) {
    Set(CFSTR("HotFolder"), MakeCFString(Old()).Get());
    const RunResult run = PrintThere();
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_TRUE(fs::is_regular_file(Old() + "/s.eps"));
    EXPECT_EQ(mPlace.HotFiles(), Names{});
}

TEST_F(SavedHotFolder, Bookmark_GoesBeforeThePath) {
    Set(CFSTR("HotFolder"), MakeCFString(Old()).Get());
    SetBookmark(mPlace.Hot());
    EXPECT_EQ(PrintThere().status, 0);
    EXPECT_EQ(mPlace.HotFiles(), Names{"s.eps"});
    EXPECT_TRUE(fs::is_empty(Old()));
}

TEST_F(SavedHotFolder, PathIsGone_IsNamed) {
    Set(CFSTR("HotFolder"), MakeCFString(Old()).Get());
    fs::remove(Old());
    ExpectRefused(PrintThere(), 3, Old());
}

TEST_F(SavedHotFolder, NeitherPathNorBookmark_IsNoFolder) {
    Set(CFSTR("HotFolder"), kCFBooleanTrue);
    ExpectRefused(PrintThere(), 2, "there is no saved hot folder");
}

} // namespace
