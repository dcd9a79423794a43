// Separation profiles that turn out useless: the reason in one line, and nothing left behind.
#include "platform/Platform.h"
#include "tests/colour/ProfileBytes.h"
#include "tests/host/CommandFixture.h"

#include <filesystem>
#include <functional>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// The profiles folder of this process alone.
class SeparationCommand : public Command {
protected:
    SeparationCommand() {
        fs::remove_all(mFolder);
        fs::create_directories(mFolder / "Old");
    }
    ~SeparationCommand() override { fs::remove_all(mFolder); }

    void WriteProfile(const std::string &name, const std::string &bytes) const {
        WriteFile(mFolder / name, bytes);
    }
    [[nodiscard]] RunResult PrintCMYK(Names arguments) const {
        arguments.insert(arguments.begin(), {"--hot-folder", mPlace.Hot()});
        arguments.push_back(Source());
        return mPlace.Run(arguments);
    }
    /// The profile P cannot be used, in either format.
    void ExpectUseless(const Names &arguments, const std::string &problem) const {
        for (const char *format : {"--ps", "--eps"}) {
            Names all = arguments;
            all.emplace_back(format);
            const RunResult run = PrintCMYK(all);
            ExpectRefused(run, 1, "");
            EXPECT_EQ(run.Complaint(), "zelprint: the separation \"P\" cannot be loaded: " +
                                           (mFolder / "P").string() + problem)
                << format;
        }
    }

    fs::path mFolder = fs::path(PlatformApplicationSupportFolder()) / "ZEL/Profiles/Postscript";
};

struct UselessProfile {
    const char *name;
    std::function<void(ProfileBytes &)> change;
    size_t length; ///< the file is cut there
    const char *problem;
};

void PrintTo(const UselessProfile &c, std::ostream *out) {
    *out << c.name;
}

class UselessSeparation : public SeparationCommand,
                          public testing::WithParamInterface<UselessProfile> {};

TEST_P(UselessSeparation, IsRefusedWithItsReason) {
    ProfileBytes profile;
    GetParam().change(profile);
    WriteProfile("P", profile.Bytes().substr(0, GetParam().length));
    ExpectUseless({"--separation", "P"}, std::string(" cannot be used: ") + GetParam().problem);
}

constexpr size_t kWhole = std::string::npos;
const auto kUnchanged = [](ProfileBytes &) {};
// A whole one has 52 + 3 * 2 * 2 + 8 * 8 * 2 + 8 * 2 * 2 bytes.
INSTANTIATE_TEST_SUITE_P(
    , UselessSeparation,
    testing::Values(
        UselessProfile{"SignatureAlone", kUnchanged, 4, "it is shorter than its header"},
        UselessProfile{"HeaderShort", kUnchanged, 51, "it is shorter than its header"},
        UselessProfile{"HeaderAlone", kUnchanged, 52, "it ends after 52 of 224 bytes"},
        UselessProfile{"GridCut", kUnchanged, 191, "it ends after 191 of 224 bytes"},
        UselessProfile{"OutputTablesCut", kUnchanged, 223, "it ends after 223 of 224 bytes"},
        UselessProfile{"FourInks", [](ProfileBytes &p) { p.outputChannels = 4; }, kWhole,
                       "it makes 4 channels of 3 instead of 8 of 3"},
        UselessProfile{"FourInputs", [](ProfileBytes &p) { p.inputChannels = 4; }, kWhole,
                       "it makes 8 channels of 4 instead of 8 of 3"},
        UselessProfile{"NoGrid", [](ProfileBytes &p) { p.gridPoints = 0; }, kWhole,
                       "its table is empty"},
        UselessProfile{"NoInputEntries", [](ProfileBytes &p) { p.inputEntries = 0; }, kWhole,
                       "its table is empty"},
        UselessProfile{"NoOutputEntries", [](ProfileBytes &p) { p.outputEntries = 0; }, kWhole,
                       "its table is empty"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(SeparationCommand, ProfileThatMakesNoInk_IsRefused) {
    WriteProfile("P", ProfileBytes().Bytes());
    for (const char *format : {"--ps", "--eps"}) {
        const RunResult run = PrintCMYK({"--separation", "P", format});
        ExpectRefused(run, 1, "makes no ink of any colour");
    }
}

TEST_F(SeparationCommand, ProfileInASubfolder_IsOfferedButNotFound) {
    WriteProfile("Old/P", ProfileBytes().Bytes());
    EXPECT_EQ(mPlace.Run({"separations"}).out, "Standard\nP\n");
    ExpectUseless({"--separation", "P"},
                  " is not there; put the profile directly into this folder");
}

/// The name is in the settings, so that nothing looks for it before the document is opened.
class SavedSeparation : public SeparationCommand {
protected:
    SavedSeparation() {
        ProfileBytes profile;
        profile.grid = [](int, int, int, int) { return uint16_t{65535}; };
        WriteProfile("P", profile.Bytes());
        EXPECT_EQ(PrintCMYK({"--eps", "--separation", "P", "--save-settings", mSaved}).status, 0);
        EXPECT_EQ(mPlace.HotFiles(), Names{"s.eps"});
        fs::remove(mPlace.Hot("s.eps"));
    }
    std::string mSaved = mPlace.Path("saved");
};

TEST_F(SavedSeparation, GoneSince_SaysSo) {
    fs::remove(mFolder / "P");
    ExpectUseless({"--settings", mSaved},
                  " is not there; put the profile directly into this folder");
}

TEST_F(SavedSeparation, FolderOfThatName_SaysSo) {
    fs::remove(mFolder / "P");
    fs::create_directory(mFolder / "P");
    ExpectUseless({"--settings", mSaved}, " is not a file");
}

TEST_F(SavedSeparation, OtherContents_SaysSo) {
    WriteProfile("P", std::string(100, 'x'));
    ExpectUseless({"--settings", mSaved}, " cannot be used: it is not a separation profile");
}

TEST_F(SavedSeparation, Unreadable_SaysSo) {
    if (geteuid() == 0) GTEST_SKIP() << "the superuser may read anything";
    fs::permissions(mFolder / "P", fs::perms::none);
    ExpectUseless({"--settings", mSaved}, " cannot be used: it cannot be read: Permission denied");
}

} // namespace
