// What handlers of attachment statuses may do: they run on the thread of the file sender, for which others wait.

#include "AttachmentScene.h"
#include "VKMXPConnGlooxImpl.h"
#include "VKMXPSession.h"

#include <functional>
#include <future>

namespace {

using namespace std::chrono_literals;
using Manner = FilePeer::Manner;

/// Does something with the first status, and lets the test wait until it has been done.
class Acting final : public VKMXPAttachmentStatusHandlerIface
{
public:
    explicit Acting(std::function<void()> act) : m_act(std::move(act)) {}
    void HandleAttachmentStatus(const std::string& connectionId, const std::string&, int status,
                                const std::string&) override
    {
        if (m_begun.exchange(true))
            return;
        m_act();
        m_told = connectionId + " " + std::to_string(status);
        m_done = true;
    }
    bool HasBegun() const { return m_begun; }
    /// The connection and the status; empty when the handler hangs.
    std::string WaitUntilDone() const
    {
        return Until([this] { return m_done.load(); }) ? m_told : std::string();
    }

private:
    std::function<void()> m_act;
    std::atomic<bool> m_begun{false};
    std::string m_told; ///< complete when m_done is set
    std::atomic<bool> m_done{false};
};

class AttachmentHandlers : public Attachments
{
protected:
    bool LogIn(std::string& error)
    {
        return manager->StartC2SConnection("files", "127.0.0.1", s_server->Port(), s_server->Jid("server"), "pw", "vk",
                                           true, "127.0.0.1", port, 65, 15, &error);
    }

    /// What the handler finds and gets when it ends the connection and tries to use it again.
    void EndAndTryAgain()
    {
        ended = manager->TerminateC2SConnection("files");
        foundSession = manager->GetSession(s_server->Jid("alice"), "files") != nullptr;
        madeSession = manager->StartC2CSession(s_server->Jid("alice"), "files", "mxp", false) != nullptr;
        loggedIn = LogIn(error);
        endedTwice = manager->TerminateC2SConnection("files");
    }

    void ExpectGone(bool byHandler)
    {
        EXPECT_EQ(ended, byHandler);
        EXPECT_FALSE(foundSession || madeSession || loggedIn || endedTwice);
        EXPECT_EQ(error, "The connection is being ended or logged in.");
    }

    /// Nothing of the old connection is in the way of a new one, its stream host's port included.
    void ExpectANewOneWorks(FilePeer& alice)
    {
        alice.Become(Manner::Accept);
        Connect(port);
        const std::string job = "anew " + std::to_string(++jobs);
        SendFiles(job, {MakeFile("plan", "text")});
        EXPECT_EQ(statuses.WaitFor(job).status, kSent);
        EXPECT_EQ(s_logger.CountContaining("Socks5 Bytestream Server listening on port ["), 0);
    }

    const int port = FreePort();
    int jobs = 0;
    bool ended = false, foundSession = false, madeSession = false, loggedIn = false, endedTwice = false;
    std::string error;
};

TEST_F(AttachmentHandlers, MayEndTheirOwnConnection)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    for (const bool workThread : {true, false}) {
        std::promise<void> go;
        Acting handler([&] {
            go.get_future().wait();
            EndAndTryAgain();
        });
        Connect(port);
        ASSERT_TRUE(manager->RegisterForAttachmentStatus("files", &handler));
        const std::size_t threads = Entries("/proc/self/task");
        SendFiles("last", {MakeFile("plan", "text")});
        EXPECT_TRUE(Until([&] { return handler.HasBegun(); }));
        if (!workThread) {
            ASSERT_TRUE(manager->StopThread() && manager->WaitForThreadStop(5000));
        }
        go.set_value();
        EXPECT_EQ(handler.WaitUntilDone(), "files 3");
        ExpectGone(true);
        if (workThread) {
            EXPECT_TRUE(Until([&] { return Entries("/proc/self/task") < threads; })) << "the sender's thread ends";
        }
        Connect(port);
        ASSERT_TRUE(manager->StartAsThread());
        ExpectANewOneWorks(alice);
        ASSERT_TRUE(manager->TerminateC2SConnection("files"));
    }
}

TEST_F(AttachmentHandlers, DoNotHangWhenOthersEndTheirConnection)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth, Manner::Silent);
    ASSERT_TRUE(alice.WaitUntilOnline());
    // On the sender's thread, for which this one waits, and on this one, with files that nobody has asked for.
    for (const char* user : {"alice", "bob"}) {
        Acting handler([&] { EndAndTryAgain(); });
        Connect(port);
        ASSERT_TRUE(manager->RegisterForAttachmentStatus("files", &handler));
        const int before = s_logger.CountContaining("Got new file.");
        const int errors = s_logger.CountContaining("Disco error from [" + s_server->Jid("bob"));
        SendFiles("under way", {MakeFile("plan", "text")}, user);
        ASSERT_TRUE(Until([&] {
            return s_logger.CountContaining("Got new file.") > before ||
                   s_logger.CountContaining("Disco error from [" + s_server->Jid("bob")) > errors;
        }));
        EXPECT_TRUE(manager->TerminateC2SConnection("files"));
        EXPECT_EQ(handler.WaitUntilDone(), "files 2");
        ExpectGone(false);
    }
    ExpectANewOneWorks(alice);
}

TEST_F(AttachmentHandlers, DoNotHangWhenTheirConnectionIsLost)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth, Manner::Silent);
    ASSERT_TRUE(alice.WaitUntilOnline());
    VKMXPSession* session = nullptr;
    Acting handler([&] { session = manager->StartC2CSession(s_server->Jid("alice"), "files", "mxp", false); });
    Connect(port, 1);
    ASSERT_TRUE(manager->RegisterForAttachmentStatus("files", &handler));
    SendFiles("too late", {MakeFile("plan", "text")}); // which takes the connection down
    EXPECT_EQ(handler.WaitUntilDone(), "files 2");
    EXPECT_EQ(session, nullptr);
    EXPECT_TRUE(Until([&] { return manager->GetSession(s_server->Jid("alice"), "files") == nullptr; }));
    ExpectANewOneWorks(alice);
}

/// A connection that sends no files refuses them in the middle of a round.
TEST_F(AttachmentHandlers, MayEndAConnectionThatSendsNoFiles)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    Acting handler([&] { ended = manager->TerminateC2SConnection("files"); });
    ASSERT_TRUE(manager->StartC2SConnection("files", "127.0.0.1", s_server->Port(), s_server->Jid("server"), "pw", "vk",
                                            false, "", 0, 65, 15, &error));
    ASSERT_TRUE(manager->RegisterForAttachmentStatus("files", &handler));
    SendFiles("refused", {MakeFile("plan", "text")});
    EXPECT_EQ(handler.WaitUntilDone(), "files 2");
    EXPECT_TRUE(ended);
    ExpectANewOneWorks(alice);
}

/// A connection without a manager, whose handler ends or deletes it.
TEST_F(AttachmentHandlers, MayEndAndDeleteAConnectionThatIsTheirs)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), kBoth, Manner::Silent);
    ASSERT_TRUE(alice.WaitUntilOnline());
    const std::size_t threads = Entries("/proc/self/task");
    for (const bool deleted : {false, true}) {
        auto connection = std::make_unique<VKMXPConnGlooxImpl>(
            "own", "127.0.0.1", s_server->Port(), s_server->Jid("server"), "pw", "vk", VKMXPConnIface::TlsRequired, "",
            "127.0.0.1", port, 65, 1, nullptr, true, &s_logger);
        ASSERT_TRUE(connection->StartConnection()) << connection->GetLastError();
        std::unique_ptr<VKMXPSession> session(connection->StartSession(s_server->Jid("alice")));
        ASSERT_NE(session, nullptr);
        session->SetTargetResource("mxp");
        bool again = false;
        Acting handler([&] {
            if (deleted) {
                connection.reset();
                return;
            }
            EXPECT_TRUE(connection->TerminateConnection());
            again = connection->StartConnection() || connection->StartSession(s_server->Jid("alice"));
        });
        connection->m_pobjAttachmentStatusHandler = &handler;
        VKMXPConnIface::AttachmentMap files;
        files["late"] = {{MakeFile("plan", "text"), "key-of-own"}};
        files["waiting"] = files["late"];
        ASSERT_TRUE(connection->SendAMessage(session.get(), "see the plans", files));
        const int before = s_logger.CountContaining("Got new file.");
        ASSERT_TRUE(Until([&] {
            connection->SendPing(0);
            return s_logger.CountContaining("Got new file.") > before;
        }));
        connection->TerminateSession(session.get());
        session.reset();
        EXPECT_EQ(handler.WaitUntilDone(), "own 2");
        EXPECT_FALSE(again);
        if (connection) {
            EXPECT_FALSE(connection->IsConnected());
            EXPECT_TRUE(connection->TerminateConnection());
            EXPECT_TRUE(connection->StartConnection()) << "from outside it can log in again";
            connection.reset();
        }
        EXPECT_TRUE(Until([&] { return Entries("/proc/self/task") <= threads; }));
    }
}

} // namespace
