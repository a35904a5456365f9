#include "VKsysEventLogMultiThreaded.h"

#include "LogGuard.h"
#include "VKconCriticalSection.h"
#include "VKthread.h"

#include <csignal>
#include <ctime>
#include <pthread.h>
#include <sched.h>
#include <utility>

namespace {

constexpr std::size_t kReserved = 1000; // records
constexpr int kStartChecks = 6;
constexpr int kStartPauseMs = 500;
constexpr int kStopChecks = 11;
constexpr unsigned long kStopPauseMs = 1000;

/// Without the handlers of VKconThread::InitializeLibrary the signal of Kill would end the whole process.
bool MayKillThreads()
{
    struct sigaction present = {};
    return sigaction(SIGQUIT, nullptr, &present) == 0 && present.sa_handler != SIG_DFL;
}

/// The worker wakes often and has time: it must not push a thread that has just logged off its processor.
void YieldToLoggingThreads()
{
    const struct sched_param noPriority = {};
    pthread_setschedparam(pthread_self(), SCHED_BATCH, &noPriority);
}

} // namespace

VKsysEventLogMultiThreaded::VKsysEventLogMultiThreaded() { m_queue.reserve(kReserved); }

VKsysEventLogMultiThreaded::~VKsysEventLogMultiThreaded()
{
    constexpr unsigned long kUntilItEnds = 1; // no multiple of 250, so without a limit
    VKsysEventLogMultiThreaded::Stop();
    m_worker.WaitForThreadObject(kUntilItEnds);
}

bool VKsysEventLogMultiThreaded::Start()
{
    constexpr const char* kName = "VKsysEventLogInterface::Start";
    if (!VKsysEventLogInterface::Start())
        return false;
    {
        const vk::ScopedSection<VKconLock> guard(m_queueLock);
        m_bStopping = false;
    }
    const bool started = vk::GuardLog(kName, "Unknown error", [&] {
        if (!m_worker.IsRunning())
            m_worker.Run(this);
        for (int check = 1; !m_worker.IsRunning(); ++check) {
            if (check == kStartChecks) {
                VKsystemLog::WriteError(kName, __FILE__, "Worker thread is not running");
                return false;
            }
            VKsleep(kStartPauseMs);
        }
        return true;
    });
    if (!started)
        VKsysEventLogInterface::Stop();
    return started;
}

bool VKsysEventLogMultiThreaded::Stop()
{
    {
        const vk::ScopedSection<VKconLock> guard(m_queueLock);
        m_bStopping = true;
    }
    vk::GuardLog("VKsysEventLogInterface::Stop", "Unknown error", [&] {
        m_waiting.Broadcast();
        EndWorker();
        return true;
    });
    return VKsysEventLogInterface::Stop();
}

/// Waits for the worker, and begins to count anew whenever it has written something, so that a long queue is written to
/// its end and only a worker that hangs is killed.
void VKsysEventLogMultiThreaded::EndWorker()
{
    unsigned long written = m_uWritten;
    for (int check = 0; check < kStopChecks && m_worker.IsRunning(); ++check) {
        m_worker.WaitForThreadObject(kStopPauseMs);
        if (written != m_uWritten) {
            written = m_uWritten;
            check = 0;
        }
    }
    if (!m_worker.IsRunning())
        return;
    if (!MayKillThreads()) {
        VKsystemLog::WriteError("VKsysEventLogInterface::Stop", __FILE__, "Worker thread of '%s' hangs",
                                GetLoggerName().c_str());
        return;
    }
    m_worker.Kill();
    m_worker.WaitForThreadObject(kStopPauseMs);
}

bool VKsysEventLogMultiThreaded::Print(LogLevel level, std::string message, int line, const char* file)
{
    if (!GetWriter())
        return false;
    auto record = std::make_unique<MsgStruct>(
        MsgStruct{level, std::move(message), line, static_cast<long>(time(nullptr)), file ? file : ""});
    bool first = false;
    {
        const vk::ScopedSection<VKconLock> guard(m_queueLock);
        if (m_bStopping)
            return false;
        first = m_queue.empty();
        m_queue.push_back(std::move(record));
    }
    // Whoever put the first record in wakes the worker, which does not go to sleep on a queue that is not empty.
    if (first)
        m_waiting.Broadcast();
    return true;
}

void VKsysEventLogMultiThreaded::DoWork(void*)
{
    YieldToLoggingThreads();
    vk::GuardLog("VKsysEventLogMultiThreaded::DoWork", "Unknown error", [&] {
        WriteUntilStopped();
        return true;
    });
}

void VKsysEventLogMultiThreaded::WriteUntilStopped()
{
    Queue records;
    records.reserve(kReserved);
    bool stopping = false;
    while (!stopping) {
        if (!TakeQueue(records, stopping)) {
            if (!stopping && m_waiting.Wait(-1) != VKconEvent::WAIT_SIGNALLED)
                return;
            continue;
        }
        for (auto& record : records) {
            WriteRecord(record->level, std::move(record->message), record->line, record->file.c_str(),
                        record->timestamp);
            record.reset();
            ++m_uWritten;
        }
        records.clear();
    }
}

/// Swaps the whole queue into `records`, which is empty, so that the file work happens outside the lock. False when
/// there is nothing; the event is reset then, still under the lock, or a record queued just now would not wake us.
bool VKsysEventLogMultiThreaded::TakeQueue(Queue& records, bool& stopping)
{
    const vk::ScopedSection<VKconLock> guard(m_queueLock);
    stopping = m_bStopping;
    records.swap(m_queue);
    if (!records.empty())
        return true;
    if (!stopping)
        m_waiting.Reset();
    return false;
}
