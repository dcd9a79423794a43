#include "host/driver/Driver.h"
#include "host/driver/Record.h"

#include <cstring>
#include <gtest/gtest.h>

namespace {

class RecordTest : public testing::Test {
protected:
    [[nodiscard]] const uint8_t *Bytes() const {
        return reinterpret_cast<const uint8_t *>(*mHandle.Get());
    }
    [[nodiscard]] std::string Hex(size_t offset, size_t count) const {
        std::string text;
        char pair[3];
        for (size_t i = 0; i < count; ++i) {
            (void)snprintf(pair, sizeof pair, "%02x", Bytes()[offset + i]);
            text += pair;
        }
        return text;
    }
    RecordHandle mHandle{416};
    Record mRecord{mHandle.Get()};
};

TEST_F(RecordTest, NumbersAreBigEndian) {
    mRecord.SetPage({"A4", false, 595.5, 842});
    mRecord.SetResolution({"600dpi", 600, 1200});
    mRecord.SetColourSpace(kZELColourSpaceRGB);
    mRecord.SetCopies(0x0102);
    EXPECT_EQ(Hex(8, 8), "40829c0000000000");
    EXPECT_EQ(Hex(24, 16), "4082c000000000004092c00000000000");
    EXPECT_EQ(Hex(128, 4), "00000002");
    EXPECT_EQ(Hex(148, 6), "010200000000");
    EXPECT_EQ(mRecord.Page().width, 595.5);
    EXPECT_EQ(mRecord.Resolution().y, 1200);
    EXPECT_EQ(mRecord.ColourSpace(), static_cast<uint32_t>(kZELColourSpaceRGB));
}

TEST_F(RecordTest, NamesAreCutTo40BytesAndEnded) {
    mRecord.SetPage({std::string(60, 'n'), false, 1, 1});
    EXPECT_EQ(mRecord.Page().name, std::string(40, 'n'));
    EXPECT_EQ(Bytes()[80], 0);
    mRecord.SetPage({"A4", false, 1, 1});
    EXPECT_EQ(Hex(40, 41), "4134" + std::string(78, '0'));
}

TEST_F(RecordTest, CustomPageHasNoName) {
    mRecord.SetPage({"ignored", true, 100, 200});
    EXPECT_TRUE(mRecord.Page().custom);
    EXPECT_EQ(mRecord.Page().name, "");
    EXPECT_EQ(Bytes()[40], 0);
    EXPECT_EQ(Hex(124, 4), "00000001");
}

TEST_F(RecordTest, NameWithoutTerminator_IsReadToItsEnd) {
    memset(*mHandle.Get() + 81, 'r', 41);
    EXPECT_EQ(mRecord.Resolution().name, std::string(41, 'r'));
}

TEST_F(RecordTest, FlagsAreBigEndianOnesAndAnyBitCounts) {
    mRecord.SetRotated(true);
    mRecord.SetEPS(true);
    EXPECT_EQ(Hex(132, 16), "0000000000000000"
                            "00000001"
                            "00000001");
    (*mHandle.Get())[132] = 4;
    EXPECT_TRUE(mRecord.FlipH());
    mRecord.SetFlipH(false);
    EXPECT_FALSE(mRecord.FlipH());
}

TEST_F(RecordTest, SeparationIsAPascalString) {
    ASSERT_TRUE(mRecord.SetSeparation("Coated \xC3\xA9"));
    EXPECT_EQ(Bytes()[154], 9);
    EXPECT_EQ(mRecord.Separation(), "Coated \xC3\xA9");
    EXPECT_TRUE(mRecord.SetSeparation(std::string(255, 's')));
    EXPECT_FALSE(mRecord.SetSeparation(std::string(256, 't')));
    EXPECT_EQ(mRecord.Separation(), std::string(255, 's'));
}

} // namespace
