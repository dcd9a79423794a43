#include "host/job/PageCache.h"
#include "host/terminal/ExitStatus.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

constexpr int kRowBytes = 400000;

/// `count` rows of bytes that tell the page and the row.
std::vector<uint8_t> MakeRows(int page, int first, int count) {
    std::vector<uint8_t> rows;
    for (int row = first; row < first + count; ++row)
        rows.insert(rows.end(), kRowBytes, static_cast<uint8_t>(page * 50 + row));
    return rows;
}

void Keep(PageCache &cache, size_t page, int rows) {
    Placement placement;
    placement.left = static_cast<int>(page) + 7;
    cache.Begin(page, placement);
    for (int top = 0; top < rows; top += 3) {
        const int count = std::min(3, rows - top);
        const std::vector<uint8_t> bytes = MakeRows(static_cast<int>(page), top, count);
        cache.Add({bytes.data(), kRowBytes, count});
    }
    cache.End();
}

std::vector<uint8_t> ReadAll(PageCache &cache, size_t page) {
    std::vector<uint8_t> all;
    int top = 0;
    for (Rows rows = cache.Read(page, top); rows.count > 0; rows = cache.Read(page, top)) {
        all.insert(all.end(), rows.pixels, rows.pixels + rows.count * rows.rowBytes);
        top += rows.count;
    }
    return all;
}

TEST(PageCache, GivesBackEveryRow_OfEveryPage) {
    PageCache cache;
    Keep(cache, 0, 10);
    Keep(cache, 1, 1);
    Keep(cache, 2, 7);
    EXPECT_EQ(ReadAll(cache, 2), MakeRows(2, 0, 7));
    EXPECT_EQ(ReadAll(cache, 0), MakeRows(0, 0, 10));
    EXPECT_EQ(ReadAll(cache, 1), MakeRows(1, 0, 1));
    ASSERT_NE(cache.Find(1), nullptr);
    EXPECT_EQ(cache.Find(1)->left, 8);
    EXPECT_EQ(cache.Find(3), nullptr);
}

TEST(PageCache, PageThatDidNotEnd_IsNotKept_AndLeavesItsRoom) {
    PageCache cache;
    cache.Begin(0, {});
    const std::vector<uint8_t> rows = MakeRows(0, 0, 2);
    cache.Add({rows.data(), kRowBytes, 2});
    Keep(cache, 1, 4);
    EXPECT_EQ(cache.Find(0), nullptr);
    EXPECT_EQ(ReadAll(cache, 1), MakeRows(1, 0, 4));
}

TEST(PageCache, WithoutAFolderForIt_KeepsNothing) {
    const char *before = getenv("TMPDIR");
    const std::string kept = before ? before : "";
    setenv("TMPDIR", "/nonexistent", 1);
    PageCache cache;
    Keep(cache, 0, 4);
    EXPECT_EQ(cache.Find(0), nullptr);
    if (before)
        setenv("TMPDIR", kept.c_str(), 1);
    else
        unsetenv("TMPDIR");
}

TEST(UnnamedFile, HasNoNameInItsFolder) {
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("unnamed-" + std::to_string(getpid()));
    std::filesystem::create_directory(folder);
    const char *before = getenv("TMPDIR");
    const std::string kept = before ? before : "";
    setenv("TMPDIR", folder.c_str(), 1);
    {
        const UnnamedFile file;
        EXPECT_EQ(file.Folder(), folder);
        EXPECT_TRUE(file.Write("hello", 5, 0));
        EXPECT_TRUE(std::filesystem::is_empty(folder));
        char text[6] = {};
        EXPECT_TRUE(file.Read(text, 5, 0));
        EXPECT_STREQ(text, "hello");
        EXPECT_FALSE(file.Read(text, 5, 1));
        EXPECT_TRUE(std::filesystem::exists(file.Path()));
    }
    if (before)
        setenv("TMPDIR", kept.c_str(), 1);
    else
        unsetenv("TMPDIR");
    std::filesystem::remove_all(folder);
}

} // namespace
