// What the driver does when a system service fails: memory for the host's handle, and the place of
// the user's folders. The two functions below stand before those of the platform's library, in the
// loaded bundle as well, and refuse on demand.
#include "Common/Src/record/PrintRecordEnvelope.h"
#include "platform/Platform.h"
#include "support/BigEndian.h"
#include "tests/Common/Src/BundleHost.h"
#include "tests/Common/Src/TestPPD.h"
#include "tests/GuardedBytes.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

using testing::ElementsAre;

namespace {

bool gMemoryIsFull = false;
bool gFoldersAreUnknown = false;
int gRefusals = 0;

/// A service refuses while this lives.
class Refuse {
public:
    explicit Refuse(bool &service) : mService(service) {
        mService = true;
        gRefusals = 0;
    }
    ~Refuse() { mService = false; }
    Refuse(const Refuse &) = delete;
    Refuse &operator=(const Refuse &) = delete;

private:
    bool &mService;
};

template <class Function>
Function Next(const char *name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" void SetHandleSize(Handle handle, Size size) {
    static const auto original = Next<decltype(&SetHandleSize)>("SetHandleSize");
    if (gMemoryIsFull) ++gRefusals;
    // No block has a size below 0: it stays as it is, and MemError tells the failure.
    original(handle, gMemoryIsFull ? -1 : size);
}

std::string PlatformApplicationSupportFolder() {
    static const auto original = Next<decltype(&PlatformApplicationSupportFolder)>(
        "_Z32PlatformApplicationSupportFolderB5cxx11v");
    if (!gFoldersAreUnknown) return original();
    ++gRefusals;
    return {};
}

namespace {

constexpr const char *kCannotResize =
    "ZEL PostScript Printer Driver: SethandleSize_compat failed!\n";

/// A handle whose bytes end at a page that cannot be touched. A whole record needs a size that is a
/// multiple of 8 to be aligned.
class GuardedHandle {
public:
    explicit GuardedHandle(size_t size) : mBytes(size), mHandle(NewHandle(Size(size))) {
        mOriginal = *mHandle;
        *mHandle = reinterpret_cast<Ptr>(mBytes.Data());
        std::memset(*mHandle, 0xEE, size);
    }
    ~GuardedHandle() {
        *mHandle = mOriginal;
        DisposeHandle(mHandle);
    }
    GuardedHandle(const GuardedHandle &) = delete;
    GuardedHandle &operator=(const GuardedHandle &) = delete;
    Handle Get() const { return mHandle; }
    std::string Bytes() const { return {*mHandle, static_cast<size_t>(GetHandleSize(mHandle))}; }

private:
    GuardedBytes mBytes;
    Handle mHandle;
    Ptr mOriginal;
};

class FullMemory : public testing::TestWithParam<size_t> {
protected:
    FullMemory() {
        ClearPreferences();
        Driver().ZELPrDefaults(session.Get(), record.Get());
    }
    /// The defaults as far as they fit, and what was in the handle behind them.
    std::string Expected() const {
        std::string bytes(GetParam(), '\xEE');
        const size_t written = std::min(bytes.size(), sizeof(PSHPrint));
        return bytes.replace(0, written, record.Bytes().substr(0, written));
    }
    RecordHandle record;
    Session session;
};

TEST_P(FullMemory, Defaults_FillTheHandleAsItIs) {
    const GuardedHandle handle(GetParam());
    StderrCapture messages;
    {
        const Refuse refuse(gMemoryIsFull);
        Driver().ZELPrDefaults(session.Get(), handle.Get());
    }
    EXPECT_EQ(handle.Bytes(), Expected());
    EXPECT_EQ(messages.Text(), GetParam() == sizeof(PSHPrint) ? "" : kCannotResize);
}

TEST_P(FullMemory, Validate_OfAShortHandle_FillsItAsItIs) {
    const GuardedHandle handle(GetParam());
    const StderrCapture messages;
    {
        const Refuse refuse(gMemoryIsFull);
        EXPECT_TRUE(Driver().ZELPrValidate(session.Get(), handle.Get()));
    }
    EXPECT_EQ(handle.Bytes(), Expected());
    if (GetParam() < sizeof(PSHPrint))
        EXPECT_EQ(Driver().ZELPrOpenDoc(session.Get()), kZELBadParameter);
}

INSTANTIATE_TEST_SUITE_P(, FullMemory, testing::Values(1, 4, 100, 415, 416, 424, 600));

TEST(FullMemoryOfAnEnvelope, Encode_LeavesTheHandle) {
    const CFRef<CFMutableDictionaryRef> list = MakeDictionary();
    CFDictionarySetValue(list.Get(), CFSTR("key"), CFSTR("value"));
    for (const size_t size : {3, 600}) {
        const GuardedHandle handle(size);
        {
            const Refuse refuse(gMemoryIsFull);
            EXPECT_FALSE(EncodeHPrint(handle.Get(), MakeData("PREFIX").Get(), list.Get()));
            EXPECT_EQ(gRefusals, 1);
        }
        EXPECT_EQ(handle.Bytes(), std::string(size, '\xEE'));
    }
}

class UnknownFolders : public testing::TestWithParam<uint32_t> {
protected:
    UnknownFolders() { ClearPreferences(); }

    /// A session with a colour printer and a record for a small page of it.
    struct Job {
        Job(uint32_t colourSpace, const std::string &separation) {
            const CFRef<CFURLRef> ppd = MakeURL(folder.Write("Test.ppd", TestPPD().Text()));
            EXPECT_EQ(Driver().ZELPrSetPrinter(session.Get(), ppd.Get(), nullptr), 0);
            std::filesystem::remove(folder.Path() / "Test.ppd");
            Driver().ZELPrDefaults(session.Get(), handle.Get());
            PSHPrint &record = handle.Record();
            record.mPageWidth_be = DoubleToBigEndian(20);
            record.mPageHeight_be = DoubleToBigEndian(10);
            record.mXDpi_be = record.mYDpi_be = DoubleToBigEndian(72);
            record.mColourSpace_be = SwapBigEndian(colourSpace);
            record.cmykSeparationName[0] = static_cast<unsigned char>(separation.size());
            std::memcpy(record.cmykSeparationName + 1, separation.data(), separation.size());
            EXPECT_TRUE(session.SetHotFolder(handle.Get(), folder.Path()));
        }
        ScratchFolder folder;
        RecordHandle handle;
        Session session;
    };

    /// The document of a whole job, without its date.
    static std::string Print(uint32_t colourSpace, const std::string &separation = "") {
        Job job(colourSpace, separation);
        EXPECT_FALSE(Driver().ZELPrValidate(job.session.Get(), job.handle.Get())) << "it is good";
        EXPECT_EQ(Driver().ZELPrOpenDoc(job.session.Get()), 0);
        EXPECT_EQ(job.session.PrintPage(20, 10, kZELFormatXRGB32, 77), 0);
        EXPECT_EQ(Driver().ZELPrCloseDoc(job.session.Get()), 0);
        EXPECT_EQ(job.session.Close(), 0);
        EXPECT_THAT(job.folder.Names(), ElementsAre("Untitled.ps"));
        std::string document = ReadFile(job.folder.Path() / "Untitled.ps");
        const size_t date = document.find("%%CreationDate:");
        if (date != std::string::npos) document.erase(date, document.find('\n', date) - date);
        return document;
    }
};

TEST_P(UnknownFolders, Job_IsTheSame) {
    const std::string usual = Print(GetParam());
    ASSERT_NE(usual, "");
    const Refuse refuse(gFoldersAreUnknown);
    EXPECT_EQ(Print(GetParam()), usual);
    EXPECT_GT(gRefusals, 0);
    if (GetParam() == kZELColourSpaceCMYK) EXPECT_EQ(Print(GetParam(), "Standard"), usual);
}

INSTANTIATE_TEST_SUITE_P(, UnknownFolders,
                         testing::Values(kZELColourSpaceCMYK, kZELColourSpaceRGB));

TEST_F(UnknownFolders, Profile_IsNotFound) {
    const Refuse refuse(gFoldersAreUnknown);
    Job job(kZELColourSpaceCMYK, "Coated");
    const StderrCapture messages;
    EXPECT_EQ(Driver().ZELPrOpenDoc(job.session.Get()), kZELFileNotFound);
    EXPECT_THAT(job.folder.Names(), testing::IsEmpty());
    Job other(kZELColourSpaceCMYK, "Coated");
    EXPECT_TRUE(Driver().ZELPrValidate(other.session.Get(), other.handle.Get())) << "it is bad";
}

} // namespace
