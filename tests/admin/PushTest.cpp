#include "Http2Front.h"
#include "HttpServer.h"
#include "JwtReader.h"
#include "PushInstallation.h"
#include "VkadminRun.h"

namespace {

using testing::HasSubstr;
using vktest::Http2Front;
using vktest::HttpServer;
using vktest::JwtReader;
using vktest::LoopbackServer;

constexpr const char* kAppleToken = "00112233445566778899aabbccddeeff00112233445566778899aabbccddeeff";

/// The services stand on loopback; what they answer is said by the test.
class PushTest : public Vkadmin
{
protected:
    void SetUp() override { Init(); }

    void Configure(const std::function<void(VKMXPManagerSettings&)>& change)
    {
        m_installation.Configure(change);
        std::filesystem::copy_file(m_installation.Root() / "config/mxp_config.xml", dir / "root/config/mxp_config.xml",
                                   std::filesystem::copy_options::overwrite_existing);
    }
    void UseHttp2(VKMXPManagerSettings& settings)
    {
        settings.m_bApns2Enabled = settings.m_bFcmEnabled = settings.m_bGcmsEnabled = true;
        settings.m_strApns2Topic = "com.example.pager";
        settings.m_strApns2SigningKey = m_keys.Write("key.p8", JwtReader::MakeKey(true));
        settings.m_strApns2KeyId = "KEY1";
        settings.m_strApns2TeamId = "TEAM1";
        settings.m_strApns2ProductionUrl = settings.m_strFcmUrl = m_front.Url();
        settings.m_strApns2CaBundle = settings.m_strFcmCaBundle = m_authority.Bundle();
        Json::Value account(Json::objectValue);
        account["client_email"] = "pager@example.com";
        account["private_key"] = JwtReader::MakeKey(false);
        account["project_id"] = "p";
        account["token_uri"] = m_front.Url() + "/token";
        settings.m_strFcmServiceAccount = m_keys.Write("account.json", account.toStyledString());
        settings.m_strGcmsUrl = m_server.Url("/gcm/send");
    }
    ProgramRun Push(const std::string& service, const std::string& token) const
    {
        return Admin({"push", "test", service, token});
    }
    HttpServer::Response Answer(const HttpServer::Request& request) const
    {
        if (request.target == "/token")
            return {200, R"({"access_token":"access-1","expires_in":3600})"};
        return m_answer;
    }

    const TempDir m_keys;
    vktest::PushInstallation m_installation;
    vktest::TestAuthority m_authority;
    HttpServer::Response m_answer;
    HttpServer m_server{[this](const HttpServer::Request& request) { return Answer(request); }};
    Http2Front m_front{m_server.Port(), m_authority.Issue("service")};
};

TEST_F(PushTest, TellsWhatAServiceOverHttpAnswered)
{
    Configure([this](VKMXPManagerSettings& settings) { UseHttp2(settings); });
    const struct
    {
        const char *service, *token;
        int status;
        const char* body;
        int exitCode;
        const char* words;
    } kRows[] = {
        {"apns2", "AB12", 200, "", 0, "apns2: taken. The service took the notification.\n"},
        {"APNS2", "AB12", 410, R"({"reason":"Unregistered"})", 1, "'AB12' is dead: 'Unregistered'"},
        {"apns2", "AB12", 400, R"({"reason":"BadDeviceToken"})", 1, "apns2: not taken. APNS2 service refused the"},
        {"fcm", "anna@t1", 200, R"({"name":"m"})", 0, "fcm: taken. The service took the notification.\n"},
        {"fcm", "t1", 404, R"({"error":{"details":[{"errorCode":"UNREGISTERED"}]}})", 1, "Drop this token.\nMore"},
        {"fcm", "t1", 503, "{}", 1, "fcm: not taken. FCM service unavailable. Code: 503"},
        {"gcms", "t1", 200, R"({"success":1})", 0, "gcms: taken. The service took the notification.\n"},
        {"gcms", "t1", 401, "", 1, "gcms: not taken. There was an error authenticating the sender account."},
    };
    for (const auto& row : kRows) {
        m_answer = {row.status, row.body};
        const ProgramRun run = Push(row.service, row.token);
        EXPECT_EQ(run.exitCode, row.exitCode) << row.words << run.err;
        EXPECT_THAT(run.out, HasSubstr(row.words));
        EXPECT_THAT(m_server.Last().body, HasSubstr("This is a test."));
    }
    m_answer = {410, R"({"reason":"Unregistered"})"};
    const ProgramRun json = Admin({"--json", "push", "test", "apns2", "AB12"});
    EXPECT_TRUE(Lines(json.out).at(0)["token_dead"].asBool()) << json.out;
    const std::string log = dir.Read("root/logs/vkadmin.log");
    EXPECT_THAT(log, HasSubstr("Request to APNS2 returns code:410"));
    EXPECT_THAT(log, testing::Not(HasSubstr("access-1")));
}

TEST_F(PushTest, TellsWhatTheBinaryGatewayAnswered)
{
    const std::string refusal("\x08\x08\0\0\0\0", 6);
    const LoopbackServer gateway(
        [&](LoopbackServer::Peer& peer) {
            peer.Read();
            if (peer.Number() == 1)
                peer.AwaitClose();
            else
                peer.Write(refusal);
        },
        LoopbackServer::Tls{m_authority.Issue("gateway"), m_authority.Bundle()});
    const vktest::Identity me = m_authority.Issue("the server");
    Configure([&](VKMXPManagerSettings& settings) {
        settings.m_bApnsEnabled = true;
        settings.m_strApnsCertificate = me.certificate;
        settings.m_strApnsPrivateKey = me.key;
        settings.m_strApnsDevelopmentHost = "127.0.0.1";
        settings.m_iApnsDevelopmentPort = gateway.Port();
        settings.m_strApnsCaBundle = m_authority.Bundle();
    });
    EXPECT_EQ(Push("apns", kAppleToken).out, "apns: taken. The gateway raised no objection.\n");
    EXPECT_THAT(Push("apns", kAppleToken).out, HasSubstr("apns: not taken. APNS gateway error code: 8, text:'"));
    EXPECT_THAT(Push("apns", "0011").out, HasSubstr("The device token is not 64 hexadecimal digits."));
    EXPECT_EQ(gateway.Connections(), 2) << "a token that is none goes nowhere";
}

TEST_F(PushTest, NothingIsSentWithSettingsThatWillNotDo)
{
    ExpectOneLine(Push("sms", "t"), 2, "'sms' is none of apns, apns2, gcms, fcm");
    ExpectOneLine(Push("fcm", ""), 2, "TOKEN: is empty");
    ExpectOneLine(Push("fcm", "t"), 2, "mxp_config.xml: ");
    Configure([this](VKMXPManagerSettings& settings) {
        UseHttp2(settings);
        settings.m_strApns2SigningKey = "/no/such.p8";
        settings.m_strFcmUrl = "https://127.0.0.1:1";
        settings.m_bGcmsEnabled = false;
    });
    ExpectOneLine(Push("apns2", "AB"), 2, "'apns2' is not ready: The signing key file '/no/such.p8'");
    ExpectOneLine(Push("gcms", "t"), 2, "\"settings mxp set gcms_notification.gcms_enabled true\" switches it on");
    const ProgramRun run = Push("fcm", "t");
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_THAT(run.out, HasSubstr("FCM service 'https://127.0.0.1:1"));
    EXPECT_THAT(run.out, HasSubstr("cannot be reached: "));
}

} // namespace
