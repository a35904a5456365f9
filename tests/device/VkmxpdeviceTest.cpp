#include "DeviceAnswer.h"
#include "Options.h"
#include "ProsodyServer.h"
#include "RunningProgram.h"
#include "SaidPackets.h"
#include "VKMXPmSendMsgResponse.h"
#include "VKMXPmSetMsgStatus.h"
#include "XmppPeer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>

namespace {

using testing::HasSubstr;

std::string MessageEnvelope(const std::string& job)
{
    return vktest::Said<VKMXPmMessage>(job, [](VKMXPmMessage& message) {
        message.m_strSender = "Dispatch";
        message.m_strSubject = "Alarm";
        message.m_strBody = "Fire in <B2> & B3";
        message.m_vecResponseChoices = {"Coming", "Not coming"};
        message.m_iSequence = 7;
    });
}

/// The packets of all that a peer received, one line each.
std::vector<std::string> Packets(const std::vector<std::string>& bodies)
{
    std::vector<std::string> lines;
    for (const std::string& body : bodies) {
        VKMXPmEnvelope envelope;
        EXPECT_TRUE(envelope.ParseXML(body)) << envelope.m_strErrorText;
        for (const VKMXPmBase* packet : envelope.m_vecModels) {
            std::string line = packet->GetName();
            if (const auto* status = dynamic_cast<const VKMXPmSetMsgStatus*>(packet))
                line += " " + status->m_strJobID + " " + status->m_strStatus;
            if (const auto* confirm = dynamic_cast<const VKMXPmConfirmMsg*>(packet))
                line += " " + confirm->m_strJobID + " " + confirm->m_strResponse;
            if (const auto* reply = dynamic_cast<const VKMXPmSendMsgResponse*>(packet))
                line += " " + reply->m_strJobID + " " + reply->m_strResponseCode + " " + reply->m_strResponseText;
            lines.push_back(line);
        }
    }
    return lines;
}

class Vkmxpdevice : public testing::Test
{
protected:
    Vkmxpdevice()
    {
        server.AddAccounts({{"dispatch", "secret"}, {"alice", "secret"}});
        server.Start();
    }

    std::vector<std::string> Call(const std::string& password, std::vector<std::string> more) const
    {
        std::vector<std::string> arguments = {"--server", "127.0.0.1", "--port",     std::to_string(server.Port()),
                                              "--jid",    "alice@localhost", "--password", password};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }

    std::future<ProgramRun> Start(std::vector<std::string> more)
    {
        return std::async(std::launch::async, [call = Call("secret", std::move(more))] {
            return ProgramRun::Of("vkmxpdevice", call);
        });
    }

    /// Keeps messages for a device that is still on its way.
    ProsodyServer server{{"localhost", true, true}};
};

TEST_F(Vkmxpdevice, AnswersEachMessageInTheOrderGiven)
{
    auto device = Start({"--json", "--count", "1", "--answer", "received,read,reply:2:Not coming\\, sorry,confirm"});
    XmppPeer peer("dispatch@localhost/desk", "secret", server.Port());
    peer.Send("alice@localhost/mxp", MessageEnvelope("job-1"));
    const std::vector<std::string> bodies = peer.WaitForBodies(4);
    ASSERT_EQ(Packets(bodies),
              (std::vector<std::string>{"set-msg-status job-1 RECEIVED", "set-msg-status job-1 READ",
                                        "send-msg-response job-1 2 Not coming, sorry", "confirm-msg job-1 CONFIRM"}));

    VKMXPmEnvelope envelope;
    ASSERT_TRUE(envelope.ParseXML(bodies.back()));
    VKMXPmBase& confirm = *envelope.Get(0);
    confirm.m_iPacketType = VKMXPmBase::kResponse;
    confirm.m_iResponseCode = 1;
    confirm.m_strResponseMessage = "taken";
    peer.Send("alice@localhost/mxp", envelope.GenerateXML());

    const ProgramRun run = device.get();
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr(R"("body":"Fire in <B2> & B3")"));
    EXPECT_THAT(run.out, HasSubstr(R"("response_choices":["Coming","Not coming"])"));
    EXPECT_THAT(run.out, HasSubstr(R"("message":"taken")"));
}

TEST_F(Vkmxpdevice, SurvivesWhatIsNoEnvelope)
{
    auto device = Start({"--count", "1", "--answer", "received"});
    XmppPeer peer("dispatch@localhost/desk", "secret", server.Port());
    const std::string whole = MessageEnvelope("job-1");
    for (const auto& body : {std::string("<mxp"), std::string("hello"), whole.substr(0, whole.size() / 2), whole})
        peer.Send("alice@localhost/mxp", body);
    EXPECT_EQ(peer.WaitForBodies(1).size(), 1u);
    const ProgramRun run = device.get();
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("job-1"));
}

TEST_F(Vkmxpdevice, ALoginThatFailsIsToldInOneLine)
{
    const int port = server.Port();
    const auto wrong = ProgramRun::Of("vkmxpdevice", Call("wrong", {}));
    EXPECT_EQ(wrong.exitCode, 3);
    EXPECT_EQ(wrong.err, "vkmxpdevice: alice@localhost at 127.0.0.1:" + std::to_string(port) +
                             ": login failed: Authentication failed. Username/password wrong or account does not exist.\n");
    server.Stop();
    const auto refused = ProgramRun::Of("vkmxpdevice", Call("secret", {}));
    EXPECT_EQ(refused.exitCode, 3);
    EXPECT_THAT(refused.err, HasSubstr("login failed: The connection was refused by the server"));
}

TEST(DeviceAnswers, AMistakeInTheListIsNamed)
{
    EXPECT_TRUE(vk::ParseAnswers("").empty());
    for (const char* list : {"recieved", "received,", ",", "reply", "reply:1", "reply:1:", "reply::x", "Read"}) {
        try {
            vk::ParseAnswers(list);
            ADD_FAILURE() << list;
        } catch (const vk::UsageError& error) {
            EXPECT_THAT(error.what(), testing::StartsWith("--answer: '")) << list;
        }
    }
}

} // namespace
