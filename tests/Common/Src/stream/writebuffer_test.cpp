// The write buffer: hand-over, order, latched errors, and failures while it is made.
#include "Common/Src/stream/Writebuffer.h"
#include "tests/Common/Src/stream/Faults.h"
#include "tests/Common/Src/stream/OutputFile.h"
#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <random>
#include <thread>

namespace {

std::string RandomBytes(size_t length, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::string bytes(length, '\0');
    for (char &byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

class WritebufferTest : public testing::Test {
protected:
    WritebufferTest() { mFaults.watchedFd = mFile.Fd(); }
    ~WritebufferTest() override { EXPECT_EQ(mFaults.LiveVallocs(), 0) << "buffers leaked"; }

    Writebuffer *Make() { return NewWbuffer(65536, 5242880, mFile.Fd()); }

    /// NewWbuffer that fails; returns what it says on standard error.
    std::string MakeInVain(int fd) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(NewWbuffer(65536, 5242880, fd), nullptr);
        EXPECT_EQ(mFaults.ThreadsStarted(), 0);
        return testing::internal::GetCapturedStderr();
    }

    /// Writes all of `bytes`, which must be accepted.
    static void Write(Writebuffer *wb, const std::string &bytes) {
        uint64_t count = bytes.size();
        EXPECT_EQ(WBWrite(wb, &count, bytes.data()), 0);
        EXPECT_EQ(count, bytes.size());
    }

    Faults mFaults;
    OutputFile mFile;
};

TEST_F(WritebufferTest, NewWbuffer_HasThirtyTwoZeroedBuffersOf64KiB) {
    Writebuffer *wb = Make();
    ASSERT_NE(wb, nullptr);
    EXPECT_EQ(wb->capacity, 65536U);
    EXPECT_EQ(wb->sizeHint, 5242880);
    EXPECT_EQ(wb->fd, mFile.Fd());
    EXPECT_EQ(wb->bufferCount, 32);
    EXPECT_EQ(wb->error, 0);
    EXPECT_EQ(mFaults.LiveVallocs(), 32);
    WBBuffer *buffer = wb->current;
    for (int index = 1; index <= 32; ++index) {
        EXPECT_EQ(buffer->index, index);
        EXPECT_EQ(buffer->length, 0U);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(buffer->data) % static_cast<size_t>(getpagesize()),
                  0U);
        EXPECT_EQ(std::string(reinterpret_cast<char *>(buffer->data), 65536),
                  std::string(65536, '\0'));
        QueuePush(&wb->freeQueue, buffer);
        buffer = static_cast<WBBuffer *>(QueuePop(&wb->freeQueue));
    }
    wb->current = buffer;
    EXPECT_EQ(DisposeWbuffer(wb), 0);
}

TEST_F(WritebufferTest, NewWbuffer_IgnoresTheBufferSize) {
    for (uint64_t size : {uint64_t{0}, uint64_t{1}, uint64_t{1} << 40}) {
        Writebuffer *wb = NewWbuffer(size, 1, mFile.Fd());
        ASSERT_NE(wb, nullptr);
        EXPECT_EQ(wb->capacity, 65536U);
        EXPECT_EQ(DisposeWbuffer(wb), 0);
    }
}

TEST_F(WritebufferTest, NewWbuffer_StartsAtTheSizeOfTheFile) {
    ASSERT_EQ(write(mFile.Fd(), "12345", 5), 5);
    Writebuffer *wb = Make();
    ASSERT_NE(wb, nullptr);
    EXPECT_EQ(wb->position, 5);
    EXPECT_EQ(wb->highWater, 5);
    Write(wb, std::string(65537, 'x'));
    WaitForWriter(wb);
    EXPECT_EQ(wb->position, 5 + 65536);
    EXPECT_EQ(wb->highWater, 5 + 65536);
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFile.Contents(), "12345" + std::string(65537, 'x'));
}

TEST_F(WritebufferTest, NewWbuffer_TurnsTheFileCacheOff) {
    Writebuffer *wb = Make();
    EXPECT_EQ(mFaults.cacheDisabledFor, std::vector<int>{mFile.Fd()});
    EXPECT_EQ(DisposeWbuffer(wb), 0);
}

TEST_F(WritebufferTest, WBWrite_ZeroBytesReturnTheLatchedError) {
    Writebuffer *wb = Make();
    uint64_t count = 0;
    EXPECT_EQ(WBWrite(wb, &count, nullptr), 0);
    wb->error = EIO;
    EXPECT_EQ(WBWrite(wb, &count, nullptr), EIO);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(DisposeWbuffer(wb), EIO);
}

TEST_F(WritebufferTest, WBWrite_ExactlyOneBuffer_IsNotHandedOver) {
    Writebuffer *wb = Make();
    const std::string bytes = RandomBytes(65536);
    Write(wb, bytes);
    EXPECT_EQ(wb->current->index, 1);
    EXPECT_EQ(wb->current->length, 65536U);
    WaitForWriter(wb);
    EXPECT_TRUE(mFaults.WriteLengths().empty());
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFaults.WriteLengths(), std::vector<size_t>{65536});
    EXPECT_EQ(mFile.Contents(), bytes);
}

TEST_F(WritebufferTest, WBWrite_OneByteMoreHandsTheFullBufferOver) {
    Writebuffer *wb = Make();
    const std::string bytes = RandomBytes(65537);
    Write(wb, bytes);
    EXPECT_EQ(wb->current->index, 2);
    EXPECT_EQ(wb->current->length, 1U);
    WaitForWriter(wb);
    EXPECT_EQ(mFaults.WriteLengths(), std::vector<size_t>{65536});
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFaults.WriteLengths(), (std::vector<size_t>{65536, 1}));
    EXPECT_EQ(mFile.Contents(), bytes);
}

TEST_F(WritebufferTest, WBWrite_PiecesOfAnySizeArriveInOrder) {
    const std::string bytes = RandomBytes(5 * 1024 * 1024 + 17);
    std::mt19937 random(2);
    Writebuffer *wb = Make();
    for (size_t at = 0; at < bytes.size();) {
        const size_t length =
            std::min<size_t>(bytes.size() - at, random() % (1U << (random() % 20)));
        Write(wb, bytes.substr(at, length));
        at += length;
    }
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFile.Contents(), bytes);
    std::vector<size_t> expected(bytes.size() / 65536, 65536);
    expected.push_back(bytes.size() % 65536);
    EXPECT_EQ(mFaults.WriteLengths(), expected);
}

TEST_F(WritebufferTest, WBAccept_BytesMadeInPlaceAreWrittenInOrder) {
    Writebuffer *wb = Make();
    Write(wb, std::string(65530, 'a'));
    const WBRoom room = WBFreeRoom(wb);
    ASSERT_EQ(room.size, 6U);
    std::copy_n("bcdefg", 6, room.data);
    EXPECT_EQ(WBAccept(wb, 6), 0);
    EXPECT_EQ(WBFreeRoom(wb).size, 0U) << "a full buffer is handed over with the next byte";
    EXPECT_EQ(wb->current->index, 1);
    Write(wb, "h");
    EXPECT_EQ(wb->current->index, 2);
    EXPECT_EQ(WBFreeRoom(wb).size, 65535U);
    WaitForWriter(wb); // which notes what has become of its last write
    wb->error = EIO;
    EXPECT_EQ(WBAccept(wb, 0), EIO);
    wb->error = 0;
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFile.Contents(), std::string(65530, 'a') + "bcdefgh");
}

TEST_F(WritebufferTest, WBWrite_RunsTwoMegabytesAheadOfTheDisk) {
    Writebuffer *wb = Make();
    mFaults.HoldWrites();
    Write(wb, std::string(32 * 65536, 'a')); // would never return if it blocked
    EXPECT_EQ(wb->current->index, 32);
    mFaults.ReleaseWrites();
    Write(wb, "b");
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFile.Contents(), std::string(32 * 65536, 'a') + "b");
}

TEST_F(WritebufferTest, WBWrite_AllocatesNothing) {
    mFaults.watchedFd = -1; // the record of the calls allocates
    Writebuffer *wb = Make();
    const std::string bytes(1000000, 'x');
    const size_t before = mFaults.Allocations();
    for (int i = 0; i < 10; ++i) {
        uint64_t count = bytes.size();
        ASSERT_EQ(WBWrite(wb, &count, bytes.data()), 0);
    }
    EXPECT_EQ(mFaults.Allocations(), before);
    EXPECT_EQ(DisposeWbuffer(wb), 0);
}

TEST_F(WritebufferTest, WBFlushCurrent_FullBuffersGoToTheWriterAndEmptyOnesBack) {
    Writebuffer *wb = Make();
    WBBuffer *empty = wb->current;
    EXPECT_EQ(WBFlushCurrent(wb), 0);
    EXPECT_EQ(wb->current, empty);
    for (int i = 0; i < 31; ++i)
        QueuePush(&wb->freeQueue, QueuePop(&wb->freeQueue));
    EXPECT_EQ(QueuePop(&wb->freeQueue), empty) << "an empty buffer queues up behind the others";
    Write(wb, "abc");
    EXPECT_EQ(WBFlushCurrent(wb), 0);
    EXPECT_EQ(wb->current, nullptr);
    wb->current = static_cast<WBBuffer *>(QueuePop(&wb->freeQueue));
    wb->current->length = 0;
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFile.Contents(), "abc");
}

TEST_F(WritebufferTest, DisposeWbuffer_OfAnEmptyOneWritesNothingAndEndsTheThread) {
    Writebuffer *wb = Make();
    EXPECT_EQ(mFaults.ThreadsStarted(), 1);
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFaults.ThreadsJoined(), 1);
    EXPECT_TRUE(mFaults.WriteLengths().empty());
}

TEST_F(WritebufferTest, DisposeWbuffer_WaitsForTheDisk) {
    Writebuffer *wb = Make();
    mFaults.HoldWrites();
    Write(wb, std::string(300000, 'x'));
    std::thread disk([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        mFaults.ReleaseWrites();
    });
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFile.Contents().size(), 300000U);
    disk.join();
}

TEST_F(WritebufferTest, DisposeWbuffer_LeavesTheDescriptorOpen) {
    EXPECT_EQ(DisposeWbuffer(Make()), 0);
    EXPECT_NE(fcntl(mFile.Fd(), F_GETFD), -1);
}

TEST_F(WritebufferTest, WriteError_IsLatchedAndNothingFollows) {
    Writebuffer *wb = Make();
    mFaults.AddWriteActions({{}, {}, {.error = ENOSPC}});
    const std::string bytes = RandomBytes(3 * 65536 + 1);
    mFaults.HoldWrites();
    Write(wb, bytes);
    mFaults.ReleaseWrites();
    WaitForWriter(wb);
    for (int i = 0; i < 3; ++i) {
        uint64_t count = 10;
        EXPECT_EQ(WBWrite(wb, &count, bytes.data()), ENOSPC);
        EXPECT_EQ(count, 10U) << "it still fits the current buffer";
    }
    EXPECT_EQ(wb->position, 3 * 65536) << "the failed buffer counts";
    EXPECT_EQ(wb->highWater, 3 * 65536);
    EXPECT_EQ(DisposeWbuffer(wb), ENOSPC);
    EXPECT_EQ(mFaults.WriteLengths().size(), 3U);
    EXPECT_EQ(mFile.Contents(), bytes.substr(0, 2 * 65536));
}

TEST_F(WritebufferTest, WriteError_StopsAWriteAtItsNextHandOver) {
    Writebuffer *wb = Make();
    wb->error = ENOSPC;
    const std::string bytes(1000000, 'x');
    uint64_t count = bytes.size();
    EXPECT_EQ(WBWrite(wb, &count, bytes.data()), ENOSPC);
    EXPECT_EQ(count, 65536U);
    EXPECT_EQ(wb->current->length, 0U);
    EXPECT_EQ(wb->current->index, 2);
    EXPECT_EQ(DisposeWbuffer(wb), ENOSPC);
    EXPECT_TRUE(mFile.Contents().empty());
}

TEST_F(WritebufferTest, WriteError_NeverStallsTheCaller) {
    Writebuffer *wb = Make();
    wb->error = EIO;
    const std::string bytes(65536, 'x');
    for (int i = 0; i < 200; ++i) {
        uint64_t count = bytes.size();
        EXPECT_EQ(WBWrite(wb, &count, bytes.data()), EIO);
    }
    EXPECT_EQ(DisposeWbuffer(wb), EIO);
    EXPECT_TRUE(mFaults.WriteLengths().empty());
}

TEST_F(WritebufferTest, WriteError_OfTheLastBufferIsReportedByDispose) {
    Writebuffer *wb = Make();
    mFaults.AddWriteActions({{.error = EFBIG}});
    Write(wb, "abc");
    EXPECT_EQ(DisposeWbuffer(wb), EFBIG);
}

TEST_F(WritebufferTest, WriteError_OfAFullDevice) {
    const int fd = open("/dev/full", O_WRONLY | O_CLOEXEC);
    ASSERT_GE(fd, 0);
    Writebuffer *wb = NewWbuffer(65536, 5242880, fd);
    ASSERT_NE(wb, nullptr);
    const std::string bytes(65537, 'x');
    uint64_t count = bytes.size();
    (void)WBWrite(wb, &count, bytes.data()); // the error may show already, or not yet
    WaitForWriter(wb);
    count = 1;
    EXPECT_EQ(WBWrite(wb, &count, "y"), ENOSPC);
    EXPECT_EQ(DisposeWbuffer(wb), ENOSPC);
    close(fd);
}

TEST_F(WritebufferTest, InterruptedWrite_IsRepeatedWithTheSameBytes) {
    Writebuffer *wb = Make();
    mFaults.AddWriteActions({{.error = EINTR}, {.error = EINTR}, {.error = EINTR}});
    Write(wb, "abc");
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFaults.WriteLengths(), (std::vector<size_t>{3, 3, 3, 3}));
    EXPECT_EQ(mFile.Contents(), "abc");
}

TEST_F(WritebufferTest, InterruptedWrite_ThatThenFailsIsAnError) {
    Writebuffer *wb = Make();
    mFaults.AddWriteActions({{.error = EINTR}, {.error = EDQUOT}});
    Write(wb, "abc");
    EXPECT_EQ(DisposeWbuffer(wb), EDQUOT);
}

// Hosts judge the finished file; the driver does not complete a short write.
TEST_F(WritebufferTest, ShortWrite_CountsAsSuccessAndItsRestIsLost) {
    Writebuffer *wb = Make();
    mFaults.AddWriteActions({{.shortTo = 100}, {.shortTo = 0}});
    const std::string bytes = RandomBytes(3 * 65536);
    Write(wb, bytes);
    WaitForWriter(wb);
    EXPECT_EQ(wb->error, 0);
    EXPECT_EQ(wb->position, 2 * 65536) << "as if everything had been written";
    EXPECT_EQ(DisposeWbuffer(wb), 0);
    EXPECT_EQ(mFile.Contents(), bytes.substr(0, 100) + bytes.substr(2 * 65536));
}

TEST_F(WritebufferTest, NoRecord_FailsWithErrorZero) {
    mFaults.failingNothrowNew = 0;
    EXPECT_EQ(MakeInVain(mFile.Fd()), "NewWbuffer: failed, cleaning up, err = 0\n");
}

TEST_F(WritebufferTest, NoBufferAtAll_FailsWithErrorZero) {
    mFaults.vallocsThatWork = 0;
    EXPECT_EQ(MakeInVain(mFile.Fd()), "NewWbuffer: failed, cleaning up, err = 0\n");
}

TEST_F(WritebufferTest, FewerBuffers_AreEnough) {
    for (int buffers : {1, 2, 5, 31}) {
        OutputFile file;
        mFaults.vallocsThatWork = buffers;
        Writebuffer *wb = NewWbuffer(65536, 5242880, file.Fd());
        ASSERT_NE(wb, nullptr);
        EXPECT_EQ(wb->bufferCount, buffers);
        const std::string bytes = RandomBytes(40 * 65536 + 5);
        Write(wb, bytes);
        EXPECT_EQ(DisposeWbuffer(wb), 0);
        EXPECT_EQ(file.Contents(), bytes);
    }
}

TEST_F(WritebufferTest, MissingBufferRecord_IsSkipped) {
    mFaults.failingNothrowNew = 1; // the first one is the Writebuffer
    Writebuffer *wb = Make();
    ASSERT_NE(wb, nullptr);
    EXPECT_EQ(wb->bufferCount, 31);
    EXPECT_EQ(wb->current->index, 2);
    EXPECT_EQ(DisposeWbuffer(wb), 0);
}

TEST_F(WritebufferTest, ClosedDescriptor_FailsWithItsErrno) {
    EXPECT_EQ(MakeInVain(-1),
              "NewWBuffer, fstat returned " + std::to_string(EBADF) +
                  "\nNewWbuffer: failed, cleaning up, err = " + std::to_string(EBADF) + "\n");
}

TEST_F(WritebufferTest, FailingFstat_FailsWithItsErrno) {
    mFaults.fstatError = EOVERFLOW;
    EXPECT_EQ(MakeInVain(mFile.Fd()),
              "NewWBuffer, fstat returned " + std::to_string(EOVERFLOW) +
                  "\nNewWbuffer: failed, cleaning up, err = " + std::to_string(EOVERFLOW) + "\n");
}

// The buffer taken as the current one is not in the free queue: waiting for it would never end.
TEST_F(WritebufferTest, ThreadThatCannotStart_FailsWithItsCodeAndFreesEverything) {
    mFaults.threadError = EAGAIN;
    for (int buffers : {1, 2, 32}) {
        mFaults.vallocsThatWork = buffers;
        EXPECT_EQ(MakeInVain(mFile.Fd()),
                  "NewWbuffer: failed, cleaning up, err = " + std::to_string(EAGAIN) + "\n");
        EXPECT_EQ(mFaults.LiveVallocs(), 0);
    }
}

} // namespace
