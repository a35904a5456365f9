#include "RunningProgram.h"
#include "ProsodyServer.h"
#include "TempDir.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>

namespace {

using testing::HasSubstr;

/// The programs together, on a server and a root of their own.
class RoadOfAMessage : public testing::Test
{
protected:
    RoadOfAMessage() : root(dir / "root")
    {
        server.AddAccounts({{"paging", "secret"}, {"al", "secret"}});
        server.Start();
        Admin({"init"});
        Admin({"receiver", "add", "--name", "Al", "--pin", "al@localhost", "--type", "two-way"});
        Admin({"session", "add", "--user-id", "1", "--jid", "al@localhost/mxp"});
    }

    void Admin(std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"--root", root});
        const ProgramRun run = ProgramRun::Of("vkadmin", words);
        EXPECT_EQ(run.exitCode, 0) << run.err;
    }

    ProgramRun Send(const std::string& wait, const std::string& password = "secret", int port = 0) const
    {
        const std::string file = dir.Write("message.json", R"({"job_id": "j-1", "sender": "Dispatch", "body": "Fire",
            "receiver_pin": "al@localhost", "receiver_id": 1, "carrier_name": "MXP", "server": "127.0.0.1",
            "domain": "localhost", "user_id": "paging", "resource": "vk", "two_way": true, "password": ")" +
                                                               password + R"(", "port": )" +
                                                               std::to_string(port != 0 ? port : server.Port()) + "}");
        return ProgramRun::Of("vkmessenger", {"send", "--root", root, "--message", file, "--wait", wait});
    }

    std::future<ProgramRun> Device() const
    {
        return std::async(std::launch::async, [port = server.Port()] {
            return ProgramRun::Of("vkmxpdevice", {"--server", "127.0.0.1", "--port", std::to_string(port), "--jid",
                                                  "al@localhost", "--password", "secret", "--count", "1", "--answer",
                                                  "received,read,confirm"});
        });
    }

    const TempDir dir;
    const std::string root;
    /// Keeps messages for a device that is still on its way.
    ProsodyServer server{{"localhost", true, true}};
};

TEST_F(RoadOfAMessage, AMessageIsConfirmedAndTheDeviceLearnsThatItWasTaken)
{
    auto device = Device();
    const ProgramRun run = Send("20");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("j-1  report  CONFIRMED       'CONFIRM'"));
    EXPECT_EQ(run.err, "");
    const ProgramRun answered = device.get();
    EXPECT_EQ(answered.exitCode, 0) << answered.err;
    EXPECT_THAT(answered.out, HasSubstr("successfully updated to 'CONFIRMED'"));
}

TEST_F(RoadOfAMessage, AServersFaultIsToldInOneLineAndTheNextMessageWorks)
{
    ProsodyServer plain{{"localhost", false, false}};
    plain.AddAccount("paging", "secret");
    plain.Start();
    const auto expectFailure = [](const ProgramRun& run, const char* why) {
        EXPECT_EQ(run.exitCode, 1) << why;
        EXPECT_THAT(run.out, HasSubstr("j-1  send    FAILED")) << why;
        EXPECT_THAT(run.err, HasSubstr(why));
        EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << run.err;
    };
    expectFailure(Send("1", "wrong"), "Authentication failed. Username/password wrong or account does not exist.");
    expectFailure(Send("1", "secret", plain.Port()), "The server didn't offer TLS while it was set to be required");
    server.Kill();
    expectFailure(Send("1"), "The connection was refused by the server");
    server.Start();
    auto device = Device();
    EXPECT_THAT(Send("20").out, HasSubstr("CONFIRMED"));
    EXPECT_EQ(device.get().exitCode, 0);
}

TEST_F(RoadOfAMessage, ABrokenStoreIsNamedAndLeftAsItIs)
{
    dir.Write("root/temp/xmpp_user_sessions.sdb", "somebody's file");
    const ProgramRun sessions = Send("1");
    EXPECT_EQ(sessions.exitCode, 1);
    EXPECT_THAT(sessions.err, HasSubstr("xmpp_user_sessions.sdb"));
    EXPECT_EQ(dir.Read("root/temp/xmpp_user_sessions.sdb"), "somebody's file");
}

TEST_F(RoadOfAMessage, ABrokenReceiverFileIsToldAndTheMessageGoesOutAllTheSame)
{
    dir.Write("root/config/receivers.sdb", "somebody's file");
    auto device = Device();
    const ProgramRun run = Send("20");
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("CONFIRMED"));
    EXPECT_THAT(run.err, HasSubstr("receivers.sdb"));
    EXPECT_EQ(dir.Read("root/config/receivers.sdb"), "somebody's file");
    EXPECT_EQ(device.get().exitCode, 0);
}

} // namespace
