/// The user's profiles folder, which the test runner has made a folder of this process alone.
#pragma once

#include "platform/Platform.h"
#include "tests/TempFolder.h"
#include "tests/colour/ProfileBytes.h"
#include <gtest/gtest.h>

class ProfilesFolderTest : public testing::Test {
protected:
    void SetUp() override {
        const std::filesystem::path support = PlatformApplicationSupportFolder();
        ASSERT_FALSE(support.empty());
        mFolder = support / "ZEL/Profiles/Postscript";
        std::filesystem::remove_all(support / "ZEL");
        std::filesystem::create_directories(mFolder);
    }
    void TearDown() override { std::filesystem::remove_all(mFolder.parent_path().parent_path()); }

    void Write(const std::string &name, const std::string &bytes = "mft2") const {
        std::ofstream(mFolder / name, std::ios::binary) << bytes;
    }
    /// A profile whose inks are constant: `cyan`, 0, 0, 0.
    void WriteCyan(const std::string &name, uint8_t cyan) const {
        ProfileBytes profile;
        profile.grid = [cyan](int, int, int, int ink) {
            return static_cast<uint16_t>(ink == 0 ? cyan * 257 : 0);
        };
        Write(name, profile.Bytes());
    }

    std::filesystem::path mFolder;
};
