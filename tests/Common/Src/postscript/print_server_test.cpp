// The hand-off to the print queue. The test's runner says what it has set up in ZEL_TEST_QUEUE:
// "up", a print server of our own whose jobs arrive as files in $ZEL_QUEUE; "down", a server that
// does not answer; "no lpr", a system without a print command.
#include "Common/Src/postscript/PrintQueue.h"
#include "tests/TempFolder.h"
#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>

namespace fs = std::filesystem;

namespace {

std::string Variable(const char *name) {
    const char *value = std::getenv(name);
    return value ? value : "";
}

CFRef<CFURLRef> FileURL(const fs::path &path) {
    const std::string name = path.string();
    return CFRef(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(name.data()), CFIndex(name.size()),
        false));
}

/// Bytes that a filter on the way would change: every value, and the look of several formats.
std::string Document(const std::string &begin) {
    std::string bytes = begin;
    for (int i = 0; i < 300000; ++i)
        bytes += static_cast<char>(i * 7 + i / 256);
    return bytes;
}

/// What a job has printed; the backend gives its file its name when it is complete.
std::string Printed(const fs::path &job) {
    for (int i = 0; i < 3000 && !fs::exists(job); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return fs::exists(job) ? ReadFile(job) : "(nothing printed)";
}

class PrintServer : public testing::Test {
protected:
    fs::path Write(const std::string &name, const std::string &bytes) const {
        std::ofstream(mFolder.Path() / name, std::ios::binary) << bytes;
        return mFolder.Path() / name;
    }
    TempFolder mFolder;
};

} // namespace

TEST_F(PrintServer, PrintsTheFilesBytesAndRemovesTheFile) {
    if (Variable("ZEL_TEST_QUEUE") != "up") GTEST_SKIP();
    const fs::path queue = Variable("ZEL_QUEUE");
    int job = 0;
    for (const char *begin :
         {"%!PS-Adobe-3.0\n", "%PDF-1.4\n", "plain text\r\n\f", "\x1b%-12345X@PJL\n"})
        for (const char *name : {"a.ps", "caf\xc3\xa9 $HOME; 'x'.ps"}) {
            const std::string bytes = Document(begin);
            const fs::path file = Write(name, bytes);
            ASSERT_EQ(CopyFileToPrinter(FileURL(file).Get()), 0) << name;
            EXPECT_FALSE(fs::exists(file)) << name;
            EXPECT_TRUE(Printed(queue / std::to_string(++job)) == bytes) << begin << name;
        }
}

TEST_F(PrintServer, FileThatIsNotThereIsAnError) {
    EXPECT_NE(CopyFileToPrinter(FileURL(mFolder.Path() / "nothing").Get()), 0);
    EXPECT_EQ(CopyFileToPrinter(nullptr), 1);
}

TEST_F(PrintServer, FileStaysWhenTheServerIsDown) {
    if (Variable("ZEL_TEST_QUEUE") != "down") GTEST_SKIP();
    const fs::path file = Write("a.ps", "%!PS\n");
    EXPECT_NE(CopyFileToPrinter(FileURL(file).Get()), 0);
    EXPECT_EQ(ReadFile(file), "%!PS\n");
}

TEST_F(PrintServer, FileStaysWithoutAPrintCommand) {
    if (Variable("ZEL_TEST_QUEUE") != "no lpr") GTEST_SKIP();
    const fs::path file = Write("a.ps", "%!PS\n");
    EXPECT_EQ(CopyFileToPrinter(FileURL(file).Get()), 1);
    EXPECT_EQ(ReadFile(file), "%!PS\n");
}
