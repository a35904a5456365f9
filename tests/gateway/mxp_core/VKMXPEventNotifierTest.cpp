#include "HttpServer.h"
#include "PushInstallation.h"
#include "RecordingLogger.h"
#include "VKJson.h"
#include "VKMXPEventNotifier.h"
#include "VKPushNotifierIface.h"

#include <gtest/gtest.h>

using vktest::HttpServer;
using Response = HttpServer::Response;

namespace {

class VKMXPEventNotifierTest : public testing::Test
{
protected:
    void SetUp() override { UseGcms(m_server.Url()); }
    void TearDown() override { VKMXPEventNotifier::FinalizeAll(); }

    void UseGcms(const std::string& url)
    {
        m_installation.Configure([&](VKMXPManagerSettings& settings) {
            settings.m_bGcmsEnabled = true;
            settings.m_strGcmsUrl = url;
        });
    }
    int Push(const std::string& service, const std::string& deviceId = "profile@token", int count = 2,
             const std::string& suffix = "", int timeToLive = 300)
    {
        return VKMXPEventNotifier::PushForWaitingMessages(service, deviceId, count, suffix, timeToLive, &m_logger);
    }
    /// The "data" of the last request, with its token and time.
    std::string LastRequest() { return m_server.Last().body; }

    vktest::PushInstallation m_installation;
    vktest::RecordingLogger m_logger;
    int m_status = 200;
    HttpServer m_server{[this](const HttpServer::Request&) { return Response{m_status, R"({"success":1})"}; }};
};

TEST_F(VKMXPEventNotifierTest, WordsTheNotification)
{
    VKMXPEventNotifier& notifier = *VKMXPEventNotifier::GetInstance(&m_logger);
    const std::string one = "There is a new message waiting in the server queue. Kindly login to fetch this message.";
    EXPECT_EQ(notifier.PrepareNotificationForWaitingMsgs(1, ""), one);
    EXPECT_EQ(notifier.PrepareNotificationForWaitingMsgs(1, "Now."), one + " Now.");
    for (const int count : {0, 2, -1})
        EXPECT_EQ(notifier.PrepareNotificationForWaitingMsgs(count, ""),
                  "There are " + std::to_string(count) +
                      " new messages waiting in the server queue. Kindly login to fetch these messages.");
}

TEST_F(VKMXPEventNotifierTest, TellsWhatBecameOfAPush)
{
    EXPECT_EQ(Push("gcms"), 1);
    EXPECT_TRUE(m_logger.Has("Successfully send notification to device ID:'%' through Push service 'gcms' with message "
                             "'There are 2 new messages waiting"));
    EXPECT_TRUE(m_logger.Has("Leaving VKMXPEventNotifier::PushForWaitingMessages() with 1."));
    m_status = 401;
    EXPECT_EQ(Push("gcms"), 3);
    EXPECT_TRUE(m_logger.Has("Failed to send notification to Push service 'gcms'."));
    EXPECT_TRUE(m_logger.Has("Failed to send GCMS notification to device ID: 'profile@token'."));
    for (const char* service : {"apns", "apns2", "fcm"}) {
        EXPECT_EQ(Push(service), 4);
        EXPECT_TRUE(m_logger.Has("The Push service object by name '" + std::string(service) + "' is DISABLED."));
    }
    for (const char* service : {"", "gcm", "apns 2"})
        EXPECT_EQ(Push(service), 5) << service;
    EXPECT_TRUE(m_logger.Has("Failed to get Push service object by name 'gcm'."));
    EXPECT_TRUE(m_logger.Has("Leaving VKMXPEventNotifier::PushForWaitingMessages() with 5."));
}

TEST_F(VKMXPEventNotifierTest, SendsProfileCountAndText)
{
    const struct
    {
        const char* deviceId;
        int timeToLive;
        const char* request;
    } cases[] = {
        {"me@t@x", 5,
         R"({"data":{"num_pending_messages":1,"profile_id":"me","push_message":"There is a new message )"
         R"(waiting in the server queue. Kindly login to fetch this message. S"},)"
         R"("registration_ids":["t@x"],"time_to_live":5})"},
        {"@t", 0,
         R"({"data":{"num_pending_messages":1,"push_message":"There is a new message )"
         R"(waiting in the server queue. Kindly login to fetch this message. S"},)"
         R"("registration_ids":["t"]})"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Push("gcms", c.deviceId, 1, "S", c.timeToLive), 1);
        EXPECT_EQ(LastRequest(), c.request);
    }
    EXPECT_EQ(Push("gcms", "t"), 1);
    EXPECT_EQ(LastRequest().find("profile_id"), std::string::npos);
}

TEST_F(VKMXPEventNotifierTest, TakesANameInAnyCaseAndKeepsOneServiceForEachSpelling)
{
    VKMXPEventNotifier& notifier = *VKMXPEventNotifier::GetInstance(&m_logger);
    VKPushNotifierIface* const lower = notifier.GetPushService("gcms");
    VKPushNotifierIface* const upper = notifier.GetPushService("GCMS");
    ASSERT_TRUE(lower && upper);
    EXPECT_NE(lower, upper);
    EXPECT_EQ(notifier.GetPushService("gcms"), lower);
    EXPECT_EQ(Push("GcMs"), 1);
    EXPECT_EQ(notifier.GetPushService("other"), nullptr);
}

TEST_F(VKMXPEventNotifierTest, ReadsTheSettingsAnewAfterARelease)
{
    EXPECT_EQ(Push("gcms"), 1);
    m_installation.Configure([](VKMXPManagerSettings&) {});
    EXPECT_EQ(Push("gcms"), 1) << "the service knows what it was made with";
    EXPECT_TRUE(VKMXPEventNotifier::FinalizeAll());
    EXPECT_TRUE(m_logger.Has("Releasing push service object 'Google Cloud Messaging (GCMS)' now."));
    EXPECT_TRUE(m_logger.Has("Successfully released all push service objects."));
    EXPECT_FALSE(VKMXPEventNotifier::FinalizeAll());
    EXPECT_EQ(Push("gcms"), 4);
    UseGcms(m_server.Url());
    EXPECT_EQ(Push("gcms"), 4) << "it is kept disabled";
}

} // namespace
