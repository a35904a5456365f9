// The core manager against a real XMPP server.

#include "OnlinePeer.h"
#include "RecordingLogger.h"
#include "SaidPackets.h"
#include "Until.h"
#include "VKMXPConnGlooxImpl.h"
#include "VKMXPCoreManager.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

using vktest::ConfirmText;
using vktest::MakeMessage;

/// Notes the job ids that clients confirm.
class NotingHandler final : public VKMXPRequestHandlerIface
{
public:
    void HandleRequest(const std::string& jid, const std::string&, const std::string&, VKMXPmBase* packet) override
    {
        const std::unique_ptr<VKMXPmBase> owned(packet);
        const std::lock_guard<std::mutex> lock(m_guard);
        if (const auto* confirm = dynamic_cast<const VKMXPmConfirmMsg*>(packet))
            m_seen.push_back(jid + " " + confirm->m_strJobID);
        m_changed.notify_all();
    }
    std::vector<std::string> WaitFor(std::size_t count, std::chrono::seconds limit = 10s)
    {
        std::unique_lock<std::mutex> lock(m_guard);
        m_changed.wait_for(lock, limit, [&] { return m_seen.size() >= count; });
        return m_seen;
    }

private:
    std::mutex m_guard;
    std::condition_variable m_changed;
    std::vector<std::string> m_seen;
};

class CoreManager : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_logger.Clear();
        s_server = std::make_unique<ProsodyServer>();
        s_server->AddAccounts({{"server", "pw"}, {"alice", "pw"}, {"bob", "pw"}, {"carol", "pw"}});
        s_server->Start();
    }
    static void TearDownTestSuite() { s_server.reset(); }

    void SetUp() override
    {
        manager = VKMXPCoreManager::GetInstance(&s_logger, 10, 60);
        ASSERT_NE(manager, nullptr);
        ASSERT_TRUE(manager->StartAsThread());
        manager->SetGeneralRequestHandler(&handler);
    }
    void TearDown() override
    {
        manager->TerminateC2SConnection("carrier");
        manager->TerminateC2SConnection("second");
        manager->SetGeneralRequestHandler(nullptr);
    }

    bool Connect(const ProsodyServer& server = *s_server, const char* id = "carrier", const char* password = "pw",
                 std::string* error = nullptr)
    {
        return ConnectAt(server.Port(), server.Jid("server"), id, password, error);
    }
    bool ConnectAt(int port, const std::string& jid, const char* id, const char* password, std::string* error)
    {
        std::string ignored;
        return manager->StartC2SConnection(id, "127.0.0.1", port, jid, password, std::string("vk-") + id, false, "", 0,
                                           65, 15, error ? error : &ignored);
    }
    VKMXPSession* StartSession(const std::string& user, const ProsodyServer& server = *s_server)
    {
        return manager->StartC2CSession(server.Jid(user), "carrier", "mxp", false);
    }
    bool Send(const std::string& user, std::unique_ptr<VKMXPmMessage> message, int* sequence = nullptr,
              const ProsodyServer& server = *s_server)
    {
        int ignored = 0;
        const bool sent = manager->Send(message.get(), server.Jid(user), "carrier", sequence ? *sequence : ignored);
        if (sent)
            static_cast<void>(message.release());
        return sent;
    }

    static inline std::unique_ptr<ProsodyServer> s_server;
    static inline vktest::RecordingLogger& s_logger = vktest::CoreLogger();
    VKMXPCoreManager* manager = nullptr;
    NotingHandler handler;
};

TEST_F(CoreManager, CarriesAMessageOutAndTheAnswerBack)
{
    OnlinePeer alice(*s_server, "alice", [](XmppPeer& peer, const std::string& from, const std::string&) {
        peer.Send(from, ConfirmText("4711"), "a-thread-of-its-own");
    });
    ASSERT_TRUE(Connect());
    ASSERT_TRUE(Connect()) << "a known ID is fine";
    VKMXPSession* session = StartSession("alice");
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(StartSession("alice"), session);
    ASSERT_TRUE(Send("alice", MakeMessage("4711")));

    const auto bodies = alice.WaitForBodies(1);
    ASSERT_EQ(bodies.size(), 1U);
    VKMXPmEnvelope envelope;
    EXPECT_TRUE(envelope.ParseXML(bodies[0])) << envelope.m_strErrorText;
    EXPECT_EQ(handler.WaitFor(1), std::vector<std::string>{s_server->Jid("alice") + " 4711"});
}

TEST_F(CoreManager, TakesRequestsOfSendersWithoutASession)
{
    ASSERT_TRUE(Connect());
    OnlinePeer bob(*s_server, "bob");
    for (int i = 0; i < 25; ++i)
        bob.Send(s_server->Jid("server"), ConfirmText(std::to_string(i)));
    const auto seen = handler.WaitFor(25);
    ASSERT_EQ(seen.size(), 25U);
    for (int i = 0; i < 25; ++i)
        EXPECT_EQ(seen[static_cast<std::size_t>(i)], s_server->Jid("bob") + " " + std::to_string(i));
}

TEST_F(CoreManager, SurvivesWhatDevicesSendWrong)
{
    ASSERT_TRUE(Connect());
    OnlinePeer bob(*s_server, "bob");
    OnlinePeer carol(*s_server, "carol");
    ASSERT_NE(StartSession("bob"), nullptr);
    const std::string good = ConfirmText("last");
    const std::string bad[] = {"<mxp xmlns='vardock:mxp'>",
                               "<mxp xmlns='vardock:mxp:redirect'/>",
                               "<mxp xmlns='vardock:mxp'><unknown/></mxp>",
                               good.substr(0, good.size() / 2),
                               std::string(200000, 'x'),
                               "<mxp xmlns='vardock:mxp'>" + std::string(30000, '<'),
                               "\xEF\xBF\xBD odd but legal"};
    for (const std::string& text : bad)
        bob.Send(s_server->Jid("server"), text);
    carol.Send(s_server->Jid("server"), ConfirmText("from carol"));
    bob.Send(s_server->Jid("server"), good);
    const auto seen = handler.WaitFor(2);
    EXPECT_EQ(seen.size(), 2U);
    EXPECT_GE(s_logger.CountContaining("parsed to be invalid. JID=" + s_server->Jid("bob")), 3);
}

TEST_F(CoreManager, SurvivesAFloodOfStanzasAndKeepsTheirOrder)
{
    constexpr std::size_t kFlood = 10000;
    ASSERT_TRUE(Connect());
    OnlinePeer bob(*s_server, "bob");
    ASSERT_NE(StartSession("bob"), nullptr);
    for (std::size_t i = 0; i < kFlood; ++i)
        bob.Send(s_server->Jid("server"), ConfirmText(std::to_string(i)));
    const auto seen = handler.WaitFor(kFlood, 120s);
    ASSERT_EQ(seen.size(), kFlood);
    for (std::size_t i = 0; i < kFlood; ++i)
        ASSERT_EQ(seen[i], s_server->Jid("bob") + " " + std::to_string(i));
}

TEST_F(CoreManager, TakesAndSendsLongTextsInTime)
{
    ProsodyServer server;
    server.AddAccounts({{"server", "pw"}, {"bob", "pw"}});
    server.Start();
    ASSERT_TRUE(Connect(server));
    OnlinePeer bob(server, "bob");
    ASSERT_NE(StartSession("bob", server), nullptr);

    // Five megabytes in which every second character is an entity, then something short.
    std::string stanza = "<message to='" + server.Jid("server") + "' type='chat'><body>";
    for (int i = 0; i < 1000000; ++i)
        stanza += "&lt;x";
    bob.SendRaw(stanza + "</body></message>");
    bob.Send(server.Jid("server"), ConfirmText("behind"));
    const auto start = Clock::now();
    EXPECT_EQ(handler.WaitFor(1, 60s).size(), 1U);
    EXPECT_LT(Clock::now() - start, 30s) << "in";

    std::string body;
    for (int i = 0; i < 200000; ++i)
        body += "<&x";
    const auto sending = Clock::now();
    ASSERT_TRUE(Send("bob", MakeMessage("long", body), nullptr, server));
    EXPECT_EQ(bob.WaitForBodies(1, 60s).size(), 1U);
    EXPECT_LT(Clock::now() - sending, 30s) << "out";
}

TEST_F(CoreManager, ReplacesCharactersThatWouldEndTheStream)
{
    OnlinePeer alice(*s_server, "alice");
    ASSERT_TRUE(Connect());
    ASSERT_NE(StartSession("alice"), nullptr);
    ASSERT_TRUE(Send("alice", MakeMessage("1", "bell \x07 and \xC3\x28 end")));
    ASSERT_TRUE(Send("alice", MakeMessage("2")));
    const auto all = [&] { // in one stanza or two
        std::string text;
        for (const std::string& body : alice.WaitForBodies(1))
            text += body;
        return text;
    };
    EXPECT_TRUE(Until([&] { return all().find(">2<") != std::string::npos; })) << "the next message goes through";
    EXPECT_NE(all().find("bell \xEF\xBF\xBD and \xEF\xBF\xBD( end"), std::string::npos) << all();
}

TEST_F(CoreManager, CountsSequencesForRequestsAndTellsMissingSessions)
{
    EXPECT_FALSE(Send("alice", MakeMessage("1"))) << "no session";
    EXPECT_FALSE(manager->Send("hello", s_server->Jid("alice"), "carrier"));
    EXPECT_EQ(StartSession("alice"), nullptr) << "no connection";
    EXPECT_FALSE(manager->TerminateC2CSession(s_server->Jid("alice"), "carrier"));
    EXPECT_FALSE(manager->TerminateC2SConnection("carrier"));

    ASSERT_TRUE(Connect());
    ASSERT_NE(StartSession("alice"), nullptr);
    int first = 0;
    int second = 0;
    int response = 0;
    ASSERT_TRUE(Send("alice", MakeMessage("1"), &first));
    auto answer = MakeMessage("2");
    answer->m_iPacketType = 2;
    answer->m_iSequence = 77;
    ASSERT_TRUE(Send("alice", std::move(answer), &response));
    ASSERT_TRUE(Send("alice", MakeMessage("3"), &second));
    EXPECT_GE(first, 100);
    EXPECT_EQ(response, 77) << "a response keeps the sequence of its request";
    EXPECT_EQ(second, first + 1) << "and takes none from the counter";
    EXPECT_FALSE(manager->ResetC2CSessionTargetResource(s_server->Jid("alice"), "carrier"));
    EXPECT_TRUE(manager->TerminateC2CSession(s_server->Jid("alice"), "carrier"));
}

TEST_F(CoreManager, TellsWhyAConnectionFails)
{
    std::string error;
    EXPECT_FALSE(Connect(*s_server, "carrier", "wrong", &error));
    EXPECT_EQ(error, "Disconnection Error.");
    EXPECT_GE(s_logger.CountContaining("Authentication failed. Username/password wrong or account does not exist."), 1);

    EXPECT_FALSE(ConnectAt(1, s_server->Jid("server"), "carrier", "pw", &error));
    EXPECT_EQ(error, "Error in establishing connection.");

    ProsodyServer::Options plain;
    plain.tls = false;
    ProsodyServer noTls(plain);
    noTls.AddAccount("server", "pw");
    noTls.Start();
    EXPECT_FALSE(Connect(noTls, "carrier", "pw", &error));
    EXPECT_EQ(error, "Disconnection Error.");
    EXPECT_GE(s_logger.CountContaining("The server didn't offer TLS while it was set to be required"), 1);
    EXPECT_EQ(manager->GetLastError("carrier"), "") << "a failed start leaves nothing behind";
}

TEST_F(CoreManager, GivesUpASilentServerAndServesTheOthersMeanwhile)
{
    const int previous = VKMXPConnGlooxImpl::s_iLoginLimitSeconds;
    VKMXPConnGlooxImpl::s_iLoginLimitSeconds = 2;
    ProsodyServer silent;
    silent.AddAccount("server", "pw");
    silent.Start();
    silent.Freeze();

    OnlinePeer alice(*s_server, "alice");
    ASSERT_TRUE(Connect());
    ASSERT_NE(StartSession("alice"), nullptr);
    std::string error;
    bool hung = true;
    std::thread hanging([&] { hung = Connect(silent, "second", "pw", &error); });
    const auto start = Clock::now();
    EXPECT_TRUE(Send("alice", MakeMessage("1")));
    EXPECT_EQ(alice.WaitForBodies(1).size(), 1U);
    EXPECT_LT(Clock::now() - start, 1500ms) << "a connection that hangs in connecting holds nobody up";
    hanging.join();
    EXPECT_FALSE(hung);
    EXPECT_EQ(error, "Error in establishing connection.");
    silent.Thaw();
    VKMXPConnGlooxImpl::s_iLoginLimitSeconds = previous;
}

TEST_F(CoreManager, ComesBackWhenTheServerIsKilledAndStartedAgain)
{
    ProsodyServer server;
    server.AddAccounts({{"server", "pw"}, {"alice", "pw"}});
    server.Start();
    const auto connect = [&] { return Connect(server) && StartSession("alice", server); };
    ASSERT_TRUE(connect());
    server.Kill();
    // The work thread drops the dead connection with its sessions.
    EXPECT_TRUE(Until([&] { return !manager->GetSession(server.Jid("alice"), "carrier"); }));
    EXPECT_FALSE(connect()) << "nobody is there";

    server.Start();
    OnlinePeer alice(server, "alice");
    ASSERT_TRUE(connect());
    ASSERT_TRUE(Send("alice", MakeMessage("1"), nullptr, server));
    EXPECT_EQ(alice.WaitForBodies(1).size(), 1U);
}

TEST_F(CoreManager, VerifiesTheServerOnlyWhenTold)
{
    gloox::Client* const none = nullptr;
    VKMXPTlsOpenSsl unreadable(none, "localhost", "/no/such/bundle");
    EXPECT_FALSE(unreadable.init());
    EXPECT_NE(unreadable.ErrorText().find("/no/such/bundle"), std::string::npos) << unreadable.ErrorText();
}

/// Two senders, a terminator and traffic in both directions at once. Runs longer when VK_STRESS_SECONDS says so.
TEST_F(CoreManager, StandsSendersAndTerminatorsAtOnce)
{
    const char* const wanted = std::getenv("VK_STRESS_SECONDS");
    const auto end = Clock::now() + std::chrono::seconds(wanted ? std::atoi(wanted) : 3);
    std::atomic<int> delivered{0};
    const auto answer = [&](XmppPeer& peer, const std::string& from, const std::string&) {
        ++delivered;
        peer.Send(from, ConfirmText("x"));
    };
    OnlinePeer alice(*s_server, "alice", answer);
    OnlinePeer bob(*s_server, "bob", answer);

    std::atomic<int> accepted{0};
    const auto sender = [&](const char* user) {
        for (int i = 0; Clock::now() < end; ++i) {
            if (Connect() && StartSession(user) && Send(user, MakeMessage(std::to_string(i))))
                ++accepted;
            manager->GetLastError("carrier");
            std::this_thread::sleep_for(500us);
        }
    };
    std::thread first(sender, "alice");
    std::thread second(sender, "bob");
    std::thread terminator([&] {
        for (int i = 0; Clock::now() < end; ++i) {
            const auto start = Clock::now();
            if (i % 20 == 19)
                manager->TerminateC2SConnection("carrier");
            else
                manager->TerminateC2CSession(s_server->Jid(i % 2 ? "alice" : "bob"), "carrier");
            // Never a whole quiet poll: only a login under way may be waited for.
            EXPECT_LT(Clock::now() - start, 3s);
            std::this_thread::sleep_for(10ms);
        }
    });
    first.join();
    second.join();
    terminator.join();
    EXPECT_GT(accepted.load(), 0);
    EXPECT_GT(delivered.load(), 0);
    EXPECT_FALSE(handler.WaitFor(1).empty());
}

TEST_F(CoreManager, StopsAtOnceAndStartsAgain)
{
    ASSERT_TRUE(Connect());
    const auto start = Clock::now();
    ASSERT_TRUE(manager->StopThread());
    ASSERT_TRUE(manager->WaitForThreadStop(5000));
    EXPECT_LT(Clock::now() - start, 500ms) << "a stop does not wait for a quiet network";
    ASSERT_TRUE(manager->StartAsThread());
    OnlinePeer bob(*s_server, "bob");
    bob.Send(s_server->Jid("server"), ConfirmText("after"));
    EXPECT_EQ(handler.WaitFor(1).size(), 1U);
}

} // namespace
