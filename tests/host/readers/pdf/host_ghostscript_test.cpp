#include "host/readers/pdf/Ghostscript.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

class GhostscriptWithAFile : public testing::Test {
protected:
    GhostscriptWithAFile() {
        std::ofstream(mPath) << "%PDF-1.4\n1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj\n"
                                "2 0 obj << /Type /Pages /Kids [3 0 R] /Count 1 >> endobj\n"
                                "3 0 obj << /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >> "
                                "endobj\ntrailer << /Root 1 0 R /Size 4 >>\n";
    }
    ~GhostscriptWithAFile() override { std::filesystem::remove(mPath); }

    /// Runs a program, and returns how it ended.
    std::string Run(const std::string &program, std::chrono::milliseconds longest) {
        GhostscriptPlan plan;
        plan.path = mPath;
        plan.arguments = {"-q", "-dNODISPLAY"};
        plan.program = program;
        Ghostscript renderer(plan, [this](const std::string &line) { mHeard.push_back(line); });
        return renderer.Listen(longest);
    }

    std::vector<std::string> mHeard;

private:
    std::string mPath = testing::TempDir() + "zel ghostscript test " +
                        std::to_string(std::chrono::steady_clock::now().time_since_epoch().count());
};

TEST_F(GhostscriptWithAFile, IsHeardToItsEnd) {
    EXPECT_EQ(Run("(pages: ) print pdfpagecount = flush quit", 10min), "");
    EXPECT_NE(std::find(mHeard.begin(), mHeard.end(), "pages: 1"), mHeard.end());
    EXPECT_EQ(Run("nosuchoperator", 10min), "exit status 1");
}

TEST_F(GhostscriptWithAFile, ThatDoesNotEnd_IsEnded) {
    EXPECT_EQ(Run("(begun) = flush {} loop", 2000ms),
              "it takes the renderer longer than 2 seconds");
    EXPECT_EQ(Run("{ (again) = flush } loop", 1000ms),
              "it takes the renderer longer than 1 seconds");
    EXPECT_EQ(mHeard.back(), "again");
}

} // namespace
