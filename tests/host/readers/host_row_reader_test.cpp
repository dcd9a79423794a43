#include "host/readers/RowReader.h"

#include "host/terminal/ExitStatus.h"
#include <condition_variable>
#include <gtest/gtest.h>
#include <mutex>

namespace {

using std::chrono::milliseconds;

/// A gate that holds a thread up until it is opened.
class Gate {
public:
    void Open() {
        const std::lock_guard lock(mMutex);
        mIsOpen = true;
        mOpened.notify_all();
    }
    void Pass() {
        std::unique_lock lock(mMutex);
        mOpened.wait(lock, [this] { return mIsOpen; });
    }

private:
    std::mutex mMutex;
    std::condition_variable mOpened;
    bool mIsOpen = false;
};

/// Gray rows that come when the gate opens. `heedsStop`: stopping opens it too.
class SlowRows : public PageRows {
public:
    SlowRows(std::shared_ptr<Gate> gate, bool heedsStop, std::shared_ptr<Gate> gone = nullptr)
        : PageRows(8, 4, 1), mGate(std::move(gate)), mGone(std::move(gone)), mHeedsStop(heedsStop) {
    }
    ~SlowRows() override {
        if (mGone) mGone->Open();
    }
    void Read(const Take &take) override {
        mGate->Pass();
        const uint8_t row[8] = {1, 2, 3, 4, 5, 6, 7, 8};
        for (int y = 0; y < Height(); ++y)
            if (!take(row, sizeof row, 1)) return;
    }
    void Stop() override {
        if (mHeedsStop) mGate->Open();
    }

private:
    std::shared_ptr<Gate> mGate, mGone;
    bool mHeedsStop;
};

class DamagedRows : public PageRows {
public:
    DamagedRows() : PageRows(8, 4, 1) {}
    void Read(const Take &) override { throw HostError(ExitStatus::Input, "damaged"); }
    void Stop() override {}
};

TEST(RowReader, WithRowsThatAreNotThereYet_DoesNotWaitForThem) {
    auto gate = std::make_shared<Gate>();
    RowReader reader(std::make_shared<SlowRows>(gate, false), DocumentPixels::Darkness, 0);
    EXPECT_FALSE(reader.Wait(milliseconds(0)));
    EXPECT_FALSE(reader.Wait(milliseconds(20)));
    gate->Open();
    while (!reader.Wait(milliseconds(100)))
        ;
    EXPECT_EQ(reader.Next().count, 4);
}

TEST(RowReader, AtTheEnd_DoesNotWait) {
    auto gate = std::make_shared<Gate>();
    gate->Open();
    RowReader reader(std::make_shared<SlowRows>(gate, false), DocumentPixels::Darkness, 3);
    int rows = 0;
    for (int count = 1; count > 0; rows += count) {
        while (!reader.Wait(milliseconds(100)))
            ;
        count = reader.Next().count;
    }
    EXPECT_EQ(rows, 4);
    EXPECT_TRUE(reader.Wait(milliseconds(0)));
}

TEST(RowReader, OfADamagedFile_IsReadyToSaySo) {
    RowReader reader(std::make_shared<DamagedRows>(), DocumentPixels::Darkness, 0);
    while (!reader.Wait(milliseconds(100)))
        ;
    EXPECT_THROW((void)reader.Next(), HostError);
}

TEST(RowReader, GivenUpBeforeTheFirstRow_StopsItsSource) {
    const bool before = RowReader::HasLeftOne();
    auto gate = std::make_shared<Gate>();
    auto gone = std::make_shared<Gate>();
    {
        const RowReader reader(std::make_shared<SlowRows>(gate, true, gone),
                               DocumentPixels::Darkness, 0);
    }
    gone->Pass();
    EXPECT_EQ(RowReader::HasLeftOne(), before);
}

TEST(RowReader, WhoseSourceDoesNotStop_LeavesItToItself) {
    auto gate = std::make_shared<Gate>();
    auto gone = std::make_shared<Gate>();
    {
        const RowReader reader(std::make_shared<SlowRows>(gate, false, gone),
                               DocumentPixels::Darkness, 0);
    }
    EXPECT_TRUE(RowReader::HasLeftOne());
    // All that it uses is still there, and goes with it.
    gate->Open();
    gone->Pass();
}

} // namespace
