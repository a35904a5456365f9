// The driver's life: making, configuring, cleaning up.

#include "VKMxpDriver.h"

#include "VKConfiguration.h"
#include "VKLog.h"
#include "VKMXPCoreManager.h"
#include "VKMXPEventNotifier.h"
#include "VKconLock.h"

std::vector<std::string> VKMxpDriver::s_vecConnIDs;
std::vector<std::string> VKMxpDriver::s_vecSessionIDs;
std::map<std::string, std::vector<VKMxpDriver::VKMxpRequest>> VKMxpDriver::s_mapRequests;
std::map<std::string, VKMxpDriver::MessageStatus> VKMxpDriver::s_tMsgFileStatusMap;
std::mutex VKMxpDriver::s_mtxCaches;
std::unordered_set<std::string> VKMxpDriver::s_setSessionIDs;

namespace {

constexpr int kSocketTimeout = 10;   // seconds
constexpr int kTransferTimeout = 60; // seconds
constexpr int kStopLimit = 10000;    // milliseconds

} // namespace

VKMxpDriver::VKMxpDriver() : m_pobjStatusMapLock(std::make_unique<VKconLock>()) {}

VKMxpDriver::~VKMxpDriver()
{
    // A host may release the driver without cleaning up: the work thread must not call into it any more.
    if (m_pobjCoreManager)
        m_pobjCoreManager->SetGeneralRequestHandler(nullptr);
}

bool VKMxpDriver::Configure(std::map<std::string, std::string>&)
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::Configure()");
    try {
        VK_LOG_INFO(m_pobjLogger, "Getting MXP Core Manager Instance.");
        m_pobjCoreManager = VKMXPCoreManager::GetInstance(m_pobjLogger, kSocketTimeout, kTransferTimeout);
        if (!m_pobjCoreManager) {
            VK_LOG_ERROR(m_pobjLogger, "Failed to create MXP Core Manager object.");
            return scope.Result(false);
        }
        VK_LOG_INFO(m_pobjLogger, "Starting MXP Core Manager Thread.");
        if (!m_pobjCoreManager->StartAsThread()) {
            VK_LOG_ERROR(m_pobjLogger, "Error in starting MXP Core Manager Thread.");
            return scope.Result(false);
        }
        VK_LOG_INFO(m_pobjLogger, "Setting General Request Handler.");
        m_pobjCoreManager->SetGeneralRequestHandler(this);

        VKConfiguration* const configuration = VKConfiguration::getVKConfiguration();
        if (!configuration) {
            VK_LOG_ERROR(m_pobjLogger, "Error in getting the configuration object.");
            return scope.Result(false);
        }
        const VK_DIRECTORY_PATH* const directories = configuration->getDirectory(false);
        if (!directories) {
            VK_LOG_ERROR(m_pobjLogger, "Error in getting the directories configuration.");
            return scope.Result(false);
        }
        m_strWaitingDirectory = directories->waiting_dir;
        return scope.Result(true);
    }
    catch (const std::exception& error) {
        VK_LOG_ERROR(m_pobjLogger, "Error in starting MXP Core Manager Thread. %s", error.what());
        return scope.Result(false);
    }
}

bool VKMxpDriver::Setup(VKMessengerInstConfBasic* settings)
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::Setup()");
    if (settings) {
        m_iFileTransferTimeout = static_cast<std::int32_t>(settings->objDaemon.FileTransferTimeOut);
        m_strFileTransferServer = settings->objDaemon.FileTransferServer;
        m_iFileTransferPort = static_cast<std::int32_t>(settings->objDaemon.FileTransferPort);
        m_iPacketSize = static_cast<std::int32_t>(settings->objDaemon.PacketSizeInKBs);
    }
    return scope.Result(true);
}

bool VKMxpDriver::Setup()
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::Setup()");
    return scope.Result(true);
}

/// All periodic work lies in the core manager's thread.
bool VKMxpDriver::PeriodicEvent()
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::PeriodicEvent()");
    return scope.Result(true);
}

bool VKMxpDriver::ProcessSignal()
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::ProcessSignal()");
    return scope.Result(true);
}

/// Lets go of the push services: the next push makes new ones, which read their settings anew.
bool VKMxpDriver::ResetDevice()
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::ResetDevice()");
    VKMXPEventNotifier::FinalizeAll();
    return scope.Result(true);
}

bool VKMxpDriver::Cleanup()
{
    VK_LOG_SCOPE(scope, m_pobjLogger, "VKMxpDriver::Cleanup()");
    std::vector<std::string> sessions;
    std::vector<std::string> connections;
    VKMXPEventNotifier::FinalizeAll(); // it logs with the host's logger, which may be gone after this
    VK_LOG_INFO(m_pobjLogger, "Cleaning up Request cache.");
    {
        const std::lock_guard<std::mutex> lock(s_mtxCaches);
        s_mapRequests.clear();
        sessions = s_vecSessionIDs; // the two lists are not emptied, on purpose
        connections = s_vecConnIDs;
    }
    if (!m_pobjCoreManager)
        return scope.Result(true);
    try {
        VK_LOG_INFO(m_pobjLogger, "Cleaning up Sessions cache.");
        for (const std::string& session : sessions) {
            const std::size_t blank = session.find(' ');
            m_pobjCoreManager->TerminateC2CSession(session.substr(0, blank), session.substr(blank + 1));
        }
        VK_LOG_INFO(m_pobjLogger, "Cleaning up Connections cache.");
        for (const std::string& connection : connections)
            m_pobjCoreManager->TerminateC2SConnection(connection);
        VK_LOG_INFO(m_pobjLogger, "Stopping MXP Core Manager Thread.");
        if (!m_pobjCoreManager->StopThread())
            VK_LOG_ERROR(m_pobjLogger, "Error in stopping MXP Core Manager Thread.");
        m_pobjCoreManager->SetGeneralRequestHandler(nullptr);
        if (!m_pobjCoreManager->WaitForThreadStop(kStopLimit))
            VK_LOG_WARN(m_pobjLogger, "The MXP Core Manager Thread is still at work.");
    }
    catch (const std::exception& error) {
        VK_LOG_ERROR(m_pobjLogger, "Error in stopping MXP Core Manager Thread. %s", error.what());
    }
    VK_LOG_INFO(m_pobjLogger, "Deleting MXP Core Manager object.");
    m_pobjCoreManager = nullptr; // the singleton itself stays
    return scope.Result(true);
}
