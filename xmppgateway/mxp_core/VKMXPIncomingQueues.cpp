#include "VKMXPIncomingQueues.h"

namespace vk {

namespace {
constexpr std::size_t kCompactAt = 256; // fetched places at the front that are worth giving back
}

void IncomingQueues::Put(const std::string& fullJid, const std::string& bareJid, bool hasSession, std::string message)
{
    VKIncomingQueue& queue = m_mapQueues[fullJid];
    const std::size_t waiting = queue.vecMessages.size() - queue.uTaken;
    if (!queue.bHasSession)
        m_uStray -= waiting;
    queue.strBareJID = bareJid;
    queue.bHasSession = hasSession;
    queue.vecMessages.push_back(std::move(message));
    if (!hasSession)
        m_uStray += waiting + 1;
    m_mapSenders[bareJid].insert(fullJid);
}

std::optional<std::string> IncomingQueues::TakeFor(const std::string& jid)
{
    if (m_mapQueues.empty())
        return std::nullopt;
    const auto exact = m_mapQueues.find(jid);
    if (exact != m_mapQueues.end())
        return TakeFrom(exact);
    const auto senders = m_mapSenders.find(jid);
    if (senders == m_mapSenders.end())
        return std::nullopt;
    return TakeFrom(m_mapQueues.find(*senders->second.begin()));
}

std::optional<std::pair<std::string, std::string>> IncomingQueues::TakeStray()
{
    if (m_uStray == 0)
        return std::nullopt;
    for (auto queue = m_mapQueues.begin(); queue != m_mapQueues.end(); ++queue)
        if (!queue->second.bHasSession) {
            std::string bareJid = queue->second.strBareJID;
            return std::make_pair(std::move(bareJid), TakeFrom(queue));
        }
    return std::nullopt;
}

std::string IncomingQueues::TakeFrom(Queues::iterator entry)
{
    VKIncomingQueue& queue = entry->second;
    std::string message = std::move(queue.vecMessages[queue.uTaken++]);
    if (!queue.bHasSession)
        --m_uStray;
    if (queue.IsEmpty()) {
        const auto senders = m_mapSenders.find(queue.strBareJID);
        senders->second.erase(entry->first);
        if (senders->second.empty())
            m_mapSenders.erase(senders);
        m_mapQueues.erase(entry);
    }
    else if (queue.uTaken >= kCompactAt && queue.uTaken * 2 > queue.vecMessages.size()) {
        queue.vecMessages.erase(queue.vecMessages.begin(),
                                queue.vecMessages.begin() + static_cast<std::ptrdiff_t>(queue.uTaken));
        queue.uTaken = 0;
    }
    return message;
}

} // namespace vk
