#include "Http2Front.h"
#include "HttpServer.h"
#include "JwtReader.h"
#include "PushInstallation.h"
#include "RecordingLogger.h"
#include "VKJson.h"
#include "VKJwtSigner.h"
#include "VKPushNotifierImplAPNS2.h"
#include "VKPushNotifierImplFCM.h"

#include <gmock/gmock.h>

using testing::HasSubstr;
using testing::Not;
using vktest::Http2Front;
using vktest::HttpServer;
using vktest::JwtReader;
using vktest::TestAuthority;
using Request = HttpServer::Request;
using Response = HttpServer::Response;

namespace {

/// What both services need: an endpoint that speaks HTTP/2 and answers what the test says.
class PushHttp2Test : public testing::Test
{
protected:
    struct Refusal
    {
        int status;
        const char* body;
        bool dead;
        std::string log;
    };

    /// Neither keys nor what was earned with them may stand in a log, at any level.
    void TearDown() override
    {
        for (const std::string& secret : m_secrets)
            EXPECT_FALSE(m_logger.Has(secret)) << secret.substr(0, 10);
        EXPECT_FALSE(m_logger.Has("PRIVATE KEY"));
    }

    virtual Response Answer(const Request& request) { return m_answer(request); }

    /// None may be tried again, and no redirect be followed.
    template <class Service, class Send>
    void ExpectRefusals(std::initializer_list<Refusal> refusals, Service& service, Send send)
    {
        int asked = 0;
        for (const Refusal& refusal : refusals) {
            SCOPED_TRACE(refusal.log);
            m_answer = [&](const Request&) {
                ++asked;
                return Response{refusal.status, refusal.body, {"Location: http://127.0.0.1:1/"}};
            };
            EXPECT_FALSE(send());
            EXPECT_EQ(service.IsTokenDead(), refusal.dead);
            EXPECT_THAT(service.GetLastAnswer(), HasSubstr(refusal.log));
            EXPECT_TRUE(m_logger.Has(refusal.log));
        }
        EXPECT_EQ(asked, static_cast<int>(refusals.size()));
    }

    vktest::PushInstallation m_installation;
    TestAuthority m_authority;
    vktest::RecordingLogger m_logger;
    std::vector<std::string> m_secrets;
    std::function<Response(const Request&)> m_answer = [](const Request&) { return Response{}; };
    HttpServer m_server{[this](const Request& request) { return Answer(request); }};
    Http2Front m_front{m_server.Port(), m_authority.Issue("service")};
};

class PushApns2Test : public PushHttp2Test
{
protected:
    void Use(const std::string& url)
    {
        UseSettings([&](VKMXPManagerSettings& settings) {
            settings.m_strApns2SigningKey = m_installation.Root().Write("key.p8", m_key);
            settings.m_strApns2KeyId = "KEY1";
            settings.m_strApns2TeamId = "TEAM1";
            settings.m_strApns2ProductionUrl = url;
            settings.m_strApns2CaBundle = m_authority.Bundle();
        });
        ASSERT_TRUE(m_apns.Initialize());
    }
    void UseSettings(const std::function<void(VKMXPManagerSettings&)>& change)
    {
        m_installation.Configure([&](VKMXPManagerSettings& settings) {
            settings.m_bApns2Enabled = true;
            settings.m_strApns2Topic = "com.example.pager";
            change(settings);
        });
        m_apns.SetLogger(&m_logger);
    }
    bool Send(int timeToLive = 0, const std::string& token = "AB 12", const std::string& body = "wake up")
    {
        VKPushNotifierImplAPNS::Notification notification;
        notification.aps.alert.body = body;
        const bool taken = m_apns.SendTo(token, notification, timeToLive);
        if (!m_server.Requests().empty() && !Bearer().empty())
            m_secrets.push_back(Bearer());
        return taken;
    }
    std::string Bearer() const
    {
        const std::string header = m_server.Last().Header("authorization");
        return header.substr(std::min<std::size_t>(header.size(), 7));
    }

    const std::string m_key = JwtReader::MakeKey(true);
    VKPushNotifierImplAPNS2 m_apns;
};

TEST_F(PushApns2Test, SendsAllNotificationsOverOneHttp2Connection)
{
    Use(m_front.Url());
    const long now = time(nullptr);
    ASSERT_TRUE(Send(330)) << m_apns.GetLastAnswer();
    const Request first = m_server.Last();
    EXPECT_EQ(first.method + first.target, "POST/3/device/AB12");
    EXPECT_EQ(first.body, R"({"aps":{"alert":"wake up","badge":0}})");
    EXPECT_EQ(first.Header("apns-topic"), "com.example.pager");
    EXPECT_EQ(first.Header("apns-push-type"), "alert");
    EXPECT_EQ(first.Header("apns-priority"), "10");
    EXPECT_EQ(first.Header("apns-collapse-id"), "waiting-messages");
    EXPECT_NEAR(std::stol(first.Header("apns-expiration")), now + 330, 5);
    const std::string bearer = Bearer();
    const JwtReader token(bearer);
    EXPECT_TRUE(token.IsSignedBy(m_key));
    EXPECT_EQ(vk::CompactJson(token.Header()), R"({"alg":"ES256","kid":"KEY1"})");
    EXPECT_EQ(token.Claims()["iss"].asString(), "TEAM1");
    EXPECT_NEAR(token.Claims()["iat"].asInt64(), now, 5);

    ASSERT_TRUE(Send());
    EXPECT_EQ(m_server.Last().Header("apns-expiration"), "0");
    EXPECT_EQ(Bearer(), bearer) << "a provider token serves for many";
    ASSERT_TRUE(Send());
    EXPECT_EQ(m_front.Connections(), 1U);

    m_front.Restart();
    ASSERT_TRUE(Send()) << m_apns.GetLastAnswer();
    EXPECT_EQ(m_front.Connections(), 2U);
    EXPECT_TRUE(m_apns.Finalize());
}

TEST_F(PushApns2Test, TellsADeadTokenFromEveryOtherRefusal)
{
    Use(m_front.Url());
    ExpectRefusals(
        {{410, R"({"reason":"Unregistered","timestamp":1})", true,
          "APNS2 says that the device token 'AB12' is dead: 'Unregistered'."},
         {400, R"({"reason":"BadDeviceToken"})", false,
          "refused the notification. Code: 400, reason:'BadDeviceToken'."},
         {401, "no json", false, "refused the notification. Code: 401, reason:''."},
         {403, R"({"reason":"InvalidProviderToken"})", false, "Code: 403, reason:'InvalidProviderToken'."},
         {429, R"({"reason":7})", false, "Code: 429, reason:''."},
         {503, R"({"reason":"Shutdown"})", false, "APNS2 service unavailable. Code: 503, reason:'Shutdown'."},
         {302, "", false, "refused the notification. Code: 302"}},
        m_apns, [&] { return Send(); });
}

TEST_F(PushApns2Test, RenewsAProviderTokenThatTheServiceFindsTooOld)
{
    Use(m_front.Url());
    bool refuse = true;
    m_answer = [&](const Request& request) {
        m_secrets.push_back(request.Header("authorization").substr(7));
        return std::exchange(refuse, false) ? Response{403, R"({"reason":"ExpiredProviderToken"})"} : Response{};
    };
    EXPECT_TRUE(Send()) << m_apns.GetLastAnswer();
    EXPECT_EQ(m_server.Requests().size(), 2U);
}

TEST_F(PushApns2Test, ShowsAClientCertificateInPlaceOfAToken)
{
    Http2Front front(m_server.Port(), m_authority.Issue("service"), m_authority.Bundle());
    const vktest::Identity me = m_authority.Issue("pager push", "open sesame");
    m_secrets.push_back("sesame");
    auto use = [&](const std::string& passPhrase) {
        UseSettings([&](VKMXPManagerSettings& settings) {
            settings.m_bApns2Production = false;
            settings.m_strApns2DevelopmentUrl = front.Url();
            settings.m_strApns2Certificate = me.certificate;
            settings.m_strApns2PrivateKey = me.key;
            settings.m_strApns2PrivateKeyPasswd = passPhrase;
            settings.m_strApns2CaBundle = m_authority.Bundle();
        });
        EXPECT_TRUE(m_apns.Initialize());
        m_apns.Finalize();
    };
    use("open sesame");
    EXPECT_TRUE(Send()) << m_apns.GetLastAnswer();
    EXPECT_EQ(m_server.Last().Header("authorization"), "");
    EXPECT_THAT(front.LastClient(), HasSubstr("pager push"));
    for (const char* wrong : {"wrong sesame", ""}) {
        use(wrong);
        EXPECT_FALSE(Send());
        EXPECT_THAT(m_apns.GetLastAnswer(), HasSubstr("cannot be reached: "));
    }
}

TEST_F(PushApns2Test, RefusesAServiceThatItCannotTrustOrReach)
{
    TestAuthority stranger("Stranger");
    Http2Front unknown(m_server.Port(), stranger.Issue("service"));
    Http2Front elsewhere(m_server.Port(), m_authority.Issue("service", "", "DNS:elsewhere"));
    const std::pair<std::string, const char*> cases[] = {
        {unknown.Url(), "certificate"}, {elsewhere.Url(), "127.0.0.1"}, {"https://127.0.0.1:1", "connect"}};
    for (const auto& [url, why] : cases) {
        m_apns.Finalize();
        Use(url);
        EXPECT_FALSE(Send());
        EXPECT_THAT(m_apns.GetLastAnswer(), HasSubstr("APNS2 service '" + url + "' cannot be reached: "));
        EXPECT_THAT(m_apns.GetLastAnswer(), HasSubstr(why));
    }
    EXPECT_TRUE(m_server.Requests().empty());
}

TEST_F(PushApns2Test, RefusesWhatCannotBeSentAndSettingsThatCannotBeUsed)
{
    Use(m_front.Url());
    for (const char* token : {"", "12/../34", "12\r\nx: y", "xyz"})
        EXPECT_FALSE(Send(0, token)) << token;
    EXPECT_FALSE(Send(0, "12", std::string(4096, 'x')));
    EXPECT_THAT(m_apns.GetLastAnswer(), HasSubstr("Payload maximum sizelimit exceed."));
    EXPECT_TRUE(m_server.Requests().empty());

    const std::string broken = m_installation.Root() / "broken.p8";
    const std::string cases[][3] = {{broken, "no key", "it holds no private key"},
                                    {broken, m_key.substr(0, 90), "it holds no private key"},
                                    {"/no/such.p8", "", "it cannot be read."}};
    for (const auto& [path, content, why] : cases) {
        m_installation.Root().Write("broken.p8", content);
        UseSettings([path = path](VKMXPManagerSettings& settings) { settings.m_strApns2SigningKey = path; });
        EXPECT_FALSE(m_apns.Initialize());
        EXPECT_TRUE(m_logger.Has("'" + path + "' of the push service 'apns2' cannot be used: " + why)) << content;
    }
    m_installation.Configure([](VKMXPManagerSettings&) {});
    EXPECT_FALSE(m_apns.Initialize());
    EXPECT_FALSE(m_apns.IsEnabled());
}

class PushFcmTest : public PushHttp2Test
{
protected:
    PushFcmTest()
    {
        m_answer = [](const Request&) { return Response{200, R"({"name":"projects/p/messages/1"})"}; };
    }

    Response Answer(const Request& request) override
    {
        if (request.target != "/token" || m_refuseTokens)
            return m_answer(request);
        ++m_tokenRequests;
        m_assertion = request.body.substr(request.body.find("&assertion=") + 11);
        const std::string token = "access-" + std::to_string(m_tokenRequests);
        m_secrets.insert(m_secrets.end(), {token, m_assertion});
        return {200, R"({"access_token":")" + token + R"(","expires_in":)" + m_lifetime + "}"};
    }
    std::string Account(const std::string& tokenUrl)
    {
        Json::Value account(Json::objectValue);
        account["client_email"] = "pager@example.com";
        account["private_key"] = m_key;
        account["project_id"] = "my project";
        account["token_uri"] = tokenUrl;
        return vk::CompactJson(account);
    }
    bool Use(const std::string& account)
    {
        m_installation.Configure([&](VKMXPManagerSettings& settings) {
            settings.m_bFcmEnabled = true;
            settings.m_strFcmServiceAccount = m_installation.Root().Write("account.json", account);
            settings.m_strFcmUrl = m_front.Url();
            settings.m_strFcmCaBundle = m_authority.Bundle();
        });
        m_fcm.SetLogger(&m_logger);
        return m_fcm.Initialize();
    }
    bool Send(int timeToLive = 0, const std::string& message = "wake up")
    {
        Json::Value data(Json::objectValue);
        data["num"] = 3;
        data["m"] = message;
        return m_fcm.SendTo("device-1", data, timeToLive);
    }

    const std::string m_key = JwtReader::MakeKey(false);
    const std::string m_tokenUrl = m_front.Url() + "/token";
    std::string m_lifetime = "3600";
    std::string m_assertion;
    bool m_refuseTokens = false;
    int m_tokenRequests = 0;
    VKPushNotifierImplFCM m_fcm;
};

TEST_F(PushFcmTest, SendsDataMessagesWithOneAccessTokenOverOneConnection)
{
    ASSERT_TRUE(Use(Account(m_tokenUrl)));
    ASSERT_TRUE(Send(330)) << m_fcm.GetLastAnswer();
    const Request first = m_server.Last();
    EXPECT_EQ(first.target, "/v1/projects/my%20project/messages:send");
    EXPECT_EQ(first.Header("authorization"), "Bearer access-1");
    EXPECT_EQ(first.body, R"({"message":{"android":{"priority":"high","ttl":"330s"},)"
                          R"("data":{"m":"wake up","num":"3"},"token":"device-1"}})");
    const JwtReader assertion(m_assertion);
    EXPECT_TRUE(assertion.IsSignedBy(m_key));
    EXPECT_EQ(assertion.Header()["alg"].asString(), "RS256");
    EXPECT_EQ(assertion.Claims()["iss"].asString(), "pager@example.com");
    EXPECT_EQ(assertion.Claims()["aud"].asString(), m_tokenUrl);
    EXPECT_EQ(assertion.Claims()["exp"].asInt64() - assertion.Claims()["iat"].asInt64(), 3600);
    EXPECT_THAT(m_server.Requests().front().body,
                HasSubstr("grant_type=urn%3aietf%3aparams%3aoauth%3agrant%2dtype%3ajwt%2dbearer&"));

    ASSERT_TRUE(Send());
    EXPECT_THAT(m_server.Last().body, Not(HasSubstr("ttl")));
    m_front.Restart();
    ASSERT_TRUE(Send());
    EXPECT_EQ(m_tokenRequests, 1);
    EXPECT_EQ(m_front.Connections(), 2U) << "one before and one after the restart";
}

TEST_F(PushFcmTest, TellsADeadTokenFromEveryOtherRefusal)
{
    ASSERT_TRUE(Use(Account(m_tokenUrl)));
    ExpectRefusals({{404, R"({"error":{"status":"NOT_FOUND","details":[{"@type":"x"},{"errorCode":"UNREGISTERED"}]}})",
                     true, "FCM says that the device token 'device-1' is dead: 'UNREGISTERED'."},
                    {404, R"({"error":{"status":"NOT_FOUND","message":"no project"}})", false,
                     "Code: 404, error:'NOT_FOUND', text:'no project'."},
                    {400, R"({"error":{"status":"INVALID_ARGUMENT","message":"got access-1"}})", false,
                     "Code: 400, error:'INVALID_ARGUMENT', text:'got ***'."},
                    {503, "sorry", false, "FCM service unavailable. Code: 503, error:''."},
                    {200, "<html>", false, "FCM service refused the notification. Code: 200"},
                    {302, "", false, "Code: 302"}},
                   m_fcm, [&] { return Send(); });
    EXPECT_EQ(m_tokenRequests, 1);
}

TEST_F(PushFcmTest, RenewsAnAccessTokenThatEndsOrIsWithdrawn)
{
    m_lifetime = "30"; // no more than what is spared
    ASSERT_TRUE(Use(Account(m_tokenUrl)));
    EXPECT_TRUE(Send() && Send());
    EXPECT_EQ(m_tokenRequests, 2);
    m_lifetime = "3600";
    EXPECT_TRUE(Send());
    m_answer = [](const Request& request) {
        return request.Header("authorization") == "Bearer access-4" ? Response{200, "{}"} : Response{401, "{}"};
    };
    EXPECT_TRUE(Send()) << m_fcm.GetLastAnswer();
    EXPECT_EQ(m_tokenRequests, 4);
}

TEST_F(PushFcmTest, SaysWhyThereIsNoAccessToken)
{
    m_refuseTokens = true;
    m_answer = [](const Request&) { return Response{400, R"({"error":"invalid_grant"})"}; };
    ASSERT_TRUE(Use(Account(m_tokenUrl)));
    EXPECT_FALSE(Send());
    EXPECT_EQ(m_fcm.GetLastAnswer(),
              "FCM service account 'pager@example.com' got no access token. Code: 400, error:'invalid_grant'.");
    ASSERT_TRUE(Use(Account("https://127.0.0.1:1/token")));
    EXPECT_FALSE(Send());
    EXPECT_THAT(m_fcm.GetLastAnswer(), HasSubstr("connect"));
    EXPECT_EQ(m_server.Requests().size(), 1U);
}

TEST_F(PushFcmTest, RefusesWhatIsTooLongAndAccountsThatCannotBeUsed)
{
    ASSERT_TRUE(Use(Account(m_tokenUrl)));
    EXPECT_TRUE(Send());
    const std::size_t frame = m_server.Last().body.size() - std::string("wake up").size();
    EXPECT_TRUE(Send(0, std::string(4000 - frame, 'x'))) << m_fcm.GetLastAnswer();
    EXPECT_FALSE(Send(0, std::string(4001 - frame, 'x')));
    EXPECT_THAT(m_fcm.GetLastAnswer(), HasSubstr("size:'4001'."));
    const std::pair<std::string, std::string> cases[] = {
        {"", "it is no JSON object"},
        {R"({"private_key":"PRIVATE nonsense"})", "it holds no private key"},
        {Account(""), "it lacks 'client_email', 'project_id' or 'token_uri'"}};
    for (const auto& [account, why] : cases) {
        EXPECT_FALSE(Use(account));
        EXPECT_TRUE(m_logger.Has("account.json' of the push service 'fcm' cannot be used: " + why));
        EXPECT_FALSE(m_fcm.IsEnabled());
    }
    EXPECT_FALSE(m_logger.Has("nonsense"));
}

} // namespace
