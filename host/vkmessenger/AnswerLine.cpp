#include "AnswerLine.h"

#include "VKConfiguration.h"
#include "VKLog.h"
#include "VKMXPCoreManager.h"
#include "VKMessengerInstConfBasic.h"
#include "VKioFile.h"

namespace vk {

namespace {

constexpr std::chrono::seconds kRetry(30);
constexpr const char* kClientResource = "mxp";
constexpr const char* kNoAttachmentsMarker = "mxp_no_attach";

/// The driver has made it with settings of its own.
VKMXPCoreManager* Manager(VKLogInterface& logger) { return VKMXPCoreManager::GetInstance(&logger, 0, 0); }

} // namespace

void AnswerLine::Open(const VKMessageFile& file)
{
    if (!m_isOwnDriver || file.strCarrierName.empty() || Clock::now() < m_carriers[file.strCarrierName])
        return;
    VKMXPCoreManager* const manager = Manager(m_logger);
    if (manager == nullptr)
        return;
    const bool hasDomain = file.strUserID.find('@') != std::string::npos;
    const std::string account = hasDomain ? file.strUserID : file.strUserID + "@" + file.strDomain;
    const VKFileTransferSettings files;
    // As the driver does: what is connected first decides for all messages of the carrier.
    const bool sendsFiles =
        !VKioFile::Check(VKConfiguration::getVKConfiguration()->getConfDirectory(false), kNoAttachmentsMarker);
    std::string error;
    if (manager->StartC2SConnection(file.strCarrierName, file.strServer, file.iPort, account, file.strPassword,
                                    file.strResource, sendsFiles, files.FileTransferServer,
                                    static_cast<int>(files.FileTransferPort), static_cast<int>(files.PacketSizeInKBs),
                                    static_cast<int>(files.FileTransferTimeOut), &error)) {
        // Only with a session does the device hear that its answer was taken.
        manager->StartC2CSession(file.strReceiverPin, file.strCarrierName, kClientResource, false);
        return;
    }
    m_carriers[file.strCarrierName] = Clock::now() + kRetry;
    VK_LOG_WARN(&m_logger, "Job ID: [%s] >> No answer can come in: carrier [%s] cannot be connected: %s",
                file.strJobID.c_str(), file.strCarrierName.c_str(), error.c_str());
}

void AnswerLine::Close()
{
    if (!m_carriers.empty())
        if (VKMXPCoreManager* const manager = Manager(m_logger))
            for (const auto& [carrier, retry] : m_carriers)
                manager->TerminateC2SConnection(carrier);
    m_carriers.clear();
}

} // namespace vk
