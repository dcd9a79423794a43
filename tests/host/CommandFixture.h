/// The real program, run on a small picture.
#pragma once

#include "tests/host/HostRunner.h"

#include <gtest/gtest.h>

using Names = std::vector<std::string>;

class Command : public testing::Test {
protected:
    Command() { SavePicture(TestPicture(32, 20), mPlace.Path("s.png")); }
    /// Small pages keep the tests quick.
    [[nodiscard]] RunResult Print(Names arguments) const {
        arguments.insert(arguments.begin(), {"--eps", "--media", "40x50pt", "--resolution", "72"});
        return mPlace.PrintRGB(std::move(arguments));
    }
    /// A failure: one line, the status, nothing left under any name.
    void ExpectRefused(const RunResult &run, int status, const std::string &text) const {
        EXPECT_EQ(run.status, status) << run.err;
        EXPECT_NE(run.Complaint().find(text), std::string::npos) << run.err;
        EXPECT_EQ(mPlace.HotFiles(), Names{});
        EXPECT_EQ(mPlace.Leftovers(), Names{});
    }
    [[nodiscard]] std::string Source() const { return mPlace.Path("s.png"); }
    Workplace mPlace;
};
