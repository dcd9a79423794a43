#include "Common/Src/ScanLines.h"

#include "tests/Common/Src/ReferenceScan.h"
#include "tests/GuardedBytes.h"

#include <gmock/gmock.h>
#include <random>

using testing::ElementsAre;

namespace {

using Bytes = std::vector<uint8_t>;

/// One pixel through a function.
Bytes OnePixel(ScaleLineProc scaleLine, const Bytes &source, size_t size) {
    Bytes line(size, 0xAA);
    EXPECT_EQ(scaleLine(source.data(), {0, 0}, {1, 0}, 1, 0, 1, line.data()), 0);
    return line;
}

Bytes RandomBytes(std::mt19937 &random, size_t size) {
    Bytes bytes(size);
    for (uint8_t &byte : bytes)
        byte = static_cast<uint8_t>(random());
    return bytes;
}

/// A whole destination of `destWidth` pixels, of which `count` from `first` on are sampled.
struct Sampling {
    int64_t sourceWidth, destWidth, first, count;
};

void CompareWithReference(const ScanFunction &function, const Sampling &s, std::mt19937 &random) {
    const GuardedBytes source(static_cast<size_t>(s.sourceWidth * function.sourceSize));
    for (size_t i = 0; i < source.Size(); ++i)
        source.Data()[i] = static_cast<uint8_t>(random());
    const int64_t scaled = s.first * s.sourceWidth;
    const ScanStart start = {scaled / s.destWidth, scaled % s.destWidth};
    const ScanStep step = {s.sourceWidth / s.destWidth, s.sourceWidth % s.destWidth};
    const int64_t offset = 3;
    Bytes expected(static_cast<size_t>((offset + s.count + 3) * function.lineSize), 0x5A);
    Bytes line = expected;
    ReferenceScaleLine(source.Data(), start, step, s.destWidth, offset, s.count, expected.data(),
                       function.sourceSize, function.lineSize, function.pixel);
    EXPECT_EQ(
        function.scaleLine(source.Data(), start, step, s.destWidth, offset, s.count, line.data()),
        0);
    EXPECT_EQ(line, expected) << function.name << ": " << s.sourceWidth << " to " << s.destWidth
                              << ", " << s.count << " from " << s.first;
}

} // namespace

TEST(ScaleLine, EveryFunctionStepsLikeTheReferenceAndStaysInsideTheRow) {
    std::mt19937 random(1);
    for (const ScanFunction &function : AllScanFunctions()) {
        for (int round = 0; round < 1500; ++round) {
            Sampling s = {};
            s.sourceWidth = 1 + random() % (round % 3 ? 40 : 300);
            s.destWidth = round % 5 == 0 ? s.sourceWidth : 1 + random() % 300;
            s.first = random() % s.destWidth;
            s.count = random() % (s.destWidth - s.first + 1);
            CompareWithReference(function, s, random);
        }
    }
}

TEST(ScaleLine, AnyStartErrorStepsLikeTheReference) {
    std::mt19937 random(2);
    for (const ScanFunction &function : AllScanFunctions()) {
        for (int64_t error : {-5, 0, 1, 6, 7, 8, 20}) {
            const ScanStart start = {2, error};
            const Bytes source = RandomBytes(random, 64 * 12);
            for (const ScanStep step : {ScanStep{1, 0}, {0, 3}, {2, 5}, {1, 6}}) {
                Bytes expected(12 * 12, 1), line(12 * 12, 1);
                ReferenceScaleLine(source.data(), start, step, 7, 0, 10, expected.data(),
                                   function.sourceSize, function.lineSize, function.pixel);
                function.scaleLine(source.data(), start, step, 7, 0, 10, line.data());
                EXPECT_EQ(line, expected) << function.name << " error " << error;
            }
        }
    }
}

TEST(ScaleLine, TwiceAsWideRepeatsEveryPixel) {
    const Bytes source = {1, 2, 3};
    Bytes line(6);
    ScaleLine_8(source.data(), {0, 0}, {0, 3}, 6, 0, 6, line.data());
    EXPECT_THAT(line, ElementsAre(1, 1, 2, 2, 3, 3));
}

TEST(ScaleLine, HalfAsWideTakesEverySecondPixelFromTheFirstOn) {
    const Bytes source = {1, 2, 3, 4, 5, 6};
    Bytes line(3);
    ScaleLine_8(source.data(), {0, 0}, {2, 0}, 3, 0, 3, line.data());
    EXPECT_THAT(line, ElementsAre(1, 3, 5));
}

TEST(ScaleLine, NoPixelsAreWrittenForACountBelowOne) {
    for (const ScanFunction &function : AllScanFunctions()) {
        for (int64_t count : {int64_t{0}, int64_t{-1}, INT64_MIN}) {
            uint8_t line = 0x5A;
            EXPECT_EQ(function.scaleLine(nullptr, {0, 0}, {1, 0}, 1, 0, count, &line), 0);
            EXPECT_EQ(line, 0x5A);
        }
    }
}

TEST(ScaleLine_Grey, IsTheDarknessOfGreenAlone) {
    EXPECT_THAT(OnePixel(ScaleLine_Grey, {0, 10, 200, 30}, 1), ElementsAre(55));
    EXPECT_THAT(OnePixel(ScaleLine_Grey, {255, 0, 255, 0}, 1), ElementsAre(0));
    EXPECT_THAT(OnePixel(ScaleLine_Grey, {9, 255, 0, 255}, 1), ElementsAre(255));
}

TEST(ScaleLine_CMYKToGrey, WeighsTheInksWithTheirBlack) {
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToGrey, {0, 0, 0, 255}, 1), ElementsAre(255));
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToGrey, {255, 0, 0, 0}, 1), ElementsAre(79));
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToGrey, {0, 255, 0, 0}, 1), ElementsAre(143));
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToGrey, {0, 0, 255, 0}, 1), ElementsAre(31));
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToGrey, {0, 0, 0, 0}, 1), ElementsAre(0));
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToGrey, {255, 255, 255, 255}, 1), ElementsAre(255));
    // 100 * 127 / 255 = 49, and 128 of black
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToGrey, {100, 100, 100, 128}, 1), ElementsAre(177));
}

TEST(ScaleLine_CMYKToGrey, EveryInkAndBlackGiveTheReferenceValue) {
    const ScanFunction function = AllScanFunctions()[5];
    for (size_t channel = 0; channel < 3; ++channel) {
        Bytes source(65536 * 4), expected(65536), line(65536);
        for (size_t i = 0; i < 65536; ++i) {
            source[4 * i + channel] = static_cast<uint8_t>(i);
            source[4 * i + 3] = static_cast<uint8_t>(i >> 8);
            function.pixel(&source[4 * i], &expected[i]);
        }
        ScaleLine_CMYKToGrey(source.data(), {0, 0}, {1, 0}, 65536, 0, 65536, line.data());
        EXPECT_TRUE(line == expected) << "channel " << channel;
    }
}

TEST(ScaleLine_CMYKToRGB, TakesTheInksAwayFromWhite) {
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToRGB, {0, 0, 0, 0}, 4), ElementsAre(255, 255, 255, 255));
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToRGB, {0, 0, 0, 255}, 4), ElementsAre(255, 0, 0, 0));
    EXPECT_THAT(OnePixel(ScaleLine_CMYKToRGB, {255, 0, 100, 0}, 4), ElementsAre(255, 0, 255, 155));
}

TEST(ScaleLine_CMYKToRGB, EveryInkAndBlackGiveTheReferenceValue) {
    Bytes source, expected;
    for (int ink = 0; ink < 256; ++ink)
        for (int black = 0; black < 256; ++black) {
            const auto v = static_cast<uint8_t>(255 - WithBlack(ink, black));
            for (int byte : {ink, ink, ink, black})
                source.push_back(static_cast<uint8_t>(byte));
            for (int byte : {255, int{v}, int{v}, int{v}})
                expected.push_back(static_cast<uint8_t>(byte));
        }
    Bytes line(source.size());
    ScaleLine_CMYKToRGB(source.data(), {0, 0}, {1, 0}, 65536, 0, 65536, line.data());
    EXPECT_EQ(line, expected);
}

TEST(EraseLine, FillsTheWidthWithWhiteAndNothingElse) {
    struct Case {
        EraseLineProc eraseLine;
        Bytes white;
    };
    const Case cases[] = {
        {EraseLine_8, {0}},
        {EraseLine_32, Bytes(4, 0)},
        {EraseLine_64, Bytes(8, 0)},
        {EraseLineRGB, Bytes(4, 255)},
        {EraseLineRGB96, {255, 255, 255, 255, 0, 0, 0, 0, 0, 0, 0, 0}},
        {EraseLineCMYK96, Bytes(12, 0)},
    };
    for (const Case &c : cases) {
        for (int64_t width : {-1, 0, 1, 2, 7, 1000}) {
            const int64_t filled = std::max<int64_t>(width, 0);
            Bytes expected;
            for (int64_t i = 0; i < filled; ++i)
                expected.insert(expected.end(), c.white.begin(), c.white.end());
            expected.resize(expected.size() + 12, 0x5A);
            Bytes line(expected.size(), 0x5A);
            c.eraseLine(line.data(), width);
            EXPECT_EQ(line, expected) << "width " << width;
        }
    }
}

TEST(PixelSizeFromFormat, KnowsTheHostFormats) {
    const std::pair<int32_t, int32_t> sizes[] = {{8, 1},   {32, 4}, {33, 4}, {34, 8}, {35, 12},
                                                 {36, 12}, {64, 0}, {0, 0},  {-1, 0}, {16, 0},
                                                 {24, 0},  {37, 0}, {40, 0}};
    for (const auto &[format, size] : sizes)
        EXPECT_EQ(PixelSizeFromFormat(format), size) << format;
}
