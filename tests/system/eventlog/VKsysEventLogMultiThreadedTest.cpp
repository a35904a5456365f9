#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "MemoryWriter.h"
#include "SystemLogProbe.h"
#include "VKsysEventLogInterface.h"

namespace {

using Clock = std::chrono::steady_clock;

class MultiThreadedLog : public ::testing::Test
{
protected:
    MultiThreadedLog()
        : m_log(VKsysEventLogInterface::CreateInstance("multi", VKsysEventLogInterface::MULTI_THREADED,
                                                       std::make_unique<MemoryWriter>(m_store)))
    {
    }
    bool Info(const std::string& text) { return m_log->WriteInfo(text, __LINE__, nullptr); }

    MemoryWriter::Store m_store;
    std::unique_ptr<VKsysEventLogInterface> m_log;
};

TEST_F(MultiThreadedLog, WritesWhatManyThreadsQueueEachInItsOrder)
{
    ASSERT_TRUE(m_log->Start());
    constexpr int kThreads = 4, kRecords = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([this, t] {
            for (int i = 0; i < kRecords; ++i)
                EXPECT_TRUE(Info(std::to_string(t) + ":" + std::to_string(100000 + i)));
        });
    for (std::thread& thread : threads)
        thread.join();
    m_log->Stop();

    std::vector<std::string> records = m_store.Take();
    ASSERT_EQ(records.size(), static_cast<std::size_t>(kThreads * kRecords));
    const auto ofThread = [](const std::string& a, const std::string& b) { return a[5] < b[5]; };
    std::stable_sort(records.begin(), records.end(), ofThread);
    EXPECT_TRUE(std::is_sorted(records.begin(), records.end()));
}

TEST_F(MultiThreadedLog, StopWritesWhatIsQueuedAndDropsWhatComesLater)
{
    std::promise<void> open;
    m_store.before = [gate = open.get_future().share()] { gate.wait(); };
    EXPECT_FALSE(Info("before the start"));
    ASSERT_TRUE(m_log->Start());
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(Info("queued"));
    std::thread stopper([&] { m_log->Stop(); });
    const auto bound = Clock::now() + std::chrono::seconds(10);
    int taken = 50;
    while (Info("queued") && Clock::now() < bound) {
        ++taken;
        std::this_thread::yield();
    }
    open.set_value();
    stopper.join();
    EXPECT_FALSE(Info("after the stop"));
    EXPECT_FALSE(m_log->IsAlive());
    EXPECT_EQ(m_store.Take(), std::vector<std::string>(static_cast<std::size_t>(taken), "INFO queued"));

    ASSERT_TRUE(m_log->Start()); // and again
    EXPECT_TRUE(Info("second life"));
    m_log->Stop();
    EXPECT_EQ(m_store.Take(), std::vector<std::string>{"INFO second life"});
}

TEST_F(MultiThreadedLog, StartsAndStopsAtOnceWhenIdle)
{
    const auto begin = Clock::now();
    for (int i = 0; i < 20; ++i) {
        ASSERT_TRUE(m_log->Start());
        ASSERT_TRUE(m_log->Start());
        EXPECT_TRUE(m_log->IsAlive());
        m_log->Stop();
        m_log->Stop();
    }
    EXPECT_LT(Clock::now() - begin, std::chrono::seconds(5)); // with the told pauses it would take over 20
}

TEST_F(MultiThreadedLog, AWriterThatThrowsCostsItsOwnRecordOnly)
{
    SystemLogProbe syslog;
    int calls = 0;
    m_store.before = [&] {
        if (++calls == 2)
            throw std::string("broken");
    };
    ASSERT_TRUE(m_log->Start());
    for (const char* text : {"one", "two", "three"})
        EXPECT_TRUE(Info(text));
    m_log->Stop();
    EXPECT_EQ(m_store.Take(), (std::vector<std::string>{"INFO one", "INFO three"}));
    EXPECT_TRUE(syslog.Has("Unknown error"));
}

} // namespace
