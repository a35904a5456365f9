#pragma once

#include "VKMXPSession.h"

#include <mutex>

namespace gloox {
class MessageSession;
}

/// A session on a gloox connection. The message session belongs to the gloox client; the connection sets it, takes it
/// back when its client ends, and alone enters it.
class VKMXPSessionGlooxImpl : public VKMXPSession
{
public:
    VKMXPSessionGlooxImpl(const std::string& jid, VKMXPConnIface* connection, VKLogInterface* logger);

    void ResetResource() override;

    gloox::MessageSession* GetMessageSession() const { return m_pobjMessageSession; }
    void SetMessageSession(gloox::MessageSession* session) { m_pobjMessageSession = session; }

    /// The lock under which the client, and so its message sessions, are entered; outlives the session.
    void SetClientLock(std::recursive_mutex* lock) { m_pobjClientLock = lock; }

private:
    gloox::MessageSession* m_pobjMessageSession = nullptr; ///< guarded by the connection's client lock
    std::recursive_mutex* m_pobjClientLock = nullptr;
};
