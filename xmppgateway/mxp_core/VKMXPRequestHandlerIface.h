#pragma once

#include <string>

class VKMXPmBase;

/// Takes requests that clients send. The call comes on the core manager's work thread, with its cycle lock and request
/// lock held: it must not block for long. It may call VKMXPCoreManager::Send.
class VKMXPRequestHandlerIface
{
public:
    /// \param jid bare JID of the session, or of the sender outside a session
    /// \param packet a request, now owned by the handler
    virtual void HandleRequest(const std::string& jid, const std::string& connectionId, const std::string& packetType,
                               VKMXPmBase* packet) = 0;

protected:
    ~VKMXPRequestHandlerIface() = default;
};
