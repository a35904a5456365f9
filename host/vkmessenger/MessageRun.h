#pragma once

#include "DriverExchange.h"
#include "Timeline.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <vector>

namespace vk {

/// One run of a host over its messages: hands them to the driver, then polls for answers until each message is final.
/// Works on the thread that calls it; the driver may push files back from other threads meanwhile.
class MessageRun
{
public:
    /// `stop` ends the waiting when it becomes true. All references must outlive the object.
    MessageRun(DriverExchange& exchange, Timeline& timeline, const std::atomic<bool>& stop);
    /// The driver lets go of the files first.
    ~MessageRun() { m_exchange.End(); }
    MessageRun(const MessageRun&) = delete;
    MessageRun& operator=(const MessageRun&) = delete;

    /// Hands one message over. What the driver answers at once is shown as event "send".
    void Send(std::unique_ptr<HostMessageFile> file);

    /// Polls until every message is final, for `limit` at most. Each report is shown as event "report".
    void WaitForAnswers(std::chrono::milliseconds limit);

    /// Shows what came back until now, without asking the driver for more.
    void ShowReports();

    bool AnyFailed() const { return m_anyFailed; }

private:
    struct Entry
    {
        std::unique_ptr<HostMessageFile> file;
        /// Answers or reports may still come.
        bool open;
    };

    void ShowReport(VKMessageFile* file);
    bool AnyOpen() const;

    DriverExchange& m_exchange;
    Timeline& m_timeline;
    const std::atomic<bool>& m_stop;
    std::vector<Entry> m_entries;
    bool m_anyFailed = false;
};

} // namespace vk
