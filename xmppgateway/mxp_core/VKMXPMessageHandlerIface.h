#pragma once

#include <string>

/// Takes chat text that is no MXP envelope. The call comes on the core manager's work thread, with its cycle lock held
/// and, for text of a session, its request lock: it must not block for long.
class VKMXPMessageHandlerIface
{
public:
    virtual void HandleMessage(const std::string& jid, const std::string& connectionId, const std::string& text) = 0;

protected:
    ~VKMXPMessageHandlerIface() = default;
};
