#pragma once

#include "HostMessageFile.h"
#include "Timeline.h"
#include "VKProtocolDriverInterface.h"

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
    MessageRun(VKProtocolDriverInterface& driver, VKMsgFileQueue& queue, Timeline& timeline,
               const std::atomic<bool>& stop);

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

    VKMessageFile* PopFile();
    bool ShowNextReport();
    bool AnyOpen() const;

    VKProtocolDriverInterface& m_driver;
    VKMsgFileQueue& m_queue;
    Timeline& m_timeline;
    const std::atomic<bool>& m_stop;
    std::vector<Entry> m_entries;
    bool m_anyFailed = false;
};

} // namespace vk
