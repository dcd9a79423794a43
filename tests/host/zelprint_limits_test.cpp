// Files that would keep zelprint busy for minutes, or that other programs would choke on.
#include "tests/host/CommandFixture.h"

#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

class Limits : public Command {
protected:
    /// A JPEG file whose header claims another size.
    void WriteJPEG(const std::string &name, int width, int height) const {
        SavePicture(TestPicture(64, 64), mPlace.Path(name));
        std::string bytes = ReadFile(mPlace.Path(name));
        const size_t frame = bytes.find("\xff\xc0");
        ASSERT_NE(frame, std::string::npos);
        const auto put = [&](size_t at, int value) {
            bytes[frame + at] = static_cast<char>(value >> 8);
            bytes[frame + at + 1] = static_cast<char>(value);
        };
        put(5, height);
        put(7, width);
        WriteFile(mPlace.Path(name), bytes);
    }
    /// A file of that size which takes no room.
    void WriteSparse(const std::string &name, const std::string &head, off_t size) const {
        WriteFile(mPlace.Path(name), head);
        ASSERT_EQ(truncate(mPlace.Path(name).c_str(), size), 0);
    }
};

TEST_F(Limits, ImageLargerThanAnyThatIsPrinted_IsRefused) {
    WriteJPEG("claims.jpg", 65500, 65500);
    ExpectRefused(Print({mPlace.Path("claims.jpg")}), 1, "4290 megapixels");
    WriteSparse("large.pbm", "P4\n40000 40000\n", 15 + 5000 * 40000);
    ExpectRefused(Print({mPlace.Path("large.pbm")}), 1, "--allow-large");
}

TEST_F(Limits, ImageThatUnfoldsFarBeyondItsFile_IsRefused) {
    WriteJPEG("bomb.jpg", 16000, 14000);
    ExpectRefused(Print({mPlace.Path("bomb.jpg")}), 1, "unfolds to 672 MB");
}

TEST_F(Limits, LargeImageInALargeFile_IsNone) {
    WriteSparse("fine.ppm", "P6\n16000 14000\n255\n", 19 + 16000LL * 14000 * 3);
    EXPECT_EQ(Print({"--dry-run", mPlace.Path("fine.ppm")}).status, 0);
}

TEST_F(Limits, AllowLarge_LiftsThem) {
    WriteSparse("large.pbm", "P4\n40000 40000\n", 15 + 5000 * 40000);
    EXPECT_EQ(Print({"--dry-run", "--allow-large", mPlace.Path("large.pbm")}).status, 0);
}

TEST_F(Limits, PPDLargerThanAnyPrinters_IsRefused) {
    WriteSparse("huge.ppd", "*PPD-Adobe: \"4.3\"\n*NickName: \"", 80 << 20);
    ExpectRefused(Print({"--ppd", mPlace.Path("huge.ppd"), Source()}), 1, "larger than 4 MB");
    ExpectRefused(mPlace.Run({"printer-info", mPlace.Path("huge.ppd")}), 1, "larger than 4 MB");
}

TEST_F(Limits, SettingsWithAnUnknownColourSpace_AreRefused) {
    const std::string settings = mPlace.Path("s.settings");
    ASSERT_EQ(Print({"--dry-run", "--save-settings", settings, Source()}).status, 0);
    std::string bytes = ReadFile(settings);
    bytes[131] = 7; // the last byte of the record's colour space
    WriteFile(settings, bytes);
    ExpectRefused(mPlace.Run({"--hot-folder", mPlace.Hot(), "--settings", settings, Source()}), 1,
                  "colour space");
}

TEST_F(Limits, BundleWithoutAFunction_IsOneClearLine) {
    const fs::path old = mPlace.Path("Old.bundle");
    fs::create_directory(old);
    fs::copy_file(ZEL_TEST_OLD_DRIVER, old / "ZELPostscript");
    fs::copy(fs::path(ZEL_TEST_BUNDLE) / "Resources", old / "Resources",
             fs::copy_options::recursive);
    const RunResult run = Print({"--bundle", old.string(), Source()});
    ExpectRefused(run, 4, "is older than zelprint (");
}

TEST_F(Limits, FileThatCannotBeCreatedAtOnce_KeepsItsName) {
    for (const Names &format :
         {Names{"--ps", "-o", "out.ps"}, Names{"--ps"}, Names{"--eps", "-n", "2"}}) {
        Names arguments = {
            "--colour-space", "gray",       "--resolution", "72",    "--built-in-printer",
            "--hot-folder",   mPlace.Hot(), "-t",           "title", Source()};
        arguments.insert(arguments.begin(), format.begin(), format.end());
        const RunResult run = mPlace.Run(arguments, {"LD_PRELOAD=" ZEL_TEST_FAILING_OPEN});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_NE(run.err.find("one open has failed"), std::string::npos) << "nothing was tried";
    }
    EXPECT_EQ(mPlace.HotFiles(), (Names{"out.ps", "title.eps", "title.ps", "title_p02.eps"}));
}

} // namespace
