#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

/// The messages of one sender that wait to be fetched.
struct VKIncomingQueue
{
    std::string strBareJID;
    bool bHasSession = false;             ///< only its session fetches from it
    std::vector<std::string> vecMessages; ///< oldest first
    std::size_t uTaken = 0;               ///< messages at the front that were fetched already

    bool IsEmpty() const { return uTaken == vecMessages.size(); }
};

namespace vk {

/// What came in on one connection, a queue for each sending full JID, so that a session only ever looks at its own
/// traffic. A queue that was emptied is dropped, so that senders who come and go leave nothing behind. Not guarded:
/// the connection's incoming lock does that.
class IncomingQueues
{
public:
    void Put(const std::string& fullJid, const std::string& bareJid, bool hasSession, std::string message);

    /// The oldest message of a session: of the sender that is exactly this JID, else of the first in order of those
    /// whose bare JID it is.
    std::optional<std::string> TakeFor(const std::string& jid);

    /// The oldest message of the first sender in order without a session, with its bare JID.
    std::optional<std::pair<std::string, std::string>> TakeStray();

private:
    using Queues = std::map<std::string, VKIncomingQueue>;

    std::string TakeFrom(Queues::iterator queue);

    Queues m_mapQueues;                                          ///< by full JID
    std::map<std::string, std::set<std::string>> m_mapSenders;   ///< bare JID to the full JIDs that have a queue
    std::size_t m_uStray = 0;                                    ///< messages in queues without a session
};

} // namespace vk
