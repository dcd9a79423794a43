// The blocking queue: order, null items, growth, waking up.
#include "Common/Src/stream/Queue.h"
#include <gtest/gtest.h>
#include <thread>

namespace {

class QueueTest : public testing::Test {
protected:
    QueueTest() { QueueInit(&mQueue); }
    ~QueueTest() override { QueueDestroy(&mQueue); }
    void Push(size_t value) { QueuePush(&mQueue, reinterpret_cast<void *>(value)); }
    size_t Pop() { return reinterpret_cast<size_t>(QueuePop(&mQueue)); }
    Queue mQueue;
};

TEST_F(QueueTest, ItemsComeOutInTheOrderTheyWentIn) {
    for (size_t i = 1; i <= 10; ++i)
        Push(i);
    for (size_t i = 1; i <= 10; ++i)
        EXPECT_EQ(Pop(), i);
}

TEST_F(QueueTest, NullIsAnItem) {
    Push(0);
    Push(7);
    EXPECT_EQ(QueuePop(&mQueue), nullptr);
    EXPECT_EQ(Pop(), 7U);
}

TEST_F(QueueTest, GrowsWithoutLimitAndKeepsTheOrder) {
    size_t next = 1;
    size_t expected = 1;
    for (size_t round = 0; round < 50; ++round) { // not aligned to the ring's start when it grows
        for (size_t i = 0; i < 3 * kQueueInitialCapacity / 2; ++i)
            Push(next++);
        for (size_t i = 0; i < kQueueInitialCapacity; ++i)
            ASSERT_EQ(Pop(), expected++);
    }
    while (expected < next)
        ASSERT_EQ(Pop(), expected++);
}

TEST_F(QueueTest, PopWaitsForAnItem) {
    std::thread consumer([this] { EXPECT_EQ(Pop(), 3U); });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    Push(3);
    consumer.join();
}

TEST_F(QueueTest, TwoThreadsNeverLoseAnItem) {
    constexpr size_t kItems = 200000;
    std::thread producer([this] {
        for (size_t i = 1; i <= kItems; ++i)
            Push(i);
    });
    for (size_t i = 1; i <= kItems; ++i)
        ASSERT_EQ(Pop(), i);
    producer.join();
}

TEST(Queue, CanBeInitialisedAgainAfterItWasDestroyed) {
    Queue queue;
    int item = 0;
    for (int i = 0; i < 3; ++i) {
        QueueInit(&queue);
        QueuePush(&queue, &item);
        EXPECT_EQ(QueuePop(&queue), &item);
        QueuePush(&queue, &item); // items left inside are not the queue's to free
        QueueDestroy(&queue);
    }
}

} // namespace
