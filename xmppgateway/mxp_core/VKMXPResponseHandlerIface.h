#pragma once

#include <string>

class VKMXPmBase;

/// Takes the response to a request that was sent. The call comes on the core manager's work thread, with its cycle lock
/// and response lock held: it must not block for long.
class VKMXPResponseHandlerIface
{
public:
    /// \param packet the response, now owned by the handler
    virtual void HandleResponse(const std::string& jid, const std::string& connectionId, const std::string& packetType,
                                VKMXPmBase* packet) = 0;

protected:
    ~VKMXPResponseHandlerIface() = default;
};
