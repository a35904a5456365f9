#include "QueueInstallation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;
using Names = std::set<std::string>;

/// The messenger on a queue, with a driver whose receivers do what a message's subject says.
class QueueOfMessages : public testing::Test
{
protected:
    static std::vector<std::string> Call(const std::string& root, std::vector<std::string> more)
    {
        std::vector<std::string> words = {"send", "--root", root, "--queue", "1", "--driver",
                                          VK_BUILD_DIR "/libvk_fake_driver.so", "--settle", "100", "--poll", "20"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }
    ProgramRun Send(std::vector<std::string> more = {}) const
    {
        return ProgramRun::Of("vkmessenger", Call(installation.Root(), std::move(more)));
    }

    static std::string Body(const std::string& job, const std::string& subject, const std::string& body, bool twoWay)
    {
        return R"({"job_id": ")" + job + R"(", "receiver_pin": "a@b", "subject": ")" + subject + R"(", "body": ")" + body +
               R"(", "two_way": )" + (twoWay ? "true" : "false") +
               R"(, "response_choices": [{"text": "Coming", "type": "non-terminal"}, {"text": "Done", "type": "terminal"}]})";
    }
    void Add(const std::string& job, const std::string& body, const VK_MESSAGE_HEADER& header = {}) const
    {
        installation.Add(1, job, body, header, "fake");
    }

    const QueueInstallation installation;
};

TEST_F(QueueOfMessages, EachGoesToItsQueueWithAReport)
{
    VK_MESSAGE_HEADER old;
    old.create_time = std::time(nullptr) - 100000;
    VK_MESSAGE_HEADER expired;
    expired.expiry_time = std::time(nullptr) - 1;
    const struct
    {
        const char* job;
        std::string body;
        VK_MESSAGE_HEADER header;
        int queue;
        const char* name;
        const char* status;
        const char* reason;
    } rows[] = {
        {"sent", Body("sent", "", "", false), {}, 4, "M.0.sent.fake", "SENT", ""},
        {"read", Body("read", "READ", "", false), {}, 4, "M.0.read.fake", "DELIVERED", ""},
        {"yes", Body("yes", "CONFIRM", "", true), {}, 4, "M.0.yes.fake", "CONFIRMED", ""},
        {"done", Body("done", "READ Coming Done", "", true), {}, 4, "M.0.done.fake", "REPLIED_WITH", ""},
        {"broken", Body("broken", "BREAK", "", true), {}, 5, "M.0.broken.fake", "FAILED", "File transfer failed."},
        {"refused", Body("refused", "", "refuse", false), {}, 5, "M.0.refused.fake", "FAILED", "Receiver is offline."},
        {"plan", Body("plan", "FILES", "files", false), {}, 4, "M.0.plan.fake", "SENT", ""},
        {"plan-yes", Body("plan-yes", "CONFIRM LATER FILES", "files", true), {}, 4, "M.0.plan-yes.fake", "CONFIRMED", ""},
        {"plan-lost", Body("plan-lost", "READ LATER BREAK", "files", true), {}, 5, "M.0.plan-lost.fake", "FAILED",
         "File transfer failed."},
        {"plan-then", Body("plan-then", "FILES LATER CONFIRM", "files", true), {}, 4, "M.0.plan-then.fake", "CONFIRMED",
         ""},
        {"open", Body("open", "READ Coming", "", true), {}, 1, "Q.1.open.fake", "REPLIED_WITH", ""},
        {"twin", Body("open", "", "", true), {}, 5, "M.0.twin.fake", "FAILED", "job_id 'open' is still open"},
        {"json", "{\"job_id\": ", {}, 5, "M.0.json.fake", "FAILED", "The body is no message: is no JSON: Line 1"},
        {"bytes", "\xFF", {}, 5, "M.0.bytes.fake", "FAILED", "is not UTF-8 at byte 0"},
        {"key", R"({"job": 1})", {}, 5, "M.0.key.fake", "FAILED", "job is no key of a message"},
        {"old", Body("old", "", "", false), old, 5, "M.0.old.fake", "FAILED", "expired before it could be sent"},
        {"late", Body("late", "", "", false), expired, 5, "M.0.late.fake", "FAILED", "expired before it could be sent"},
    };
    for (const auto& row : rows)
        Add(row.job, row.body, row.header);
    installation.Add(1, "foreign", "{}", {}, "sms");
    const ProgramRun run = Send({"--wait", "1"});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    for (const auto& row : rows) {
        const Json::Value report = installation.Body(row.queue, row.name)["report"];
        EXPECT_EQ(report["status_name"].asString(), row.status) << row.job;
        EXPECT_THAT(report["reason"].asString(), HasSubstr(row.reason)) << row.job;
        EXPECT_FALSE(report.isMember("to")) << row.job;
    }
    EXPECT_EQ(installation.Names(1), (Names{"Q.1.open.fake", "M.0.foreign.sms"}));
    EXPECT_EQ(installation.Files("spool"), installation.Names(1));
    EXPECT_EQ(installation.Body(5, "M.0.json.fake")["unreadable"].asString(), "{\"job_id\": ");
    EXPECT_EQ(installation.Body(5, "M.0.bytes.fake")["unreadable_base64"].asString(), "/w==");
    EXPECT_EQ(installation.Body(1, "Q.1.open.fake")["report"]["responses"][0]["text"].asString(), "Coming");
    EXPECT_THAT(run.out, HasSubstr("move    REPLIED_WITH    to archive"));
    EXPECT_THAT(run.out, HasSubstr("move    FAILED          to error, Receiver is offline."));
}

TEST_F(QueueOfMessages, ASecondMessageOfOneNameOverwritesNothing)
{
    VK_MESSAGE_HEADER header;
    header.create_time = std::time(nullptr) - 2;
    for (const char* text : {"one", "two", "three"}) {
        Add("same", Body("same", "", text, false), header);
        ++header.create_time;
        EXPECT_EQ(Send().exitCode, 0);
    }
    EXPECT_EQ(installation.Names(4), (Names{"M.0.same.fake", "M.0.same~2.fake", "M.0.same~3.fake"}));
    EXPECT_EQ(installation.Body(4, "M.0.same~2.fake")["body"].asString(), "two");
}

TEST_F(QueueOfMessages, WhatWaitsExpiresWithItsReason)
{
    VK_MESSAGE_HEADER limited;
    limited.expiry_time = std::time(nullptr) - 1;
    limited.last_paging_queue_id = 1;
    installation.Add(10, "short", Body("short", "", "wait", false), limited, "fake");
    Add("long", Body("long", "", "wait", false));
    VK_MESSAGE_HEADER others = limited;
    others.last_paging_queue_id = 8;
    installation.Add(10, "others", "{}", others, "fake");
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    EXPECT_TRUE(installation.Await(5, {"M.0.short.fake"})) << messenger.Out();
    EXPECT_TRUE(installation.Await(10, {"M.0.long.fake", "M.0.others.fake"})) << messenger.Out();
    EXPECT_EQ(messenger.End(SIGTERM), 0) << messenger.Err();
    EXPECT_EQ(installation.Body(5, "M.0.short.fake")["report"]["reason"].asString(),
              "The receiver was offline until the message expired.");
}

TEST_F(QueueOfMessages, AMoveThatWasCutShortIsFinishedOnce)
{
    const struct
    {
        const char* what;
        int from;
        int to;
        int copyIn; ///< 0 for none
    } rows[] = {
        {"before the copy", 1, 4, 0},      {"behind the copy", 1, 4, 4},        {"error, before", 1, 5, 0},
        {"to wait, before", 1, 10, 0},     {"to wait, behind", 1, 10, 10},      {"back, sent meanwhile", 10, 1, 4},
        {"back, failed meanwhile", 10, 1, 5},
    };
    for (const auto& row : rows) {
        const QueueInstallation root;
        VK_MESSAGE_HEADER header;
        header.create_time = std::time(nullptr) - 5;
        header.last_paging_queue_id = row.from == 10 ? 1 : 0;
        const std::string begun = R"({"job_id": "j", "receiver_pin": "a@b", "report": {"status": 3, "to": )" +
                                  std::to_string(row.to) + "}}";
        vk::SetText(header.msg_name, "Q.1.j.fake", "msg_name");
        root.Queue(row.from).Add(header, begun);
        if (row.copyIn != 0)
            root.Add(row.copyIn, "j", R"({"job_id": "j", "receiver_pin": "a@b"})", header, "fake");
        const ProgramRun run = ProgramRun::Of("vkmessenger", Call(root.Root(), {}));
        EXPECT_EQ(run.exitCode, 0) << row.what << run.err;
        EXPECT_EQ(run.out.find("  send  "), std::string::npos) << row.what << run.out;
        for (const int queue : {1, 4, 5, 10})
            EXPECT_EQ(root.Names(queue), queue == (row.copyIn != 0 ? row.copyIn : row.to) ? Names{"M.0.j.fake"} : Names{})
                << row.what << ", queue " << queue;
    }
}

TEST_F(QueueOfMessages, AServiceRunsOnceAndStopsWhenTold)
{
    Add("open", Body("open", "READ", "", true));
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    EXPECT_TRUE(installation.Await(1, {"Q.1.open.fake"}));
    const ProgramRun twin = Send();
    EXPECT_EQ(twin.exitCode, 2);
    EXPECT_THAT(twin.err, HasSubstr("--service: 'vkmessenger' is at work on queue 1 already"));
    EXPECT_EQ(Send({"--service", "other"}).exitCode, 0);
    EXPECT_EQ(messenger.End(SIGTERM), 0) << messenger.Err();
    EXPECT_EQ(installation.Queue(1).TakeReady("fake*", "", 0).size(), 0u) << "its time to be asked about has not come";
    Add("later", Body("later", "", "", false));
    EXPECT_EQ(Send().exitCode, 0) << "a service may start again";
    EXPECT_EQ(installation.Names(4), Names{"M.0.later.fake"});
}

TEST_F(QueueOfMessages, AnArchiveThatIsAwayForATimeHoldsMessagesBack)
{
    const std::filesystem::path root = installation.Root();
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    Add("before", Body("before", "", "", false));
    ASSERT_TRUE(installation.Await(4, {"M.0.before.fake"})) << messenger.Err();
    std::filesystem::rename(root / "archive", root / "away");
    Add("meanwhile", Body("meanwhile", "", "", false));
    EXPECT_TRUE(RunningProgram::Await([&] { return messenger.Err().find("M.0.meanwhile.fake") != std::string::npos; }));
    EXPECT_EQ(installation.Names(1), Names{"R.0.meanwhile.fake"});
    std::filesystem::rename(root / "away", root / "archive");
    EXPECT_TRUE(installation.Await(4, {"M.0.before.fake", "M.0.meanwhile.fake"})) << messenger.Err();
    EXPECT_EQ(messenger.End(SIGTERM), 0);
    EXPECT_EQ(installation.Names(1), Names{});
    EXPECT_EQ(installation.Files("archive"), installation.Names(4));
}

TEST_F(QueueOfMessages, AQueueThatCannotBeOpenedIsNamedAndNothingIsSent)
{
    Add("kept", Body("kept", "", "", false));
    installation.Dir().Write("root/archive/queue_metabase.sdb", "somebody's file");
    const ProgramRun run = Send();
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_THAT(run.err, HasSubstr("queue 4 cannot be opened: "));
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(installation.Names(1), Names{"M.0.kept.fake"});
    EXPECT_EQ(installation.Dir().Read("root/archive/queue_metabase.sdb"), "somebody's file");
}

TEST_F(QueueOfMessages, AWrongCallSaysWhat)
{
    const struct
    {
        std::vector<std::string> more;
        const char* error;
    } rows[] = {
        {{"--message", "m.json"}, "--queue and --message do not go together"},
        {{"--service", "a b"}, "--service: 'a b' is no name"},
        {{"--service", std::string(51, 'x')}, "--service"},
        {{"--query-interval", "601"}, "--query-interval: '601' is no whole number from 1 to 600"},
    };
    for (const auto& row : rows) {
        const ProgramRun run = Send(row.more);
        EXPECT_EQ(run.exitCode, 2) << row.error;
        EXPECT_THAT(run.err, HasSubstr(row.error));
    }
    for (const char* queue : {"0", "2", "10", "x"}) {
        const auto run = ProgramRun::Of("vkmessenger", {"send", "--root", installation.Root(), "--queue", queue});
        EXPECT_EQ(run.exitCode, 2) << queue;
        EXPECT_THAT(run.err, HasSubstr("--queue")) << queue;
    }
    const auto unknown = ProgramRun::Of("vkmessenger", {"send", "--root", installation.Root(), "--queue", "199"});
    EXPECT_EQ(unknown.exitCode, 3);
    EXPECT_THAT(unknown.err, HasSubstr("queue 199 cannot be opened: Invalid queue path"));
    const auto alone = ProgramRun::Of("vkmessenger", {"send", "--root", installation.Root(), "--message", "m", "--follow"});
    EXPECT_EQ(alone.exitCode, 2);
    EXPECT_THAT(alone.err, HasSubstr("--follow goes with --queue only"));
}

} // namespace
