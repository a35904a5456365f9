#include "VKconDelegate.h"
#include "VKconEvent.h"
#include "VKconException.h"
#include "VKconThread.h"
#include "VKsystemError.h"
#include "VKthread.h"

#include <atomic>
#include <csignal>
#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>
#include <vector>

#ifdef __SANITIZE_THREAD__
// A killed thread unwinds out of its signal handler, which is what Kill is for.
extern "C" const char* __tsan_default_suppressions() { return "signal:*\n"; }
#endif

namespace {

constexpr unsigned long kNoThread = static_cast<unsigned long>(-1);

/// Runs a function on the thread.
class Work : public VKconDelegate
{
public:
    explicit Work(std::function<void(void*)> work) : m_work(std::move(work)) {}
    void DoWork(void* userData) override { m_work(userData); }

private:
    std::function<void(void*)> m_work;
};

/// Says when an object goes away.
struct Farewell
{
    std::promise<void> gone;
    ~Farewell() { gone.set_value(); }
};

class VKconThreadTest : public testing::Test
{
protected:
    void SetUp() override { VKconThread::InitializeLibrary(); }
};

TEST_F(VKconThreadTest, RunsTheDelegateWithItsUserDataAndForgetsTheThread)
{
    std::atomic<unsigned long> seen{0};
    VKconThread thread;
    Work work([&](void* data) {
        ++*static_cast<int*>(data);
        seen = thread.GetThreadID();
    });
    int runs = 0;
    work.SetUserData(&runs);
    while (runs < 3) {
        EXPECT_EQ(thread.GetThreadID(), kNoThread);
        EXPECT_FALSE(thread.IsRunning());
        const int before = runs;
        thread.Run(&work);
        EXPECT_EQ(thread.WaitForThreadObject(1), 0);
        ASSERT_EQ(runs, before + 1);
        EXPECT_NE(seen.exchange(kNoThread), kNoThread);
    }
    EXPECT_EQ(thread.GetThreadID(), kNoThread);
    EXPECT_FALSE(thread.IsRunning());
    EXPECT_NO_THROW(thread.Kill());
    EXPECT_THROW(thread.Stop(), VKconException);
    EXPECT_THROW(thread.Resume(), VKconException);
}

TEST_F(VKconThreadTest, WaitEndsAfterItsTimeWhileTheThreadRuns)
{
    VKconEvent stop(true);
    Work work([&](void*) { stop.Wait(-1); });
    VKconThread thread;
    thread.Run(&work);
    thread.WaitForThreadObject(250);
    EXPECT_TRUE(thread.IsRunning());
    stop.Broadcast();
    thread.WaitForThreadObject(0);
    EXPECT_FALSE(thread.IsRunning());
}

TEST_F(VKconThreadTest, KillEndsAWaitingThreadAndDestroysItsLocals)
{
    struct Local
    {
        std::atomic<bool>& gone;
        ~Local() { gone = true; }
    };
    std::atomic<bool> gone{false};
    std::atomic<bool> inside{false};
    Work work([&](void*) {
        Local local{gone};
        inside = true;
        while (true)
            pause();
    });
    VKconThread thread;
    thread.Run(&work);
    const unsigned long id = thread.GetThreadID();
    while (!inside)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    thread.Kill();
    EXPECT_EQ(thread.GetThreadID(), kNoThread);
    thread.WaitForThreadObject(1);
    EXPECT_TRUE(gone);
    EXPECT_FALSE(VKconThread::IsThreadAlive(id));
}

TEST_F(VKconThreadTest, StopHoldsTheThreadUntilItsResumeSignal)
{
    std::atomic<long> count{0};
    std::atomic<bool> end{false};
    Work work([&](void*) {
        while (!end)
            ++count;
    });
    VKconThread thread;
    thread.Run(&work);
    thread.Stop();
    const long held = count;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(count, held);
    end = true;
    EXPECT_TRUE(thread.IsRunning());
    pthread_kill(thread.GetThreadID(), SIGUSR2);
    thread.WaitForThreadObject(1);
    EXPECT_FALSE(thread.IsRunning());
}

TEST_F(VKconThreadTest, AutoCleanDeletesThreadAndDelegate)
{
    auto farewell = std::make_shared<Farewell>();
    std::future<void> gone = farewell->gone.get_future();
    auto* thread = new VKconThread;
    thread->SetAutoClean(true);
    thread->Run(new Work([kept = std::move(farewell)](void*) {}));
    EXPECT_EQ(gone.wait_for(std::chrono::seconds(20)), std::future_status::ready);
}

TEST_F(VKconThreadTest, ObjectMayGoBeforeOrWhileItsThreadEnds)
{
    for (int round = 0; round < 500; ++round) {
        std::promise<void> done;
        std::future<void> finished = done.get_future();
        auto work = std::make_unique<Work>([&done](void*) { done.set_value(); });
        auto thread = std::make_unique<VKconThread>();
        thread->Run(work.get());
        if (round % 2 == 0)
            thread.reset();
        finished.wait();
        if (thread && round % 3 == 0)
            thread->IsRunning();
        thread.reset();
    }
}

// Watchers ask about threads all the time while they end.
TEST_F(VKconThreadTest, AskingAboutEndingThreadsNeverTouchesThem)
{
    std::atomic<bool> end{false};
    for (int round = 0; round < 20; ++round) {
        std::vector<std::unique_ptr<VKconThread>> threads;
        Work work([](void*) { GetMyThreadID(); });
        for (int i = 0; i < 10; ++i)
            threads.push_back(std::make_unique<VKconThread>());
        std::thread watcher([&] {
            while (!end)
                for (auto& thread : threads) {
                    thread->IsRunning();
                    VKconThread::IsThreadAlive(thread->GetThreadID());
                }
        });
        for (auto& thread : threads)
            thread->Run(&work);
        for (auto& thread : threads)
            thread->WaitForThreadObject(1);
        end = true;
        watcher.join();
        end = false;
    }
}

TEST_F(VKconThreadTest, KnowsWhichThreadsAreAlive)
{
    EXPECT_TRUE(VKconThread::IsThreadAlive(GetMyThreadID()));
    EXPECT_FALSE(VKconThread::IsThreadAlive(0));
    EXPECT_FALSE(VKconThread::IsThreadAlive(kNoThread));
    unsigned long ended = 0;
    std::thread([&] {
        ended = VKconThread::GetMyThreadID();
        EXPECT_TRUE(VKconThread::IsThreadAlive(ended));
    }).join();
    EXPECT_FALSE(VKconThread::IsThreadAlive(ended));
    EXPECT_TRUE(VKconThread::IsThreadActive(static_cast<unsigned long>(getpid())));
}

TEST(VKconException, TellsWhereAndWhy)
{
    const VKconException failure(4294967295UL, "a.cpp", 12, "Lock failed", "Busy");
    EXPECT_EQ(failure.ToString(), "Exception raised! ThreadID[-1] File[a.cpp] Line[12] Msg[Lock failed] SysMsg[Busy]");
    EXPECT_STREQ(static_cast<const std::exception&>(failure).what(), std::exception().what());
    EXPECT_EQ(VKException("b.cpp", 3, "m").ToString(), "Exception raised! File[b.cpp] Line[3] Msg[m] SysMsg[]");
    errno = EACCES;
    EXPECT_EQ(VKgetLastError(), "Permission denied");
}

} // namespace
