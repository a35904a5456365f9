#pragma once

#include "QueueRouter.h"
#include "QueueSettings.h"
#include "VKLogInterface.h"

#include <chrono>
#include <functional>
#include <unordered_map>
#include <unordered_set>

namespace vk {

/// The messages of this service's queue that wait for their receivers: they come back when the receiver has a session,
/// and end as errors when they expire. One thread.
class WaitingRoom
{
public:
    /// Told of each message that has been moved; the message says where to.
    using Moved = std::function<void(QueueMessage&)>;

    /// The references must outlive the object; `root` is the installation's, where the sessions are.
    WaitingRoom(QueueRouter& router, const QueueSettings& settings, std::string root, VKLogInterface& logger);

    /// Looks at who waits, when it is time to: at most once a second, and so rarely that it takes a twentieth of the
    /// time. Throws VKDBexception.
    void Check(const Moved& moved);

private:
    using Clock = std::chrono::steady_clock;
    using Receivers = std::unordered_set<unsigned long>;

    bool ReadSessions(Receivers& receivers);
    bool IsOurs(const VK_MESSAGE_HEADER& header) const;
    unsigned long ReceiverOf(const VK_MESSAGE_HEADER& header);
    void ForgetThoseGone(const QueueStore::Headers& headers);
    void Serve(const std::string& pin, const Receivers& present, const Moved& moved);
    bool MoveOn(QueueMessage& message, const Receivers& present);

    QueueRouter& m_router;
    const QueueSettings& m_settings;
    const std::string m_root;
    VKLogInterface& m_logger;
    Clock::time_point m_next{};
    std::unordered_map<unsigned long, unsigned long> m_receivers; ///< of the waiting messages, by row id
    int m_bodiesLeft = 0;                                         ///< that may still be read in this check
    std::string m_lastError;
};

} // namespace vk
