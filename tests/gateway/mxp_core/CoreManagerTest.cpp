// The core manager against a real XMPP server.

#include "ProsodyServer.h"
#include "RecordingLogger.h"
#include "VKMXPConnGlooxImpl.h"
#include "VKMXPCoreManager.h"
#include "VKMXPmConfirmMsg.h"
#include "VKMXPmEnvelope.h"
#include "VKMXPmMessage.h"
#include "XmppPeer.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

std::unique_ptr<VKMXPmMessage> MakeMessage(const std::string& jobId, const std::string& body = "pump 3 has stopped")
{
    auto message = std::make_unique<VKMXPmMessage>();
    message->m_strJobID = jobId;
    message->m_strSender = "control room";
    message->m_strBody = body;
    message->m_bValid = true;
    return message;
}

std::string ConfirmText(const std::string& jobId)
{
    VKMXPmEnvelope envelope;
    auto confirm = std::make_unique<VKMXPmConfirmMsg>();
    confirm->m_strJobID = jobId;
    confirm->m_strResponse = "CONFIRM";
    confirm->m_bValid = true;
    envelope.Add(confirm.release());
    return envelope.GenerateXML();
}

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

    bool Connect(const std::string& id = "carrier", const std::string& password = "pw", std::string* error = nullptr)
    {
        std::string ignored;
        return manager->StartC2SConnection(id, "127.0.0.1", s_server->Port(), s_server->Jid("server"), password,
                                           "vk-" + id, false, "", 0, 65, 15, error ? error : &ignored);
    }

    bool SendMessageTo(const std::string& user, const std::string& jobId, const std::string& id = "carrier")
    {
        int sequence = 0;
        auto message = MakeMessage(jobId);
        const bool sent = manager->Send(message.get(), s_server->Jid(user), id, sequence);
        if (sent)
            static_cast<void>(message.release());
        return sent;
    }

    static std::unique_ptr<ProsodyServer> s_server;
    static inline vktest::RecordingLogger& s_logger = vktest::CoreLogger();
    VKMXPCoreManager* manager = nullptr;
    NotingHandler handler;
};

std::unique_ptr<ProsodyServer> CoreManager::s_server;

TEST_F(CoreManager, CarriesAMessageOutAndTheAnswerBack)
{
    XmppPeer alice(s_server->Jid("alice") + "/mxp", "pw", s_server->Port(),
                   [](XmppPeer& peer, const std::string& from, const std::string&) {
                       peer.Send(from, ConfirmText("4711"), "a-thread-of-its-own");
                   });
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(Connect());
    ASSERT_TRUE(Connect()) << "a known ID is fine";
    VKMXPSession* session = manager->StartC2CSession(s_server->Jid("alice"), "carrier", "mxp", false);
    ASSERT_NE(session, nullptr);
    EXPECT_EQ(manager->StartC2CSession(s_server->Jid("alice"), "carrier", "mxp", false), session);
    ASSERT_TRUE(SendMessageTo("alice", "4711"));

    const auto bodies = alice.WaitForBodies(1);
    ASSERT_EQ(bodies.size(), 1U);
    VKMXPmEnvelope envelope;
    EXPECT_TRUE(envelope.ParseXML(bodies[0])) << envelope.m_strErrorText;
    EXPECT_EQ(handler.WaitFor(1), std::vector<std::string>{s_server->Jid("alice") + " 4711"});
}

TEST_F(CoreManager, TakesRequestsOfSendersWithoutASession)
{
    ASSERT_TRUE(Connect());
    XmppPeer bob(s_server->Jid("bob") + "/mxp", "pw", s_server->Port());
    ASSERT_TRUE(bob.WaitUntilOnline());
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
    XmppPeer bob(s_server->Jid("bob") + "/mxp", "pw", s_server->Port());
    XmppPeer carol(s_server->Jid("carol") + "/mxp", "pw", s_server->Port());
    ASSERT_TRUE(bob.WaitUntilOnline() && carol.WaitUntilOnline());
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("bob"), "carrier", "mxp", false), nullptr);
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
    XmppPeer bob(s_server->Jid("bob") + "/mxp", "pw", s_server->Port());
    ASSERT_TRUE(bob.WaitUntilOnline());
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("bob"), "carrier", "mxp", false), nullptr);
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
    std::string error;
    ASSERT_TRUE(manager->StartC2SConnection("carrier", "127.0.0.1", server.Port(), server.Jid("server"), "pw", "vk",
                                            false, "", 0, 65, 15, &error));
    XmppPeer bob(server.Jid("bob") + "/mxp", "pw", server.Port());
    ASSERT_TRUE(bob.WaitUntilOnline());
    ASSERT_NE(manager->StartC2CSession(server.Jid("bob"), "carrier", "mxp", false), nullptr);

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
    int sequence = 0;
    const auto sending = Clock::now();
    ASSERT_TRUE(manager->Send(MakeMessage("long", body).release(), server.Jid("bob"), "carrier", sequence));
    EXPECT_EQ(bob.WaitForBodies(1, 60s).size(), 1U);
    EXPECT_LT(Clock::now() - sending, 30s) << "out";
}

TEST_F(CoreManager, ReplacesCharactersThatWouldEndTheStream)
{
    XmppPeer alice(s_server->Jid("alice") + "/mxp", "pw", s_server->Port());
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(Connect());
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("alice"), "carrier", "mxp", false), nullptr);
    int sequence = 0;
    auto message = MakeMessage("1", "bell \x07 and \xC3\x28 end");
    ASSERT_TRUE(manager->Send(message.release(), s_server->Jid("alice"), "carrier", sequence));
    ASSERT_TRUE(SendMessageTo("alice", "2"));
    std::string all;
    for (const std::string& body : alice.WaitForBodies(1))
        all += body;
    if (all.find(">2<") == std::string::npos)
        for (const std::string& body : alice.WaitForBodies(2))
            all += body;
    EXPECT_NE(all.find("bell \xEF\xBF\xBD and \xEF\xBF\xBD( end"), std::string::npos) << all;
    EXPECT_NE(all.find(">2<"), std::string::npos) << "the next message goes through";
}

TEST_F(CoreManager, CountsSequencesForRequestsAndTellsMissingSessions)
{
    EXPECT_FALSE(SendMessageTo("alice", "1")) << "no session";
    EXPECT_FALSE(manager->Send("hello", s_server->Jid("alice"), "carrier"));
    EXPECT_EQ(manager->StartC2CSession(s_server->Jid("alice"), "carrier", "mxp", false), nullptr) << "no connection";
    EXPECT_FALSE(manager->TerminateC2CSession(s_server->Jid("alice"), "carrier"));
    EXPECT_FALSE(manager->TerminateC2SConnection("carrier"));

    ASSERT_TRUE(Connect());
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("alice"), "carrier", "mxp", false), nullptr);
    int first = 0;
    int second = 0;
    int response = 0;
    ASSERT_TRUE(manager->Send(MakeMessage("1").release(), s_server->Jid("alice"), "carrier", first));
    auto answer = MakeMessage("2");
    answer->m_iPacketType = 2;
    answer->m_iSequence = 77;
    ASSERT_TRUE(manager->Send(answer.release(), s_server->Jid("alice"), "carrier", response));
    ASSERT_TRUE(manager->Send(MakeMessage("3").release(), s_server->Jid("alice"), "carrier", second));
    EXPECT_GE(first, 100);
    EXPECT_EQ(response, 77) << "a response keeps the sequence of its request";
    EXPECT_EQ(second, first + 1) << "and takes none from the counter";
    EXPECT_FALSE(manager->ResetC2CSessionTargetResource(s_server->Jid("alice"), "carrier"));
    EXPECT_TRUE(manager->TerminateC2CSession(s_server->Jid("alice"), "carrier"));
}

TEST_F(CoreManager, TellsWhyAConnectionFails)
{
    std::string error;
    EXPECT_FALSE(Connect("carrier", "wrong", &error));
    EXPECT_EQ(error, "Disconnection Error.");
    EXPECT_GE(s_logger.CountContaining("Authentication failed. Username/password wrong or account does not exist."), 1);

    EXPECT_FALSE(manager->StartC2SConnection("carrier", "127.0.0.1", 1, s_server->Jid("server"), "pw", "vk", false, "",
                                             0, 65, 15, &error));
    EXPECT_EQ(error, "Error in establishing connection.");

    ProsodyServer::Options plain;
    plain.tls = false;
    ProsodyServer noTls(plain);
    noTls.AddAccount("server", "pw");
    noTls.Start();
    EXPECT_FALSE(manager->StartC2SConnection("carrier", "127.0.0.1", noTls.Port(), noTls.Jid("server"), "pw", "vk",
                                             false, "", 0, 65, 15, &error));
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

    XmppPeer alice(s_server->Jid("alice") + "/mxp", "pw", s_server->Port());
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(Connect());
    ASSERT_NE(manager->StartC2CSession(s_server->Jid("alice"), "carrier", "mxp", false), nullptr);
    std::string error;
    bool hung = true;
    std::thread hanging([&] {
        hung = manager->StartC2SConnection("second", "127.0.0.1", silent.Port(), silent.Jid("server"), "pw", "vk",
                                           false, "", 0, 65, 15, &error);
    });
    const auto start = Clock::now();
    EXPECT_TRUE(SendMessageTo("alice", "1"));
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
    const auto connect = [&] {
        std::string error;
        return manager->StartC2SConnection("carrier", "127.0.0.1", server.Port(), server.Jid("server"), "pw", "vk",
                                           false, "", 0, 65, 15, &error) &&
               manager->StartC2CSession(server.Jid("alice"), "carrier", "mxp", false);
    };
    ASSERT_TRUE(connect());
    server.Kill();
    // The work thread drops the dead connection with its sessions.
    const auto limit = Clock::now() + 10s;
    while (manager->GetSession(server.Jid("alice"), "carrier") && Clock::now() < limit)
        std::this_thread::sleep_for(5ms);
    EXPECT_EQ(manager->GetSession(server.Jid("alice"), "carrier"), nullptr);
    EXPECT_FALSE(connect()) << "nobody is there";

    server.Start();
    XmppPeer alice(server.Jid("alice") + "/mxp", "pw", server.Port());
    ASSERT_TRUE(alice.WaitUntilOnline());
    ASSERT_TRUE(connect());
    int sequence = 0;
    ASSERT_TRUE(manager->Send(MakeMessage("1").release(), server.Jid("alice"), "carrier", sequence));
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
    XmppPeer alice(s_server->Jid("alice") + "/mxp", "pw", s_server->Port(), answer);
    XmppPeer bob(s_server->Jid("bob") + "/mxp", "pw", s_server->Port(), answer);
    ASSERT_TRUE(alice.WaitUntilOnline() && bob.WaitUntilOnline());

    std::atomic<int> accepted{0};
    const auto sender = [&](const char* user) {
        for (int i = 0; Clock::now() < end; ++i) {
            if (Connect() && manager->StartC2CSession(s_server->Jid(user), "carrier", "mxp", false) &&
                SendMessageTo(user, std::to_string(i)))
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
    XmppPeer bob(s_server->Jid("bob") + "/mxp", "pw", s_server->Port());
    ASSERT_TRUE(bob.WaitUntilOnline());
    bob.Send(s_server->Jid("server"), ConfirmText("after"));
    EXPECT_EQ(handler.WaitFor(1).size(), 1U);
}

} // namespace
