#pragma once

#include "VKJwtSigner.h"
#include "VKPushNotifierIface.h"
#include "VKhttpConnection.h"

#include <ctime>
#include <json/value.h>
#include <string>

struct VKMXPManagerSettings;

/// Google's push service over its HTTP v1 API: data messages of high priority, with an access token that the account's
/// file earns (RFC 7523) and that is kept until shortly before it ends. Connections are kept open between
/// notifications; the service's certificate is checked.
///
/// Failures are logged as errors and are false; nothing is thrown.
class VKPushNotifierImplFCM : public VKPushNotifierIface
{
public:
    bool Initialize() override;
    bool Finalize() override;
    std::string GetNotifierTypeName() override { return "Firebase Cloud Messaging (FCM HTTP v1)"; }

    /// Sends the data to the device; its values travel as texts. The service keeps it for that many seconds; its own
    /// limit holds when that is not above 0. False also when the whole request is longer than 4,000 bytes.
    bool SendTo(const std::string& deviceToken, Json::Value& data, int timeToLive);

private:
    bool LoadAccount(const VKMXPManagerSettings& settings);
    bool HaveAccessToken();
    vk::HttpAnswer Post(const std::string& body);
    bool Judge(const vk::HttpAnswer& answer, const std::string& token);
    bool Refuse(const std::string& why);
    std::string Clean(const std::string& text) const;

    std::string m_strUrl;
    std::string m_strTokenUrl;
    std::string m_strClientEmail;
    vk::JwtSigner m_signer;
    std::string m_strAccessToken; ///< never logged; empty when there is none
    time_t m_tAccessTokenEnds = 0;
    std::string m_strProxyPassword;
    vk::HttpConnection m_connection;
};
