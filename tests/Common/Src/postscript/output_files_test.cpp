#include "Common/Src/postscript/OutputFiles.h"

#include "support/CFText.h"
#include "tests/TempFolder.h"

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <regex>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

CFRef<CFURLRef> FileURL(const fs::path &path) {
    const std::string name = path.string();
    return CFRef(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(name.data()),
        static_cast<CFIndex>(name.size()), false));
}

std::string Text(const CFRef<CFStringRef> &string) {
    return UTF8Text(string.Get()).value_or("(none)");
}

/// A path of exactly `length` bytes, in folders that exist, to a file that does not.
std::string LongPath(const fs::path &folder, size_t length) {
    std::string path = folder.string();
    while (length - path.size() > 200)
        path += "/" + std::string(99, 'd');
    fs::create_directories(path);
    path += "/" + std::string(length - path.size() - 1, 'f');
    return path;
}

int CreateUnique(const TempFolder &folder, const std::string &base, CFRef<CFURLRef> &url) {
    return CreateAndOpenUniqueFileInFolder(folder.URL(), Str(base).Get(), CFSTR("ps"), 0666, url);
}

void CreateAndClose(const TempFolder &folder, const std::string &base) {
    CFRef<CFURLRef> url;
    const int fd = CreateUnique(folder, base, url);
    ASSERT_GE(fd, 0);
    close(fd);
}

} // namespace

TEST(OpenFileAtURL, OpensTheFileAndKeepsItFromOtherPrograms) {
    const TempFolder folder;
    int fd = -1;
    ASSERT_EQ(OpenFileAtURL(FileURL(folder.Path() / "x").Get(), O_RDWR | O_CREAT, 0600, &fd), 0);
    EXPECT_EQ(fcntl(fd, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    EXPECT_EQ(close(fd), 0);
}

TEST(OpenFileAtURL, AFailureIsTheErrorNumber) {
    const TempFolder folder;
    int fd = 7;
    EXPECT_EQ(OpenFileAtURL(FileURL(folder.Path() / "x").Get(), O_RDWR, 0, &fd), ENOENT);
    EXPECT_EQ(fd, -1);
    fd = 7;
    EXPECT_EQ(OpenFileAtURL(FileURL(folder.Path()).Get(), O_RDWR, 0, &fd), EISDIR);
    EXPECT_EQ(fd, -1);
}

TEST(OpenFileAtURL, APathOf1023BytesIsTheLongest) {
    const TempFolder folder;
    int fd = -1;
    EXPECT_EQ(
        OpenFileAtURL(FileURL(LongPath(folder.Path(), 1023)).Get(), O_RDWR | O_CREAT, 0600, &fd),
        0);
    EXPECT_EQ(close(fd), 0);
    EXPECT_EQ(
        OpenFileAtURL(FileURL(LongPath(folder.Path(), 1024)).Get(), O_RDWR | O_CREAT, 0600, &fd),
        -1);
    EXPECT_EQ(fd, -1);
}

TEST(OpenFileAtURL, NoURLHasNoPath) {
    int fd = 7;
    EXPECT_EQ(OpenFileAtURL(nullptr, O_RDONLY, 0, &fd), -1);
    EXPECT_EQ(fd, -1);
}

TEST(CreateFileInFolder, AnExistingFileIsOverwritten) {
    const TempFolder folder;
    std::ofstream(folder.Path() / "page.ps") << "a longer text than none";
    CFRef<CFURLRef> url;
    const int fd = CreateFileInFolder(folder.URL(), CFSTR("page.ps"), 0666, url);
    ASSERT_GE(fd, 0);
    EXPECT_EQ(fcntl(fd, F_GETFL) & O_ACCMODE, O_RDWR);
    EXPECT_TRUE(url);
    close(fd);
    EXPECT_EQ(folder.Read("page.ps"), "");
}

TEST(CreateFileInFolder, AFailureGivesNoURL) {
    const TempFolder folder;
    fs::create_directory(folder.Path() / "taken");
    CFRef<CFURLRef> url = FileURL("/x");
    EXPECT_EQ(CreateFileInFolder(folder.URL(), CFSTR("taken"), 0666, url), -1);
    EXPECT_FALSE(url);
    EXPECT_EQ(CreateFileInFolder(nullptr, CFSTR("a"), 0666, url), -1);
    EXPECT_EQ(CreateFileInFolder(FileURL(folder.Path() / "missing").Get(), CFSTR("a"), 0666, url),
              -1);
}

TEST(CreateFileInFolder, TheModeIsLessTheUsersMask) {
    const TempFolder folder;
    const mode_t before = umask(027);
    CFRef<CFURLRef> url;
    const int fd = CreateFileInFolder(folder.URL(), CFSTR("a"), 0666, url);
    umask(before);
    struct stat info = {};
    ASSERT_EQ(fstat(fd, &info), 0);
    close(fd);
    EXPECT_EQ(info.st_mode & 0777U, 0640U);
}

TEST(CreateAndOpenUniqueFileInFolder, TakenNamesGetTwoDigits) {
    const TempFolder folder;
    for (int i = 0; i < 8; ++i)
        CreateAndClose(folder, "report");
    EXPECT_EQ(folder.Names(), (std::vector<std::string>{
                                  "report.ps", "report_01.ps", "report_02.ps", "report_03.ps",
                                  "report_04.ps", "report_05.ps", "report_06.ps", "report_07.ps"}));
}

TEST(CreateAndOpenUniqueFileInFolder, AnExistingFileIsLeftAlone) {
    const TempFolder folder;
    std::ofstream(folder.Path() / "report.ps") << "mine";
    CreateAndClose(folder, "report");
    EXPECT_EQ(folder.Read("report.ps"), "mine");
}

TEST(CreateAndOpenUniqueFileInFolder, AHundredTakenNamesFail) {
    const TempFolder folder;
    for (int i = 0; i < 100; ++i)
        CreateAndClose(folder, "report");
    CFRef<CFURLRef> url = FileURL("/x");
    EXPECT_EQ(CreateUnique(folder, "report", url), -1);
    EXPECT_FALSE(url);
    EXPECT_EQ(folder.Names().size(), 100U);
    EXPECT_EQ(folder.Names().back(), "report_99.ps");
}

TEST(CreateAndOpenUniqueFileInFolder, ADanglingLinkIsATakenName) {
    const TempFolder folder;
    fs::create_symlink(folder.Path() / "elsewhere", folder.Path() / "report.ps");
    CreateAndClose(folder, "report");
    EXPECT_FALSE(fs::exists(folder.Path() / "elsewhere"));
    EXPECT_TRUE(fs::exists(folder.Path() / "report_01.ps"));
}

TEST(CreateAndOpenUniqueFileInFolder, NamesReachTheFileSystemAsTheyAre) {
    for (const std::string name :
         {"100%", "a%20b", "a b", "a#b?c;d", "Übergröße", "日本語", "~", "a.b.", "%@", "a:b",
          "a\\b", "[x]{y}", "emoji \xF0\x9F\x96\xA8"}) {
        const TempFolder folder;
        CreateAndClose(folder, name);
        EXPECT_EQ(folder.Names(), std::vector<std::string>{name + ".ps"});
    }
}

TEST(CreateAndOpenUniqueFileInFolder, ANameThatNamesAFolderThatIsNotThereFails) {
    const TempFolder folder;
    CFRef<CFURLRef> url;
    EXPECT_EQ(CreateUnique(folder, "a/b", url), -1);
    EXPECT_EQ(CreateUnique(folder, std::string(300, 'x'), url), -1);
    EXPECT_TRUE(folder.Names().empty());
}

TEST(CreatePSFilename, PutsTheTimeBetweenBaseAndExtension) {
    const std::regex expected(R"(report\([0-2]\d_[0-5]\d_[0-6]\d\)\.ps)");
    const std::string name = Text(CreatePSFilename(CFSTR("report"), CFSTR(".ps")));
    EXPECT_TRUE(std::regex_match(name, expected)) << name;
}

TEST(CreatePSFilename, TheTimeIsTheLocalTime) {
    const time_t before = time(nullptr);
    const std::string name = Text(CreatePSFilename(CFSTR(""), CFSTR("")));
    bool isOneOfThem = false;
    for (time_t t = before; t <= time(nullptr); ++t) {
        char stamp[32];
        tm local = {};
        strftime(stamp, sizeof stamp, "(%H_%M_%S)", localtime_r(&t, &local));
        isOneOfThem = isOneOfThem || name == stamp;
    }
    EXPECT_TRUE(isOneOfThem) << name;
}

TEST(CreatePSFilename, NamesHaveAtMost128Characters) {
    // base, stamp (10) and ".ps" (3) together
    for (const size_t baseLength : {114U, 115U, 116U, 117U, 500U}) {
        const std::string base(baseLength, 'b');
        const std::string name = Text(CreatePSFilename(Str(base).Get(), CFSTR(".ps")));
        EXPECT_EQ(name.size(), std::min<size_t>(128, baseLength + 13));
        EXPECT_EQ(name.find('('), std::min<size_t>(115, baseLength));
        EXPECT_EQ(name.substr(name.size() - 4), ").ps");
    }
}

TEST(CreatePSFilename, AnExtensionThatFillsTheNameLeavesNothingOfTheBase) {
    const std::string extension(200, 'e');
    const std::string name = Text(CreatePSFilename(CFSTR("base"), Str(extension).Get()));
    EXPECT_EQ(name.size(), 210U);
    EXPECT_EQ(name[0], '(');
}

TEST(CreatePSFilename, ACharacterOfTwoUnitsIsNotCutInHalf) {
    std::string base(114, 'b');
    base += "\xF0\x9F\x96\xA8 and more";
    const std::string name = Text(CreatePSFilename(Str(base).Get(), CFSTR(".ps")));
    EXPECT_EQ(name.find('('), 114U) << name;
}

TEST(DeleteFileAtURL, UnlinksTheFile) {
    const TempFolder folder;
    std::ofstream(folder.Path() / "x") << "x";
    EXPECT_EQ(DeleteFileAtURL(FileURL(folder.Path() / "x").Get()), 0);
    EXPECT_TRUE(folder.Names().empty());
    EXPECT_EQ(DeleteFileAtURL(FileURL(folder.Path() / "x").Get()), -1);
}

TEST(DeleteFileAtURL, WithoutAPathTheResultIsTwo) {
    const TempFolder folder;
    EXPECT_EQ(DeleteFileAtURL(nullptr), 2);
    EXPECT_EQ(DeleteFileAtURL(FileURL(LongPath(folder.Path(), 1024)).Get()), 2);
}

TEST(CreateBaseName, IsTheLastComponentWithoutItsExtension) {
    const std::pair<const char *, const char *> cases[] = {
        {"chart.eps", "chart"}, {"chart", "chart"},
        {"a.b.eps", "a.b"},     {"sub/chart.ps", "chart"},
        {"Größe.eps", "Größe"}, {"50%.eps", "50%"},
        {"Re: x.eps", "Re: x"}, {"a:b.eps", "a:b"},
        {"a\\b.eps", "a\\b"},   {"x.", "x"},
        {".hidden", ".hidden"}};
    for (const auto &[name, base] : cases)
        EXPECT_EQ(Text(CreateBaseName(Str(name).Get())), base) << name;
}

TEST(CreateBaseName, ANameThatIsNoTextHasNone) {
    EXPECT_FALSE(CreateBaseName(nullptr));
    EXPECT_FALSE(CreateBaseName(HalfACharacter().Get()));
}

TEST(UTF8Text, IsTheTextOrNothing) {
    EXPECT_EQ(UTF8Text(Str("Größe").Get()), "Größe");
    EXPECT_EQ(UTF8Text(Str("").Get()), "");
    EXPECT_EQ(UTF8Text(Str(std::string(10000, 'x')).Get()), std::string(10000, 'x'));
    EXPECT_EQ(UTF8Text(nullptr), std::nullopt);
    EXPECT_EQ(UTF8Text(HalfACharacter().Get()), std::nullopt);
}
