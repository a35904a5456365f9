#pragma once

#include "VKMXPConnGlooxImpl.h"
#include "VKMXPFileReceiver.h"

#include <map>
#include <string>

/// Takes every file that is offered to this server, whoever offers it, and remembers it for the packet that it belongs to:
/// the description of a file is the id of its packet. Files go to the receive directory and never leave it.
///
/// Threads: as vk::FileReceiver; notes under the connection's incoming lock.
class VKMXPConnGlooxImpl::VKMXPConnGlooxFileAcceptor : public vk::FileReceiver
{
public:
    /// The connection's client must exist.
    explicit VKMXPConnGlooxFileAcceptor(VKMXPConnGlooxImpl& connection);

protected:
    void Offered(const File& file) override;
    std::string PathFor(const File& file) override;
    void Received(const File& file) override;
    void Failed(const std::string& what, const gloox::IQ* iq) override;

private:
    VKMXPConnGlooxImpl& m_connection;
    std::map<std::string, std::string> m_owners; ///< path to the bare JID whose file it holds
};
