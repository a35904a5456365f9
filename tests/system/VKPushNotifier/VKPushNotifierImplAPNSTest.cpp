#include "FreePort.h"
#include "LoopbackServer.h"
#include "PushInstallation.h"
#include "RecordingLogger.h"
#include "VKPushNotifierImplAPNS.h"

#include <arpa/inet.h>
#include <condition_variable>
#include <cstring>
#include <gmock/gmock.h>
#include <mutex>

using testing::HasSubstr;
using vktest::LoopbackServer;
using Peer = LoopbackServer::Peer;
using Notification = VKPushNotifierImplAPNS::Notification;

namespace {

const std::string kToken = "00112233445566778899AABBCCDDEEFF00112233445566778899aabbccddeeff";

Notification Saying(const std::string& body)
{
    Notification notification;
    notification.aps.alert.body = body;
    return notification;
}

/// A notification whose payload has exactly that many bytes.
Notification OfSize(std::size_t size) { return Saying(std::string(size - vk::ApnsPayload(Saying("")).size(), 'x')); }

std::string ErrorFrame(int code, std::size_t size)
{
    std::string frame("\x08?\xFB\x23\0\0\0", 7);
    frame[1] = static_cast<char>(code);
    return frame.substr(0, size);
}

/// The gateway: keeps each frame, and does after it what the test says.
class Gateway
{
public:
    /// What follows a frame, by its number from 1 on; false ends the connection.
    using Reaction = std::function<bool(Peer&, int)>;

    Gateway(vktest::TestAuthority& authority, Reaction reaction)
        : m_reaction(std::move(reaction)), m_server([this](Peer& peer) { Serve(peer); },
                                                    LoopbackServer::Tls{authority.Issue("gateway"), authority.Bundle()})
    {
    }

    int Port() const { return m_server.Port(); }
    int Connections() const { return m_server.Connections(); }

    std::vector<std::string> Frames(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait_for(lock, std::chrono::seconds(10), [&] { return m_frames.size() >= count; });
        return m_frames;
    }
    std::string ClientName() const { return m_clientName; }

private:
    void Serve(Peer& peer)
    {
        m_clientName = peer.ClientName();
        for (bool goOn = true; goOn;) {
            const std::string head = peer.ReadWhole(45);
            if (head.size() < 45)
                break;
            const auto length = static_cast<unsigned char>(head[43]) * 256U + static_cast<unsigned char>(head[44]);
            int number;
            {
                const std::lock_guard<std::mutex> lock(m_mutex);
                m_frames.push_back(head + peer.ReadWhole(length));
                number = static_cast<int>(m_frames.size());
            }
            m_changed.notify_all();
            goOn = m_reaction(peer, number);
        }
    }

    Reaction m_reaction;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::string> m_frames; // guarded by m_mutex
    std::string m_clientName;
    LoopbackServer m_server;
};

class PushApnsTest : public testing::Test
{
protected:
    void Use(int port, const std::string& passPhrase = "open sesame")
    {
        const vktest::Identity me = m_authority.Issue("the server", "open sesame");
        m_installation.Configure([&](VKMXPManagerSettings& settings) {
            settings.m_bApnsEnabled = true;
            settings.m_strApnsCertificate = me.certificate;
            settings.m_strApnsPrivateKey = me.key;
            settings.m_strApnsPrivateKeyPasswd = passPhrase;
            settings.m_iApnsCertificateType = 2;
            settings.m_strApnsProductionHost = "127.0.0.1";
            settings.m_iApnsProductionPort = port;
            settings.m_strApnsCaBundle = m_authority.Bundle();
        });
        m_apns.SetLogger(&m_logger);
        ASSERT_TRUE(m_apns.Initialize());
    }
    void TearDown() override { EXPECT_FALSE(m_logger.Has("sesame")); }

    bool Send(Notification notification = Saying("wake up"), const std::string& token = kToken)
    {
        return m_apns.SendTo(token, notification);
    }
    bool Accepted(int milliseconds) { return m_apns.GetResponse(milliseconds, m_code, m_text); }

    vktest::PushInstallation m_installation;
    vktest::TestAuthority m_authority;
    vktest::RecordingLogger m_logger;
    VKPushNotifierImplAPNS m_apns;
    int m_code = -1;
    std::string m_text;
};

TEST_F(PushApnsTest, WritesOneFrameANotificationOnOneSession)
{
    Gateway gateway(m_authority, [](Peer&, int) { return true; });
    Use(gateway.Port());
    const long before = time(nullptr);
    for (int i = 0; i < 2; ++i) {
        ASSERT_TRUE(Send());
        EXPECT_TRUE(Accepted(50));
        EXPECT_EQ(m_code, 0);
    }
    const std::vector<std::string> frames = gateway.Frames(2);
    ASSERT_EQ(frames.size(), 2U);
    const std::string payload = R"({"aps":{"alert":"wake up","badge":0}})";
    for (const std::string& frame : frames) {
        EXPECT_EQ(frame.substr(0, 5), std::string("\x01\xFB\x23\0\0", 5));
        uint32_t expiry;
        std::memcpy(&expiry, frame.data() + 5, 4);
        EXPECT_NEAR(ntohl(expiry), before + 86400, 5);
        EXPECT_EQ(frame.substr(9, 4), std::string("\0\x20\x00\x11", 4));
        EXPECT_EQ(frame.substr(39, 6), std::string("\xCC\xDD\xEE\xFF\0", 5) + static_cast<char>(payload.size()));
        EXPECT_EQ(frame.substr(45), payload);
    }
    EXPECT_EQ(gateway.Connections(), 1);
    EXPECT_EQ(gateway.ClientName(), "the server");
    EXPECT_EQ(m_logger.CountContaining("legacy service"), 1);
    EXPECT_TRUE(m_apns.Finalize());
    EXPECT_FALSE(m_apns.CheckSession());
}

TEST_F(PushApnsTest, TellsEachRefusalAndBeginsANewSessionAfterIt)
{
    struct Refusal
    {
        int code;
        const char* words;
        std::size_t size;
    };
    const Refusal cases[] = {{0, "No errors encountered", 6},
                             {1, "Processing error", 7},
                             {2, "Missing device token", 6},
                             {3, "Missing topic", 7},
                             {4, "Missing payload", 6},
                             {5, "Invalid token size", 6},
                             {6, "Invalid topic size", 6},
                             {7, "Invalid payload size", 7},
                             {8, "Invalid token", 6},
                             {9, "Undefined.", 6},
                             {10, "Shutdown", 6},
                             {255, "Undefined.", 6}};
    Gateway gateway(m_authority, [&](Peer& peer, int number) {
        peer.Write(ErrorFrame(cases[number - 1].code, cases[number - 1].size));
        return false;
    });
    Use(gateway.Port());
    int connections = 0;
    for (const Refusal& c : cases) {
        ASSERT_TRUE(Send());
        EXPECT_FALSE(Accepted(5000));
        EXPECT_EQ(m_code, c.code);
        EXPECT_EQ(m_text, "APNS gateway error code: " + std::to_string(c.code) + ", text:'" + c.words + "'.");
        EXPECT_EQ(gateway.Connections(), ++connections);
    }
}

TEST_F(PushApnsTest, KnowsHowASessionEnds)
{
    enum { CloseWithoutAWord = 1, Break, AnswerNonsense, AnswerHalf, RefuseTooLate, BreakLater, StaySilent };
    std::atomic<bool> mayEnd{false};
    Gateway gateway(m_authority, [&](Peer& peer, int number) {
        if (number == Break || number == BreakLater)
            peer.Reset();
        if (number == AnswerNonsense)
            peer.Write("HTTP/1.0 400");
        if (number == AnswerHalf)
            peer.Write(ErrorFrame(8, 1));
        if (number == RefuseTooLate || number == BreakLater) {
            while (!mayEnd)
                std::this_thread::yield();
            mayEnd = false;
        }
        if (number == RefuseTooLate)
            peer.Write(ErrorFrame(8, 6));
        return number == StaySilent;
    });
    Use(gateway.Port());
    const std::pair<const char*, bool> atOnce[] = {{"a close without a frame is no complaint", true},
                                                   {"a broken connection is none of silence", false},
                                                   {"an answer that is no frame", false},
                                                   {"half a frame", false}};
    for (const auto& [what, taken] : atOnce) {
        ASSERT_TRUE(Send()) << what;
        EXPECT_EQ(Accepted(5000), taken) << what;
        EXPECT_FALSE(m_apns.CheckSession()) << what;
    }
    for (const char* what : {"a refusal after its time", "a reset between two notifications"}) {
        ASSERT_TRUE(Send()) << what;
        EXPECT_TRUE(Accepted(50)) << what;
        mayEnd = true;
        const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (m_apns.CheckSession() && std::chrono::steady_clock::now() < giveUp)
            std::this_thread::yield();
        EXPECT_FALSE(m_apns.CheckSession()) << what;
    }
    ASSERT_TRUE(Send());
    EXPECT_TRUE(Accepted(50));
    EXPECT_EQ(gateway.Frames(StaySilent).size(), static_cast<std::size_t>(StaySilent)) << "none was lost";
    EXPECT_EQ(gateway.Connections(), StaySilent);
    EXPECT_TRUE(m_logger.Has("refused an earlier notification too late"));
}

TEST_F(PushApnsTest, RefusesWhatTheGatewayCannotTakeBeforeItConnects)
{
    Gateway gateway(m_authority, [](Peer&, int) { return true; });
    Use(gateway.Port());
    EXPECT_FALSE(Send(Saying("x"), kToken.substr(1))) << "63 digits";
    EXPECT_FALSE(Send(Saying("x"), kToken.substr(2))) << "31 bytes";
    EXPECT_FALSE(Send(Saying("x"), "zz" + kToken.substr(2)));
    EXPECT_FALSE(Send(Saying("x"), ""));
    EXPECT_TRUE(m_logger.Has("Failed to prepare device token: '" + kToken.substr(1) + "'."));
    EXPECT_FALSE(Send(OfSize(257)));
    EXPECT_TRUE(m_logger.Has("Payload maximum sizelimit exceed. Payload: '{\"aps\":"));
    EXPECT_TRUE(m_logger.Has("size:'257'."));
    EXPECT_EQ(gateway.Connections(), 0);

    std::string spaced;
    for (std::size_t i = 0; i < kToken.size(); i += 8)
        spaced += kToken.substr(i, 8) + " ";
    EXPECT_TRUE(Send(OfSize(256), spaced));
    EXPECT_EQ(gateway.Frames(1).at(0).size(), 45U + 256U);
}

TEST_F(PushApnsTest, SaysWhyASessionCannotBegin)
{
    Use(FreePort());
    EXPECT_FALSE(Send());
    EXPECT_TRUE(m_logger.Has("Socket error occurred while starting SSL session to target 127.0.0.1:"));
    EXPECT_TRUE(m_logger.Has("Socket Connecting Failed"));
    EXPECT_TRUE(m_logger.Has("Failed to create SSL socket to 127.0.0.1:"));

    Gateway gateway(m_authority, [](Peer&, int) { return true; });
    Use(gateway.Port(), "wrong sesame");
    EXPECT_FALSE(Send());
    EXPECT_TRUE(m_logger.Has("SSL: Setting Key file Failed"));
}

TEST_F(PushApnsTest, IsDisabledOrUnusableWithoutItsSettings)
{
    m_apns.SetLogger(&m_logger);
    for (const auto& [file, why] :
         {std::pair("<broken", "The settings of the MXP manager cannot be read. "),
          {"<xmpp_gateway_settings enable=\"true\"/>", "mxp_config.xml: The element 'host' is missing."}}) {
        m_installation.Root().Write("config/mxp_config.xml", file);
        EXPECT_FALSE(m_apns.Initialize() || m_apns.IsEnabled());
        EXPECT_TRUE(m_logger.Has(why));
    }

    m_installation.Root().Write("config/mxp_config.xml", "<xmpp_gateway_settings/>");
    m_installation.Configure([](VKMXPManagerSettings&) {});
    EXPECT_FALSE(m_apns.Initialize() || m_apns.IsEnabled());
    EXPECT_FALSE(m_logger.Has("legacy service"));

    m_installation.Configure([](VKMXPManagerSettings& settings) {
        settings.m_bApnsEnabled = true;
        settings.m_strApnsCertificate = "/no/such.pem";
    });
    EXPECT_FALSE(m_apns.Initialize() || m_apns.IsEnabled());
    EXPECT_TRUE(m_logger.Has("Unable to access SSL certificate file '/no/such.pem'."));
    EXPECT_STREQ(VKPushNotifierImplAPNS::m_stDevelopment.host, vk::settings::kApnsDevelopmentHost);
}

TEST(ApnsPayload, TakesTheShortestFormThatSaysAll)
{
    Notification plain = Saying("b");
    EXPECT_EQ(vk::ApnsPayload(plain), R"({"aps":{"alert":"b","badge":0}})");
    plain.custom["a"] = 1;
    plain.custom["aps"] = "not in its place";
    plain.aps.alert.body = "\xC3\xA9\xFF";
    EXPECT_EQ(vk::ApnsPayload(plain), "{\"a\":1,\"aps\":{\"alert\":\"\\u00e9\\ufffd\",\"badge\":0}}");

    Notification full = Saying("b");
    full.aps.alert.actionKey = "Launch";
    full.aps.badge = 3;
    full.aps.sound = "s.mp3";
    EXPECT_EQ(vk::ApnsPayload(full),
              R"({"aps":{"alert":{"action-loc-key":"Launch","body":"b"},"badge":3,"sound":"s.mp3"}})");
    full.aps.alert.actionIsNull = true;
    EXPECT_EQ(vk::ApnsPayload(full),
              R"({"aps":{"alert":{"action-loc-key":null,"body":"b"},"badge":3,"sound":"s.mp3"}})");

    Notification keyed;
    keyed.aps.alert.locKey = "K";
    keyed.aps.alert.locArgs = {"1", "\"2\""};
    keyed.aps.alert.launchImage = "i";
    EXPECT_EQ(vk::ApnsPayload(keyed),
              R"({"aps":{"alert":{"launch-image":"i","loc-args":["1","\"2\""],"loc-key":"K"},"badge":0}})");
}

} // namespace
