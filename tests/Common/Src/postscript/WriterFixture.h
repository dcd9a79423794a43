/// Small documents for the tests of the writer and of what sits on top of it.
#pragma once

#include "ZELOutput.h"
#include "tests/TempFolder.h"

#include <dirent.h>
#include <gtest/gtest.h>
#include <regex>

/// Numbers of the colour modes in OutputOptions.
enum { kCMYKMode = 0, kGrayMode = 1, kRGBMode = 2 };

inline OutputOptions MakeOptions(int32_t colourMode, uint16_t pixelFormat) {
    OutputOptions options = {};
    options.colourMode = colourMode;
    options.pixelFormat = pixelFormat;
    options.llx = 10.2;
    options.lly = 20.7;
    options.urx = 300.1;
    options.ury = 400.9;
    return options;
}

/// The date line depends on the moment and on the locale.
inline std::string WithoutDate(const std::string &text) {
    static const std::regex date("%%CreationDate: \\([^\n]*[0-9][^\n]*\\)\n");
    return std::regex_replace(text, date, "%%CreationDate: (DATE)\n");
}

inline size_t OpenDescriptors() {
    size_t count = 0;
    DIR *folder = opendir("/proc/self/fd");
    if (!folder) folder = opendir("/dev/fd");
    while (readdir(folder))
        ++count;
    closedir(folder);
    return count;
}

/// A folder and the documents written into it; checks that none leaves a descriptor open.
class WriterTest : public testing::Test {
protected:
    void SetUp() override {
        // The first document opens what the locale needs.
        CFRelease(CFLocaleCopyCurrent());
        mDescriptors = OpenDescriptors();
    }
    void TearDown() override { EXPECT_EQ(OpenDescriptors(), mDescriptors); }

    int16_t Create(const std::string &title, const char *fileName = nullptr) {
        const CFRef<CFStringRef> name = fileName ? Str(fileName) : CFRef<CFStringRef>();
        return Output_Create(mFolder.URL(), name.Get(), Str(title).Get(), &mGeometry, &mOptions,
                             &mOutput);
    }

    /// A page of the same row all over.
    void AddPage(const std::vector<uint8_t> &row) {
        ASSERT_EQ(Output_AddPage(mOutput), 0);
        for (int32_t i = 0; i < mGeometry.heightPixels; ++i)
            ASSERT_EQ(Output_WriteLine(mOutput, row.data()), 0);
    }

    TempFolder mFolder;
    OutputGeometry mGeometry = {2, 1, 25.4, 12.7};
    OutputOptions mOptions = MakeOptions(kRGBMode, kZELFormatXRGB32);
    OutputPrivate *mOutput = nullptr;

private:
    size_t mDescriptors = 0;
};
