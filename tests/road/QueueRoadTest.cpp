#include "ProgramOutput.h"
#include "ProsodyServer.h"
#include "QueueInstallation.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <random>

namespace {

using testing::HasSubstr;
using Names = std::set<std::string>;

/// Messengers on a queue, a server and devices: the whole road from queue to device.
class QueueRoad : public testing::TestWithParam<Backend>
{
protected:
    QueueRoad()
    {
        server.AddAccounts({{"paging", "secret"}, {"second", "secret"}, {"al", "secret"}});
        server.Start();
        Admin({"receiver", "add", "--name", "Al", "--pin", "al@localhost", "--type", "two-way"});
    }

    void Admin(std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"--root", installation.Root()});
        const ProgramRun run = ProgramRun::Of("vkadmin", words);
        EXPECT_EQ(run.exitCode, 0) << run.err;
    }
    void LogIn() const { Admin({"session", "add", "--user-id", "1", "--jid", "al@localhost/mxp"}); }

    /// A message for Al with what else its body is to hold.
    void Add(const std::string& job, const std::string& more = "") const
    {
        VK_MESSAGE_HEADER header;
        vk::SetText(header.pin, "al@localhost", "pin");
        installation.Add(1, job,
                         R"({"job_id": ")" + job + R"(", "sender": "Dispatch", "body": "Fire", "receiver_pin": "al@localhost",
                         "receiver_id": 1, "carrier_name": "MXP", "server": "127.0.0.1", "domain": "localhost",
                         "user_id": "paging", "password": "secret", "resource": "vk", "port": )" +
                             std::to_string(server.Port()) + more + "}",
                         header);
    }

    std::vector<std::string> Call(std::vector<std::string> more = {}) const
    {
        std::vector<std::string> words = {"send", "--root", installation.Root(), "--queue", "1", "--follow",
                                          "--settle", "500"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    std::vector<std::string> Device(const std::string& answers) const
    {
        return {"--server", "127.0.0.1", "--port", std::to_string(server.Port()), "--jid", "al@localhost",
                "--password", "secret", "--json", "--answer", answers};
    }

    static std::string Job(int number) { return "J" + std::to_string(number); }
    static std::string NameOf(int number) { return "M.0." + Job(number) + ".mxp"; }

    /// How often each job came to the device.
    static std::map<std::string, int> Received(const RunningProgram& device)
    {
        std::map<std::string, int> times;
        for (const Json::Value& event : JsonLines(device.Out()))
            if (event["event"].asString() == "message")
                ++times[event["job_id"].asString()];
        return times;
    }

    /// Each file of the queues has a row and each row a file; somebody may be at work in between the two looks.
    void ExpectWhole() const
    {
        for (const int queue : {1, 4, 5, 10})
            EXPECT_TRUE(Until([&] { return installation.IsWhole(queue); }))
                << "queue " << queue << ": " << testing::PrintToString(installation.Names(queue));
    }

    const QueueInstallation installation{GetParam()};
    /// Keeps messages for those who are not there at the moment.
    ProsodyServer server{{"localhost", true, true}};
};
VK_ON_BOTH_BACKENDS(QueueRoad);

TEST_P(QueueRoad, SentAnsweredAndArchived)
{
    LogIn();
    RunningProgram messenger("vkmessenger", Call());
    Add("files", R"(, "attachments": [")" + installation.Dir().Write("plan.txt", "second floor") + "\"]");
    EXPECT_TRUE(messenger.AwaitOut("PENDING")) << messenger.Out();
    RunningProgram device("vkmxpdevice", Device("received,read,confirm")); // which was away when it was offered the file
    Add("plain");
    Add("asked", R"(, "two_way": true)");
    EXPECT_TRUE(installation.Await(4, {"M.0.plain.mxp", "M.0.asked.mxp", "M.0.files.mxp"})) << messenger.Out() << messenger.Err();
    EXPECT_EQ(installation.Body(4, "M.0.asked.mxp")["report"]["status_name"].asString(), "CONFIRMED");
    EXPECT_TRUE(device.AwaitOut("\"event\":\"file\"")) << device.Out();
    EXPECT_EQ(messenger.End(SIGTERM), 0);
    EXPECT_EQ(messenger.Err(), "");
    ExpectWhole();
}

TEST_P(QueueRoad, WhoIsOfflineGetsItAfterTheLogin)
{
    RunningProgram messenger("vkmessenger", Call());
    Add("late", R"(, "queue_when_offline": true)");
    EXPECT_TRUE(installation.Await(10, {"M.0.late.mxp"})) << messenger.Out();
    EXPECT_EQ(installation.Names(1), Names{});
    LogIn();
    RunningProgram device("vkmxpdevice", Device("received"));
    EXPECT_TRUE(installation.Await(4, {"M.0.late.mxp"})) << messenger.Out() << messenger.Err();
    EXPECT_TRUE(device.AwaitOut("\"late\""));
    EXPECT_EQ(installation.Names(10), Names{});
    EXPECT_EQ(messenger.End(SIGTERM), 0) << messenger.Err();
    ExpectWhole();
}

TEST_P(QueueRoad, AnAnswerThatComesAfterARestartIsTaken)
{
    LogIn();
    std::vector<std::string> slow = Device("received,confirm");
    slow.insert(slow.end(), {"--delay", "1500"});
    RunningProgram device("vkmxpdevice", slow);
    for (const int signal : {SIGTERM, SIGKILL}) {
        const std::string job = "asked" + std::to_string(signal);
        RunningProgram first("vkmessenger", Call());
        Add(job, R"(, "two_way": true)");
        EXPECT_TRUE(first.AwaitOut("DELIVERED-RECEIVED")) << first.Out();
        EXPECT_TRUE(Until([&] {
            const Names names = installation.Names(1);
            return names.size() == 1 && names.begin()->front() == 'Q';
        })) << first.Out();
        first.End(signal);
        RunningProgram second("vkmessenger", Call());
        EXPECT_TRUE(second.AwaitOut("move    CONFIRMED")) << second.Out() << second.Err();
        EXPECT_EQ(second.Out().find("  send  "), std::string::npos) << second.Out();
        EXPECT_EQ(second.End(SIGTERM), 0);
    }
    EXPECT_EQ(installation.Names(4), (Names{"M.0.asked15.mxp", "M.0.asked9.mxp"}));
    EXPECT_EQ(Received(device), (std::map<std::string, int>{{"asked15", 1}, {"asked9", 1}}));
}

TEST_P(QueueRoad, MessengersShareAQueueAndEachMessageGoesOutOnce)
{
    constexpr int kMessages = 80;
    LogIn();
    RunningProgram device("vkmxpdevice", Device("received"));
    Names expected;
    std::map<std::string, int> once;
    std::vector<std::unique_ptr<RunningProgram>> services;
    for (int i = 0; i < kMessages; ++i) {
        if (i % 20 == 0) // two of them find the first messages there
            services.push_back(std::make_unique<RunningProgram>("vkmessenger", Call({"--service", Job(i)})));
        Add(Job(i));
        expected.insert(NameOf(i));
        once[Job(i)] = 1;
    }
    EXPECT_TRUE(installation.Await(4, expected)) << testing::PrintToString(installation.Names(1));
    for (const auto& service : services)
        EXPECT_EQ(service->End(SIGTERM), 0) << service->Err();
    EXPECT_EQ(Received(device), once);
    ExpectWhole();
}

/// VK_MESSENGER_KILLS says how often; 8 times when it does not.
TEST_P(QueueRoad, KilledAtAnyTimeItLosesNothing)
{
    const char* const wished = std::getenv("VK_MESSENGER_KILLS");
    const int kills = wished != nullptr ? std::atoi(wished) : 8;
    LogIn();
    RunningProgram device("vkmxpdevice", Device("received,confirm"));
    RunningProgram living("vkmessenger", Call({"--service", "living", "--poll", "500"}));
    std::mt19937 random(11);
    Names expected;
    int number = 0;
    for (int kill = 0; kill < kills; ++kill) {
        for (int i = 0; i < 6; ++i, ++number) {
            Add(Job(number), i % 2 == 0 ? R"(, "two_way": true)" : "");
            expected.insert(NameOf(number));
        }
        RunningProgram dying("vkmessenger", Call({"--service", "dying", "--poll", "10"}));
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 700)); // anywhere in its work
        ASSERT_EQ(dying.End(SIGKILL), -SIGKILL) << dying.Err();
        ExpectWhole();
        ASSERT_FALSE(HasFailure()) << "kill " << kill;
    }
    // Answers that only a killed process knew of do not come again; such messages end by their limit.
    EXPECT_EQ(living.End(SIGTERM), 0) << living.Err();
    Add(Job(number));
    expected.insert(NameOf(number));
    RunningProgram last("vkmessenger", Call({"--service", "dying", "--answer-limit", "5"}));
    EXPECT_TRUE(installation.Await(1, {})) << last.Out() << last.Err();
    EXPECT_EQ(installation.Names(4), expected);
    EXPECT_EQ(installation.Names(5), Names{});
    EXPECT_EQ(last.End(SIGTERM), 0) << last.Err();
    ExpectWhole();
    const auto received = Received(device);
    EXPECT_EQ(received.size(), expected.size()) << "every message came to the device";
    for (const auto& [job, times] : received) {
        const std::string sent = job + "  send";
        const std::string out = living.Out();
        const std::size_t first = out.find("  " + sent);
        EXPECT_TRUE(first == std::string::npos || out.find("  " + sent, first + 1) == std::string::npos)
            << job << " was sent twice by the one that lived";
    }
}

} // namespace
