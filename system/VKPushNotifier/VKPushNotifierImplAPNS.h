#pragma once

#include "VKPushNotifierIface.h"

#include <json/value.h>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

class VKioSSLClientSocket;

/// Apple's push gateway over the binary provider protocol: a TLS session with a client certificate, which stays open
/// between notifications, one frame each. The gateway answers only when it refuses. A legacy service: its operator
/// closed the gateway in 2021; see VKPushNotifierImplAPNS2.
///
/// Failures are logged as errors and are false; nothing is thrown.
class VKPushNotifierImplAPNS : public VKPushNotifierIface
{
public:
    struct ServerInfo
    {
        const char* host;
        std::int32_t port;
    };

    struct Notification
    {
        struct APS
        {
            struct Alert
            {
                std::string body;
                bool actionIsNull = false;
                std::string actionKey;
                std::string locKey;
                std::vector<std::string> locArgs;
                std::string launchImage;
            };
            Alert alert;
            std::int32_t badge = 0;
            std::string sound;
        };
        APS aps;
        std::map<std::string, Json::Value> custom; ///< entries beside "aps"
    };

    VKPushNotifierImplAPNS();
    ~VKPushNotifierImplAPNS() override;

    bool Initialize() override;
    bool Finalize() override;
    std::string GetNotifierTypeName() override { return "Apple Push Notification (APNS)"; }

    /// False when the certificate file is not there.
    bool Setup(const std::string& caBundle, const std::string& certificate, const std::string& privateKey,
               const std::string& passPhrase, bool production);

    /// Writes the notification, on a new session when the old one is gone. The token is 64 hexadecimal digits; blanks
    /// in it do not matter.
    bool SendTo(const std::string& deviceToken, Notification& notification);

    /// Waits for a refusal of what was sent. True, with a code of 0, when none came in that time. A refusal ends the
    /// session.
    bool GetResponse(int timeoutMs, int& code, std::string& text);

    bool CheckSession(); ///< whether there is a session that the gateway has not ended
    bool CreateSession();
    bool TerminateSession();

    /// The token's bytes, at most `size`; how many, -1 for what is no token.
    int PrepareDeviceToken(const std::string& token, unsigned char* buffer, int size);
    bool PreparePayload(Notification& notification, std::string& payload);
    /// Writes the frame: a token of 32 bytes, a payload of at most 256.
    bool MamuPassKar(VKioSSLClientSocket& socket, unsigned char* token, unsigned char* payload, unsigned int length);

    /// Where the gateways are. Initialize sets them from the settings.
    static ServerInfo m_stProduction;
    static ServerInfo m_stDevelopment;

private:
    enum class End { Quiet, Closed, Broken };
    std::size_t ReadAnswer(int timeoutMs, unsigned char* frame, std::size_t size, End& end);

    std::string m_strCaBundle;
    std::string m_strCertificate;
    std::string m_strPrivateKey;
    std::string m_strPassPhrase; ///< never logged
    bool m_bProduction = false;
    std::unique_ptr<VKioSSLClientSocket> m_pSession; ///< null when closed
    ServerInfo* m_pGateway;
};

namespace vk {

/// The JSON text of a notification, as both of Apple's interfaces take it.
std::string ApnsPayload(const VKPushNotifierImplAPNS::Notification& notification);

} // namespace vk
