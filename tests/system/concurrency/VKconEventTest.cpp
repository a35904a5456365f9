#include "VKconEvent.h"
#include "VKconCriticalSection.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

double SecondsOf(VKconEvent& event, int ms, int expected)
{
    const auto begin = Clock::now();
    EXPECT_EQ(event.Wait(ms), expected) << ms;
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

TEST(VKconEvent, CountsMillisecondsBelowASecondAsMicroseconds)
{
    VKconEvent event;
    const double half = SecondsOf(event, 500, VKconEvent::WAIT_TIMED_OUT);
    EXPECT_GE(half, 0.0004);
    EXPECT_LT(half, 0.25);
    const double one = SecondsOf(event, 1999, VKconEvent::WAIT_TIMED_OUT);
    EXPECT_GE(one, 1.0);
    EXPECT_LT(one, 1.5);
}

TEST(VKconEvent, ManualResetStaysSignalledAndAutoResetIsTakenByOneWait)
{
    VKconEvent manual(true), automatic;
    manual.Broadcast();
    EXPECT_EQ(manual.Wait(-1), 16);
    EXPECT_EQ(manual.Wait(0), 16);
    EXPECT_TRUE(manual.IsSignalled());
    manual.Reset();
    EXPECT_EQ(manual.Wait(1), 17);
    automatic.Broadcast();
    automatic.Reset();
    EXPECT_TRUE(automatic.IsSignalled()) << "it ignores a reset";
    EXPECT_EQ(automatic.Wait(-1), 16);
    EXPECT_EQ(automatic.Wait(1), 17);
}

TEST(VKconEvent, WakesEveryWaiterOfAManualResetEvent)
{
    VKconEvent event(true);
    std::atomic<int> woken{0};
    std::thread first([&] { woken += event.Wait(-1) == 16; });
    std::thread second([&] { woken += event.Wait(30000) == 16; });
    event.Broadcast();
    first.join();
    second.join();
    EXPECT_EQ(woken, 2);
}

// The waiter deletes the event while the other thread may still be in the wake of its Broadcast.
TEST(VKconEvent, MayBeDeletedByTheThreadItWoke)
{
    for (int round = 0; round < 2000; ++round) {
        auto* event = new VKconEvent(round % 2 == 0);
        std::thread other([event] { event->Broadcast(); });
        EXPECT_EQ(event->Wait(-1), 16);
        delete event;
        other.join();
    }
}

int TryFromOtherThread(VKconLock& lock)
{
    int result = -1;
    std::thread([&] {
        result = lock.TryLock();
        if (result == 0)
            lock.Unlock();
    }).join();
    return result;
}

TEST(VKconLock, IsRecursiveAndKeepsOtherThreadsOut)
{
    VKconLock lock;
    EXPECT_EQ(lock.Lock(), 0);
    EXPECT_EQ(lock.TryLock(), 0);
    EXPECT_EQ(TryFromOtherThread(lock), 1);
    EXPECT_EQ(lock.Unlock(), 0);
    EXPECT_EQ(TryFromOtherThread(lock), 1);
    EXPECT_EQ(lock.Unlock(), 0);
    EXPECT_EQ(TryFromOtherThread(lock), 0);
}

TEST(VKconCriticalSection, LocksAndUnlocksAsItsFlagsSay)
{
    VKconLock lock;
    {
        VKconCriticalSection held(&lock, true, true, false);
        EXPECT_EQ(TryFromOtherThread(lock), 1);
    }
    EXPECT_EQ(TryFromOtherThread(lock), 0);
    {
        VKconCriticalSection kept(&lock, true, false, false);
    }
    EXPECT_EQ(TryFromOtherThread(lock), 1);
    lock.Unlock();

    VKconCriticalSection none(nullptr, true, true, true);
    EXPECT_FALSE(none.Enter());
    VKconCriticalSection own;
    {
        vk::ScopedSection guard(own);
        EXPECT_EQ(TryFromOtherThread(*own.GetLockObj()), 1);
        guard.Release();
        EXPECT_EQ(TryFromOtherThread(*own.GetLockObj()), 0);
    }
    EXPECT_TRUE(own.Enter());
    own.Leave();
}

} // namespace
