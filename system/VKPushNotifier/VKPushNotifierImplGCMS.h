#pragma once

#include "VKPushNotifierIface.h"

#include <json/value.h>
#include <string>

/// Google Cloud Messaging: one HTTP POST a notification, with the account's server key in a header. A legacy service:
/// its operator closed the endpoint in 2024; see VKPushNotifierImplFCM.
///
/// Failures are logged as errors and are false; nothing is thrown or tried again.
class VKPushNotifierImplGCMS : public VKPushNotifierIface
{
public:
    bool Initialize() override;
    bool Finalize() override { return true; }
    std::string GetNotifierTypeName() override { return "Google Cloud Messaging (GCMS)"; }

    /// Sends the data to the device. The service keeps it for that many seconds; its own limit holds when that is not
    /// above 0. False also when the whole request is longer than 4,000 bytes.
    bool SendTo(const std::string& deviceToken, Json::Value& data, int timeToLive);

    /// The exchange over HTTP.
    bool ChachoPassKar(const std::string& deviceToken, const std::string& body, int timeToLive);
    /// Whether the answer to a request that went well says that the notification was taken.
    bool ProcessResponse(const std::string& response);

    /// The endpoint. Initialize sets it from the settings.
    static std::string m_strGCMServer;

private:
    std::string m_strCaBundle;
    std::string m_strProxyHost;
    std::string m_strProxyUser;
    std::string m_strProxyPassword; ///< never logged
    std::string m_strServerKey;     ///< never logged
};
