// Every way and kind of input: picture formats, pipes, several documents, copies.
#include "tests/host/CommandFixture.h"
#include "tests/host/RunShell.h"

#include "host/readers/images/VipsSupport.h"
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using nlohmann::json;

class Input : public Command {
protected:
    static void SetUpTestSuite() { StartVips(); }

    /// A pipeline that ends in zelprint; `%` stands for the program and its usual options.
    [[nodiscard]] Outcome RunPipe(std::string command) const {
        const std::string program = "'" ZELPRINT_PROGRAM
                                    "' --no-auto-rotate --colour-space rgb --eps --media 40x50pt "
                                    "--resolution 72 --hot-folder '" +
                                    mPlace.Hot() + "'";
        const size_t at = command.find('%');
        command.replace(at, 1, program);
        return RunShell("cd '" + mPlace.Path("") + "' && " + command + " 2>&1");
    }
};

TEST_F(Input, OfEveryPictureFormat_LooksLikeItsSource) {
    const std::string source = mPlace.Path("s.png");
    ASSERT_EQ(Print({"-o", "wanted.eps", source}).status, 0);
    const Picture wanted = Render(mPlace.Hot("wanted.eps"), 72);
    for (const char *name : {"a.webp", "a.gif", "a.jp2", "a.heic", "a.avif"}) {
        const VipsImagePtr picture(vips_image_new_from_file(source.c_str(), nullptr));
        ASSERT_NE(picture, nullptr);
        if (vips_image_write_to_file(picture.get(), mPlace.Path(name).c_str(), nullptr) != 0) {
            // What this libvips cannot write it may still read; but there is no file to try.
            vips_error_clear();
            continue;
        }
        const RunResult run = Print({"--scale", "fit", "-o", "got.eps", mPlace.Path(name)});
        ASSERT_EQ(run.status, 0) << name << run.err;
        const Picture got = Render(mPlace.Hot("got.eps"), 72);
        ASSERT_EQ(got.samples.size(), wanted.samples.size());
        EXPECT_LT(MeanDifference(got, wanted), 12) << name;
    }
}

TEST_F(Input, Drawing_IsDrawnInItsSize) {
    WriteFile(mPlace.Path("d.svg"),
              "<?xml version=\"1.0\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20pt\" "
              "height=\"10pt\" viewBox=\"0 0 20 10\"><rect width=\"20\" height=\"10\" "
              "fill=\"red\"/></svg>\n");
    const RunResult run =
        Print({"--no-auto-rotate", "--json", "--resolution", "288", mPlace.Path("d.svg")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(json::parse(run.out).at("placements")[0].at("scale_percent"), 100);
    const Picture part = Trimmed(Render(mPlace.Hot("d.eps"), 288));
    EXPECT_NEAR(part.width, 80, 1);
    EXPECT_NEAR(part.height, 40, 1);
    EXPECT_EQ(std::vector<int>({part.At(40, 20)[0], part.At(40, 20)[1], part.At(40, 20)[2]}),
              std::vector<int>({255, 0, 0}));
}

TEST_F(Input, Animation_PrintsItsFirstPicture_AndSaysSo) {
    const std::string name = mPlace.Path("moves.gif");
    VipsImage *black = nullptr;
    ASSERT_EQ(vips_black(&black, 8, 24, "bands", 3, nullptr), 0);
    const VipsImagePtr owner(black);
    vips_image_set_int(black, "page-height", 8);
    ASSERT_EQ(vips_image_write_to_file(black, name.c_str(), nullptr), 0) << TakeVipsError();
    const RunResult run = Print({"--json", name});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(json::parse(run.out).at("pages"), 1);
    EXPECT_NE(run.Complaint().find("of its 3 pictures only the first"), std::string::npos);
}

TEST_F(Input, DamagedPictures_AreRefused) {
    for (const char *name : {"cut.webp", "cut.gif", "cut.jp2"}) {
        const VipsImagePtr picture(vips_image_new_from_file(Source().c_str(), nullptr));
        ASSERT_EQ(vips_image_write_to_file(picture.get(), mPlace.Path(name).c_str(), nullptr), 0);
        const std::string bytes = ReadFile(mPlace.Path(name));
        WriteFile(mPlace.Path(name), bytes.substr(0, bytes.size() / 2));
        ExpectRefused(Print({mPlace.Path(name)}), 1, name);
    }
    WriteFile(mPlace.Path("bad.svg"), "<svg><rect");
    ExpectRefused(Print({mPlace.Path("bad.svg")}), 1, "bad.svg");
}

TEST_F(Input, ThroughPipes_IsPrintedLikeTheFile) {
    ASSERT_EQ(Print({"--no-auto-rotate", "-t", "same", "-o", "piped.eps", Source()}).status, 0);
    const std::string wanted = ReadWithoutDate(mPlace.Hot("piped.eps"));
    const char *commands[] = {
        "cat s.png | % -t same -o piped.eps -",
        "% -t same -o piped.eps - < s.png",
        "mkfifo 'a pipe' && { cat s.png > 'a pipe' & } && % -t same -o piped.eps 'a pipe'",
        "bash -c '\"$@\" <(cat s.png)' _ % -t same -o piped.eps",
    };
    for (const char *command : commands) {
        const Outcome run = RunPipe(command);
        ASSERT_EQ(run.status, 0) << command << "\n" << run.output;
        EXPECT_TRUE(ReadWithoutDate(mPlace.Hot("piped.eps")) == wanted) << command;
        std::filesystem::remove(mPlace.Hot("piped.eps"));
    }
}

TEST_F(Input, BadThingsThroughPipes_AreToldByTheirName) {
    const struct {
        const char *command, *text;
    } cases[] = {
        {": | % -", "standard input: nothing came"},
        {"echo hello | % -", "standard input: not a TIFF"},
        {"head -c 300 s.png | % -", "standard input: page 1 cannot be read"},
        {"cat s.png | TMPDIR=/nonexistent % -", "cannot make a temporary file in /nonexistent"},
        {"cat s.png | % - -", "standard input: nothing came"},
    };
    for (const auto &c : cases) {
        const Outcome run = RunPipe(c.command);
        EXPECT_NE(run.status, 0) << c.command;
        EXPECT_NE(run.output.find(c.text), std::string::npos) << run.output;
        EXPECT_EQ(mPlace.HotFiles(), Names{}) << c.command;
    }
}

TEST_F(Input, EachFile_IsADocument) {
    SavePicture(TestPicture(20, 30), mPlace.Path("t.png"));
    const RunResult run = Print({"--each", Source(), mPlace.Path("t.png")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(mPlace.HotFiles(), (Names{"s.eps", "t.eps"}));
    EXPECT_NE(run.out.find("printed 2 of 2 files\n"), std::string::npos) << run.out;
}

TEST_F(Input, EachFile_FailsForItself) {
    WriteFile(mPlace.Path("bad.png"), "\x89PNG\r\n\x1a\nnothing");
    const RunResult run = Print({"--each", mPlace.Path("bad.png"), Source(), mPlace.Path("gone")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(mPlace.HotFiles(), Names{"s.eps"});
    EXPECT_EQ(mPlace.Leftovers(), Names{});
    EXPECT_NE(run.err.find("bad.png: page 1 cannot be read"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("gone: No such file"), std::string::npos) << run.err;
    EXPECT_NE(run.out.find("printed 1 of 3 files\n"), std::string::npos) << run.out;
}

TEST_F(Input, EachFile_IsAnObjectInJSON) {
    const RunResult run = Print({"--each", "--json", Source(), mPlace.Path("gone")});
    EXPECT_EQ(run.status, 1);
    std::istringstream answers(run.out);
    json first;
    json second;
    answers >> first >> second;
    EXPECT_EQ(first.at("files").size(), 1U);
    EXPECT_EQ(second.at("error").at("status"), 1);
    EXPECT_EQ(second.at("file"), mPlace.Path("gone"));
}

TEST_F(Input, EachFile_HasNoOptionsForOneDocument) {
    ExpectRefused(Print({"--each", "-o", "x.eps", Source(), Source()}), 2, "-o is for one");
    ExpectRefused(Print({"--each", "--print-dialog", Source()}), 2, "");
}

TEST_F(Input, FurtherCopies_AreTheSame) {
    SavePicture(TestPicture(37, 23), mPlace.Path("t.tif"));
    for (const char *options : {"", "TMPDIR=/nonexistent"}) {
        Names environment;
        if (*options) environment.emplace_back(options);
        const RunResult run =
            mPlace.Run({"--colour-space", "rgb", "--hot-folder", mPlace.Hot(), "--resolution", "72",
                        "-n", "3", "-o", "copies.ps", Source(), mPlace.Path("t.tif")},
                       environment);
        ASSERT_EQ(run.status, 0) << run.err;
        ASSERT_EQ(CountPages(mPlace.Hot("copies.ps")), 6);
        for (int page = 1; page <= 2; ++page) {
            const Picture wanted = Render(mPlace.Hot("copies.ps"), 36, page);
            EXPECT_NE(wanted.samples, Render(mPlace.Hot("copies.ps"), 36, 3 - page).samples);
            EXPECT_EQ(wanted.samples, Render(mPlace.Hot("copies.ps"), 36, page + 2).samples);
            EXPECT_EQ(wanted.samples, Render(mPlace.Hot("copies.ps"), 36, page + 4).samples);
        }
    }
}

} // namespace
