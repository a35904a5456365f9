#pragma once

#include <string>

/// Learns how the transfer of a packet's attachments ended. The call may come on any thread of the library; the
/// connection's attachments lock is not held. It may end any connection, its own too: such a connection is out of the core
/// manager's lists at once and taken down later, by the work thread. It must not hold a lock of its own meanwhile.
class VKMXPAttachmentStatusHandlerIface
{
public:
    /// \param packetId for a message its job id
    /// \param status report status: 3 all files arrived, 2 they did not
    /// \param errorText why not; empty when they did
    virtual void HandleAttachmentStatus(const std::string& connectionId, const std::string& packetId, int status,
                                        const std::string& errorText) = 0;

protected:
    ~VKMXPAttachmentStatusHandlerIface() = default;
};
