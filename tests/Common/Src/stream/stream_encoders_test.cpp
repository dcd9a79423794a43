// The stream encoders: lines, blocks, the end of the data, and what an error leaves behind.
#include "Common/Src/stream/StreamEncoders.h"
#include "Common/Src/stream/Writebuffer.h"
#include "tests/Common/Src/stream/ASCII85KernelNames.h"
#include "tests/Common/Src/stream/LiteralASCII85.h"
#include "tests/Common/Src/stream/OutputFile.h"
#include <cerrno>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <random>

namespace {

using Bytes = std::vector<uint8_t>;

/// A Writebuffer on a temporary file.
class Output {
public:
    Output() : mWriteBuffer(NewWbuffer(65536, 0, mFile.Fd())) {}
    ~Output() {
        if (mWriteBuffer != nullptr) (void)DisposeWbuffer(mWriteBuffer);
    }
    Output(const Output &) = delete;
    Output &operator=(const Output &) = delete;

    Writebuffer *Get() { return mWriteBuffer; }

    /// Ends the Writebuffer and returns everything written.
    std::string Finish() {
        EXPECT_EQ(DisposeWbuffer(mWriteBuffer), 0);
        mWriteBuffer = nullptr;
        return mFile.Contents();
    }

private:
    OutputFile mFile;
    Writebuffer *mWriteBuffer;
};

auto LiteralEncoder(std::string &text) {
    return LiteralASCII85([&text](const char *bytes, size_t length) {
        text.append(bytes, length);
        return int16_t{0};
    });
}

std::string LiteralStream(const Bytes &data) {
    std::string text;
    auto encoder = LiteralEncoder(text);
    EXPECT_EQ(encoder.Write(data.data(), data.size()), 0);
    EXPECT_EQ(encoder.Close(), 0);
    return text;
}

/// The stream of `data`, given to the encoder in pieces of the lengths that `next` returns.
std::string Stream(ASCII85Kernel kernel, const Bytes &data, const std::function<size_t()> &next) {
    // One Writebuffer for all: making one zeroes 2 MiB. What comes out stays in its current buffer.
    static Output output;
    WBBuffer &current = *output.Get()->current;
    ASCII85StreamEncoder encoder(output.Get(), kernel);
    for (size_t at = 0; at < data.size();) {
        const size_t length = std::min(next(), data.size() - at);
        const std::unique_ptr<uint8_t[]> exact(new uint8_t[length]); // for the sanitizer
        std::copy_n(data.data() + at, length, exact.get());
        EXPECT_EQ(encoder.Write(exact.get(), length), 0);
        at += length;
    }
    EXPECT_EQ(encoder.Close(), 0);
    EXPECT_EQ(output.Get()->current, &current) << "more than a buffer can hold";
    std::string text(reinterpret_cast<char *>(current.data), current.length);
    current.length = 0;
    return text;
}

std::string Stream(const Bytes &data) {
    return Stream(ASCII85FastestKernel(), data, [&] { return data.size(); });
}

/// Data of one kind: 0 zeros, 1 bytes 255, 2 random, 3 all of these mixed.
Bytes Data(int kind, size_t length) {
    std::mt19937 random(static_cast<unsigned>(length));
    Bytes data(length);
    unsigned now = 0;
    for (size_t i = 0; i < length; ++i) {
        if (i % 4 == 0) now = kind == 3 ? random() % 3 : static_cast<unsigned>(kind);
        data[i] = now == 0 ? uint8_t{0} : now == 1 ? uint8_t{255} : static_cast<uint8_t>(random());
    }
    return data;
}

/// Data whose text, before Close, leaves `count` characters on the line; all groups are zero.
Bytes DataLeaving(size_t count) {
    return Bytes(count * 4);
}

class ASCII85StreamEncoderTest : public testing::TestWithParam<ASCII85NamedKernel> {};

INSTANTIATE_TEST_SUITE_P(Kernels, ASCII85StreamEncoderTest, testing::ValuesIn(AllASCII85Kernels()),
                         ASCII85KernelTestName);

TEST_P(ASCII85StreamEncoderTest, EveryShortLengthOfEveryKindOfData) {
    for (int kind = 0; kind < 4; ++kind) {
        for (size_t length = 0; length <= 300; ++length) {
            const Bytes data = Data(kind, length);
            const std::string expected = LiteralStream(data);
            ASSERT_EQ(Stream(GetParam().kernel, data, [&] { return length; }), expected)
                << kind << " " << length;
            ASSERT_EQ(Stream(GetParam().kernel, data, [] { return size_t{1}; }), expected);
        }
    }
}

TEST_P(ASCII85StreamEncoderTest, LongDataInPiecesOfAnySize) {
    for (int kind = 0; kind < 4; ++kind) {
        const Bytes data = Data(kind, 50001);
        const std::string expected = LiteralStream(data);
        std::mt19937 random(7);
        for (size_t rows : {size_t{50001}, size_t{14880}, size_t{4960}, size_t{63}, size_t{65}}) {
            ASSERT_EQ(Stream(GetParam().kernel, data, [&] { return rows; }), expected) << rows;
        }
        ASSERT_EQ(Stream(GetParam().kernel, data,
                         [&] { return size_t{1} + random() % (1U << random() % 16); }),
                  expected);
    }
}

// All counts of characters on the line at Close, with each remainder of bytes in the last group.
TEST_P(ASCII85StreamEncoderTest, EveryPlaceOfTheEndMarkInALine) {
    for (size_t count = 0; count < 160; ++count) {
        for (size_t rest = 0; rest < 4; ++rest) {
            Bytes data = DataLeaving(count);
            for (size_t i = 0; i < rest; ++i)
                data.push_back(static_cast<uint8_t>(200 + i));
            ASSERT_EQ(Stream(GetParam().kernel, data, [&] { return data.size(); }),
                      LiteralStream(data))
                << count << " " << rest;
        }
    }
}

TEST_P(ASCII85StreamEncoderTest, EveryPlaceInALineWhereDataGoOn) {
    for (size_t count = 0; count < 80; ++count) {
        Bytes data = DataLeaving(count);
        const Bytes more = Data(3, 20000);
        data.insert(data.end(), more.begin(), more.end());
        ASSERT_EQ(Stream(GetParam().kernel, data, [&] { return data.size(); }),
                  LiteralStream(data));
    }
}

TEST(ASCII85StreamEncoder, DataOfManyBuffersReachTheFileInOrder) {
    const Bytes data = Data(3, 9000001);
    Output output;
    ASCII85StreamEncoder encoder(output.Get());
    for (size_t at = 0; at < data.size(); at += 14880) {
        ASSERT_EQ(encoder.Write(data.data() + at, std::min<size_t>(14880, data.size() - at)), 0);
    }
    ASSERT_EQ(encoder.Close(), 0);
    EXPECT_TRUE(output.Finish() == LiteralStream(data));
}

TEST(ASCII85StreamEncoder, FourZeroBytesAreZ) {
    EXPECT_EQ(Stream(Bytes(4)), "z~>\n");
}

TEST(ASCII85StreamEncoder, FourBytes255) {
    EXPECT_EQ(Stream(Bytes(4, 255)), "s8W-!~>\n");
}

TEST(ASCII85StreamEncoder, NoDataGiveTheEndMarkAlone) {
    EXPECT_EQ(Stream({}), "~>\n");
}

TEST(ASCII85StreamEncoder, LeftOverBytesBecomeAsManyCharacters) {
    EXPECT_EQ(Stream({0}), "!~>\n");
    EXPECT_EQ(Stream({0, 0}), "!!~>\n");
    EXPECT_EQ(Stream({0, 0, 0}), "!!!~>\n") << "never z";
    EXPECT_EQ(Stream({0, 0, 0, 0, 1}), "z*~>\n");
    EXPECT_EQ(Stream({0, 0, 0, 0, 1, 0}), "z<*~>\n");
    EXPECT_EQ(Stream({0, 0, 0, 0, 1, 0, 0}), "z<<*~>\n");
}

TEST(ASCII85StreamEncoder, EndMarkThatFillsTheLineLeavesAnEmptyOne) {
    EXPECT_EQ(Stream(DataLeaving(76)), std::string(76, 'z') + "~>\n");
    EXPECT_EQ(Stream(DataLeaving(77)), std::string(77, 'z') + "~>\n\n");
    EXPECT_EQ(Stream(DataLeaving(78)), std::string(78, 'z') + "~>\n\n");
}

TEST(ASCII85StreamEncoder, EndMarkIsSplitWhenOneCharacterIsLeft) {
    EXPECT_EQ(Stream(DataLeaving(79)), std::string(79, 'z') + "~\n>\n");
}

TEST(ASCII85StreamEncoder, EndMarkStandsAloneAfterAFullLine) {
    EXPECT_EQ(Stream(DataLeaving(80)), std::string(80, 'z') + "\n~>\n");
}

TEST(ASCII85StreamEncoder, GroupsAreSplitBetweenLines) {
    Bytes data(4 * 78);
    data.resize(data.size() + 4, 255);
    EXPECT_EQ(Stream(data), std::string(78, 'z') + "s8\nW-!~>\n");
}

TEST(ASCII85StreamEncoder, NothingComesOutBeforeTheSixtyFourthByte) {
    Output output;
    ASCII85StreamEncoder encoder(output.Get());
    const Bytes data(64, 1);
    ASSERT_EQ(encoder.Write(data.data(), 63), 0);
    EXPECT_EQ(output.Get()->current->length, 0U);
    ASSERT_EQ(encoder.Write(data.data() + 63, 1), 0);
    EXPECT_EQ(output.Get()->current->length, 81U) << "one line of sixteen groups";
}

TEST(ASCII85StreamEncoder, UnfinishedLinesStayInTheEncoder) {
    Output output;
    ASCII85StreamEncoder encoder(output.Get());
    const Bytes zeros(64 * 5);
    ASSERT_EQ(encoder.Write(zeros.data(), 64 * 4), 0);
    EXPECT_EQ(output.Get()->current->length, 0U);
    ASSERT_EQ(encoder.Write(zeros.data(), 64), 0);
    EXPECT_EQ(output.Get()->current->length, 81U);
}

TEST(ASCII85StreamEncoder, WriteOfNothingDoesNothing) {
    Output output;
    ASCII85StreamEncoder encoder(output.Get());
    output.Get()->error = EIO;
    EXPECT_EQ(encoder.Write(nullptr, 0), 0);
    output.Get()->error = 0;
    EXPECT_EQ(output.Finish(), "");
}

TEST(ASCII85StreamEncoder, CanBeUsedAgainAfterClose) {
    Output output;
    ASCII85StreamEncoder encoder(output.Get());
    const Bytes data = Data(2, 101);
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(encoder.Write(data.data(), data.size()), 0);
        ASSERT_EQ(encoder.Close(), 0);
    }
    const std::string once = LiteralStream(data);
    EXPECT_EQ(output.Finish(), once + once + once);
}

TEST(ASCII85StreamEncoder, IsAnOutputStreamEncoder) {
    Output output;
    const std::unique_ptr<OutputStreamEncoder> encoder =
        std::make_unique<ASCII85StreamEncoder>(output.Get());
    ASSERT_EQ(encoder->Write("\0\0\0\0", 4), 0);
    ASSERT_EQ(encoder->Close(), 0);
    EXPECT_EQ(output.Finish(), "z~>\n");
}

// An error shows only where a line is handed over: until then a call succeeds.
TEST(ASCII85StreamEncoder, ErrorIsReturnedWhenALineIsHandedOver) {
    Output output;
    ASCII85StreamEncoder encoder(output.Get());
    output.Get()->error = ENOSPC;
    const Bytes data(80, 1);
    EXPECT_EQ(encoder.Write(data.data(), 63), 0);
    EXPECT_EQ(encoder.Write(data.data(), 1), ENOSPC);
    EXPECT_EQ(encoder.Write(data.data(), 80), ENOSPC);
    EXPECT_EQ(encoder.Close(), ENOSPC) << "the end mark is written as a line of its own";
}

TEST(ASCII85StreamEncoder, FailedBlockAndTheRestOfTheCallAreDropped) {
    Output output;
    ASCII85StreamEncoder encoder(output.Get());
    const Bytes data(64 * 3 + 10, 1);
    output.Get()->error = ENOSPC;
    EXPECT_EQ(encoder.Write(data.data(), data.size()), ENOSPC);
    output.Get()->error = 0;
    output.Get()->current->length = 0;
    EXPECT_EQ(encoder.Close(), 0);
    EXPECT_EQ(output.Finish(), "~>\n");
}

// Errors that come and go while data of random lengths are written: each call returns what the
// literal transcription returns, and what is written after an error is the same.
TEST(ASCII85StreamEncoder, EveryCallReturnsWhatTheLiteralTranscriptionReturns) {
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        Output output;
        ASCII85StreamEncoder encoder(output.Get());
        std::string expected;
        int16_t sinkError = 0;
        LiteralASCII85 literal([&](const char *bytes, size_t length) {
            expected.append(bytes, length);
            return sinkError;
        });
        for (int call = 0; call < 20; ++call) {
            if (random() % 3 == 0) {
                sinkError = sinkError == 0 ? int16_t{EDQUOT} : int16_t{0};
                output.Get()->error = sinkError;
                output.Get()->current->length = 0; // what went before is not compared
                expected.clear();
            }
            const Bytes data = Data(static_cast<int>(random() % 4), random() % 400);
            const bool close = random() % 8 == 0;
            ASSERT_EQ(close ? encoder.Close() : encoder.Write(data.data(), data.size()),
                      close ? literal.Close() : literal.Write(data.data(), data.size()));
            if (sinkError == 0) {
                const WBBuffer &current = *output.Get()->current;
                ASSERT_EQ(std::string(reinterpret_cast<char *>(current.data), current.length),
                          expected);
            }
        }
        output.Get()->error = 0;
    }
}

TEST(ASCII85StreamEncoder, ErrorOfTheDeviceReachesTheCaller) {
    const std::unique_ptr<FILE, int (*)(FILE *)> full(std::fopen("/dev/full", "w"), std::fclose);
    ASSERT_NE(full, nullptr);
    Writebuffer *wb = NewWbuffer(65536, 0, fileno(full.get()));
    {
        ASCII85StreamEncoder encoder(wb);
        const Bytes data(100000, 1);
        (void)encoder.Write(data.data(), 60000); // the error may show already, or not yet
        WaitForWriter(wb);
        EXPECT_EQ(encoder.Write(data.data(), data.size()), ENOSPC);
        EXPECT_EQ(encoder.Close(), ENOSPC);
    }
    EXPECT_EQ(DisposeWbuffer(wb), ENOSPC);
}

TEST(BinaryStreamEncoder, PassesBytesThrough) {
    Output output;
    BinaryStreamEncoder encoder(output.Get());
    EXPECT_EQ(encoder.Write("a\0b", 3), 0);
    EXPECT_EQ(encoder.Write("", 0), 0);
    EXPECT_EQ(encoder.Write("c", 1), 0);
    EXPECT_EQ(encoder.Close(), 0);
    EXPECT_EQ(output.Finish(), std::string("a\0bc", 4)) << "Close adds nothing";
}

TEST(BinaryStreamEncoder, ReturnsTheLatchedError) {
    Output output;
    BinaryStreamEncoder encoder(output.Get());
    output.Get()->error = EIO;
    EXPECT_EQ(encoder.Write("abc", 3), EIO);
    EXPECT_EQ(encoder.Write("", 0), EIO);
    EXPECT_EQ(encoder.Close(), 0);
    output.Get()->error = 0;
}

} // namespace
