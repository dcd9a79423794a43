#include "Common/Src/postscript/PrintQueue.h"

#include "platform/Platform.h"
#include "tests/Common/Src/postscript/WriterFixture.h"

namespace {

struct Task {
    std::string program;
    std::vector<std::string> arguments;
    std::string file; ///< what the file held when the task ran
};

std::vector<Task> gTasks;
int gStatus = 0;

} // namespace

/// Takes the place of the platform's function of this name: no print job leaves a test.
int PlatformRunTask(const char *program, const char *const *arguments, int count) {
    gTasks.push_back({program, {arguments, arguments + count}, ReadFile(arguments[count - 1])});
    return gStatus;
}

namespace {

class PrintQueue : public WriterTest {
protected:
    void SetUp() override {
        WriterTest::SetUp();
        gTasks.clear();
        gStatus = 0;
        mOptions.sendToPrinter = 1;
    }
};

} // namespace

TEST_F(PrintQueue, AFileIsPrintedRawAndRemovedByThePrintCommand) {
    const std::string path = (mFolder.Path() / "Größe: 100%.ps").string();
    const CFRef<CFURLRef> url(CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8 *>(path.data()),
        static_cast<CFIndex>(path.size()), false));
    gStatus = 7;
    EXPECT_EQ(CopyFileToPrinter(url.Get()), 7);
    ASSERT_EQ(gTasks.size(), 1U);
    EXPECT_EQ(gTasks[0].program, "/usr/bin/lpr");
    EXPECT_EQ(gTasks[0].arguments, (std::vector<std::string>{"-o", "raw", "-r", path}));
}

TEST_F(PrintQueue, TheFinishedDocumentIsHandedOver) {
    ASSERT_EQ(Create("job"), 0);
    AddPage({9, 0, 0, 0, 9, 0, 255, 255});
    EXPECT_EQ(Output_Close(mOutput), 0);
    ASSERT_EQ(gTasks.size(), 1U);
    EXPECT_EQ(gTasks[0].arguments.back(), (mFolder.Path() / "job.ps").string());
    EXPECT_EQ(gTasks[0].file, mFolder.Read("job.ps"));
    EXPECT_NE(gTasks[0].file.find("%%EOF\n"), std::string::npos);
}

TEST_F(PrintQueue, ItsFailureIsTheResultAndTheFileStays) {
    gStatus = 1;
    ASSERT_EQ(Create("job"), 0);
    AddPage({9, 0, 0, 0, 9, 0, 255, 255});
    EXPECT_EQ(Output_Close(mOutput), 1);
    EXPECT_EQ(mFolder.Names(), std::vector<std::string>{"job.ps"});
}

TEST_F(PrintQueue, OnlyTheLastEPSFileIsHandedOver) {
    mOptions.eps = 1;
    ASSERT_EQ(Create("job"), 0);
    for (int i = 0; i < 3; ++i)
        AddPage({9, 0, 0, 0, 9, 0, 255, 255});
    EXPECT_EQ(Output_Close(mOutput), 0);
    ASSERT_EQ(gTasks.size(), 1U);
    EXPECT_EQ(gTasks[0].arguments.back(), (mFolder.Path() / "job_p03.eps").string());
}

TEST_F(PrintQueue, NothingIsHandedOverWithoutAPage) {
    for (uint8_t eps : {0, 1}) {
        mOptions.eps = eps;
        ASSERT_EQ(Create("job"), 0);
        EXPECT_EQ(Output_Close(mOutput), 0);
    }
    EXPECT_TRUE(gTasks.empty());
}

TEST_F(PrintQueue, NothingIsHandedOverUnlessAskedForOrAfterAKill) {
    ASSERT_EQ(Create("job"), 0);
    AddPage({9, 0, 0, 0, 9, 0, 255, 255});
    Output_Kill(mOutput);
    mOptions.sendToPrinter = 0;
    ASSERT_EQ(Create("job"), 0);
    AddPage({9, 0, 0, 0, 9, 0, 255, 255});
    EXPECT_EQ(Output_Close(mOutput), 0);
    EXPECT_TRUE(gTasks.empty());
}
