#include "colour/Separations.h"

#include "ZELColour.h"
#include "ZELExtensions.h"
#include "tests/colour/BadProfiles.h"
#include "tests/colour/ProfilesFolderFixture.h"

#include <array>
#include <gmock/gmock.h>
#include <memory>
#include <sys/stat.h>
#include <thread>

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using Inks = std::array<int, 4>;

struct DeleteList {
    void operator()(Separations *list) const { DeleteSeparationsList(list); }
};
using List = std::unique_ptr<Separations, DeleteList>;

struct ReleaseRecord {
    void operator()(CMYKSeparation *record) const { ReleaseCMYKSeparation(record); }
};
using Record = std::unique_ptr<CMYKSeparation, ReleaseRecord>;

std::string Text(CFStringRef string) {
    char text[1024] = {};
    if (!CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8)) return "?";
    return text;
}

std::vector<std::string> Names(const Separations *list) {
    std::vector<std::string> names(static_cast<size_t>(CountCMYKSeparation(list)));
    for (size_t i = 0; i < names.size(); ++i)
        names[i] = Text(GetCMYKSeparationName(list, static_cast<int32_t>(i)));
    return names;
}

std::vector<std::string> ScannedNames() {
    return Names(List(ScanSeparationsFolder()).get());
}

bool Validate(const std::string &name) {
    return ValidateCMYKSeparation(nullptr, Str(name).Get());
}

Record Get(const std::string &name, int16_t expected) {
    CMYKSeparation *record = nullptr;
    EXPECT_EQ(GetCMYKSeparation(nullptr, Str(name).Get(), &record), expected) << name;
    return Record(record);
}

Inks Perform(const Record &record, uint8_t r, uint8_t g, uint8_t b) {
    const uint8_t src[4] = {77, r, g, b};
    uint8_t dst[4] = {};
    PerformCMYKSeparation(record.get(), src, 1, dst, 1, 4);
    return {dst[0], dst[1], dst[2], dst[3]};
}

class SeparationsFolder : public ProfilesFolderTest {};

// ---- The list

TEST_F(SeparationsFolder, Empty_OffersStandardAlone) {
    const List list(ScanSeparationsFolder());
    ASSERT_TRUE(list);
    EXPECT_EQ(list->count, 1);
    EXPECT_EQ(CountCMYKSeparation(list.get()), 1);
    EXPECT_EQ(Text(GetCMYKSeparationName(list.get(), 0)), "Standard");
    EXPECT_EQ(Text(GetCMYKSeparationName(list.get(), 1)), "Standard");
}

TEST_F(SeparationsFolder, Missing_OffersStandardAlone) {
    fs::remove_all(mFolder);
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard"));
}

TEST_F(SeparationsFolder, IndexOutOfRange_IsStandard) {
    Write("Coated");
    const List list(ScanSeparationsFolder());
    EXPECT_EQ(Text(GetCMYKSeparationName(list.get(), 1)), "Coated");
    for (int32_t index : {-1, INT32_MIN, 2, INT32_MAX})
        EXPECT_EQ(Text(GetCMYKSeparationName(list.get(), index)), "Standard") << index;
}

TEST_F(SeparationsFolder, ListWithoutNames_IsStandard) {
    Separations list{5, nullptr};
    EXPECT_EQ(Text(GetCMYKSeparationName(&list, 2)), "Standard");
    EXPECT_EQ(CountCMYKSeparation(&list), 5);
}

TEST_F(SeparationsFolder, NoList_IsStandardAndCanBeDeleted) {
    EXPECT_EQ(CountCMYKSeparation(nullptr), 1);
    EXPECT_EQ(Text(GetCMYKSeparationName(nullptr, 0)), "Standard");
    DeleteSeparationsList(nullptr);
}

TEST_F(SeparationsFolder, OnlyProfilesAreListed) {
    Write("Coated");
    Write("readme.txt", "not a profile");
    for (const auto &[name, bytes] : NoProfiles())
        Write("no " + name, bytes);
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "Coated"));
}

TEST_F(SeparationsFolder, NamesAreSortedByTheValueOfTheirNumbers) {
    for (const char *name : {"Press 10", "Press 2", "Press 1", "press 1", "Press 02b", "Press",
                             "Press 99999999999999999999999999999999999999991",
                             "Press 99999999999999999999999999999999999999990",
                             "Press 100000000000000000000000000000000000000000", "Abc", "Zeta",
                             "_x", "10", "9", "\xC3\x84hnlich"})
        Write(name);
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "9", "10", "Abc", "Press", "Press 1",
                                            "Press 2", "Press 02b", "Press 10",
                                            "Press 99999999999999999999999999999999999999990",
                                            "Press 99999999999999999999999999999999999999991",
                                            "Press 100000000000000000000000000000000000000000",
                                            "Zeta", "_x", "press 1", "\xC3\x84hnlich"));
}

TEST_F(SeparationsFolder, OnlyASCIIDigitsAreNumbers) {
    // Arabic-Indic "10" and "2": literally, by their first character.
    Write("\xD9\xA1\xD9\xA0");
    Write("\xD9\xA2");
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "\xD9\xA1\xD9\xA0", "\xD9\xA2"));
}

TEST_F(SeparationsFolder, ProfileInASubfolder_IsListedButCannotBeUsed) {
    fs::create_directories(mFolder / "Newspaper/Old");
    Write("Newspaper/Rotary");
    Write("Newspaper/Old/Letterpress");
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "Letterpress", "Rotary"));
    EXPECT_FALSE(Validate("Rotary"));
    EXPECT_FALSE(Validate("Newspaper/Rotary"));
    EXPECT_TRUE(Get("Rotary", -43));
}

TEST_F(SeparationsFolder, HiddenProfiles_AreListed) {
    Write(".hidden");
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", ".hidden"));
}

TEST_F(SeparationsFolder, WhatIsNoRegularFile_IsPassedOverAtOnce) {
    Write("Good");
    ASSERT_EQ(mkfifo((mFolder / "fifo").c_str(), 0600), 0);
    fs::create_directory(mFolder / "folder");
    fs::create_symlink("loop", mFolder / "loop");
    fs::create_symlink("nowhere", mFolder / "dangling");
    fs::create_symlink("/dev/zero", mFolder / "device");
    fs::create_directory_symlink(mFolder, mFolder / "folder/up");
    fs::create_symlink("Good", mFolder / "link to Good");
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "Good", "link to Good"));
}

TEST_F(SeparationsFolder, FolderThatCannotBeRead_IsPassedOver) {
    if (geteuid() == 0) GTEST_SKIP() << "everything is readable for the superuser";
    Write("Good");
    fs::create_directory(mFolder / "locked");
    Write("locked/Secret");
    fs::permissions(mFolder / "locked", fs::perms::none);
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "Good"));
    fs::permissions(mFolder / "locked", fs::perms::owner_all);
}

TEST_F(SeparationsFolder, FolderThatIsAFile_OffersStandardAlone) {
    fs::remove_all(mFolder);
    Write("", "mft2");
    std::ofstream(mFolder) << "mft2";
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard"));
}

TEST_F(SeparationsFolder, FolderReachedThroughALink_IsScanned) {
    const fs::path real = mFolder.parent_path() / "Real";
    fs::rename(mFolder, real);
    std::ofstream(real / "Coated") << "mft2";
    fs::create_directory_symlink(real, mFolder);
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "Coated"));
}

TEST_F(SeparationsFolder, NameThatIsNotUTF8_IsPassedOver) {
    Write("Good");
    Write("bad \xFF\xFE");
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "Good"));
}

TEST_F(SeparationsFolder, TenThousandFiles) {
    Write("file 0");
    Write("other 1", "something else");
    for (int i = 1; i < 10000; ++i) // links: writing them all would take longer than the test
        if (i % 10 == 0)
            fs::create_hard_link(mFolder / "file 0", mFolder / ("file " + std::to_string(i)));
        else
            fs::create_hard_link(mFolder / "other 1", mFolder / ("file " + std::to_string(i)));
    const List list(ScanSeparationsFolder());
    ASSERT_EQ(CountCMYKSeparation(list.get()), 1001);
    EXPECT_EQ(Text(GetCMYKSeparationName(list.get(), 2)), "file 10");
    EXPECT_EQ(Text(GetCMYKSeparationName(list.get(), 1000)), "file 9990");
}

TEST_F(SeparationsFolder, CopiedNames_HaveStandardFirst) {
    Write("B 10");
    Write("B 9");
    const CFRef names(ZELPrCopySeparationNames());
    ASSERT_TRUE(names);
    ASSERT_EQ(CFArrayGetCount(names.Get()), 3);
    std::vector<std::string> texts;
    for (CFIndex i = 0; i < 3; ++i)
        texts.push_back(Text(static_cast<CFStringRef>(CFArrayGetValueAtIndex(names.Get(), i))));
    EXPECT_THAT(texts, ElementsAre("Standard", "B 9", "B 10"));
}

// ---- Validation

TEST_F(SeparationsFolder, EmptyAndStandard_AreAlwaysValid) {
    EXPECT_TRUE(Validate(""));
    EXPECT_TRUE(Validate("Standard"));
    EXPECT_TRUE(ValidateCMYKSeparation(nullptr, nullptr));
    EXPECT_EQ(Text(kStandardTableName), "Standard");
}

TEST_F(SeparationsFolder, StandardInOtherCase_IsAProfile) {
    EXPECT_FALSE(Validate("standard"));
    EXPECT_TRUE(Get("STANDARD", -43));
    WriteCyan("standard", 40);
    EXPECT_TRUE(Validate("standard"));
    EXPECT_EQ(Perform(Get("standard", 0), 0, 0, 0), (Inks{40, 0, 0, 0}));
}

TEST_F(SeparationsFolder, FileNamedStandard_IsListedButNeverUsed) {
    WriteCyan("Standard", 40);
    EXPECT_THAT(ScannedNames(), ElementsAre("Standard", "Standard"));
    EXPECT_EQ(Perform(Get("Standard", 0), 0, 0, 0), (Inks{213, 213, 213, 214}));
}

TEST_F(SeparationsFolder, RemovedProfile_IsNoLongerValid) {
    WriteCyan("Coated", 40);
    EXPECT_TRUE(Validate("Coated"));
    fs::remove(mFolder / "Coated");
    EXPECT_FALSE(Validate("Coated"));
    EXPECT_TRUE(Get("Coated", -43));
}

TEST_F(SeparationsFolder, NamesThatLeadOutOfTheFolder_AreRefused) {
    std::ofstream(mFolder.parent_path() / "Outside") << "mft2";
    for (const char *name : {"../Outside", "/etc/passwd", ".", "..", "/", "./Coated"}) {
        EXPECT_FALSE(Validate(name)) << name;
        EXPECT_TRUE(Get(name, -43)) << name;
    }
}

TEST_F(SeparationsFolder, VeryLongName_IsRefused) {
    EXPECT_FALSE(Validate(std::string(5000, 'x')));
    EXPECT_TRUE(Get(std::string(5000, 'x'), -43));
}

TEST_F(SeparationsFolder, DamagedProfile_PassesValidationAndFailsTheDocument) {
    for (const auto &[name, bytes] : DamagedProfiles()) {
        Write("Damaged", bytes);
        EXPECT_TRUE(Validate("Damaged")) << name;
        EXPECT_TRUE(Get("Damaged", -43)) << name;
    }
}

// ---- Building and applying

TEST_F(SeparationsFolder, StandardAndEmptyNames_AreTheFixedBlackGeneration) {
    CMYKSeparation *unnamed = nullptr;
    ASSERT_EQ(GetCMYKSeparation(nullptr, nullptr, &unnamed), 0);
    std::vector<Record> records;
    records.emplace_back(unnamed);
    records.push_back(Get("", 0));
    records.push_back(Get("Standard", 0));
    uint8_t table[512];
    zel_InitBG(table, 2, 214, 1020, 0.2);
    std::vector<uint8_t> src(4 * 1000);
    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<uint8_t>(i * i * 31 + i);
    std::vector<uint8_t> expected(src.size());
    zel_RGBToCMYK(table, src.data(), expected.data(), 1000);
    for (const auto &record : records) {
        std::vector<uint8_t> dst(src.size());
        PerformCMYKSeparation(record.get(), src.data(), 1000, dst.data(), 1, 4);
        EXPECT_EQ(dst, expected);
    }
}

TEST_F(SeparationsFolder, Profile_GetsRGBWithoutTheIgnoredByte) {
    ProfileBytes profile;
    profile.grid = [](int r, int g, int b, int ink) {
        const int at[8] = {r, g, b, 0, 0, 0, 0, 0};
        return static_cast<uint16_t>(65535 * at[ink]);
    };
    Write("RGB", profile.Bytes());
    EXPECT_EQ(Perform(Get("RGB", 0), 255, 0, 255), (Inks{255, 0, 255, 0}));
    EXPECT_EQ(Perform(Get("RGB", 0), 0, 255, 0), (Inks{0, 255, 0, 0}));
}

TEST_F(SeparationsFolder, Profile_WritesPlanesToo) {
    ProfileBytes profile;
    profile.gridPoints = 1;
    profile.grid = [](int, int, int, int ink) { return static_cast<uint16_t>(257 * (ink + 1)); };
    Write("Planes", profile.Bytes());
    const Record record = Get("Planes", 0);
    const std::vector<uint8_t> src(4 * 50, 9);
    std::vector<uint8_t> dst(200);
    PerformCMYKSeparation(record.get(), src.data(), 50, dst.data(), 50, 1);
    for (size_t i = 0; i < 200; ++i)
        EXPECT_EQ(dst[i], i / 50 + 1);
}

TEST_F(SeparationsFolder, RecordWithoutATable_WritesNothing) {
    const Record record = Get("Missing", -43);
    ASSERT_TRUE(record);
    const uint8_t src[4] = {};
    uint8_t dst[4] = {1, 2, 3, 4};
    PerformCMYKSeparation(record.get(), src, 1, dst, 1, 4);
    EXPECT_EQ(dst[0], 1);
}

TEST_F(SeparationsFolder, ReplacedProfile_IsLoadedAgain) {
    WriteCyan("Coated", 40);
    const Record before = Get("Coated", 0);
    WriteCyan("Coated", 90); // in place, the same size, within the same instant
    EXPECT_EQ(Perform(Get("Coated", 0), 0, 0, 0), (Inks{90, 0, 0, 0}));
    EXPECT_EQ(Perform(before, 0, 0, 0), (Inks{40, 0, 0, 0})) << "a document keeps its table";
}

TEST_F(SeparationsFolder, TwoDocumentsAtOnce_EachKeepItsProfile) {
    for (int i = 0; i < 30; ++i)
        WriteCyan("P" + std::to_string(i), static_cast<uint8_t>(i + 1));
    std::vector<Record> open;
    for (int i = 0; i < 30; ++i)
        open.push_back(Get("P" + std::to_string(i), 0));
    for (int i = 0; i < 30; ++i)
        EXPECT_EQ(Perform(open[static_cast<size_t>(i)], 1, 2, 3), (Inks{i + 1, 0, 0, 0}));
}

TEST_F(SeparationsFolder, ManyThreads_GetAndReleaseTheSameProfiles) {
    for (int i = 0; i < 12; ++i)
        WriteCyan("P" + std::to_string(i), static_cast<uint8_t>(i));
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < 200; ++i) {
                const int which = (i + 3 * t) % 12;
                const std::string name = "P" + std::to_string(which);
                ASSERT_TRUE(Validate(name));
                ASSERT_EQ(Perform(Get(name, 0), 5, 6, 7), (Inks{which, 0, 0, 0}));
            }
        });
    for (auto &thread : threads)
        thread.join();
}

TEST(ReleaseCMYKSeparation, Null_IsIgnored) {
    ReleaseCMYKSeparation(nullptr);
}

} // namespace
