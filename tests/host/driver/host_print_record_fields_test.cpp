// What zelprint chooses in a print record, through the driver's own calls.
#include "host/driver/Record.h"
#include "host/terminal/ExitStatus.h"

#include <gtest/gtest.h>

namespace {

const DriverBundle &Bundle() {
    static const DriverBundle bundle(ZEL_TEST_BUNDLE);
    return bundle;
}

class RecordTest : public testing::Test {
protected:
    RecordTest() { ZEL_CALL(Bundle(), ZELPrDefaults)(mSession.Context(), mHandle.Get()); }

    DriverSession mSession{Bundle(), std::string(), true};
    RecordHandle mHandle{416};
    Record mRecord{Bundle(), mHandle.Get()};
};

TEST_F(RecordTest, WhatIsChosen_IsTold) {
    mRecord.SetPage({"A3", false, 842, 1191});
    mRecord.SetResolution({"600dpi", 600, 1200});
    mRecord.SetColourSpace(kZELColourSpaceRGB);
    mRecord.SetFlipH(true);
    mRecord.SetRotated(true);
    mRecord.SetEPS(true);
    mRecord.SetCopies(7);
    EXPECT_EQ(mRecord.Page().name, "A3");
    EXPECT_EQ(mRecord.Page().height, 1191);
    EXPECT_EQ(mRecord.Resolution().name, "600dpi");
    EXPECT_EQ(mRecord.Resolution().y, 1200);
    EXPECT_EQ(mRecord.ColourSpace(), static_cast<uint32_t>(kZELColourSpaceRGB));
    EXPECT_TRUE(mRecord.FlipH() && mRecord.Rotated() && mRecord.EPS());
    EXPECT_FALSE(mRecord.FlipV());
    EXPECT_EQ(mRecord.Copies(), 7);
}

TEST_F(RecordTest, PageRange_IsTheJobs) {
    mRecord.SetPages(3, 12);
    ZELDriverInfo info = {};
    (void)ZEL_CALL(Bundle(), ZELPrGetInfo)(mSession.Context(), mHandle.Get(), &info);
    EXPECT_EQ(info.firstPage, 3);
    EXPECT_EQ(info.lastPage, 12);
}

TEST_F(RecordTest, LongName_IsCutTo40Bytes) {
    mRecord.SetPage({std::string(60, 'n'), false, 1, 1});
    EXPECT_EQ(mRecord.Page().name, std::string(40, 'n'));
    mRecord.SetResolution({std::string(41, 'r'), 600, 600});
    EXPECT_EQ(mRecord.Resolution().name, std::string(40, 'r'));
}

TEST_F(RecordTest, CustomPage_HasNoName) {
    mRecord.SetPage({"ignored", true, 100, 200});
    EXPECT_TRUE(mRecord.Page().custom);
    EXPECT_EQ(mRecord.Page().name, "");
    mRecord.SetPage({"A4", false, 100, 200});
    EXPECT_EQ(mRecord.Page().name, "A4");
}

TEST_F(RecordTest, Separation_FitsWith255Bytes) {
    EXPECT_TRUE(mRecord.SetSeparation("Coated \xC3\xA9"));
    EXPECT_EQ(mRecord.Separation(), "Coated \xC3\xA9");
    EXPECT_TRUE(mRecord.SetSeparation(std::string(255, 's')));
    EXPECT_FALSE(mRecord.SetSeparation(std::string(256, 't')));
    EXPECT_EQ(mRecord.Separation(), std::string(255, 's'));
}

TEST_F(RecordTest, HandleWithoutARecord_IsAFailureOfTheDriver) {
    const RecordHandle zeros(416);
    Record record(Bundle(), zeros.Get());
    EXPECT_THROW((void)record.EPS(), HostError);
    EXPECT_THROW(record.SetEPS(true), HostError);
}

} // namespace
