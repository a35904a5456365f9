#pragma once

#include "DriverExchange.h"
#include "DriverLibrary.h"
#include "HostLogger.h"
#include "Options.h"
#include "VKMsgFileQueue.h"

namespace vk {

/// A driver at work in this program: its library is loaded, it has a logger and a return queue, it is configured and
/// set up. Cleaned up at the end. One thread.
class DriverSession
{
public:
    /// By the options "--root", "--driver" and "--log-level". Throws InputError for a root that is none, and
    /// std::runtime_error when the driver cannot be loaded or configured.
    explicit DriverSession(const Arguments& arguments);

    DriverExchange& Exchange() { return *m_exchange; }
    const DriverLibrary& Library() const { return *m_library; }
    VKLogInterface& Logger() { return *m_logger; }

    /// What the driver has logged as errors meanwhile, in one line on standard error: the timeline tells what came of a
    /// message, this tells an operator why.
    void TellErrors(const std::string& about);

private:
    void Configure(const std::string& logFile);

    std::unique_ptr<HostLogger> m_logger;
    VKMsgFileQueue m_returned;
    std::unique_ptr<DriverLibrary> m_library;
    std::unique_ptr<DriverExchange> m_exchange;
};

/// The installation root of "--root" as an absolute path, with the directories that a driver works in. Throws
/// InputError.
std::string CheckedRoot(const Arguments& arguments);

} // namespace vk
