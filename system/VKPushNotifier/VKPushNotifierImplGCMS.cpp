#include "VKPushNotifierImplGCMS.h"

#include "VKJson.h"
#include "VKLog.h"
#include "VKMXPManagerSettings.h"
#include "VKPushSettings.h"
#include "VKcurlService.h"
#include "VKstringTrim.h"

namespace {

constexpr std::size_t kLongestBody = 4000;

} // namespace

std::string VKPushNotifierImplGCMS::m_strGCMServer = vk::settings::kGcmsUrl;

bool VKPushNotifierImplGCMS::Initialize()
{
    m_bEnabled = false;
    const VKMXPManagerSettings* const settings = vk::PushSettings(m_pLogger);
    if (!settings)
        return false;
    m_bEnabled = settings->m_bGcmsEnabled;
    if (!m_bEnabled)
        return false;
    VK_LOG_WARN(m_pLogger,
                "The push service 'gcms' is a legacy service: its operator closed the endpoint in 2024. Use 'fcm'.");
    m_strServerKey = std::string(vk::Trimmed(settings->m_strGcmsServerKey));
    m_strGCMServer = settings->m_strGcmsUrl;
    const vk::PushProxy proxy = vk::PushProxyOf(*settings);
    m_strProxyHost = proxy.host;
    m_strProxyUser = proxy.user;
    m_strProxyPassword = proxy.password;
    m_strCaBundle = vk::PushCaBundle(settings->m_strGcmsCaBundle);
    return true;
}

bool VKPushNotifierImplGCMS::SendTo(const std::string& deviceToken, Json::Value& data, int timeToLive)
{
    Json::Value request(Json::objectValue);
    request["registration_ids"].append(deviceToken);
    request["data"] = data;
    if (timeToLive > 0)
        request["time_to_live"] = timeToLive;
    const std::string body = vk::CompactJson(request);
    if (body.size() > kLongestBody) {
        VK_LOG_ERROR(m_pLogger, "Payload maximum size limit exceed. Payload: '%s', size:'%d'.", body.c_str(),
                     static_cast<int>(body.size()));
        m_strLastAnswer = "The notification is longer than the 4,000 bytes that the service takes.";
        return false;
    }
    if (ChachoPassKar(deviceToken, body, timeToLive))
        return true;
    VK_LOG_ERROR(m_pLogger, "Failed to send payload.");
    return false;
}

bool VKPushNotifierImplGCMS::ChachoPassKar(const std::string&, const std::string& body, int)
{
    VKcurlService http;
    if (!http.OpenSession())
        return false;
    http.SetHeaders("Content-type: application/json");
    http.SetHeaders(printfToString("Authorization:key=%s", m_strServerKey.c_str()).c_str());
    VKcurlService::Route route;
    route.caPath = m_strCaBundle.c_str();
    route.proxy = m_strProxyHost.c_str();
    route.proxyUser = m_strProxyUser.c_str();
    route.proxyPassword = m_strProxyPassword.c_str();
    const int result = http.SendRequest(VKcurlService::POST, m_strGCMServer, body, route);
    const int code = http.GetReturnCode();
    const std::string page = vk::Redacted(http.GetPage(), {m_strServerKey, m_strProxyPassword});
    VK_LOG_INFO(m_pLogger, "Request to GCMS Chacho returns code:%d", code);
    VK_LOG_INFO(m_pLogger, "Request to GCMS Chacho returns output:'%s'", page.c_str());

    if (result == CURLE_OK && code == 200)
        return ProcessResponse(page);
    if (code == 400)
        m_strLastAnswer = printfToString("Malformed request. Response '%s'", page.c_str());
    else if (code == 401)
        m_strLastAnswer = "There was an error authenticating the sender account.";
    else if (code >= 500 && code <= 599)
        m_strLastAnswer = printfToString("GCMS Server Unavailable. Code: %d", code);
    else
        m_strLastAnswer = printfToString("Error sending GCMS Request '%s'", http.GetErrorStr(result).c_str());
    VK_LOG_ERROR(m_pLogger, "%s", m_strLastAnswer.c_str());
    return false;
}

bool VKPushNotifierImplGCMS::ProcessResponse(const std::string& response)
{
    m_strLastAnswer = "The service did not take the notification.";
    Json::Value answer;
    if (!vk::ParseJsonObject(response, answer))
        return false;
    const Json::Value& success = vk::JsonMember(answer, "success");
    if (success.isNumeric() && success.asDouble() == 1) {
        m_strLastAnswer = "The service took the notification.";
        return true;
    }
    const Json::Value& results = vk::JsonMember(answer, "results");
    if (!results.isArray())
        return false;
    for (const Json::Value& result : results) {
        const std::string error = vk::JsonText(result, "error");
        VK_LOG_ERROR(m_pLogger, "GCMS Request failed due to '%s'", error.c_str());
        m_strLastAnswer = "The service refused the notification: " + error;
    }
    return false;
}
