#include "colour/EightColourLUT.h"
#include "colour/EightColourSeparation.h"
#include "tests/TempFolder.h"
#include "tests/colour/BadProfiles.h"

#include <array>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

using Inks = std::array<int, 4>;

struct FreeTable {
    void operator()(EightColourLUT *table) const { ReleaseEightColourLUT(table); }
};
using Table = std::unique_ptr<EightColourLUT, FreeTable>;

class EightColourTable : public testing::Test {
protected:
    CFRef<CFURLRef> URL(const std::string &name) const {
        return CFRef(CFURLCreateWithFileSystemPath(kCFAllocatorDefault,
                                                   Str((mFolder.Path() / name).string()).Get(),
                                                   kCFURLPOSIXPathStyle, false));
    }
    CFRef<CFURLRef> Write(const std::string &bytes, const std::string &name = "profile") const {
        std::ofstream(mFolder.Path() / name, std::ios::binary) << bytes;
        return URL(name);
    }
    Table Load(const std::string &bytes) const {
        return Table(LoadEightColourLUT(Write(bytes).Get()));
    }
    Table Load(const ProfileBytes &profile) const { return Load(profile.Bytes()); }

    TempFolder mFolder;
};

Inks At(const Table &table, size_t r, size_t g, size_t b) {
    const uint8_t *point = table->grid + r * 100 + g * 20 + b * 4;
    return {point[0], point[1], point[2], point[3]};
}

Inks Separate(const EightColourLUT &table, uint8_t r, uint8_t g, uint8_t b) {
    const uint8_t rgb[3] = {r, g, b};
    uint8_t inks[4] = {};
    EightColourLUTSeparate(&table, rgb, 4, 1, inks, 4, 1, 4);
    return {inks[0], inks[1], inks[2], inks[3]};
}

// ---- Recognising

TEST_F(EightColourTable, Check_KnowsAProfileByItsSignatureAlone) {
    EXPECT_TRUE(IsEightColourLUT(Write("mft2").Get()));
    EXPECT_TRUE(IsEightColourLUT(Write("mft2 and any nonsense").Get()));
    const ProfileBytes profile;
    EXPECT_TRUE(IsEightColourLUT(Write(profile.Bytes()).Get()));
}

TEST_F(EightColourTable, Check_RefusesOtherFiles) {
    for (const auto &[name, bytes] : NoProfiles())
        EXPECT_FALSE(IsEightColourLUT(Write(bytes).Get())) << name;
}

TEST_F(EightColourTable, Check_RefusesWhatIsNoRegularFile) {
    fs::create_directory(mFolder.Path() / "folder");
    ASSERT_EQ(mkfifo((mFolder.Path() / "fifo").c_str(), 0600), 0);
    fs::create_symlink("loop", mFolder.Path() / "loop");
    fs::create_symlink("nowhere", mFolder.Path() / "dangling");
    fs::create_symlink("/dev/zero", mFolder.Path() / "device");
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{AF_UNIX, {}};
    std::strncpy(address.sun_path, (mFolder.Path() / "socket").c_str(),
                 sizeof address.sun_path - 1);
    ASSERT_EQ(bind(server, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
    close(server);
    for (const char *name : {"folder", "fifo", "loop", "dangling", "device", "socket", "missing"}) {
        EXPECT_FALSE(IsEightColourLUT(URL(name).Get())) << name;
        EXPECT_EQ(LoadEightColourLUT(URL(name).Get()), nullptr) << name;
    }
    EXPECT_FALSE(IsEightColourLUT(nullptr));
    EXPECT_EQ(LoadEightColourLUT(nullptr), nullptr);
}

TEST_F(EightColourTable, Check_RefusesAFileWhoseReadingFails) {
    // A regular file that opens; nothing is mapped at its beginning, so that reading there fails.
    fs::create_symlink("/proc/self/mem", mFolder.Path() / "failing");
    EXPECT_FALSE(IsEightColourLUT(URL("failing").Get()));
    EXPECT_EQ(LoadEightColourLUT(URL("failing").Get()), nullptr);
}

TEST_F(EightColourTable, Check_FollowsALinkToAProfile) {
    (void)Write("mft2", "target");
    fs::create_symlink("target", mFolder.Path() / "link");
    EXPECT_TRUE(IsEightColourLUT(URL("link").Get()));
}

TEST_F(EightColourTable, Check_RefusesAnUnreadableFile) {
    if (geteuid() == 0) GTEST_SKIP() << "everything is readable for the superuser";
    const auto url = Write("mft2");
    fs::permissions(mFolder.Path() / "profile", fs::perms::none);
    EXPECT_FALSE(IsEightColourLUT(url.Get()));
}

size_t OpenDescriptors() {
    const fs::directory_iterator entries("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

TEST_F(EightColourTable, Check_LeavesAFewDescriptorsOpenAtMost) {
    const auto url = Write("mft2");
    for (int i = 0; i < 20; ++i)
        (void)IsEightColourLUT(url.Get());
    const size_t before = OpenDescriptors();
    for (int i = 0; i < 10000; ++i)
        ASSERT_TRUE(IsEightColourLUT(url.Get()));
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST_F(EightColourTable, Check_ItsDescriptorStaysOpenAtFirst) {
    const auto url = Write("mft2", "kept open");
    ASSERT_TRUE(IsEightColourLUT(url.Get()));
    int found = 0;
    for (const auto &entry : fs::directory_iterator("/proc/self/fd")) {
        std::error_code gone;
        const fs::path target = fs::read_symlink(entry.path(), gone);
        if (target.filename() != "kept open") continue;
        ++found;
        const int fd = std::stoi(entry.path().filename().string());
        EXPECT_TRUE(fcntl(fd, F_GETFD) & FD_CLOEXEC) << "must not pass to the print command";
    }
    EXPECT_EQ(found, 1);
}

// ---- Loading

TEST_F(EightColourTable, Load_TwoGridPoints_AreInterpolated) {
    ProfileBytes profile;
    profile.grid = [](int r, int g, int b, int ink) {
        const int at[8] = {1 - r, 1 - g, 1 - b, r, 1, 1, 1, 1};
        return static_cast<uint16_t>(65535 * at[ink]);
    };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    const int level[5] = {0, 63, 127, 191, 255}; // of 0, 16383, 32767, 49151, 65535
    const int rest[5] = {255, 191, 127, 63, 0};  // of their complements
    for (size_t r = 0; r < 5; ++r)
        for (size_t g = 0; g < 5; ++g)
            for (size_t b = 0; b < 5; ++b)
                EXPECT_EQ(At(table, r, g, b), (Inks{rest[r], rest[g], rest[b], level[r]}));
}

TEST_F(EightColourTable, Load_FiveGridPoints_AreTakenAsTheyStand) {
    ProfileBytes profile;
    profile.gridPoints = 5;
    profile.grid = [](int r, int g, int b, int ink) {
        return static_cast<uint16_t>(257 * (50 * r + 10 * g + 2 * b + ink % 4));
    };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    // 16383, 32767 and 49151 lie just before their grid points: a byte may lose its last unit.
    for (size_t i = 0; i < 125; ++i) {
        const auto exact = static_cast<int>(50 * (i / 25) + 10 * (i / 5 % 5) + 2 * (i % 5));
        const Inks inks = At(table, i / 25, i / 5 % 5, i % 5);
        for (int c = 0; c < 4; ++c) {
            EXPECT_LE(inks[static_cast<size_t>(c)], exact + c);
            EXPECT_GE(inks[static_cast<size_t>(c)], exact + c - 1);
        }
    }
    EXPECT_EQ(At(table, 0, 0, 0), (Inks{0, 1, 2, 3}));
    EXPECT_EQ(At(table, 4, 4, 4), (Inks{248, 249, 250, 251}));
}

TEST_F(EightColourTable, Load_OneGridPoint_IsEverywhere) {
    ProfileBytes profile;
    profile.gridPoints = 1;
    profile.grid = [](int, int, int, int ink) { return static_cast<uint16_t>(257 * 10 * ink); };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    for (size_t i = 0; i < 125; ++i)
        EXPECT_EQ(At(table, i / 25, i / 5 % 5, i % 5), (Inks{0, 10, 20, 30}));
}

TEST_F(EightColourTable, Load_InputCurvesActOnTheirOwnChannel) {
    ProfileBytes profile;
    profile.inputEntries = 3;
    profile.input = [](int channel, int entry) {
        const uint16_t curves[3][3] = {{0, 0, 65535}, {65535, 0, 0}, {0, 65535, 65535}};
        return curves[channel][entry];
    };
    profile.grid = [](int r, int g, int b, int ink) {
        const int at[3] = {r, g, b};
        return static_cast<uint16_t>(ink < 3 ? 65535 * at[ink] : 0);
    };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    EXPECT_EQ(At(table, 0, 0, 0), (Inks{0, 255, 0, 0}));
    EXPECT_EQ(At(table, 2, 2, 2), (Inks{0, 0, 254, 0})); // 32767 is just before the middle
    EXPECT_EQ(At(table, 3, 1, 1), (Inks{127, 127, 127, 0}));
    EXPECT_EQ(At(table, 4, 4, 4), (Inks{255, 0, 255, 0}));
}

TEST_F(EightColourTable, Load_FirstFourOutputCurvesActOnTheirInk) {
    ProfileBytes profile;
    profile.grid = [](int, int, int, int) { return uint16_t{65535}; };
    profile.output = [](int ink, int entry) {
        return static_cast<uint16_t>(entry == 1 ? 257 * 20 * (ink + 1) : 0);
    };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    EXPECT_EQ(At(table, 1, 2, 3), (Inks{20, 40, 60, 80}));
}

TEST_F(EightColourTable, Load_DividesBy257AndTruncates) {
    ProfileBytes profile;
    profile.gridPoints = 1;
    profile.grid = [](int, int, int, int ink) {
        const uint16_t values[8] = {256, 257, 65534, 65535, 0, 0, 0, 0};
        return values[ink];
    };
    EXPECT_EQ(At(Load(profile), 0, 0, 0), (Inks{0, 1, 254, 255}));
}

TEST_F(EightColourTable, Load_SingleEntryCurves_AreAccepted) {
    ProfileBytes profile;
    profile.inputEntries = 1;
    profile.outputEntries = 1;
    profile.input = [](int, int) { return uint16_t{0}; };
    profile.output = [](int ink, int) { return static_cast<uint16_t>(257 * ink); };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    EXPECT_EQ(At(table, 4, 0, 2), (Inks{0, 1, 2, 3}));
}

TEST_F(EightColourTable, Load_BytesAfterTheEnd_AreIgnored) {
    ProfileBytes profile;
    profile.grid = [](int, int, int, int) { return uint16_t{65535}; };
    const Table table = Load(profile.Bytes() + std::string(1000, '\x55'));
    ASSERT_TRUE(table);
    EXPECT_EQ(At(table, 0, 0, 0), (Inks{255, 255, 255, 255}));
}

TEST_F(EightColourTable, Load_MatrixAndReservedFields_AreIgnored) {
    ProfileBytes profile;
    profile.grid = [](int r, int, int, int) { return static_cast<uint16_t>(65535 * r); };
    std::string bytes = profile.Bytes();
    const Table plain = Load(bytes);
    for (size_t i : {4U, 5U, 6U, 7U, 11U})
        bytes[i] = '\xFF';
    for (size_t i = 12; i < 48; ++i)
        bytes[i] = '\x7F';
    const Table table = Load(bytes);
    ASSERT_TRUE(plain && table);
    EXPECT_EQ(std::memcmp(plain.get(), table.get(), sizeof(EightColourLUT)), 0);
}

TEST_F(EightColourTable, Load_BytesAfterTheGrid_AreZero) {
    ProfileBytes profile;
    profile.grid = [](int, int, int, int) { return uint16_t{65535}; };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    static_assert(sizeof table->grid == 864);
    for (size_t i = 0; i < 864; ++i)
        EXPECT_EQ(table->grid[i], i < 500 ? 255 : 0);
}

TEST_F(EightColourTable, Load_LargeGridAndCurves) {
    ProfileBytes profile;
    profile.gridPoints = 64;
    profile.inputEntries = 4096;
    profile.outputEntries = 4096;
    profile.grid = [](int r, int, int, int) { return static_cast<uint16_t>(65535 * r / 63); };
    const Table table = Load(profile);
    ASSERT_TRUE(table);
    EXPECT_EQ(At(table, 4, 0, 0), (Inks{255, 255, 255, 255}));
}

TEST_F(EightColourTable, Load_255GridPoints) {
    ProfileBytes profile;
    profile.inputEntries = 1;
    profile.input = [](int, int) { return uint16_t{65535}; };
    std::string header = profile.Bytes().substr(0, 52 + 6);
    header[10] = '\xFF';
    const auto url = Write(header);
    const uint64_t grid = uint64_t{255} * 255 * 255 * 16;
    // The last grid point and the output curves; the rest is a hole in the file.
    fs::resize_file(mFolder.Path() / "profile", header.size() + grid - 16);
    std::ofstream file(mFolder.Path() / "profile", std::ios::binary | std::ios::app);
    file << std::string(16, '\xFF');
    for (int ink = 0; ink < 8; ++ink)
        file << std::string("\0\0\xFF\xFF", 4);
    file.close();
    const Table table(LoadEightColourLUT(url.Get()));
    ASSERT_TRUE(table);
    EXPECT_EQ(At(table, 0, 0, 0), (Inks{255, 255, 255, 255}));
}

TEST_F(EightColourTable, Load_DamagedProfiles_AreRefused) {
    for (const auto &[name, bytes] : DamagedProfiles())
        EXPECT_FALSE(Load(bytes)) << name;
    for (const auto &[name, bytes] : NoProfiles())
        EXPECT_FALSE(Load(bytes)) << name;
}

/// What opens files may fail in between: a limit that the check's own descriptor uses up.
TEST_F(EightColourTable, Load_FileThatCannotBeReopened_SeparatesToNoInk) {
    ProfileBytes profile;
    profile.grid = [](int, int, int, int) { return uint16_t{65535}; };
    const auto url = Write(profile.Bytes());
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const int next = dup(0);
    close(next);
    rlimit tight = before;
    tight.rlim_cur = static_cast<rlim_t>(next) + 1; // all below are in use
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &tight), 0);
    bool sampled = true;
    const Table table(LoadEightColourLUT(url.Get(), &sampled));
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    ASSERT_TRUE(table);
    EXPECT_FALSE(sampled);
    for (int v = 0; v < 256; v += 15) {
        const auto byte = static_cast<uint8_t>(v);
        EXPECT_EQ(Separate(*table, byte, 255, byte), (Inks{0, 0, 0, 0}));
    }
}

// ---- Separating

std::unique_ptr<EightColourLUT> Numbered() {
    auto table = std::make_unique<EightColourLUT>();
    for (size_t i = 0; i < 500; ++i)
        table->grid[i] = static_cast<uint8_t>(i * 89 + i / 7);
    BuildVectorTables(table.get());
    return table;
}

TEST(EightColourSeparate, WhiteAndBlack_AreTheirGridPoints) {
    const auto table = Numbered();
    const uint8_t *grid = table->grid;
    EXPECT_EQ(Separate(*table, 0, 0, 0), (Inks{grid[0], grid[1], grid[2], grid[3]}));
    EXPECT_EQ(Separate(*table, 255, 255, 255), (Inks{grid[496], grid[497], grid[498], grid[499]}));
}

/// The six cases written out, as a second opinion; `order` is their code.
int SixCases(const uint8_t *t, size_t base, const int f[3], int &order) {
    const auto [r, g, b] = std::array{f[0], f[1], f[2]};
    const auto at = [=](size_t step) { return int{t[base + step]}; };
    order = (g > b ? 1 : 0) + (r > b ? 2 : 0) + (r > g ? 4 : 0);
    int sum = 0;
    switch (order) {
        case 0:
            sum = at(124) * r + at(24) * (g - r) + at(4) * (b - g) + at(0) * (255 - b);
            break;
        case 1:
            sum = at(124) * r + at(24) * (b - r) + at(20) * (g - b) + at(0) * (255 - g);
            break;
        case 3:
            sum = at(124) * b + at(120) * (r - b) + at(20) * (g - r) + at(0) * (255 - g);
            break;
        case 4:
            sum = at(124) * g + at(104) * (r - g) + at(4) * (b - r) + at(0) * (255 - b);
            break;
        case 6:
            sum = at(124) * g + at(104) * (b - g) + at(100) * (r - b) + at(0) * (255 - r);
            break;
        case 7:
            sum = at(124) * b + at(120) * (g - b) + at(100) * (r - g) + at(0) * (255 - r);
            break;
        default:
            ADD_FAILURE() << order;
    }
    return sum / 255;
}

TEST(EightColourSeparate, EveryCellAndOrder_IsTheWrittenOutSum) {
    const auto table = Numbered();
    int seen[8] = {};
    for (int r = 0; r < 256; r += 5)
        for (int g = 0; g < 256; g += 3)
            for (int b = 0; b < 256; b += 3) {
                const int rgb[3] = {r, g, b};
                int f[3];
                size_t base = 0;
                const size_t step[3] = {100, 20, 4};
                for (size_t i = 0; i < 3; ++i) {
                    const int cell = rgb[i] * 4 / 255;
                    f[i] = rgb[i] * 4 - cell * 255;
                    base += static_cast<size_t>(cell) * step[i];
                }
                Inks expected{};
                int order = 0;
                for (size_t c = 0; c < 4; ++c)
                    expected[c] = SixCases(table->grid, base + c, f, order);
                ++seen[order];
                ASSERT_EQ(Separate(*table, static_cast<uint8_t>(r), static_cast<uint8_t>(g),
                                   static_cast<uint8_t>(b)),
                          expected)
                    << r << " " << g << " " << b;
            }
    for (int order : {0, 1, 3, 4, 6, 7})
        EXPECT_GT(seen[order], 1000) << order;
}

TEST(EightColourSeparate, NoPixels_WriteNothing) {
    const auto table = Numbered();
    const uint8_t src[4] = {};
    for (int64_t count : {int64_t{0}, int64_t{-1}, INT64_MIN}) {
        uint8_t dst[4] = {1, 2, 3, 4};
        EightColourLUTSeparate(table.get(), src, 4, count, dst, 4, 1, 4);
        EXPECT_EQ(dst[0], 1);
        EXPECT_EQ(dst[3], 4);
    }
}

TEST(EightColourSeparate, Channels_AreAlwaysFour) {
    const auto table = Numbered();
    const uint8_t src[4] = {10, 20, 30, 0};
    uint8_t four[4] = {};
    uint8_t one[4] = {};
    EightColourLUTSeparate(table.get(), src, 4, 1, four, 4, 1, 4);
    EightColourLUTSeparate(table.get(), src, 4, 1, one, 1, 1, 4);
    EXPECT_EQ(std::memcmp(four, one, 4), 0);
}

TEST(EightColourSeparate, OtherSourceStrides) {
    const auto table = Numbered();
    std::vector<uint8_t> src(60 * 7);
    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<uint8_t>(i * 37);
    for (int64_t stride : {3, 5, 7}) {
        std::vector<uint8_t> dst(240);
        EightColourLUTSeparate(table.get(), src.data(), stride, 60, dst.data(), 4, 1, 4);
        for (size_t i = 0; i < 60; ++i) {
            const uint8_t *rgb = &src[i * static_cast<size_t>(stride)];
            EXPECT_EQ(Separate(*table, rgb[0], rgb[1], rgb[2]),
                      (Inks{dst[4 * i], dst[4 * i + 1], dst[4 * i + 2], dst[4 * i + 3]}));
        }
    }
}

} // namespace
