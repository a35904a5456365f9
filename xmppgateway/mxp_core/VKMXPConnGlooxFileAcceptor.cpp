#include "VKMXPConnGlooxFileAcceptor.h"

#include "VKConfiguration.h"
#include "VKLog.h"
#include "VKMXPStanzaClient.h"
#include "VKXMPPGlooxdTypes.h"
#include "VKconCriticalSection.h"
#include "VKioDirectory.h"

#include <gloox/error.h>
#include <gloox/siprofileft.h>

namespace {

constexpr const char* kReceiveDirectory = "received_files"; // under the temporary directory
constexpr int kMostOfOneName = 1000;

} // namespace

VKMXPConnGlooxImpl::VKMXPConnGlooxFileAcceptor::VKMXPConnGlooxFileAcceptor(VKMXPConnGlooxImpl& connection)
    : vk::FileReceiver(*connection.m_pobjClient, gloox::SIProfileFT::FTTypeS5B | gloox::SIProfileFT::FTTypeIBB,
                       std::chrono::seconds(s_iUploadLimitSeconds)),
      m_connection(connection)
{
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileAcceptor::Offered(const File& file)
{
    VK_LOG_INFO(m_connection.m_pobjLogger,
                "Connection ID: [%s] >> Accepting file transfer from [%s], file name: [%s], file description: [%s]",
                m_connection.m_strConnectionID.c_str(), file.from.full().c_str(), file.name.c_str(),
                file.description.c_str());
}

/// An old file of the same name is overwritten when the same client sent it. The name of another client's file, or of one
/// that is being written, gets a number in front, so that nobody's file turns up in somebody else's packet.
std::string VKMXPConnGlooxImpl::VKMXPConnGlooxFileAcceptor::PathFor(const File& file)
{
    std::string directory = m_connection.m_strReceiveDirectory;
    if (directory.empty())
        directory = VKConfiguration::getVKConfiguration()->getTempDirectory(false) + kReceiveDirectory;
    if (!VKioDirectory::CreateFullPath(directory))
        return {};
    const std::string owner = file.from.bare();
    for (int number = 1; number <= kMostOfOneName; ++number) {
        std::string path = directory + "/" + (number > 1 ? std::to_string(number) + "_" : "") + file.name;
        const auto taken = m_owners.find(path);
        if (IsBeingWritten(path) || (taken != m_owners.end() && taken->second != owner))
            continue;
        m_owners[path] = owner;
        return path;
    }
    return {};
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileAcceptor::Received(const File& file)
{
    VK_LOG_INFO(m_connection.m_pobjLogger,
                "Connection ID: [%s] >> Adding file [%s] with Description [%s] to Received File Map",
                m_connection.m_strConnectionID.c_str(), file.path.c_str(), file.description.c_str());
    const vk::ScopedSection section(*m_connection.m_pobjIncomingLock);
    m_connection.m_mapReceivedFiles[file.description][file.from.bare()].emplace_back(file.path, file.hash);
}

void VKMXPConnGlooxImpl::VKMXPConnGlooxFileAcceptor::Failed(const std::string& what, const gloox::IQ* iq)
{
    m_connection.SetLastError("File Transfer Error.");
    m_connection.LogTransferError("", "File Transfer Error: " + what, iq ? iq->error() : nullptr);
}
