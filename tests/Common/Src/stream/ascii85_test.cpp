// The base-85 kernels: every one of them gives the text of the literal transcription.
#include "Common/Src/stream/ASCII85.h"
#include "tests/Common/Src/stream/ASCII85KernelNames.h"
#include "tests/Common/Src/stream/LiteralASCII85.h"
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

/// The text of whole blocks without line breaks, by the literal transcription.
std::string LiteralText(const Bytes &data) {
    std::string lines;
    LiteralASCII85 encoder([&lines](const char *text, size_t length) {
        lines.append(text, length);
        return int16_t{0};
    });
    EXPECT_EQ(encoder.Write(data.data(), data.size()), 0);
    EXPECT_EQ(encoder.Close(), 0);
    std::erase(lines, '\n');
    return lines.substr(0, lines.size() - 2);
}

/// Runs a kernel on memory of exactly the documented sizes, so that a sanitizer sees any access
/// outside of it.
std::string KernelText(ASCII85Kernel kernel, const Bytes &data) {
    const std::unique_ptr<uint8_t[]> exact(new uint8_t[data.size()]);
    std::copy(data.begin(), data.end(), exact.get());
    const size_t blocks = data.size() / kASCII85BlockBytes;
    const std::unique_ptr<char[]> text(new char[blocks * kASCII85BlockText + kASCII85Slack]);
    const size_t length = kernel(exact.get(), blocks, text.get());
    return {text.get(), length};
}

void AppendGroup(Bytes &data, uint32_t group) {
    for (int shift = 24; shift >= 0; shift -= 8)
        data.push_back(static_cast<uint8_t>(group >> shift));
}

class ASCII85KernelTest : public testing::TestWithParam<ASCII85NamedKernel> {
protected:
    static void ExpectLiteralText(const Bytes &data) {
        ASSERT_EQ(data.size() % kASCII85BlockBytes, 0U);
        ASSERT_EQ(KernelText(GetParam().kernel, data), LiteralText(data));
    }
};

INSTANTIATE_TEST_SUITE_P(Kernels, ASCII85KernelTest, testing::ValuesIn(AllASCII85Kernels()),
                         ASCII85KernelTestName);

TEST_P(ASCII85KernelTest, NoBlocksGiveNoText) {
    ExpectLiteralText({});
}

TEST_P(ASCII85KernelTest, ZeroBlocksBecomeSixteenZ) {
    EXPECT_EQ(KernelText(GetParam().kernel, Bytes(128)), std::string(32, 'z'));
}

TEST_P(ASCII85KernelTest, WhiteGroupsAreTheLargestNumber) {
    std::string expected;
    for (int i = 0; i < 48; ++i)
        expected += "s8W-!";
    EXPECT_EQ(KernelText(GetParam().kernel, Bytes(192, 255)), expected);
}

TEST_P(ASCII85KernelTest, EveryPatternOfZeroGroupsInABlock) {
    for (uint32_t pattern = 0; pattern < 0x10000; ++pattern) {
        Bytes data;
        for (int i = 0; i < 16; ++i)
            AppendGroup(data, (pattern >> i & 1U) != 0 ? 0 : 0x01020304U + i);
        ASSERT_EQ(KernelText(GetParam().kernel, data), LiteralText(data)) << pattern;
    }
}

// The quotient by 85 * 85 decides everything else: both ends of the range of each of its values.
TEST_P(ASCII85KernelTest, EveryQuotientBy7225) {
    Bytes data;
    for (uint64_t first = 0; first <= UINT32_MAX; first += 7225) {
        AppendGroup(data, static_cast<uint32_t>(first));
        AppendGroup(data, static_cast<uint32_t>(std::min<uint64_t>(first + 7224, UINT32_MAX)));
    }
    while (data.size() % kASCII85BlockBytes != 0)
        data.push_back(1);
    ExpectLiteralText(data);
}

TEST_P(ASCII85KernelTest, EveryRemainderBy7225) {
    Bytes data;
    for (uint32_t high : {0U, 1U, 84U, 85U, 7224U, 7225U, 594458U}) {
        for (uint32_t rest = 0; rest < 7225; ++rest)
            AppendGroup(data, high * 7225 + rest);
    }
    while (data.size() % kASCII85BlockBytes != 0)
        data.push_back(1);
    ExpectLiteralText(data);
}

TEST_P(ASCII85KernelTest, RandomBytes) {
    std::mt19937 random(1);
    Bytes data(kASCII85BlockBytes * 5000);
    for (uint8_t &byte : data)
        byte = static_cast<uint8_t>(random());
    ExpectLiteralText(data);
}

TEST_P(ASCII85KernelTest, BlocksOfEveryKindInAnyOrder) {
    std::mt19937 random(2);
    Bytes data;
    for (int group = 0; group < 16 * 5000; ++group) {
        switch (group / 16 % 3 == 0 ? random() % 3 : random() / 16 % 3) {
            case 0:
                AppendGroup(data, 0);
                break;
            case 1:
                AppendGroup(data, UINT32_MAX);
                break;
            default:
                AppendGroup(data, static_cast<uint32_t>(random()) >> (random() % 32));
                break;
        }
    }
    for (size_t block = 0; block < 5000; ++block) {
        if (random() % 2 == 0)
            std::fill_n(data.begin() + static_cast<long>(block * 64), 64,
                        random() % 2 != 0 ? 255 : 0);
    }
    ExpectLiteralText(data);
}

TEST_P(ASCII85KernelTest, ReadsFromAnyAddress) {
    std::mt19937 random(3);
    Bytes data(kASCII85BlockBytes * 4 + 64);
    for (uint8_t &byte : data)
        byte = static_cast<uint8_t>(random());
    for (size_t offset = 0; offset < 64; ++offset) {
        std::vector<char> text(4 * kASCII85BlockText + kASCII85Slack);
        const size_t length = GetParam().kernel(data.data() + offset, 4, text.data());
        const Bytes part(data.begin() + static_cast<long>(offset),
                         data.begin() + static_cast<long>(offset + 256));
        EXPECT_EQ(std::string(text.data(), length), LiteralText(part));
    }
}

TEST(ASCII85, PlainKernelComesFirstAndTheFastestLast) {
    const auto kernels = ASCII85Kernels();
    EXPECT_EQ(kernels.front().kernel, ASCII85EncodePlain);
    EXPECT_EQ(kernels.back().kernel, ASCII85FastestKernel());
}

TEST(ASCII85, GroupOfZeroIsOneCharacter) {
    const uint8_t zero[4] = {};
    char text[5];
    ASSERT_EQ(ASCII85EncodeGroup(zero, text), 1U);
    EXPECT_EQ(text[0], 'z');
}

struct FinalGroup {
    Bytes bytes;
    std::string text;
};

// 0x01000000 has the digits 0, 27, 27, 9, 1.
TEST(ASCII85, FinalGroupDropsTheLowestDigitAndKeepsAsManyAsBytes) {
    for (const FinalGroup &c :
         {FinalGroup{{0}, "!"}, FinalGroup{{0, 0}, "!!"}, FinalGroup{{0, 0, 0}, "!!!"},
          FinalGroup{{1}, "*"}, FinalGroup{{1, 0}, "<*"}, FinalGroup{{1, 0, 0}, "<<*"}}) {
        char text[3];
        ASSERT_EQ(ASCII85EncodeFinalGroup(c.bytes.data(), c.bytes.size(), text), c.bytes.size());
        EXPECT_EQ(std::string(text, c.bytes.size()), c.text);
    }
}

TEST(ASCII85, FinalGroupOfEveryValue) {
    for (size_t count = 1; count <= 3; ++count) {
        for (uint32_t value = 0; value < 1U << (8 * count); value += count == 3 ? 251 : 1) {
            const uint8_t bytes[4] = {static_cast<uint8_t>(value << (8 * (4 - count)) >> 24),
                                      static_cast<uint8_t>(value << (8 * (4 - count)) >> 16),
                                      static_cast<uint8_t>(value << (8 * (4 - count)) >> 8), 0};
            char text[3];
            ASSERT_EQ(ASCII85EncodeFinalGroup(bytes, count, text), count);
            ASSERT_EQ(std::string(text, count), LiteralText(Bytes(bytes, bytes + count)));
        }
    }
}

} // namespace
