// zelprint defaults: what a person would choose in the dialogs, on a machine without windows.
#include "host/driver/CFOwner.h"
#include "tests/host/CommandFixture.h"

#include <CoreFoundation/CoreFoundation.h>
#include <filesystem>
#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;

constexpr const char *kPrinter =
    "*PPD-Adobe: \"4.3\"\n*ColorDevice: True\n*LanguageLevel: \"3\"\n*DefaultPageSize: Small\n"
    "*PageSize Small: \"\"\n*ImageableArea Small: \"0 0 40 50\"\n"
    "*DefaultResolution: 72dpi\n*Resolution 72dpi: \"\"\n";

class SavedDefaults : public Command {
protected:
    SavedDefaults() {
        Forget();
        WriteFile(mPlace.Path("printer.ppd"), kPrinter);
    }
    ~SavedDefaults() override { Forget(); }

    static void Forget() {
        for (const char *key : {"PPDBookmark", "HotFolderBookmark", "PageOptions", "FileFormat",
                                "PSColourSpace", "SendToDefaultPrintQueue"})
            CFPreferencesSetAppValue(MakeCFString(key).Get(), nullptr,
                                     CFSTR("com.zel.PostscriptPrinterDriver"));
        EXPECT_TRUE(CFPreferencesAppSynchronize(CFSTR("com.zel.PostscriptPrinterDriver")));
    }

    [[nodiscard]] RunResult Set(Names options) const {
        options.insert(options.begin(), "defaults");
        return mPlace.Run(options);
    }
    [[nodiscard]] json Shown() const {
        const RunResult run = Set({"--json"});
        EXPECT_EQ(run.status, 0) << run.err;
        return json::parse(run.out);
    }
};

TEST_F(SavedDefaults, WithoutAny_AreTheDriversOwn) {
    EXPECT_EQ(Shown(), json::parse(R"({"ppd": null, "hot_folder": null, "queue": false,
        "colour_space": "cmyk", "separation": "Standard", "format": "ps", "rotate": false,
        "flip_h": false, "flip_v": false})"));
}

TEST_F(SavedDefaults, EveryChoice_IsShownAndPrintedWith) {
    const RunResult run =
        Set({"--ppd", mPlace.Path("printer.ppd"), "--hot-folder", mPlace.Hot(), "--colour-space",
             "rgb", "--eps", "--rotate", "--flip-h", "--flip-v", "--queue"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err.find("autorelease"), std::string::npos) << run.err;
    json wanted = json::parse(R"({"queue": true, "colour_space": "rgb", "separation": "Standard",
        "format": "eps", "rotate": true, "flip_h": true, "flip_v": true})");
    wanted["ppd"] = mPlace.Path("printer.ppd");
    wanted["hot_folder"] = mPlace.Hot();
    EXPECT_EQ(Shown(), wanted);
    EXPECT_EQ(mPlace.Run({"--no-queue", "--no-rotate", Source()}).status, 0);
    EXPECT_EQ(mPlace.HotFiles(), Names{"s.eps"});
}

TEST_F(SavedDefaults, WhatIsNotNamed_Stays) {
    ASSERT_EQ(Set({"--colour-space", "gray", "--flip-h", "--queue"}).status, 0);
    ASSERT_EQ(Set({"--no-flip-h", "--eps"}).status, 0);
    ASSERT_EQ(Set({"--hot-folder", mPlace.Hot()}).status, 0);
    const json shown = Shown();
    EXPECT_EQ(shown.at("colour_space"), "gray");
    EXPECT_EQ(shown.at("flip_h"), false);
    EXPECT_EQ(shown.at("format"), "eps");
    EXPECT_EQ(shown.at("queue"), true);
    EXPECT_EQ(shown.at("hot_folder"), mPlace.Hot());
}

TEST_F(SavedDefaults, BadChoices_ChangeNothing) {
    WriteFile(mPlace.Path("no.ppd"), "hello");
    const struct {
        Names options;
        int status;
        const char *text;
    } cases[] = {
        {{"--eps", "--ppd", mPlace.Path("no.ppd")}, 1, "Not a PPD file"},
        {{"--eps", "--ppd", mPlace.Path("gone.ppd")}, 1, "gone.ppd"},
        {{"--eps", "--hot-folder", mPlace.Path("gone")}, 1, "no such folder"},
        {{"--eps", "--hot-folder", Source()}, 1, "no such folder"},
        {{"--eps", "--separation", "gone"}, 1, "gone"},
        {{"--separation", "Standard", "--colour-space", "rgb"}, 2, "--separation makes CMYK"},
        {{"--colour-space", "red"}, 2, "red"},
        {{"--ppd", ""}, 2, "empty"},
    };
    const json before = Shown();
    for (const auto &c : cases) {
        const RunResult run = Set(c.options);
        EXPECT_EQ(run.status, c.status) << c.options.back();
        EXPECT_NE(run.Complaint().find(c.text), std::string::npos) << run.err;
        EXPECT_EQ(Shown(), before) << c.options.back();
    }
}

TEST_F(SavedDefaults, ForPeople_AreATable) {
    const RunResult run = Set({"--flip-h", "--show"});
    EXPECT_EQ(run.status, 0);
    EXPECT_NE(run.out.find("flip_h        yes\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("hot_folder    none\n"), std::string::npos) << run.out;
}

} // namespace
