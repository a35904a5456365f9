#include "Host.h"

#include "Accounts.h"
#include "VKConfiguration.h"
#include "VKDBiReceiver.h"
#include "VKDatabase.h"
#include "VKMXPCoreManager.h"
#include "VKXmppGWUserSessionDB.h"
#include "VKmxpDriverExports.h"
#include "VKsysEventLogFileWriter.h"
#include "VKsysEventLogInterface.h"

#include <atomic>
#include <cstdio>
#include <stdexcept>

namespace {

constexpr const char* kLogFile = "logs/vkbench_log.txt";
/// With the rest of the packet this makes an envelope of about 1 KiB.
constexpr std::size_t kBodySize = 330;

std::string Body()
{
    std::string body;
    while (body.size() < kBodySize)
        body += "Smoke on the 3rd floor; \"east\" stairs closed. ";
    body.resize(kBodySize);
    return body;
}

/// All of one length, so that the bytes on the wire are as many for each message.
std::string NewJobId()
{
    static std::atomic<unsigned> last{0};
    char text[32];
    std::snprintf(text, sizeof text, "20240101120000_%07u", ++last);
    return text;
}

VKsysEventLogInterface* MakeLogger(const std::string& path)
{
    auto writer = std::make_unique<VKsysEventLogFileWriter>();
    writer->setFilePath(path);
    writer->setPerProcessFile(false);
    writer->setNumBytesPerFile(10U << 20);
    writer->setNumOfFiles(1);
    VKsysEventLogInterface* const logger = VKsysEventLogInterface::CreateInstance(
        "vkbench", VKsysEventLogInterface::MULTI_THREADED, std::move(writer), VKLogInterface::WARN);
    if (!logger || !logger->Start())
        throw std::runtime_error("the event log does not start");
    return logger;
}

} // namespace

BenchMessage::BenchMessage(int carrier, int device, int port)
{
    file.strJobID = NewJobId();
    file.strSender = "Emergency Desk";
    file.strSubject = "Fire alarm, building 7";
    static const std::string body = Body();
    file.strBody = body;
    file.strReceiverPin = accounts::Jid(accounts::Device(device));
    file.ulReceiverID = static_cast<unsigned long>(device) + 1;
    file.tDispatchAt = 1700000000;
    file.iSeverity = 3;
    file.bTwoWay = 1;
    file.vecResponseChoices = {{"On my way", 1}, {"Cannot come", 0}};
    file.strCarrierName = Host::Connection(carrier);
    file.strServer = "127.0.0.1";
    file.iPort = port;
    file.strDomain = accounts::kDomain;
    file.strUserID = accounts::Host(carrier);
    file.strPassword = accounts::Host(carrier);
    file.strResource = "bench";
}

Host::Host(int port, int receivers) : m_port(port)
{
    MakeRoot();
    VKLogInterface* const logger = MakeLogger(m_root / kLogFile);
    MakeReceivers(receivers);
    m_driver = dynamic_cast<VKMxpDriver*>(GetDriverInstance());
    m_driver->m_pobjLogger = logger;
    m_driver->m_pobjMsgFileQueue = &m_returned;
    std::map<std::string, std::string> unused;
    VKMessengerInstConfBasic settings;
    if (!m_driver->Configure(unused) || !m_driver->Setup(&settings))
        throw std::runtime_error("the driver cannot be configured: " + Log());
    m_manager = VKMXPCoreManager::GetInstance(logger, 0, 0);
}

Host::~Host()
{
    m_driver->Cleanup();
    ReleaseDriverInstance(m_driver);
}

void Host::MakeRoot()
{
    for (const char* folder : {"config", "temp", "logs"})
        std::filesystem::create_directories(m_root / folder);
    m_root.Write("config/datasource", "database_type: Sdb\n");
    std::string lines;
    for (const std::string name : {"spool", "archive", "error", "report", "stat", "attachment", "waiting"}) {
        std::filesystem::create_directories(m_root / name);
        lines += name + "_dir:\t\t" + (m_root / name) + "\n";
    }
    m_root.Write("config/dir", lines + "log_dir:\t\t" + (m_root / "logs") + "\n");
    VKConfiguration* const configuration = VKConfiguration::getVKConfiguration();
    configuration->setConfDirectory(m_root / "config");
    configuration->loadPrimaryConfiguration(true);
}

void Host::MakeReceivers(int count)
{
    if (count == 0)
        return;
    VKDatabase* const database = VKDatabase::getVKMultiThreadedDatabase(nullptr, true);
    VKDBiReceiver* const receivers = database->getVKDBiReceiverObject();
    if (!receivers)
        throw std::runtime_error("no database: " + database->getLastErrorString());
    VKXmppGWUserSessionDB sessions(VKConfiguration::getVKConfiguration()->getRootDirectory(false));
    for (int i = 0; i < count; ++i) {
        const std::string name = accounts::Device(i);
        VK_RECEIVER receiver;
        std::snprintf(receiver.name, sizeof receiver.name, "%s", name.c_str());
        std::snprintf(receiver.pin, sizeof receiver.pin, "%s", accounts::Jid(name).c_str());
        receiver.type = VKReceiverTwoWay;
        receiver.two_way = true;
        receiver.carrier_id = 1;
        receivers->Add(&receiver, false);
        VKXmppGWUserSession session;
        session.type = VKXmppGWSessionMXP;
        session.user_id = receiver.id;
        session.user_name = name;
        session.jid = accounts::Jid(name) + "/mxp";
        if (!sessions.Add(&session))
            throw std::runtime_error("a session cannot be stored");
    }
}

void Host::Send(BenchMessage& message)
{
    VKMessageFile::ReportsStatus status = VKMessengerReportsMngrInterface::RS_UNCHANGED;
    if (m_driver->SendAMessage(&message.file, status) && status == VKMessengerReportsMngrInterface::RS_SENT)
        return;
    const std::vector<std::string>& reasons = message.file.failureReasons;
    throw std::runtime_error("a message was not sent: " + (reasons.empty() ? Log() : reasons.back()));
}

void Host::Connect(const std::string& connection, const std::string& user)
{
    std::string error;
    if (!m_manager->StartC2SConnection(connection, "127.0.0.1", m_port, accounts::Jid(user), user, "bench", true, "", 0,
                                       0, 15, &error))
        throw std::runtime_error("no connection: " + error);
}

void Host::Disconnect(const std::string& connection) { m_manager->TerminateC2SConnection(connection); }

std::string Host::Log() const { return m_root.Read(kLogFile); }
