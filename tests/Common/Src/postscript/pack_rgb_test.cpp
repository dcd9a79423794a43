// Packing of RGB rows: every kernel gives the plain loop's bytes and stays inside its rows.
#include "Common/Src/postscript/PackRGB.h"
#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <vector>

namespace {

class PackRGBTest : public testing::TestWithParam<PackRGBNamedKernel> {};

std::vector<PackRGBNamedKernel> AllKernels() {
    const auto kernels = PackRGBKernels();
    return {kernels.begin(), kernels.end()};
}

INSTANTIATE_TEST_SUITE_P(Kernels, PackRGBTest, testing::ValuesIn(AllKernels()),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_P(PackRGBTest, DropsTheFirstByteOfEveryPixel) {
    const uint8_t row[] = {9, 1, 2, 3, 9, 4, 5, 6};
    uint8_t out[6];
    GetParam().kernel(row, 2, out);
    EXPECT_EQ(std::vector<uint8_t>(out, out + 6), (std::vector<uint8_t>{1, 2, 3, 4, 5, 6}));
}

TEST_P(PackRGBTest, EveryLengthAtExactlyItsSize) {
    std::mt19937 random(1);
    for (int64_t count = 0; count <= 200; ++count) {
        const auto size = static_cast<size_t>(count);
        const std::unique_ptr<uint8_t[]> row(new uint8_t[size * 4]); // for the sanitizer
        for (size_t i = 0; i < size * 4; ++i)
            row[i] = static_cast<uint8_t>(random());
        const std::unique_ptr<uint8_t[]> out(new uint8_t[size * 3]);
        GetParam().kernel(row.get(), count, out.get());
        for (size_t i = 0; i < size * 3; ++i)
            ASSERT_EQ(out[i], row[i / 3 * 4 + 1 + i % 3]) << count << " " << i;
    }
}

TEST_P(PackRGBTest, LeavesTheBytesAfterTheRowAlone) {
    for (int64_t count = 0; count < 40; ++count) {
        const std::vector<uint8_t> row(160, 7);
        std::vector<uint8_t> out(200, 99);
        GetParam().kernel(row.data(), count, out.data());
        for (size_t i = static_cast<size_t>(count) * 3; i < out.size(); ++i)
            ASSERT_EQ(out[i], 99) << count;
    }
}

TEST(PackRGB, PlainKernelComesFirst) {
    EXPECT_EQ(PackRGBKernels().front().kernel, PackRGBPlain);
}

} // namespace
