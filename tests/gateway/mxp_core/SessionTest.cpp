#include "RecordingLogger.h"
#include "SaidPackets.h"
#include "VKMXPConnIface.h"
#include "VKMXPHub.h"
#include "VKMXPSession.h"
#include "VKMXPmSetMsgStatus.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>

namespace {

using vktest::ConfirmText;
using vktest::MakeMessage;

/// A connection that keeps what is sent and gives what a test lays in.
class FakeConnection final : public VKMXPConnIface
{
public:
    explicit FakeConnection(VKLogInterface* logger = nullptr)
    {
        m_strConnectionID = "carrier";
        m_pobjLogger = logger;
    }
    bool StartConnection() override { return true; }
    bool TerminateConnection() override { return true; }
    VKMXPSession* StartSession(const std::string&) override { return nullptr; }
    bool TerminateSession(VKMXPSession*) override { return true; }
    bool IsConnected() override { return true; }
    bool SendPing(int) override { return true; }
    bool SendAMessage(VKMXPSession*, const std::string& text, AttachmentMap& attachments) override
    {
        sent.push_back(text);
        sentAttachments.push_back(attachments);
        return takes;
    }
    std::string RecvAMessage(VKMXPSession*, int) override { return Next(); }
    std::string RecvAMessage(std::string& jid, int) override
    {
        jid = "stray@x";
        return Next();
    }
    bool GetAttachedFilesOf(const std::string&, const std::string& packetId, FileList& files) override
    {
        return GetAttachedFiles(packetId, files);
    }
    bool GetAttachedFiles(const std::string& packetId, FileList& files) override
    {
        const auto found = received.find(packetId);
        if (found != received.end())
            files = found->second;
        return found != received.end();
    }
    int GetFileTransferMethod() override { return 0; }

    bool takes = true;
    std::vector<std::string> sent;
    std::vector<AttachmentMap> sentAttachments;
    std::deque<std::string> incoming;
    AttachmentMap received;

private:
    std::string Next()
    {
        if (incoming.empty())
            return {};
        std::string first = incoming.front();
        incoming.pop_front();
        return first;
    }
};

class CountingHub final : public vk::Hub
{
public:
    vk::TrafficWait& Traffic() override { return traffic; }
    bool HasSession(const std::string&, const std::string&) override { return true; }
    void MessageArrived(const std::string&, const std::string&, const std::string&) override {}
    void SessionReady(VKMXPSession&) override { ++ready; }

    vk::TrafficWait traffic;
    int ready = 0;
};

class Session : public ::testing::Test
{
protected:
    void SetUp() override
    {
        session.SetHub(&hub);
        ASSERT_TRUE(session.Initialize());
    }

    vktest::RecordingLogger logger;
    FakeConnection connection{&logger};
    CountingHub hub;
    VKMXPSession session{"device@x", &connection, nullptr};
};

TEST_F(Session, SendsAllWaitingPacketsAsOneEnvelope)
{
    for (const char* job : {"1", "2", "3"})
        ASSERT_TRUE(session.Send(MakeMessage(job).release()));
    EXPECT_EQ(hub.ready, 3);
    EXPECT_TRUE(session.RunDispatchCycle());
    ASSERT_EQ(connection.sent.size(), 1U);
    VKMXPmEnvelope envelope;
    ASSERT_TRUE(envelope.ParseXML(connection.sent[0])) << envelope.m_strErrorText;
    EXPECT_EQ(envelope.GetCount(), 3U);
    EXPECT_FALSE(session.RunDispatchCycle()) << "nothing left";
    EXPECT_EQ(connection.sent.size(), 1U);
}

TEST_F(Session, SplitsABurstThatAServerWouldRefuseAsOneStanza)
{
    constexpr int kPackets = 500;
    for (int i = 0; i < kPackets; ++i) {
        auto message = MakeMessage(std::to_string(i));
        message->m_strBody.assign(1000, 'b');
        session.Send(message.release());
    }
    EXPECT_TRUE(session.RunDispatchCycle());
    int next = 0;
    for (const std::string& text : connection.sent) {
        EXPECT_LT(text.size(), 70000U);
        VKMXPmEnvelope envelope;
        ASSERT_TRUE(envelope.ParseXML(text));
        for (const auto* packet : envelope.m_vecModels)
            EXPECT_EQ(dynamic_cast<const VKMXPmMessage&>(*packet).m_strJobID, std::to_string(next++));
    }
    EXPECT_EQ(next, kPackets);
}

TEST_F(Session, SendsPacketsBeforeTextsAndDropsInvalidPackets)
{
    EXPECT_FALSE(session.Send(static_cast<VKMXPmBase*>(nullptr)));
    EXPECT_FALSE(session.Send(std::string()));
    auto invalid = MakeMessage("1");
    invalid->m_bValid = false;
    session.Send(invalid.release());
    session.Send("hello");
    EXPECT_FALSE(session.RunDispatchCycle()) << "no packet could be sent";
    EXPECT_EQ(connection.sent, std::vector<std::string>{"hello"});
}

TEST_F(Session, GivesAttachmentsTheJobIdAsTheirKey)
{
    auto message = MakeMessage("4711");
    message->AttachFile("/tmp/plan.pdf", "key");
    session.Send(message.release());
    session.RunDispatchCycle();
    ASSERT_EQ(connection.sentAttachments.size(), 1U);
    EXPECT_EQ(connection.sentAttachments[0].count("4711"), 1U);

    VKMXPmSetMsgStatus status;
    status.m_iSequence = 12;
    EXPECT_EQ(VKMXPSession::GetPacketIdForAttachedFile(&status), "12");
}

TEST_F(Session, SortsWhatComesInIntoRequestsResponsesAndTexts)
{
    const std::string response = vktest::Said<VKMXPmConfirmMsg>("8", [](auto& packet) {
        packet.m_iPacketType = VKMXPmBase::kResponse;
        packet.m_iSequence = 7;
    });
    std::string quoted = ConfirmText("6");
    quoted.replace(quoted.find("'vardock:mxp'"), 13, "\"vardock:mxp\"");
    connection.incoming = {"  " + ConfirmText("5") + "\n", quoted, "just text", response, "<mxp xmlns='other'></mxp>"};
    connection.received["7"] = {{"/tmp/f", "photo"}};
    EXPECT_TRUE(session.RunReceptionCycle());

    std::unique_ptr<VKMXPmBase> first(session.GetRequest(0));
    std::unique_ptr<VKMXPmBase> second(session.GetRequest(50));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(dynamic_cast<VKMXPmConfirmMsg&>(*first).m_strJobID, "5");
    EXPECT_EQ(first->GetAttachedFilesCount(), 1U);
    EXPECT_EQ(dynamic_cast<VKMXPmConfirmMsg&>(*second).m_strJobID, "6");
    EXPECT_EQ(session.GetRequest(0), nullptr);
    EXPECT_EQ(session.FetchMessage(0), "just text");
    EXPECT_EQ(session.FetchMessage(0), "<mxp xmlns='other'></mxp>") << "another namespace is plain text";
    EXPECT_EQ(session.RecvResponse(6, 0), nullptr);
    std::unique_ptr<VKMXPmBase> answer(session.RecvResponse(7, 0));
    EXPECT_TRUE(answer);
    EXPECT_EQ(session.RecvResponse(7, 0), nullptr);
}

TEST_F(Session, TakesTenTextsAVisitAndAsksForAnotherVisit)
{
    for (int i = 0; i < 12; ++i)
        connection.incoming.push_back("text " + std::to_string(i));
    session.RunReceptionCycle();
    EXPECT_EQ(connection.incoming.size(), 2U);
    EXPECT_EQ(hub.ready, 1);
    session.RunReceptionCycle();
    EXPECT_EQ(hub.ready, 1) << "nothing is left";
    for (int i = 0; i < 12; ++i)
        EXPECT_EQ(session.FetchMessage(0), "text " + std::to_string(i));
}

TEST_F(Session, HandsOnWhatStoodBeforeAFailureAndTellsFromWhom)
{
    std::string text = ConfirmText("5");
    text.insert(text.find("</mxp>"), "<no-such-packet/>");
    connection.incoming = {text, "<mxp xmlns='vardock:mxp'><broken", "next"};
    session.RunReceptionCycle();
    std::unique_ptr<VKMXPmBase> request(session.GetRequest(0));
    EXPECT_TRUE(request) << "nothing that a device said is lost";
    EXPECT_EQ(session.FetchMessage(0), "next");
    EXPECT_EQ(logger.CountContaining("parsed to be invalid. JID=device@x"), 2);
}

TEST_F(Session, DropsWhatWaitsWhenItIsEmptied)
{
    session.Send(MakeMessage("1").release());
    session.Send("text");
    connection.incoming = {ConfirmText("5")};
    session.RunReceptionCycle();
    EXPECT_TRUE(session.EmptyQueues());
    EXPECT_EQ(session.GetRequest(0), nullptr);
    EXPECT_FALSE(session.RunDispatchCycle());
    EXPECT_TRUE(connection.sent.empty());
    VKMXPSession bare("device@x", &connection, nullptr);
    EXPECT_FALSE(bare.EmptyQueues()) << "no lock before Initialize";
}

TEST_F(Session, ForgetsAttachmentKeysWhenAsked)
{
    auto message = MakeMessage("1");
    message->m_vecAttachments.resize(2);
    message->m_vecAttachments[1].m_strSecureKey = "secret";
    VKMXPSession::ClearAttachementSecurityKeys(message.get());
    EXPECT_EQ(message->m_vecAttachments[1].m_strSecureKey, "");
}

} // namespace
