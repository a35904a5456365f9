#include "VKPushNotifierImplFCM.h"

#include "ConfigurationFile.h"
#include "VKJson.h"
#include "VKLog.h"
#include "VKMXPManagerSettings.h"
#include "VKPushSettings.h"
#include "VKcurlHttp.h"

#include <algorithm>

namespace {

constexpr std::size_t kLongestBody = 4000;
constexpr int kLongestTimeToLive = 28 * 86400; // the service refuses more
constexpr long kAssertionSeconds = 3600;
constexpr long kSpareSeconds = 60; // an access token is renewed that long before it ends
constexpr const char* kScope = "https://www.googleapis.com/auth/firebase.messaging";
constexpr const char* kGrantType = "urn:ietf:params:oauth:grant-type:jwt-bearer";

const std::string& FirstOf(const std::string& one, const std::string& other) { return one.empty() ? other : one; }

/// The service's own error code: in the details when it has one of its own, else the general status.
std::string ErrorCode(const Json::Value& error)
{
    const Json::Value& details = vk::JsonMember(error, "details");
    if (details.isArray())
        for (const Json::Value& detail : details) {
            const std::string code = vk::JsonText(detail, "errorCode");
            if (!code.empty())
                return code;
        }
    return vk::JsonText(error, "status");
}

} // namespace

bool VKPushNotifierImplFCM::Initialize()
{
    m_bEnabled = false;
    const VKMXPManagerSettings* const settings = vk::PushSettings(m_pLogger);
    if (!settings)
        return false;
    m_bEnabled = settings->m_bFcmEnabled;
    if (!m_bEnabled)
        return false;
    const vk::PushProxy proxy = vk::PushProxyOf(*settings);
    m_strProxyPassword = proxy.password;
    vk::HttpConnectionOptions options;
    options.http2 = true;
    options.caBundle = vk::PushCaBundleOrSystem(settings->m_strFcmCaBundle);
    options.proxy = proxy.host;
    options.proxyUser = proxy.user;
    options.proxyPassword = proxy.password;
    m_connection.Configure(options);
    m_bEnabled = LoadAccount(*settings);
    return m_bEnabled;
}

bool VKPushNotifierImplFCM::LoadAccount(const VKMXPManagerSettings& settings)
{
    const std::string& path = settings.m_strFcmServiceAccount;
    std::string text, why = "it cannot be read";
    if (vk::ReadConfigurationText(path, text)) {
        Json::Value account;
        why = "it is no JSON object";
        if (vk::ParseJsonObject(text, account) && m_signer.Load(vk::JsonText(account, "private_key"), why)) {
            m_strClientEmail = vk::JsonText(account, "client_email");
            m_strTokenUrl = FirstOf(settings.m_strFcmTokenUrl, vk::JsonText(account, "token_uri"));
            const std::string project = FirstOf(settings.m_strFcmProjectId, vk::JsonText(account, "project_id"));
            m_strUrl = settings.m_strFcmUrl + "/v1/projects/" + HttpStrEncode(project) + "/messages:send";
            if (!project.empty() && !m_strClientEmail.empty() && !m_strTokenUrl.empty())
                return true;
            why = "it lacks 'client_email', 'project_id' or 'token_uri'";
        }
    }
    VK_LOG_ERROR(m_pLogger, "The service account file '%s' of the push service 'fcm' cannot be used: %s.", path.c_str(),
                 why.c_str());
    return false;
}

bool VKPushNotifierImplFCM::Finalize()
{
    m_connection.Close();
    m_strAccessToken.clear();
    return true;
}

std::string VKPushNotifierImplFCM::Clean(const std::string& text) const
{
    return vk::Redacted(text, {m_strAccessToken, m_strProxyPassword});
}

bool VKPushNotifierImplFCM::Refuse(const std::string& why)
{
    m_strLastAnswer = why;
    VK_LOG_ERROR(m_pLogger, "%s", why.c_str());
    return false;
}

/// Trades a signed assertion for an access token unless there is one that still holds.
bool VKPushNotifierImplFCM::HaveAccessToken()
{
    const time_t now = time(nullptr);
    if (!m_strAccessToken.empty() && now < m_tAccessTokenEnds - kSpareSeconds)
        return true;
    m_strAccessToken.clear();
    Json::Value claims(Json::objectValue), header(Json::objectValue);
    header["typ"] = "JWT";
    claims["iss"] = m_strClientEmail;
    claims["scope"] = kScope;
    claims["aud"] = m_strTokenUrl;
    claims["iat"] = static_cast<Json::Int64>(now);
    claims["exp"] = static_cast<Json::Int64>(now + kAssertionSeconds);
    const std::string body =
        "grant_type=" + HttpStrEncode(std::string(kGrantType)) + "&assertion=" + m_signer.Sign(header, claims);
    const vk::HttpAnswer answer =
        m_connection.Post(m_strTokenUrl, {"content-type: application/x-www-form-urlencoded"}, body);
    Json::Value json;
    vk::ParseJsonObject(answer.body, json);
    m_strAccessToken = answer.status == 200 ? vk::JsonText(json, "access_token") : std::string();
    if (m_strAccessToken.empty())
        return Refuse(printfToString("FCM service account '%s' got no access token. Code: %ld, error:'%s'.",
                                     m_strClientEmail.c_str(), answer.status,
                                     answer.code != 0 ? answer.error.c_str() : vk::JsonText(json, "error").c_str()));
    const Json::Value& lifetime = vk::JsonMember(json, "expires_in");
    m_tAccessTokenEnds = now + (lifetime.isInt() ? lifetime.asInt() : kAssertionSeconds);
    return true;
}

bool VKPushNotifierImplFCM::SendTo(const std::string& deviceToken, Json::Value& data, int timeToLive)
{
    m_bTokenDead = false;
    Json::Value request(Json::objectValue);
    Json::Value& message = request["message"];
    message["token"] = deviceToken;
    message["android"]["priority"] = "high";
    if (timeToLive > 0)
        message["android"]["ttl"] = std::to_string(std::min(timeToLive, kLongestTimeToLive)) + "s";
    for (const std::string& name : data.getMemberNames()) {
        const Json::Value& value = data[name];
        message["data"][name] = value.isConvertibleTo(Json::stringValue) ? value.asString() : vk::CompactJson(value);
    }
    const std::string body = vk::CompactJson(request);
    if (body.size() > kLongestBody)
        return Refuse(printfToString("Payload maximum size limit exceed. Payload: '%s', size:'%d'.", body.c_str(),
                                     static_cast<int>(body.size())));
    if (!HaveAccessToken())
        return false;
    vk::HttpAnswer answer = Post(body);
    if (answer.status == 401) { // withdrawn before its end: once more with a fresh one
        m_strAccessToken.clear();
        if (!HaveAccessToken())
            return false;
        answer = Post(body);
    }
    return Judge(answer, deviceToken);
}

vk::HttpAnswer VKPushNotifierImplFCM::Post(const std::string& body)
{
    return m_connection.Post(m_strUrl, {"content-type: application/json", "authorization: Bearer " + m_strAccessToken},
                             body);
}

bool VKPushNotifierImplFCM::Judge(const vk::HttpAnswer& answer, const std::string& token)
{
    const std::string body = Clean(answer.body);
    VK_LOG_INFO(m_pLogger, "Request to FCM returns code:%ld", answer.status);
    VK_LOG_DEBUG(m_pLogger, "Request to FCM returns output:'%s'", body.c_str());
    if (answer.code != 0)
        return Refuse(
            printfToString("FCM service '%s' cannot be reached: %s.", m_strUrl.c_str(), Clean(answer.error).c_str()));
    Json::Value json;
    const bool parsed = vk::ParseJsonObject(body, json);
    if (answer.status == 200 && parsed) {
        m_strLastAnswer = "The service took the notification.";
        return true;
    }
    const Json::Value& error = vk::JsonMember(json, "error");
    const std::string code = ErrorCode(error), text = vk::JsonText(error, "message");
    m_bTokenDead = code == "UNREGISTERED";
    if (m_bTokenDead)
        return Refuse(printfToString("FCM says that the device token '%s' is dead: '%s'. Nothing will reach it any "
                                     "more; the device has to register anew.",
                                     token.c_str(), code.c_str()));
    if (answer.status >= 500)
        return Refuse(printfToString("FCM service unavailable. Code: %ld, error:'%s'.", answer.status, code.c_str()));
    return Refuse(printfToString("FCM service refused the notification. Code: %ld, error:'%s', text:'%s'.",
                                 answer.status, code.c_str(), text.c_str()));
}
