#include "VKPushNotifierImplAPNS.h"

#include "VKField.h"
#include "VKLog.h"
#include "VKMXPManagerSettings.h"
#include "VKPushSettings.h"
#include "VKdeadline.h"
#include "VKioException.h"
#include "VKioFile.h"
#include "VKioSSLClientSocket.h"
#include "VKstringNumber.h"
#include "VKstringReplace.h"

#include <array>
#include <cstring>
#include <ctime>

namespace {

constexpr int kTokenSize = 32;
constexpr std::size_t kPayloadSize = 256;
constexpr long kExpirySeconds = 86400;
constexpr int kProductionCertificate = 2;
constexpr auto kGeneralTlsClient = static_cast<VKioSSLClientSocket::MethodType>(5);

// The error frame: command, status, identifier; some gateways send a byte more.
constexpr std::size_t kErrorFrameSize = 6;
constexpr std::size_t kLongestErrorFrame = 7;
constexpr unsigned char kErrorCommand = 8;

constexpr vk::CodeText<int> g_arrstAPNSErrorRespTable[] = {
    {0, "No errors encountered"}, {1, "Processing error"},   {2, "Missing device token"}, {3, "Missing topic"},
    {4, "Missing payload"},       {5, "Invalid token size"}, {6, "Invalid topic size"},   {7, "Invalid payload size"},
    {8, "Invalid token"},         {10, "Shutdown"},
};

/// The name is kept for the life of the process, for ServerInfo has only a pointer.
void SetServer(VKPushNotifierImplAPNS::ServerInfo& server, std::string& keptName, const std::string& host,
               std::int32_t port)
{
    if (host.empty())
        return;
    keptName = host;
    server = {keptName.c_str(), port};
}

void AppendBigEndian(std::string& frame, unsigned long value, int bytes)
{
    for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8)
        frame += static_cast<char>(value >> shift & 0xFF);
}

} // namespace

VKPushNotifierImplAPNS::ServerInfo VKPushNotifierImplAPNS::m_stProduction{vk::settings::kApnsProductionHost,
                                                                          vk::settings::kApnsPort};
VKPushNotifierImplAPNS::ServerInfo VKPushNotifierImplAPNS::m_stDevelopment{vk::settings::kApnsDevelopmentHost,
                                                                           vk::settings::kApnsPort};

VKPushNotifierImplAPNS::VKPushNotifierImplAPNS() : m_pGateway(&m_stDevelopment) {}
VKPushNotifierImplAPNS::~VKPushNotifierImplAPNS() = default;

bool VKPushNotifierImplAPNS::Initialize()
{
    m_bEnabled = false;
    const VKMXPManagerSettings* const settings = vk::PushSettings(m_pLogger);
    if (!settings)
        return false;
    m_bEnabled = settings->m_bApnsEnabled;
    if (!m_bEnabled)
        return false;
    VK_LOG_WARN(m_pLogger, "The push service 'apns' is a legacy service: its operator closed the binary gateway in "
                           "2021. Use 'apns2'.");
    static std::string productionHost, developmentHost;
    SetServer(m_stProduction, productionHost, settings->m_strApnsProductionHost, settings->m_iApnsProductionPort);
    SetServer(m_stDevelopment, developmentHost, settings->m_strApnsDevelopmentHost, settings->m_iApnsDevelopmentPort);
    m_bEnabled = Setup(vk::PushCaBundle(settings->m_strApnsCaBundle), settings->m_strApnsCertificate,
                       settings->m_strApnsPrivateKey, settings->m_strApnsPrivateKeyPasswd,
                       settings->m_iApnsCertificateType == kProductionCertificate);
    return m_bEnabled;
}

bool VKPushNotifierImplAPNS::Setup(const std::string& caBundle, const std::string& certificate,
                                   const std::string& privateKey, const std::string& passPhrase, bool production)
{
    m_strCaBundle = caBundle;
    m_strCertificate = certificate;
    m_strPrivateKey = privateKey;
    m_strPassPhrase = passPhrase;
    m_bProduction = production;
    m_pGateway = production ? &m_stProduction : &m_stDevelopment;
    if (!VKioFile::CheckFile(certificate)) {
        VK_LOG_ERROR(m_pLogger, "Unable to access SSL certificate file '%s'.", certificate.c_str());
        return false;
    }
    return true;
}

bool VKPushNotifierImplAPNS::Finalize() { return TerminateSession(); }

bool VKPushNotifierImplAPNS::CheckSession()
{
    if (!m_pSession)
        return false;
    try {
        if (m_pSession->Wait(true, true, 1) == VKioSocket::Failed)
            return false;
    } catch (const VKException&) {
        return false;
    }
    // Bytes that wait here are a refusal that came too late for its notification; the gateway closes behind it.
    const VKioSocket::SocketStatus status = m_pSession->Look();
    if (status == VKioSocket::Readable)
        VK_LOG_WARN(m_pLogger, "APNS gateway %s:%d refused an earlier notification too late to tell which.",
                    m_pGateway->host, m_pGateway->port);
    return status == VKioSocket::TimedOut;
}

bool VKPushNotifierImplAPNS::CreateSession()
{
    TerminateSession();
    try {
        auto session = std::make_unique<VKioSSLClientSocket>(
            m_strCaBundle, m_strCertificate, m_strPrivateKey, m_strPassPhrase, kGeneralTlsClient, m_pLogger,
            &VKioSSLClientSocket::Callback_PeerVerify_AcceptAll, &VKioSSLClientSocket::Callback_PEMPassword_Internal);
        session->Connect(m_pGateway->host, m_pGateway->port);
        session->StartSSL();
        m_pSession = std::move(session);
        return true;
    } catch (const VKioException& failure) {
        VK_LOG_ERROR(m_pLogger, "Socket error occurred while starting SSL session to target %s:%d. Details: %s.",
                     m_pGateway->host, m_pGateway->port, failure.ToString().c_str());
    } catch (const std::exception&) {
        VK_LOG_ERROR(m_pLogger, "Error occurred while starting SSL session to target %s:%d.", m_pGateway->host,
                     m_pGateway->port);
    }
    return false;
}

bool VKPushNotifierImplAPNS::TerminateSession()
{
    if (m_pSession)
        m_pSession->Close();
    m_pSession.reset();
    return true;
}

int VKPushNotifierImplAPNS::PrepareDeviceToken(const std::string& token, unsigned char* buffer, int size)
{
    return VKHexStrToBytes(VKstringRemoveSpaceChars(token).c_str(), buffer, size);
}

bool VKPushNotifierImplAPNS::PreparePayload(Notification& notification, std::string& payload)
{
    try {
        payload = vk::ApnsPayload(notification);
        return true;
    } catch (const std::exception&) {
        VK_LOG_ERROR(m_pLogger, "Error occurred while creating JSON payload.");
        return false;
    }
}

bool VKPushNotifierImplAPNS::SendTo(const std::string& deviceToken, Notification& notification)
{
    m_strLastAnswer = "The notification could not be sent.";
    unsigned char token[kTokenSize];
    if (PrepareDeviceToken(deviceToken, token, kTokenSize) < kTokenSize) {
        VK_LOG_ERROR(m_pLogger, "Failed to prepare device token: '%s'.", deviceToken.c_str());
        m_strLastAnswer = "The device token is not 64 hexadecimal digits.";
        return false;
    }
    std::string payload;
    if (!PreparePayload(notification, payload)) {
        VK_LOG_ERROR(m_pLogger, "Failed to prepare payload.");
        return false;
    }
    if (payload.size() > kPayloadSize) {
        VK_LOG_ERROR(m_pLogger, "Payload maximum sizelimit exceed. Payload: '%s', size:'%d'.", payload.c_str(),
                     static_cast<int>(payload.size()));
        m_strLastAnswer = "The notification is longer than the 256 bytes that the gateway takes.";
        return false;
    }
    if (!CheckSession() && !CreateSession()) {
        VK_LOG_ERROR(m_pLogger, "Failed to create SSL socket to %s:%d.", m_pGateway->host, m_pGateway->port);
        m_strLastAnswer = "The gateway cannot be reached.";
        return false;
    }
    std::array<unsigned char, kPayloadSize> buffer{};
    std::memcpy(buffer.data(), payload.data(), payload.size());
    if (!MamuPassKar(*m_pSession, token, buffer.data(), static_cast<unsigned int>(payload.size()))) {
        VK_LOG_ERROR(m_pLogger, "Failed to send payload.");
        TerminateSession();
        return false;
    }
    return true;
}

bool VKPushNotifierImplAPNS::MamuPassKar(VKioSSLClientSocket& socket, unsigned char* token, unsigned char* payload,
                                         unsigned int length)
{
    std::string frame(1, '\1');
    // The same in all frames, and not in network order: 9211 stored low byte first, on purpose.
    frame.append("\xFB\x23\0\0", 4);
    AppendBigEndian(frame, static_cast<unsigned long>(time(nullptr) + kExpirySeconds), 4);
    AppendBigEndian(frame, kTokenSize, 2);
    frame.append(reinterpret_cast<const char*>(token), kTokenSize);
    AppendBigEndian(frame, length, 2);
    frame.append(reinterpret_cast<const char*>(payload), length);
    try {
        return socket.Write(reinterpret_cast<unsigned char*>(frame.data()), static_cast<unsigned int>(frame.size())) ==
               frame.size();
    } catch (const VKException& failure) {
        VK_LOG_ERROR(m_pLogger, "Writing to APNS gateway failed. Details: %s.", failure.ToString().c_str());
        return false;
    }
}

/// How many bytes of an error frame came, and how the wait for them ended.
std::size_t VKPushNotifierImplAPNS::ReadAnswer(int timeoutMs, unsigned char* frame, std::size_t size, End& end)
{
    const vk::Deadline deadline(timeoutMs);
    std::size_t got = 0;
    end = End::Quiet;
    try {
        while (got < kErrorFrameSize) {
            VKioSocket::SocketStatus status = VKioSocket::Failed;
            const unsigned int count =
                m_pSession->Read(frame + got, static_cast<unsigned int>(size - got), deadline.RemainingMs(), status);
            if (count == 0 || status != VKioSocket::Done)
                break;
            got += count;
        }
    } catch (const VKException& failure) {
        end = failure.GetMsg() == "SSL Socket is closed" ? End::Closed : End::Broken;
        VK_LOG_WARN(m_pLogger, "APNS gateway ended the session. Details: %s.", failure.ToString().c_str());
    }
    return got;
}

bool VKPushNotifierImplAPNS::GetResponse(int timeoutMs, int& code, std::string& text)
{
    code = 0;
    text.clear();
    if (!m_pSession)
        return false;
    unsigned char frame[kLongestErrorFrame];
    End end = End::Quiet;
    const std::size_t got = ReadAnswer(timeoutMs, frame, sizeof frame, end);
    if (got == 0 && end != End::Broken) { // silence is no complaint, and so is an end without a word
        m_strLastAnswer = "The gateway raised no objection.";
        return end == End::Closed ? TerminateSession() : true;
    }
    TerminateSession();
    if (got == 0)
        text = "The connection to the gateway broke.";
    if (got >= 2 && frame[0] == kErrorCommand) {
        code = frame[1];
        text = printfToString("APNS gateway error code: %d, text:'%s'.", code,
                              vk::TextOfCode(g_arrstAPNSErrorRespTable, code, "Undefined."));
    }
    m_strLastAnswer = text.empty() ? "The gateway answered something that is no error frame." : text;
    return false;
}
