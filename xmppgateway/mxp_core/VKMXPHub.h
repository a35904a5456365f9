#pragma once

#include "VKMXPTrafficWait.h"

#include <string>

class VKMXPSession;

namespace vk {

/// What connections and sessions need of whoever runs them: the wait that they share, and a way to say which session is
/// worth a visit in the next round. Implemented by the core manager; all operations may be called from any thread, but
/// never from inside the XMPP library.
class Hub
{
public:
    virtual TrafficWait& Traffic() = 0;

    /// Whether there is a session for this JID. Takes the connections lock.
    virtual bool HasSession(const std::string& connectionId, const std::string& jid) = 0;

    /// A message of this sender waits to be fetched: its session, when there is one, is worth a visit. Takes the
    /// connections lock.
    virtual void MessageArrived(const std::string& connectionId, const std::string& bareJid,
                                const std::string& fullJid) = 0;

    /// The session has something to send or to hand on. Takes no lock of the core manager but a leaf of its own.
    virtual void SessionReady(VKMXPSession& session) = 0;

protected:
    ~Hub() = default;
};

} // namespace vk
