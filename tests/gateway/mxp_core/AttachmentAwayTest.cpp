// Files for a device that has a session, but is not there when it is asked what it takes.

#include "AttachmentScene.h"
#include "VKMXPConnGlooxImpl.h"
#include "VKMXPSession.h"

namespace {

using namespace std::chrono_literals;

class AttachmentsForTheAbsent : public Attachments
{
protected:
    static int Refusals() { return s_logger.CountContaining("Disco error from [" + s_server->Jid("alice")); }

    const std::string server = s_server->Jid("server") + "/vk";
    const std::string device = s_server->Jid("alice") + "/mxp";
};

TEST_F(AttachmentsForTheAbsent, GoWhenTheirDeviceSpeaks)
{
    const int before = Refusals();
    Connect(FreePort());
    SendFiles("1", {MakeFile("plan", "first")});
    SendFiles("2", {MakeFile("list", "second")});
    ASSERT_TRUE(Until([&] { return Refusals() > before; }));
    FilePeer alice(device, s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    EXPECT_FALSE(statuses.Has("1"));
    alice.Say(server, "I have received it");
    EXPECT_EQ(statuses.WaitFor("1").status, kSent);
    EXPECT_EQ(statuses.WaitFor("2").status, kSent);
    const auto got = alice.WaitForFiles(2);
    ASSERT_EQ(got.size(), 2U);
    EXPECT_EQ(Decrypted(got[0]), "first");
}

TEST_F(AttachmentsForTheAbsent, GoWhenTheQuestionWasLostWithTheDevice)
{
    Connect(FreePort(), 2);
    {
        FilePeer dying(device, s_server->Port(), kBoth);
        ASSERT_TRUE(dying.WaitUntilOnline());
        dying.Pause(true);
        SendFiles("lost", {MakeFile("plan", "text")});
        EXPECT_TRUE(Until([] { return CopiesLeft() == 1; }));
    }
    FilePeer alice(device, s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    const auto speaksUntilSent = [&] {
        alice.Say(server, "here");
        return statuses.WaitFor("lost", 1s).status == kSent;
    };
    EXPECT_TRUE(Until(speaksUntilSent));
    EXPECT_EQ(CopiesLeft(), 0U);
}

TEST_F(AttachmentsForTheAbsent, GoOverTheNextStreamOfTheirConnection)
{
    VKMXPConnGlooxImpl connection("own", "127.0.0.1", s_server->Port(), s_server->Jid("server"), "pw", "vk",
                                  VKMXPConnIface::TlsRequired, "", "127.0.0.1", FreePort(), 65, 15, nullptr, true,
                                  &s_logger);
    connection.m_pobjAttachmentStatusHandler = &statuses;
    ASSERT_TRUE(connection.StartConnection()) << connection.GetLastError();
    const std::unique_ptr<VKMXPSession> session(connection.StartSession(s_server->Jid("alice")));
    ASSERT_NE(session, nullptr);
    session->SetTargetResource("mxp");
    VKMXPConnIface::AttachmentMap files;
    files["kept"] = {{MakeFile("plan", "text"), "key-of-kept"}};
    ASSERT_TRUE(connection.SendAMessage(session.get(), "see the plans", files));
    FilePeer alice(device, s_server->Port(), kBoth);
    ASSERT_TRUE(alice.WaitUntilOnline());
    EXPECT_TRUE(connection.TerminateConnection());
    ASSERT_TRUE(connection.StartConnection()) << connection.GetLastError();
    EXPECT_TRUE(Until([&] { return connection.SendPing(0) && statuses.Has("kept"); }));
    EXPECT_EQ(statuses.WaitFor("kept", 0s).status, kSent);
    connection.TerminateSession(session.get());
}

} // namespace
