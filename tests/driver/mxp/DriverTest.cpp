// The driver from end to end: a host's file to a device through a real XMPP server, and what the device says back.

#include "FakeMessageFile.h"
#include "FilePeer.h"
#include "HttpServer.h"
#include "InstallationRoot.h"
#include "OnlinePeer.h"
#include "RecordingLogger.h"
#include "SaidPackets.h"
#include "Until.h"
#include "VKDBiMessageQueue.h"
#include "VKRecordText.h"
#include "VKconCriticalSection.h"
#include "VKMXPmRejectMsg.h"
#include "VKMXPmSendMsgResponse.h"
#include "VKMXPmSetMsgStatus.h"
#include "VKmxpDriverExports.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using Reports = VKMessengerReportsMngrInterface;
using vktest::ConfirmText;
using testing::HasSubstr;
using Texts = std::vector<std::string>;

std::string Reject(const std::string& jobId)
{
    return vktest::Said<VKMXPmRejectMsg>(jobId, [](auto& packet) { packet.m_strResponse = "REFUSE"; });
}

std::string StatusIs(const std::string& jobId, const std::string& word)
{
    return vktest::Said<VKMXPmSetMsgStatus>(jobId, [&](auto& packet) { packet.m_strStatus = word; });
}

std::string Reply(const std::string& jobId, const std::string& text)
{
    return vktest::Said<VKMXPmSendMsgResponse>(jobId, [&](auto& packet) {
        packet.m_strResponseCode = "1";
        packet.m_strResponseText = text;
    });
}

class Driver : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        s_server = std::make_unique<ProsodyServer>();
        s_server->AddAccounts({{"server", "pw"}, {"alice", "pw"}, {"bob", "pw"}, {"_vk_emerg_user_", "pw"}});
        s_server->Start();
        s_root = std::make_unique<InstallationRoot>();
        s_alice = s_root->AddReceiver("Alice", s_server->Jid("alice"), 2);
        s_oneWay = s_root->AddReceiver("Bob", s_server->Jid("bob"), 0);
        s_root->LogIn(s_alice, s_server->Jid("alice"));
        s_root->LogIn(s_oneWay, s_server->Jid("bob"));
    }
    static void TearDownTestSuite()
    {
        s_server.reset();
        s_root.reset();
    }

    void SetUp() override
    {
        driver = GetDriverInstance();
        driver->m_pobjLogger = &s_logger;
        driver->m_pobjMsgFileQueue = &queue;
        std::map<std::string, std::string> ignored{{"anything", "at all"}};
        ASSERT_TRUE(driver->Configure(ignored));
        VKMessengerInstConfBasic settings;
        ASSERT_TRUE(driver->Setup(&settings));
    }
    void TearDown() override
    {
        EXPECT_TRUE(driver->Cleanup());
        ReleaseDriverInstance(driver);
    }

    static FakeMessageFile FileFor(const std::string& user, unsigned long receiverId, const std::string& jobId)
    {
        FakeMessageFile file;
        file.strJobID = jobId;
        file.strSender = "control room";
        file.strSubject = "pump 3";
        file.strBody = "pump 3 has stopped";
        file.strReceiverPin = s_server->Jid(user);
        file.ulReceiverID = receiverId;
        file.strCarrierName = "mobile";
        file.strServer = "127.0.0.1";
        file.iPort = s_server->Port();
        file.strDomain = s_server->Domain();
        file.strUserID = "server"; // the driver adds the domain
        file.strPassword = "pw";
        file.strResource = "vk";
        file.bTwoWay = 1;
        return file;
    }

    bool Send(FakeMessageFile& file)
    {
        status = Reports::RS_UNCHANGED;
        return driver->SendAMessage(&file, status);
    }

    static VKMXPmMessage MessageIn(const std::string& body)
    {
        VKMXPmEnvelope envelope;
        EXPECT_TRUE(envelope.ParseXML(body)) << envelope.m_strErrorText;
        return envelope.GetCount() ? dynamic_cast<VKMXPmMessage&>(*envelope.Get(0)) : VKMXPmMessage();
    }

    std::size_t Pushed()
    {
        const vk::ScopedSection lock(queue.objLock);
        return queue.queFiles.size();
    }
    /// Queries the file until it was pushed back this often.
    void QueryUntilPushed(FakeMessageFile& file, std::size_t count)
    {
        Until([&] {
            EXPECT_TRUE(driver->Send2WayRespQuery(&file, status));
            return Pushed() >= count;
        });
        EXPECT_EQ(Pushed(), count);
    }

    static inline std::unique_ptr<ProsodyServer> s_server;
    static inline std::unique_ptr<InstallationRoot> s_root;
    static inline unsigned long s_alice;
    static inline unsigned long s_oneWay;
    static inline vktest::RecordingLogger& s_logger = vktest::CoreLogger();

    VKMsgFileQueue queue;
    VKProtocolDriverInterface* driver = nullptr;
    Reports::ReportsStatus status = Reports::RS_UNCHANGED;
};

TEST_F(Driver, SaysWhatItIs)
{
    EXPECT_STREQ(driver->GetName(), "MXP");
    EXPECT_STREQ(driver->GetVersion(), "1.0");
    EXPECT_STREQ(driver->GetProtocolName(), "MXP");
    EXPECT_STREQ(driver->GetCarrierName(), "*") << "any carrier of the protocol";
    EXPECT_EQ(GetDriverInstance(), driver);
    FakeMessageFile file;
    ReleaseDriverInstance(reinterpret_cast<VKProtocolDriverInterface*>(&file));
    EXPECT_EQ(GetDriverInstance(), driver) << "another pointer is passed over";
    EXPECT_TRUE(driver->PeriodicEvent() && driver->ProcessSignal() && driver->ResetDevice());
}

TEST_F(Driver, DeliversAMessageWithAllItsFields)
{
    OnlinePeer alice(*s_server, "alice");
    FakeMessageFile file = FileFor("alice", s_alice, "J-1");
    file.strSender.clear();
    file.strFallbackSender = "fallback";
    file.strSubject = "a <b> & 'c' \"d\"\t\r\n";
    file.iSeverity = 4;
    file.iExpiration = 600;
    file.bConfidential = true;
    file.tDispatchAt = 1700000000;
    file.strCustomParameters = "<custom-parameters><a x='1'>text</a></custom-parameters>";
    file.vecResponseChoices = {{"Come: at once", 0}, {"Later", 1}};
    ASSERT_TRUE(Send(file)) << file.failureReasons.back();
    EXPECT_EQ(status, Reports::RS_SENT);
    EXPECT_EQ(file.carrierReferences, Texts{"J-1"});

    const auto bodies = alice.WaitForBodies(1);
    ASSERT_EQ(bodies.size(), 1U);
    const VKMXPmMessage message = MessageIn(bodies[0]);
    EXPECT_EQ(message.m_strJobID, "J-1");
    EXPECT_EQ(message.m_strSender, "fallback");
    EXPECT_EQ(message.m_strSubject, file.strSubject);
    EXPECT_EQ(message.m_strBody, file.strBody);
    EXPECT_EQ(message.m_iSeverity, 4);
    EXPECT_EQ(message.m_iExpiration, 600);
    EXPECT_TRUE(message.m_bConfidential);
    EXPECT_EQ(message.m_tDispatchTime, 1700000000);
    EXPECT_EQ(message.m_strCustomParameters, file.strCustomParameters);
    EXPECT_EQ(message.m_vecResponseChoices, (Texts{"Come- at once", "Later"}));
    EXPECT_TRUE(message.m_bTwoWay) << "asked for, and a two-way receiver";
}

TEST_F(Driver, AsksForTwoWayOnlyWhereTheReceiverCan)
{
    OnlinePeer bob(*s_server, "bob");
    FakeMessageFile file = FileFor("bob", s_oneWay, "J-2");
    ASSERT_TRUE(Send(file));
    const auto bodies = bob.WaitForBodies(1);
    ASSERT_EQ(bodies.size(), 1U);
    EXPECT_FALSE(MessageIn(bodies[0]).m_bTwoWay);
}

TEST_F(Driver, LetsAnOfflineReceiverWaitOnlyWhenItMay)
{
    FakeMessageFile file = FileFor("alice", 4242, "J-3");
    EXPECT_FALSE(Send(file));
    EXPECT_EQ(status, Reports::RS_UNCHANGED);
    EXPECT_EQ(file.failureReasons, Texts{"Receiver is offline."});

    FakeMessageFile patient = FileFor("alice", 4242, "J-4");
    patient.bQueueWhenOffline = true;
    EXPECT_TRUE(Send(patient));
    EXPECT_EQ(status, Reports::RS_DEVICE_OFFLINE);
    EXPECT_EQ(patient.statusTexts, Texts{"DEV OFFLINE"});
    EXPECT_TRUE(patient.failureReasons.empty());
}

TEST_F(Driver, WakesTheDeviceOfAReceiverThatMayWait)
{
    const TempDir waiting;
    VKDatabase* const database = VKDatabase::getVKMultiThreadedDatabase(nullptr, true);
    vk::SetText(VKDBsystem::directory_Pathes.waiting_dir, waiting.Path().string(), "path");
    for (const char* name : {"W.0.a.mxp", "W.0.b.mxp", "W.0.c.mxp", "W.0.d.snpp", "W.0.bob.mxp"}) {
        VK_MESSAGE_CONTENT content;
        vk::SetText(content.header.msg_name, name, "msg_name");
        const bool bobs = std::string(name).find("bob") != std::string::npos;
        vk::SetText(content.header.pin, s_server->Jid(bobs ? "bob" : "alice"), "pin");
        ASSERT_TRUE(database->getVKDBiMessageQueueObject(10)->Add(&content));
    }
    int answer = 200;
    vktest::HttpServer service([&](const vktest::HttpServer::Request&) {
        return vktest::HttpServer::Response{answer, R"({"success":1})"};
    });
    VKMXPManagerSettings settings;
    settings.m_bGcmsEnabled = true;
    settings.m_strGcmsUrl = service.Url();
    ASSERT_TRUE(VKConfiguration::getVKConfiguration()->setMXPManagerSettings(&settings));
    const struct
    {
        bool enabled;
        const char *service, *token;
        int answer;
        const char *text, *log;
    } cases[] = {
        {true, "gcms", "me@t", 200, "DEV OFFLINE; NOTIFIED",
         "Successfully PUSHED notification to device 'me@t' for waiting messages count :4."},
        {true, "gcms", "t", 503, "DEV OFFLINE",
         "Failed to PUSH notification to device 't' for waiting messages count :4."},
        {true, "apns2", "t", 200, "DEV OFFLINE", "PUSH service 'apns2' is either disabled or undefined."},
        {true, "pigeon", "t", 200, "DEV OFFLINE", "PUSH service 'pigeon' is either disabled or undefined."},
        {true, "gcms", "", 200, "DEV OFFLINE", ""},
        {false, "gcms", "t", 200, "DEV OFFLINE", ""},
    };
    for (const auto& c : cases) {
        FakeMessageFile file = FileFor("alice", 4242, "J-push");
        file.bQueueWhenOffline = true;
        file.bPushEnabled = c.enabled;
        file.strPushServiceName = c.service;
        file.strPushDeviceToken = c.token;
        file.iSecondsToLive = 0;
        answer = c.answer;
        EXPECT_TRUE(Send(file));
        EXPECT_EQ(status, Reports::RS_DEVICE_OFFLINE);
        EXPECT_EQ(file.statusTexts, Texts{c.text});
        EXPECT_TRUE(*c.log == '\0' || s_logger.Has("Job ID: [J-push] >> " + std::string(c.log))) << c.log;
    }
    EXPECT_EQ(service.Requests().size(), 2U) << "no push without a token, a service or the wish";
    EXPECT_NE(service.Last().body.find("\"time_to_live\":300"), std::string::npos);

    FakeMessageFile impatient = FileFor("alice", 4242, "J-push");
    impatient.bPushEnabled = true;
    impatient.strPushServiceName = "gcms";
    impatient.strPushDeviceToken = "t";
    EXPECT_FALSE(Send(impatient));
    EXPECT_EQ(service.Requests().size(), 2U);

    settings.m_bGcmsEnabled = false;
    ASSERT_TRUE(VKConfiguration::getVKConfiguration()->setMXPManagerSettings(&settings));
    EXPECT_TRUE(driver->ResetDevice()) << "the next push reads the settings anew";
    impatient.bQueueWhenOffline = true;
    EXPECT_TRUE(Send(impatient));
    EXPECT_EQ(impatient.statusTexts, Texts{"DEV OFFLINE"});
    EXPECT_EQ(service.Requests().size(), 2U);

    database->resetCache();
    VKDBsystem::directory_Pathes.waiting_dir[0] = '\0';
}

TEST_F(Driver, ReachesTheEmergencyUserWithoutASession)
{
    OnlinePeer emergency(*s_server, "_vk_emerg_user_",
                         [](XmppPeer& peer, const std::string& from, const std::string&) {
                             peer.Send(from, ConfirmText("J-5"));
                             peer.Send(from, StatusIs("J-5", "READ"));
                         });
    FakeMessageFile file = FileFor("", 0, "J-5");
    file.strReceiverPin = "_VK_emerg_USER_";
    file.vecAttachments = {"/no/such/file"};
    ASSERT_TRUE(Send(file)) << file.failureReasons.back();
    EXPECT_EQ(status, Reports::RS_SENT) << "no attachments for the emergency user";
    ASSERT_EQ(emergency.WaitForBodies(1).size(), 1U);
    const VKMXPmMessage message = MessageIn(emergency.WaitForBodies(1)[0]);
    EXPECT_FALSE(message.m_bTwoWay);
    EXPECT_TRUE(message.m_vecAttachments.empty());
    // Its answers change nothing and get none.
    const std::string told = "Response from emerency user. It will be ignored.";
    EXPECT_TRUE(Until([&] { return s_logger.CountContaining(told) == 2; }));
    EXPECT_TRUE(driver->Send2WayRespQuery(&file, status));
    EXPECT_EQ(status, Reports::RS_FAILED);
    EXPECT_TRUE(queue.queFiles.empty());
}

TEST_F(Driver, BringsBackWhatTheDeviceSaysInOrder)
{
    const struct
    {
        const char* job;
        const char* user;
        Texts said;
        int actionType;
        bool taken;
        Texts deliveryStatuses;
        Texts statusTexts; ///< one for each time that the file is pushed back
        Reports::ReportsStatus told;
        Reports::ReportsStatus pushed;
        bool open;
        const char* response;
    } rows[] = {
        {"J-6", "alice",
         {StatusIs("J-6", "Received"), StatusIs("J-6", "banana"), StatusIs("J-6", "READ"), ConfirmText("J-6", 41)},
         0, true, {"DELIVERED-Received", "DELIVERED-READ"}, {": Received", ": READ", ""}, Reports::RS_CONFIRMED,
         Reports::RS_CONFIRMED, false, "CONFIRM"},
        {"J-7", "bob", {Reject("J-7")}, 0, true, {}, {""}, Reports::RS_REJECTED, Reports::RS_REJECTED, false, "REFUSE"},
        {"J-80", "alice", {Reply("J-80", "on my way")}, 1, true, {}, {""}, Reports::RS_REPLIED_WITH,
         Reports::RS_REPLIED_WITH, true, "on my way"},
        {"J-81", "alice", {Reply("J-81", "on my way")}, 0, true, {}, {""}, Reports::RS_REPLIED_WITH,
         Reports::RS_REPLIED_WITH, false, "on my way"},
        {"J-82", "alice", {Reply("J-82", "on my way")}, 1, false, {}, {""}, Reports::RS_REPLIED_WITH,
         Reports::RS_DELIVERED, false, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.job);
        OnlinePeer device(*s_server, row.user, [&](XmppPeer& peer, const std::string& from, const std::string& body) {
            for (const std::string& text : row.said)
                if (body.find("type='request'") != std::string::npos)
                    peer.Send(from, text);
        });
        FakeMessageFile file = FileFor(row.user, row.user == std::string("alice") ? s_alice : s_oneWay, row.job);
        file.actionType = row.actionType;
        file.takesResponses = row.taken;
        ASSERT_TRUE(driver->Send2WayRespQuery(&file, status));
        EXPECT_EQ(status, Reports::RS_FAILED) << "nothing is known yet";
        ASSERT_TRUE(Send(file)) << file.failureReasons.back();
        QueryUntilPushed(file, row.statusTexts.size());
        EXPECT_EQ(file.deliveryStatuses, row.deliveryStatuses);
        EXPECT_EQ(file.statusTexts, row.statusTexts);
        EXPECT_EQ(file.bDelivered, !row.deliveryStatuses.empty());
        EXPECT_EQ(file.eReportStatus, row.pushed);
        EXPECT_EQ(file.bKeepOpen, row.open);
        EXPECT_EQ(status, row.told);
        ASSERT_EQ(file.vecReceivedResponses.size(), row.taken ? 1U : 0U);
        if (row.taken) {
            EXPECT_EQ(file.vecReceivedResponses[0].strText, row.response);
        }
        if (row.taken && row.told == Reports::RS_REPLIED_WITH) {
            EXPECT_EQ(file.askedIndexes, std::vector<int>{0});
        }
        ASSERT_TRUE(driver->Send2WayRespQuery(&file, status));
        EXPECT_EQ(status, Reports::RS_FAILED) << "all of it was applied";
        queue.queFiles.clear();
        if (row.pushed != Reports::RS_CONFIRMED)
            continue;
        const Texts bodies = device.WaitForBodies(2);
        ASSERT_EQ(bodies.size(), 2U) << "a confirmation is answered with its own parameters and sequence";
        EXPECT_THAT(bodies[1], HasSubstr("<confirm-msg xmlns='vardock:mxp:response' type='response' seq='41'>"));
        EXPECT_THAT(bodies[1], HasSubstr("The status of Job ID &apos;J-6&apos; is successfully updated to "
                                         "&apos;CONFIRMED&apos;."));
    }
}

TEST_F(Driver, ReportsAJobWhenItsAttachmentsHaveArrived)
{
    FilePeer alice(s_server->Jid("alice") + "/mxp", s_server->Port(), FilePeer::kInBand);
    ASSERT_TRUE(alice.WaitUntilOnline());
    TempDir plans;
    plans.Write("ground floor.pdf", "the way in");
    for (const char* job : {"J-7", "J-8"}) {
        FakeMessageFile file = FileFor("alice", s_alice, job);
        file.vecAttachments = {plans / "ground floor.pdf"};
        file.tDispatchAt = 5;
        const bool whole = file.strJobID == "J-7";
        if (!whole)
            alice.Become(FilePeer::Manner::Refuse);
        ASSERT_TRUE(Send(file));
        EXPECT_EQ(status, Reports::RS_PENDING);
        ASSERT_TRUE(Until([&] { return Pushed() == (whole ? 1 : 2); }));
        EXPECT_EQ(file.eReportStatus, whole ? Reports::RS_SENT : Reports::RS_FAILED);
        EXPECT_EQ(file.failureReasons, Texts{whole ? "" : "File Transfer Error."});
    }
    const auto got = alice.WaitForFiles(1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].name, "ground floor.pdf");
    EXPECT_EQ(got[0].packetId, "J-7");
    EXPECT_EQ(got[0].key, s_server->Jid("alice") + "-ground floor.pdf-5");
    EXPECT_FALSE(s_logger.Has(got[0].key)) << "keys never reach a log";
}

TEST_F(Driver, AnnouncesAttachmentsInThePacket)
{
    OnlinePeer alice(*s_server, "alice");
    FakeMessageFile file = FileFor("alice", s_alice, "J-9");
    file.vecAttachments = {"/var/plans/ground floor.pdf", "C:\\plans\\roof.pdf", "bare"};
    ASSERT_TRUE(Send(file));
    EXPECT_EQ(status, Reports::RS_PENDING);
    const VKMXPmMessage message = MessageIn(alice.WaitForBodies(1)[0]);
    ASSERT_EQ(message.m_vecAttachments.size(), 3U);
    EXPECT_EQ(message.m_vecAttachments[0].m_strID, "ground floor.pdf");
    EXPECT_EQ(message.m_vecAttachments[1].m_strID, "roof.pdf");
    EXPECT_EQ(message.m_vecAttachments[2].m_strID, "are") << "a path without a slash loses its first character";
    EXPECT_EQ(message.m_vecAttachments[0].m_strSecureKey, s_server->Jid("alice") + "-ground floor.pdf-0");
    EXPECT_FALSE(s_logger.Has(s_server->Jid("alice") + "-ground floor.pdf-0")) << "keys never reach a log";

    s_root->WriteConfig("mxp_no_attach", "");
    FakeMessageFile plain = FileFor("alice", s_alice, "J-10");
    plain.vecAttachments = {"/var/plans/ground floor.pdf"};
    EXPECT_TRUE(Send(plain));
    EXPECT_EQ(status, Reports::RS_SENT) << "the marker switches attachments off";
    s_root->RemoveConfig("mxp_no_attach");
    EXPECT_TRUE(driver->Cleanup()) << "what becomes of the files is told while the message is still there";
}

TEST_F(Driver, TellsWhyAMessageCouldNotBeSent)
{
    const struct
    {
        const char* reason;
        void (*spoil)(FakeMessageFile& file);
    } rows[] = {
        {"Disconnection Error.", [](FakeMessageFile& file) { file.strPassword = "wrong secret"; }},
        {"Error in establishing connection.", [](FakeMessageFile& file) { file.iPort = 1; }},
        {"The custom parameters are not well-formed XML.",
         [](FakeMessageFile& file) { file.strCustomParameters = "<custom-parameters>"; }},
        {"Unable to create session.", [](FakeMessageFile& file) { file.strReceiverPin = "@"; }},
    };
    for (const auto& row : rows) {
        FakeMessageFile file = FileFor("alice", s_alice, "J-11");
        file.strCarrierName = std::string("carrier of: ") + row.reason;
        row.spoil(file);
        EXPECT_FALSE(Send(file));
        EXPECT_EQ(status, Reports::RS_UNCHANGED);
        EXPECT_EQ(file.failureReasons, Texts{row.reason});
    }
    EXPECT_FALSE(s_logger.Has("wrong secret"));
}

TEST_F(Driver, VerifiesTheServerWhenTheMarkerStands)
{
    const auto send = [&](const char* job) {
        FakeMessageFile file = FileFor("alice", s_alice, job);
        file.strCarrierName = std::string("verified ") + job; // a connection of its own
        return Send(file);
    };
    s_root->WriteConfig("mxp_verify_tls", "");
    EXPECT_FALSE(send("J-15")) << "no bundle: nobody can be verified";
    s_root->CopyConfig("ca-bundle.crt", s_server->CertificateFile());
    EXPECT_TRUE(send("J-16")) << "the server's own certificate is the bundle";
    ProsodyServer other;
    other.Start();
    s_root->CopyConfig("ca-bundle.crt", other.CertificateFile());
    driver->Cleanup(); // the sessions on the old bundle end
    std::map<std::string, std::string> none;
    ASSERT_TRUE(driver->Configure(none));
    EXPECT_FALSE(send("J-17")) << "signed by somebody else";
    s_root->RemoveConfig("mxp_verify_tls");
    EXPECT_TRUE(send("J-18"));
}

TEST_F(Driver, RefusesToSendBeforeItIsConfigured)
{
    EXPECT_TRUE(driver->Cleanup());
    FakeMessageFile file = FileFor("alice", s_alice, "J-19");
    EXPECT_FALSE(Send(file));
    EXPECT_EQ(file.failureReasons, Texts{"Some error occurred."});
    std::map<std::string, std::string> none;
    EXPECT_TRUE(driver->Configure(none)) << "and can be configured again";
    EXPECT_TRUE(Send(file));
}

} // namespace
