#pragma once

#include "VKconDelegate.h"
#include "VKconEvent.h"
#include "VKconLock.h"
#include "VKconThread.h"
#include "VKsysEventLogInterface.h"

#include <atomic>
#include <memory>
#include <string>
#include <vector>

/// A logger that queues records for a worker thread, which keeps the work on the file away from the callers. Whatever
/// was queued before Stop is written; what comes later is dropped with false.
class VKsysEventLogMultiThreaded : public VKsysEventLogInterface, public VKconDelegate
{
public:
    VKsysEventLogMultiThreaded();
    /// Stops, and waits for the worker.
    ~VKsysEventLogMultiThreaded() override;

    bool Start() override;
    /// Returns as soon as the queue is written. A worker that has not moved on for eleven seconds is killed.
    bool Stop() override;
    using VKsysEventLogInterface::Print;
    /// Queues the record. False without a writer and once Stop has begun.
    bool Print(LogLevel level, std::string message, int line, const char* file) override;

    /// The worker's body.
    void DoWork(void* userData) override;

    /// One queued record.
    struct MsgStruct
    {
        LogLevel level;
        std::string message;
        int line;
        long timestamp; ///< seconds, at queueing
        std::string file;
    };

private:
    using Queue = std::vector<std::unique_ptr<MsgStruct>>;

    void WriteUntilStopped();
    bool TakeQueue(Queue& records, bool& stopping);
    void EndWorker();

    Queue m_queue; // guarded by m_queueLock
    VKconThread m_worker;
    VKconLock m_queueLock;
    VKconEvent m_waiting{true};               // the queue holds records, or Stop has begun
    bool m_bStopping = false;                 // guarded by m_queueLock
    std::atomic<unsigned long> m_uWritten{0}; // records, for telling a busy worker from one that hangs
};
