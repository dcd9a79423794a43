/// Files that exist already, cannot be created, cannot be written or are not wanted any more.
#include "tests/Common/Src/postscript/WriterFixture.h"
#include "tests/Common/Src/stream/Faults.h"

#include <cerrno>
#include <csignal>
#include <stdexcept>
#include <sys/resource.h>

namespace {

using Bytes = std::vector<uint8_t>;
using Names = std::vector<std::string>;

using OutputFailure = WriterTest;

bool gLocaleThrows = false;

} // namespace

extern "C" CFLocaleRef __real_CFLocaleCopyCurrent();
extern "C" CFLocaleRef __wrap_CFLocaleCopyCurrent() {
    if (gLocaleThrows) throw std::logic_error("made by a test");
    return __real_CFLocaleCopyCurrent();
}

TEST_F(OutputFailure, AGivenFileNameIsOverwrittenAndAMadeUpOneIsNot) {
    std::ofstream(mFolder.Path() / "a.ps") << std::string(100000, 'o');
    ASSERT_EQ(Create("a", "a.ps"), 0);
    AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    ASSERT_EQ(Create("a"), 0);
    AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_Close(mOutput), 0);
    EXPECT_EQ(mFolder.Names(), (Names{"a.ps", "a_01.ps"}));
    EXPECT_EQ(mFolder.Read("a.ps").substr(0, 4), "%!PS");
    EXPECT_EQ(mFolder.Read("a.ps").find("ooo"), std::string::npos);
}

TEST_F(OutputFailure, AHundredTakenNamesFail) {
    for (int i = 0; i < 100; ++i) {
        const std::string number = std::to_string(i);
        std::ofstream(mFolder.Path() / (i == 0   ? "a.ps"
                                        : i < 10 ? "a_0" + number + ".ps"
                                                 : "a_" + number + ".ps"));
    }
    EXPECT_EQ(Create("a"), -1);
    EXPECT_EQ(mOutput, nullptr);
    EXPECT_EQ(mFolder.Names().size(), 100U);
}

TEST_F(OutputFailure, AFolderThatIsNotThereFails) {
    std::filesystem::remove(mFolder.Path());
    EXPECT_EQ(Create("a"), -1);
    EXPECT_EQ(Create("a", "a.ps"), -1);
    EXPECT_EQ(Output_Create(nullptr, nullptr, CFSTR("a"), &mGeometry, &mOptions, &mOutput), -1);
    mOptions.eps = 1;
    ASSERT_EQ(Create("a"), 0);
    EXPECT_EQ(Output_AddPage(mOutput), -1);
    EXPECT_EQ(Output_WriteBlankLine(mOutput), -50);
    EXPECT_EQ(Output_Close(mOutput), -1);
}

TEST_F(OutputFailure, AWriterThreadThatCannotStartLeavesNoFile) {
    Faults faults;
    faults.threadError = EAGAIN;
    EXPECT_EQ(Create("a"), -108);
    EXPECT_EQ(mOutput, nullptr);
    EXPECT_EQ(Create("a", "a.ps"), -108);
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(OutputFailure, AWriterThreadThatCannotStartForAnEPSPageLeavesTheEarlierOnes) {
    mOptions.eps = 1;
    ASSERT_EQ(Create("a"), 0);
    AddPage(Bytes(8, 0));
    Faults faults;
    faults.threadError = EAGAIN;
    EXPECT_EQ(Output_AddPage(mOutput), -108);
    Output_Kill(mOutput);
    EXPECT_EQ(mFolder.Names(), Names{"a.eps"});
    EXPECT_NE(mFolder.Read("a.eps").find("%%EOF\n"), std::string::npos);
}

TEST_F(OutputFailure, AnUnexpectedExceptionIsACodeAndLeavesNoFile) {
    gLocaleThrows = true;
    EXPECT_EQ(Create("a"), 1000);
    EXPECT_EQ(mOutput, nullptr);
    mOptions.eps = 1;
    ASSERT_EQ(Create("a"), 0);
    EXPECT_EQ(Output_AddPage(mOutput), 1000);
    Output_Kill(mOutput);
    gLocaleThrows = false;
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(OutputFailure, AnEPSPageThatCannotBeCreatedLeavesTheEarlierOnes) {
    mOptions.eps = 1;
    ASSERT_EQ(Create("a"), 0);
    AddPage(Bytes(8, 0));
    for (int i = 0; i < 100; ++i) {
        const std::string number = (i < 10 ? "0" : "") + std::to_string(i);
        std::filesystem::create_directory(mFolder.Path() /
                                          (i == 0 ? "a_p02.eps" : "a_p02_" + number + ".eps"));
    }
    EXPECT_EQ(Output_AddPage(mOutput), -1);
    Output_Kill(mOutput);
    EXPECT_EQ(mFolder.Names().size(), 101U);
    EXPECT_NE(mFolder.Read("a.eps").find("%%EOF\n"), std::string::npos);
}

TEST_F(OutputFailure, KillingDeletesTheOpenFileAtAnyPoint) {
    ASSERT_EQ(Create("a"), 0);
    EXPECT_EQ(mFolder.Names(), Names{"a.ps"});
    Output_Kill(mOutput);
    EXPECT_TRUE(mFolder.Names().empty());
    ASSERT_EQ(Create("a"), 0);
    AddPage(Bytes(8, 0));
    Output_Kill(mOutput);
    EXPECT_TRUE(mFolder.Names().empty());
    mOptions.eps = 1;
    ASSERT_EQ(Create("a"), 0);
    AddPage(Bytes(8, 0));
    AddPage(Bytes(8, 0));
    Output_Kill(mOutput);
    EXPECT_EQ(mFolder.Names(), Names{"a.eps"});
}

TEST_F(OutputFailure, ADocumentWithoutAPageLeavesNoFile) {
    mOptions.sendToPrinter = 1;
    ASSERT_EQ(Create("a"), 0);
    EXPECT_EQ(Output_Close(mOutput), 0);
    EXPECT_TRUE(mFolder.Names().empty());
    mOptions.eps = 1;
    ASSERT_EQ(Create("a"), 0);
    EXPECT_EQ(Output_Close(mOutput), 0);
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(OutputFailure, MissingArgumentsAreRefused) {
    CFURLRef folder = mFolder.URL();
    const CFStringRef title = CFSTR("a");
    EXPECT_EQ(Output_Create(folder, nullptr, nullptr, &mGeometry, &mOptions, &mOutput), -50);
    EXPECT_EQ(Output_Create(folder, nullptr, title, nullptr, &mOptions, &mOutput), -50);
    EXPECT_EQ(Output_Create(folder, nullptr, title, &mGeometry, nullptr, &mOutput), -50);
    EXPECT_EQ(Output_Create(folder, nullptr, title, &mGeometry, &mOptions, nullptr), -50);
    EXPECT_EQ(Output_AddPage(nullptr), -50);
    EXPECT_EQ(Output_WriteLine(nullptr, nullptr), -50);
    EXPECT_EQ(Output_WriteBlankLine(nullptr), -50);
    EXPECT_EQ(Output_Close(nullptr), -50);
    Output_Kill(nullptr);
}

TEST_F(OutputFailure, ANegativeWidthIsOutOfMemory) {
    mGeometry.widthPixels = -1;
    EXPECT_EQ(Create("a"), -108);
    EXPECT_TRUE(mFolder.Names().empty());
}

namespace {

/// Files cannot grow past a limit while this lives: a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t limit) : mHandler(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &mBefore);
        const rlimit now = {limit, mBefore.rlim_max};
        setrlimit(RLIMIT_FSIZE, &now);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &mBefore);
        signal(SIGXFSZ, mHandler);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    void (*mHandler)(int);
    rlimit mBefore = {};
};

} // namespace

TEST_F(OutputFailure, AFullDiskFailsTheClosingAndLeavesNoFile) {
    for (uint8_t eps : {0, 1}) {
        mOptions.eps = eps;
        const FullDisk disk(0);
        ASSERT_EQ(Create("a"), 0);
        AddPage(Bytes(8, 0));
        EXPECT_EQ(Output_Close(mOutput), EFBIG);
        EXPECT_TRUE(mFolder.Names().empty());
    }
}

TEST_F(OutputFailure, AFullDiskShowsWhileRowsAreWritten) {
    const FullDisk disk(0);
    mGeometry.widthPixels = 100000;
    ASSERT_EQ(Create("a"), 0);
    ASSERT_EQ(Output_AddPage(mOutput), 0);
    Bytes row(400000);
    for (size_t i = 0; i < row.size(); ++i)
        row[i] = static_cast<uint8_t>(i);
    int16_t error = 0;
    for (int i = 0; i < 1000 && error == 0; ++i)
        error = Output_WriteLine(mOutput, row.data());
    EXPECT_EQ(error, EFBIG);
    EXPECT_EQ(Output_AddPage(mOutput), EFBIG);
    EXPECT_EQ(Output_Close(mOutput), EFBIG);
    EXPECT_TRUE(mFolder.Names().empty());
}

TEST_F(OutputFailure, AFullDiskBetweenEPSPagesLeavesTheFinishedOnes) {
    mOptions.eps = 1;
    ASSERT_EQ(Create("a"), 0);
    AddPage(Bytes(8, 0));
    ASSERT_EQ(Output_AddPage(mOutput), 0);
    {
        const FullDisk disk(0);
        EXPECT_EQ(Output_AddPage(mOutput), EFBIG);
        EXPECT_EQ(mFolder.Names(), (Names{"a.eps", "a_p02.eps"}));
        Output_Kill(mOutput);
    }
    EXPECT_EQ(mFolder.Names(), Names{"a.eps"});
}

TEST_F(OutputFailure, NoDescriptorLeftForTheFileFailsTheCreation) {
    rlimit before = {};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none = {0, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none);
    const int16_t error = Create("a", "a.ps");
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_EQ(error, -1);
    EXPECT_TRUE(mFolder.Names().empty());
}
