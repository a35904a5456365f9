#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "TempDir.h"
#include "VKLog.h"
#include "VKsysEventLogFileWriter.h"
#include "VKsysEventLogInterface.h"

/// What logging costs the caller: a line whose level is off, and a record handed to the multi-threaded logger while its
/// worker writes a real, rotated file. The bare forms do the least that the same work needs.

namespace {

using Log = VKsysEventLogInterface;

const std::string kText = "Connection ID: [carrier] >> 3 packets sent to device@example.org/mxp, 1024 bytes.";

/// The file writer, counting what it has written.
class CountingWriter final : public VKsysEventLogWriterInterface
{
public:
    CountingWriter(const std::string& path, std::atomic<long>& written) : m_written(written)
    {
        m_writer.setFilePath(path);
        m_writer.setPerProcessFile(false);
        m_writer.setNumBytesPerFile(204800);
        m_writer.setNumOfFiles(3);
    }
    bool setParameter(std::string& key, std::string& value) override { return m_writer.setParameter(key, value); }
    bool isInitialized() override { return m_writer.isInitialized(); }
    bool operator()(std::string name, LogLevel level, std::string message, int line, const char* file,
                    long timestamp) override
    {
        const bool done = m_writer(std::move(name), level, std::move(message), line, file, timestamp);
        ++m_written;
        return done;
    }

private:
    VKsysEventLogFileWriter m_writer;
    std::atomic<long>& m_written;
};

/// A started logger on a file in a directory of its own.
class Fixture
{
public:
    explicit Fixture(Log::LoggerType type)
        : m_log(Log::CreateInstance("bench", type, std::make_unique<CountingWriter>(m_dir / "log.txt", m_written)))
    {
        m_log->Start();
    }
    ~Fixture()
    {
        m_log->Stop();
        m_log.reset();
    }
    Log* operator->() const { return m_log.get(); }
    VKLogInterface* Get() const { return m_log.get(); }
    long Written() const { return m_written; }

private:
    const TempDir m_dir;
    std::atomic<long> m_written{0};
    std::unique_ptr<Log> m_log;
};

void log_off_bare(benchmark::State& state)
{
    std::atomic<int> level{3};
    for (auto _ : state) {
        benchmark::DoNotOptimize(&level);
        if (level.load(std::memory_order_relaxed) <= 1)
            state.SkipWithError("on");
    }
}
BENCHMARK(log_off_bare);

void log_off(benchmark::State& state)
{
    Fixture log(Log::SINGLE_THREADED);
    VKLogInterface* logger = log.Get();
    for (auto _ : state) {
        benchmark::DoNotOptimize(logger);
        VK_LOG_TRACE(logger, "Job ID: [%s] >> %s", kText.c_str(), "never formatted");
    }
}
BENCHMARK(log_off);

/// Copies each record of a burst into a vector under a mutex, with its time.
void log_queued_bare(benchmark::State& state)
{
    struct Record
    {
        std::string text;
        time_t moment;
    };
    const long burst = state.range(0);
    std::mutex mutex;
    std::vector<std::unique_ptr<Record>> queue;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        for (long i = 0; i < burst; ++i) {
            auto record = std::make_unique<Record>(Record{kText, time(nullptr)});
            const std::lock_guard<std::mutex> guard(mutex);
            queue.push_back(std::move(record));
        }
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(took.count() / static_cast<double>(burst));
        queue.clear();
    }
}

/// Bursts from a standing start: the worker sleeps at the begin of each and drains while it lasts. The time is that of
/// one record on the caller's thread, the wake of the worker included.
void log_queued(benchmark::State& state)
{
    Fixture log(Log::MULTI_THREADED);
    const long burst = state.range(0);
    long queued = 0;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        for (long i = 0; i < burst; ++i)
            log->WriteInfo(kText, __LINE__, nullptr);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begin;
        state.SetIterationTime(took.count() / static_cast<double>(burst));
        queued += burst;
        while (log.Written() < queued)
            std::this_thread::yield();
    }
}
BENCHMARK(log_queued_bare)->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(50);
BENCHMARK(log_queued)->Arg(100)->Arg(1000)->Arg(10000)->UseManualTime()->Iterations(50);

/// The whole road of a record into the file, on the caller's thread.
void log_file_record(benchmark::State& state)
{
    Fixture log(Log::SINGLE_THREADED);
    for (auto _ : state)
        log->WriteInfo(kText, __LINE__, nullptr);
}
BENCHMARK(log_file_record);

} // namespace
