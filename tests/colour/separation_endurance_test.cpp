// A host that never ends: it validates records and prints documents by the ten thousand, and must
// neither run out of descriptors nor grow.
#include "colour/DescriptorKeeper.h"
#include "colour/Separations.h"
#include "colour/TableCache.h"
#include "tests/colour/ProfilesFolderFixture.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr int kTimes = 10000;

size_t OpenDescriptors() {
    const fs::directory_iterator entries("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

/// Resident memory in bytes.
size_t Memory() {
    size_t pages = 0;
    size_t resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

/// The sanitizers keep freed memory back, so there only descriptors are counted.
constexpr bool kMemoryIsMeaningful =
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    false;
#else
    true;
#endif

class SeparationEndurance : public ProfilesFolderTest {
protected:
    /// Does `work` some times, then ten thousand times, and compares before and after.
    template <typename Work>
    static void ExpectNoGrowth(Work work) {
        for (int i = 0; i < 200; ++i)
            work();
        const size_t descriptors = OpenDescriptors();
        const size_t memory = Memory();
        for (int i = 0; i < kTimes; ++i)
            work();
        EXPECT_EQ(OpenDescriptors(), descriptors);
        // Ten thousand tables would be 90 MB, ten thousand records 5 MB.
        if (kMemoryIsMeaningful) EXPECT_LT(Memory(), memory + 3'000'000);
    }
};

TEST_F(SeparationEndurance, ValidatingAName) {
    WriteCyan("Coated", 40);
    Write("Damaged");
    const auto names = {Str("Coated"), Str("Damaged"), Str("Missing"), Str("Standard")};
    ExpectNoGrowth([&] {
        for (const auto &name : names)
            (void)ValidateCMYKSeparation(nullptr, name.Get());
    });
}

TEST_F(SeparationEndurance, ScanningTheFolder) {
    WriteCyan("Coated", 40);
    ExpectNoGrowth([] { DeleteSeparationsList(ScanSeparationsFolder()); });
}

TEST_F(SeparationEndurance, PrintingThroughAProfile) {
    WriteCyan("Coated", 40);
    const auto name = Str("Coated");
    ExpectNoGrowth([&] {
        CMYKSeparation *record = nullptr;
        ASSERT_EQ(GetCMYKSeparation(nullptr, name.Get(), &record), 0);
        const uint8_t src[4] = {};
        uint8_t dst[4] = {};
        PerformCMYKSeparation(record, src, 1, dst, 1, 4);
        ASSERT_EQ(dst[0], 40);
        ReleaseCMYKSeparation(record);
    });
}

TEST_F(SeparationEndurance, PrintingThroughADamagedProfile) {
    Write("Damaged");
    const auto name = Str("Damaged");
    ExpectNoGrowth([&] {
        CMYKSeparation *record = nullptr;
        ASSERT_EQ(GetCMYKSeparation(nullptr, name.Get(), &record), -43);
        ReleaseCMYKSeparation(record);
    });
}

// ---- What bounds the harm

FileDescriptor Open(const fs::path &path) {
    return OpenRegularFile(path.string());
}

bool IsOpen(int fd) {
    return fcntl(fd, F_GETFD) != -1;
}

TEST(DescriptorKeeper, ClosesTheOldestWhenOneMoreComes) {
    const TempFolder folder;
    std::ofstream(folder.Path() / "file") << "x";
    std::vector<int> kept;
    {
        DescriptorKeeper keeper;
        for (size_t i = 0; i < DescriptorKeeper::kCapacity; ++i) {
            FileDescriptor file = Open(folder.Path() / "file");
            kept.push_back(file.Get());
            keeper.Keep(std::move(file));
        }
        for (int fd : kept)
            EXPECT_TRUE(IsOpen(fd));
        keeper.Keep(Open(folder.Path() / "file"));
        EXPECT_FALSE(IsOpen(kept[0]));
        for (size_t i = 1; i < kept.size(); ++i)
            EXPECT_TRUE(IsOpen(kept[i]));
    }
    for (int fd : kept)
        EXPECT_FALSE(IsOpen(fd)) << "closed with the keeper";
}

class Cache : public ProfilesFolderTest {
protected:
    CFRef<CFURLRef> URL(const std::string &name) const {
        return CFRef(CFURLCreateWithFileSystemPath(kCFAllocatorDefault,
                                                   Str((mFolder / name).string()).Get(),
                                                   kCFURLPOSIXPathStyle, false));
    }
};

TEST_F(Cache, SameFile_IsLoadedOnce) {
    TableCache cache(0s);
    WriteCyan("A", 1);
    fs::create_hard_link(mFolder / "A", mFolder / "B");
    EightColourLUT *first = cache.Acquire(URL("A").Get());
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(cache.Acquire(URL("A").Get()), first);
    EXPECT_EQ(cache.Acquire(URL("B").Get()), first);
    cache.Release(first);
    cache.Release(first);
    cache.Release(first);
    EXPECT_EQ(cache.Acquire(URL("A").Get()), first) << "kept for the next document";
    EXPECT_EQ(cache.Size(), 1U);
}

TEST_F(Cache, ReplacedFile_IsLoadedAgain) {
    TableCache cache(0s);
    WriteCyan("A", 1);
    const EightColourLUT *first = cache.Acquire(URL("A").Get());
    WriteCyan("new", 2);
    fs::rename(mFolder / "new", mFolder / "A");
    const EightColourLUT *second = cache.Acquire(URL("A").Get());
    EXPECT_NE(first, second);
    EXPECT_EQ(first->grid[0], 1);
    EXPECT_EQ(second->grid[0], 2);
}

TEST_F(Cache, FileJustWritten_IsNotTrusted) {
    TableCache cache(1h);
    WriteCyan("A", 1);
    const EightColourLUT *first = cache.Acquire(URL("A").Get());
    const EightColourLUT *second = cache.Acquire(URL("A").Get());
    EXPECT_NE(first, second);
    cache.Release(first);
    cache.Release(second);
    EXPECT_EQ(cache.Size(), 0U);
}

TEST_F(Cache, UnusedTables_AreBoundedAndUsedOnesAreKept) {
    TableCache cache(0s);
    constexpr int kMany = 3 * static_cast<int>(TableCache::kCapacity);
    std::vector<EightColourLUT *> tables;
    for (int i = 0; i < kMany; ++i) {
        WriteCyan("P" + std::to_string(i), static_cast<uint8_t>(i));
        tables.push_back(cache.Acquire(URL("P" + std::to_string(i)).Get()));
    }
    EXPECT_EQ(cache.Size(), static_cast<size_t>(kMany));
    for (int i = 0; i < kMany; ++i)
        EXPECT_EQ(tables[static_cast<size_t>(i)]->grid[0], i) << "in use, so not dropped";
    for (auto *table : tables)
        cache.Release(table);
    EXPECT_EQ(cache.Size(), TableCache::kCapacity);
}

TEST_F(Cache, BadProfile_LeavesNothingBehind) {
    TableCache cache(0s);
    Write("Bad");
    EXPECT_EQ(cache.Acquire(URL("Bad").Get()), nullptr);
    EXPECT_EQ(cache.Acquire(URL("Missing").Get()), nullptr);
    EXPECT_EQ(cache.Size(), 0U);
    cache.Release(nullptr);
}

} // namespace
