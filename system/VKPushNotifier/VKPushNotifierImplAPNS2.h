#pragma once

#include "VKJwtSigner.h"
#include "VKPushNotifierImplAPNS.h"
#include "VKhttpConnection.h"

#include <ctime>
#include <string>

struct VKMXPManagerSettings;

/// Apple's push service over its HTTP/2 provider API, with a signed token or a client certificate. One connection is
/// kept open between notifications; the service's certificate is checked.
///
/// Failures are logged as errors and are false; nothing is thrown.
class VKPushNotifierImplAPNS2 : public VKPushNotifierIface
{
public:
    using Notification = VKPushNotifierImplAPNS::Notification;

    bool Initialize() override;
    bool Finalize() override;
    std::string GetNotifierTypeName() override { return "Apple Push Notification (APNS HTTP/2)"; }

    /// Sends the notification and waits for the service's answer. The service keeps it for that many seconds; 0 or less
    /// is one try now. The token is hexadecimal digits; blanks in it do not matter.
    bool SendTo(const std::string& deviceToken, Notification& notification, int timeToLive);

private:
    bool UseCredentials(const VKMXPManagerSettings& settings, vk::HttpConnectionOptions& options);
    bool LoadSigningKey(const std::string& path);
    const std::string& ProviderToken();
    vk::HttpAnswer Post(const std::string& token, const std::string& payload, int timeToLive);
    bool Judge(const vk::HttpAnswer& answer, const std::string& token);
    bool Refuse(const std::string& why);

    std::string m_strUrl;
    std::string m_strTopic;
    std::string m_strCollapseId;
    int m_iPriority = 0;
    std::string m_strKeyId;
    std::string m_strTeamId;
    vk::JwtSigner m_signer;         ///< not loaded when the client certificate serves
    std::string m_strProviderToken; ///< never logged; empty until it is needed
    time_t m_tProviderTokenMade = 0;
    std::string m_strProxyPassword;
    vk::HttpConnection m_connection;
};
