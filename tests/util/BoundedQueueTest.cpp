#include "util/core/BoundedQueue.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

using mirabend::BoundedQueue;

TEST(BoundedQueue, RefusesAndCountsWhenFullButKeepsOrder)
{
    BoundedQueue<int> queue(2);
    EXPECT_TRUE(queue.tryPush(1));
    EXPECT_TRUE(queue.tryPush(2));
    EXPECT_FALSE(queue.tryPush(3));
    EXPECT_FALSE(queue.tryPush(4));
    EXPECT_EQ(queue.dropped(), 2u);
    EXPECT_EQ(*queue.pop(), 1);
    EXPECT_TRUE(queue.tryPush(5));
    EXPECT_EQ(*queue.pop(), 2);
    EXPECT_EQ(*queue.pop(), 5);
}

TEST(BoundedQueue, CloseDrainsThenWakesConsumers)
{
    BoundedQueue<int> queue(4);
    queue.tryPush(7);
    std::atomic<int> seen{0};
    std::thread consumer([&] {
        while (auto item = queue.pop())
            seen += *item;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    queue.close();
    consumer.join();
    EXPECT_EQ(seen.load(), 7);
    EXPECT_FALSE(queue.tryPush(1)) << "a closed queue takes nothing";
    EXPECT_FALSE(queue.popFor(std::chrono::milliseconds(1)).has_value());
}

TEST(BoundedQueue, ProducersAndConsumerLoseNothingBelowCapacity)
{
    BoundedQueue<int> queue(100000);
    std::thread a([&] { for (int i = 0; i < 20000; ++i) queue.tryPush(1); });
    std::thread b([&] { for (int i = 0; i < 20000; ++i) queue.tryPush(2); });
    a.join();
    b.join();
    queue.close();
    long sum = 0;
    while (auto item = queue.pop())
        sum += *item;
    EXPECT_EQ(sum, 60000);
    EXPECT_EQ(queue.dropped(), 0u);
}
