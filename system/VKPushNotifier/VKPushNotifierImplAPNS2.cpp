#include "VKPushNotifierImplAPNS2.h"

#include "ConfigurationFile.h"
#include "VKJson.h"
#include "VKLog.h"
#include "VKMXPManagerSettings.h"
#include "VKPushSettings.h"
#include "VKioFile.h"
#include "VKstringReplace.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr std::size_t kPayloadSize = 4096;
constexpr long kTokenSeconds = 2400; // the service takes a provider token from 20 to 60 minutes

bool IsToken(const std::string& token)
{
    return !token.empty() &&
           std::all_of(token.begin(), token.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
}

} // namespace

bool VKPushNotifierImplAPNS2::Initialize()
{
    m_bEnabled = false;
    const VKMXPManagerSettings* const settings = vk::PushSettings(m_pLogger);
    if (!settings)
        return false;
    m_bEnabled = settings->m_bApns2Enabled;
    if (!m_bEnabled)
        return false;
    m_strUrl = settings->m_bApns2Production ? settings->m_strApns2ProductionUrl : settings->m_strApns2DevelopmentUrl;
    m_strTopic = settings->m_strApns2Topic;
    m_strCollapseId = settings->m_strApns2CollapseId;
    m_iPriority = settings->m_iApns2Priority;
    const vk::PushProxy proxy = vk::PushProxyOf(*settings);
    m_strProxyPassword = proxy.password;
    vk::HttpConnectionOptions options;
    options.http2 = true;
    options.caBundle = vk::PushCaBundleOrSystem(settings->m_strApns2CaBundle);
    options.proxy = proxy.host;
    options.proxyUser = proxy.user;
    options.proxyPassword = proxy.password;
    m_bEnabled = UseCredentials(*settings, options);
    m_connection.Configure(options);
    return m_bEnabled;
}

/// The signing key when one is named, else the client certificate.
bool VKPushNotifierImplAPNS2::UseCredentials(const VKMXPManagerSettings& settings, vk::HttpConnectionOptions& options)
{
    if (!settings.m_strApns2SigningKey.empty()) {
        m_strKeyId = settings.m_strApns2KeyId;
        m_strTeamId = settings.m_strApns2TeamId;
        return LoadSigningKey(settings.m_strApns2SigningKey);
    }
    options.clientCertificate = settings.m_strApns2Certificate;
    options.clientKey = settings.m_strApns2PrivateKey;
    options.passPhrase = settings.m_strApns2PrivateKeyPasswd;
    if (VKioFile::CheckFile(options.clientCertificate))
        return true;
    VK_LOG_ERROR(m_pLogger, "Unable to access SSL certificate file '%s'.", options.clientCertificate.c_str());
    return false;
}

bool VKPushNotifierImplAPNS2::LoadSigningKey(const std::string& path)
{
    std::string pem, why = "it cannot be read";
    if (vk::ReadConfigurationText(path, pem) && m_signer.Load(pem, why))
        return true;
    VK_LOG_ERROR(m_pLogger, "The signing key file '%s' of the push service 'apns2' cannot be used: %s.", path.c_str(),
                 why.c_str());
    return false;
}

bool VKPushNotifierImplAPNS2::Finalize()
{
    m_connection.Close();
    m_strProviderToken.clear();
    return true;
}

/// The token that tells the service who sends; made anew before the service finds it too old.
const std::string& VKPushNotifierImplAPNS2::ProviderToken()
{
    const time_t now = time(nullptr);
    if (m_strProviderToken.empty() || now - m_tProviderTokenMade > kTokenSeconds || now < m_tProviderTokenMade) {
        Json::Value header(Json::objectValue), claims(Json::objectValue);
        header["kid"] = m_strKeyId;
        claims["iss"] = m_strTeamId;
        claims["iat"] = static_cast<Json::Int64>(now);
        m_strProviderToken = m_signer.Sign(header, claims);
        m_tProviderTokenMade = now;
    }
    return m_strProviderToken;
}

bool VKPushNotifierImplAPNS2::Refuse(const std::string& why)
{
    m_strLastAnswer = why;
    VK_LOG_ERROR(m_pLogger, "%s", why.c_str());
    return false;
}

bool VKPushNotifierImplAPNS2::SendTo(const std::string& deviceToken, Notification& notification, int timeToLive)
{
    m_bTokenDead = false;
    const std::string token = VKstringRemoveSpaceChars(deviceToken);
    if (!IsToken(token)) // it becomes part of an address
        return Refuse(printfToString("Failed to prepare device token: '%s'.", deviceToken.c_str()));
    const std::string payload = vk::ApnsPayload(notification);
    if (payload.size() > kPayloadSize)
        return Refuse(printfToString("Payload maximum sizelimit exceed. Payload: '%s', size:'%d'.", payload.c_str(),
                                     static_cast<int>(payload.size())));
    vk::HttpAnswer answer = Post(token, payload, timeToLive);
    if (answer.status == 403 && m_signer.IsLoaded() && answer.body.find("ExpiredProviderToken") != std::string::npos) {
        m_strProviderToken.clear(); // the clocks differ: once more with a fresh one
        answer = Post(token, payload, timeToLive);
    }
    return Judge(answer, token);
}

vk::HttpAnswer VKPushNotifierImplAPNS2::Post(const std::string& token, const std::string& payload, int timeToLive)
{
    const long expiration = timeToLive > 0 ? time(nullptr) + timeToLive : 0;
    std::vector<std::string> headers = {"content-type: application/json", "apns-push-type: alert",
                                        "apns-topic: " + m_strTopic, "apns-priority: " + std::to_string(m_iPriority),
                                        "apns-expiration: " + std::to_string(expiration)};
    if (!m_strCollapseId.empty())
        headers.push_back("apns-collapse-id: " + m_strCollapseId);
    if (m_signer.IsLoaded())
        headers.push_back("authorization: bearer " + ProviderToken());
    return m_connection.Post(m_strUrl + "/3/device/" + token, headers, payload);
}

bool VKPushNotifierImplAPNS2::Judge(const vk::HttpAnswer& answer, const std::string& token)
{
    const std::string body = vk::Redacted(answer.body, {m_strProviderToken, m_strProxyPassword});
    VK_LOG_INFO(m_pLogger, "Request to APNS2 returns code:%ld", answer.status);
    VK_LOG_DEBUG(m_pLogger, "Request to APNS2 returns output:'%s'", body.c_str());
    if (answer.code != 0)
        return Refuse(printfToString("APNS2 service '%s' cannot be reached: %s.", m_strUrl.c_str(),
                                     vk::Redacted(answer.error, {m_strProxyPassword}).c_str()));
    if (answer.status == 200) {
        m_strLastAnswer = "The service took the notification.";
        return true;
    }
    Json::Value json;
    vk::ParseJsonObject(body, json);
    const std::string reason = vk::JsonText(json, "reason");
    m_bTokenDead = answer.status == 410;
    if (m_bTokenDead)
        return Refuse(printfToString("APNS2 says that the device token '%s' is dead: '%s'. Nothing will reach it any "
                                     "more; the device has to register anew.",
                                     token.c_str(), reason.c_str()));
    if (answer.status >= 500)
        return Refuse(
            printfToString("APNS2 service unavailable. Code: %ld, reason:'%s'.", answer.status, reason.c_str()));
    return Refuse(printfToString("APNS2 service refused the notification. Code: %ld, reason:'%s'.", answer.status,
                                 reason.c_str()));
}
