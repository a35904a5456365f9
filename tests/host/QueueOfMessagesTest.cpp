#include "QueueOfMessages.h"

namespace {

using testing::HasSubstr;
using Names = std::set<std::string>;

VK_ON_BOTH_BACKENDS(QueueOfMessages);

/// What there is no second way of, or nothing to do with what it stands on.
class QueueOfMessagesInFiles : public QueueOfMessages
{
};
INSTANTIATE_TEST_SUITE_P(Files, QueueOfMessagesInFiles, testing::Values(Backend::Files));

TEST_P(QueueOfMessages, EachGoesToItsQueueWithAReport)
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
    // A server that keeps UTF-8 refuses a body that is none.
    const auto isRefused = [&](const auto& row) { return installation.OnServer() && row.job == std::string("bytes"); };
    for (const auto& row : rows) {
        if (isRefused(row))
            EXPECT_THROW(Add(row.job, row.body, row.header), VKDBexception);
        else
            Add(row.job, row.body, row.header);
    }
    installation.Add(1, "foreign", "{}", {}, "sms");
    const ProgramRun run = Send({"--wait", "1"});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    for (const auto& row : rows) {
        if (isRefused(row))
            continue;
        const Json::Value report = installation.Body(row.queue, row.name)["report"];
        EXPECT_EQ(report["status_name"].asString(), row.status) << row.job;
        EXPECT_THAT(report["reason"].asString(), HasSubstr(row.reason)) << row.job;
        EXPECT_FALSE(report.isMember("to")) << row.job;
    }
    EXPECT_EQ(installation.Names(1), (Names{"Q.1.open.fake", "M.0.foreign.sms"}));
    EXPECT_TRUE(installation.IsWhole(1));
    EXPECT_EQ(installation.Body(5, "M.0.json.fake")["unreadable"].asString(), "{\"job_id\": ");
    if (!installation.OnServer()) {
        EXPECT_EQ(installation.Body(5, "M.0.bytes.fake")["unreadable_base64"].asString(), "/w==");
    }
    EXPECT_EQ(installation.Body(1, "Q.1.open.fake")["report"]["responses"][0]["text"].asString(), "Coming");
    EXPECT_THAT(run.out, HasSubstr("move    REPLIED_WITH    to archive"));
    EXPECT_THAT(run.out, HasSubstr("move    FAILED          to error, Receiver is offline."));
}

TEST_P(QueueOfMessages, ASecondMessageOfOneNameOverwritesNothing)
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

TEST_P(QueueOfMessages, WhatWaitsExpiresWithItsReason)
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

TEST_P(QueueOfMessages, AMoveThatWasCutShortIsFinishedOnce)
{
    const struct
    {
        const char* job;
        int from;
        int to;
        int copyIn; ///< 0 for none
    } rows[] = {
        {"before-the-copy", 1, 4, 0},      {"behind-the-copy", 1, 4, 4},        {"error-before", 1, 5, 0},
        {"to-wait-before", 1, 10, 0},      {"to-wait-behind", 1, 10, 10},       {"back-sent-meanwhile", 10, 1, 4},
        {"back-failed-meanwhile", 10, 1, 5},
    };
    std::map<int, Names> expected;
    for (const auto& row : rows) {
        const std::string job = row.job;
        VK_MESSAGE_HEADER header;
        header.create_time = std::time(nullptr) - 5;
        header.last_paging_queue_id = row.from == 10 ? 1 : 0;
        const std::string body = R"({"job_id": ")" + job + R"(", "receiver_pin": "a@b")";
        if (row.copyIn != 0)
            installation.Add(row.copyIn, job, body + "}", header, "fake");
        vk::SetText(header.msg_name, "Q.1." + job + ".fake", "msg_name");
        installation.Queue(row.from).Add(header, body + R"(, "report": {"status": 3, "to": )" + std::to_string(row.to) + "}}");
        expected[row.copyIn != 0 ? row.copyIn : row.to].insert("M.0." + job + ".fake");
    }
    const ProgramRun run = Send();
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out.find("  send  "), std::string::npos) << run.out;
    for (const int queue : {1, 4, 5, 10})
        EXPECT_EQ(installation.Names(queue), expected[queue]) << "queue " << queue;
}

TEST_P(QueueOfMessages, AServiceRunsOnceAndStopsWhenTold)
{
    Add("open", Body("open", "READ", "", true));
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    EXPECT_TRUE(installation.Await(1, {"Q.1.open.fake"}));
    ExpectOneLine(Send(), 2, "--service: 'vkmessenger' is at work on queue 1 already");
    EXPECT_EQ(Send({"--service", "other", "--wait", "1"}).exitCode, 0);
    EXPECT_EQ(messenger.End(SIGTERM), 0) << messenger.Err();
    EXPECT_EQ(installation.Queue(1).TakeReady("fake*", "", 0).size(), 0u) << "its time to be asked about has not come";
    Add("later", Body("later", "", "", false));
    EXPECT_EQ(Send({"--wait", "1"}).exitCode, 0) << "a service may start again";
    EXPECT_EQ(installation.Names(4), Names{"M.0.later.fake"});
}

TEST_P(QueueOfMessages, AnArchiveThatIsAwayForATimeHoldsMessagesBack)
{
    RunningProgram messenger("vkmessenger", Call(installation.Root(), {"--follow"}));
    Add("before", Body("before", "", "", false));
    ASSERT_TRUE(installation.Await(4, {"M.0.before.fake"})) << messenger.Err();
    installation.TakeAway(4);
    Add("meanwhile", Body("meanwhile", "", "", false));
    const std::string named = installation.OnServer() ? "relation \"vk_queue_completed\" does not exist" : "/archive/";
    EXPECT_TRUE(Until([&] { return messenger.Err().find(named) != std::string::npos; })) << messenger.Err();
    EXPECT_EQ(installation.Names(1), Names{"R.0.meanwhile.fake"});
    installation.BringBack(4);
    EXPECT_TRUE(installation.Await(4, {"M.0.before.fake", "M.0.meanwhile.fake"})) << messenger.Err();
    EXPECT_EQ(messenger.End(SIGTERM), 0);
    EXPECT_EQ(installation.Names(1), Names{});
    EXPECT_TRUE(installation.IsWhole(4));
}

TEST_P(QueueOfMessagesInFiles, AQueueThatCannotBeOpenedIsNamedAndNothingIsSent)
{
    Add("kept", Body("kept", "", "", false));
    installation.Dir().Write("root/archive/queue_metabase.sdb", "somebody's file");
    ExpectOneLine(Send(), 3, "queue 4 cannot be opened: ");
    EXPECT_EQ(installation.Names(1), Names{"M.0.kept.fake"});
    EXPECT_EQ(installation.Dir().Read("root/archive/queue_metabase.sdb"), "somebody's file");
}

TEST_P(QueueOfMessagesInFiles, AWrongCallSaysWhat)
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
    for (const auto& row : rows)
        ExpectOneLine(Send(row.more), 2, row.error);
    const auto send = [&](std::vector<std::string> words) {
        words.insert(words.begin(), {"send", "--root", installation.Root()});
        return ProgramRun::Of("vkmessenger", words);
    };
    for (const char* queue : {"0", "2", "10", "x"})
        ExpectOneLine(send({"--queue", queue}), 2, "--queue");
    ExpectOneLine(send({"--queue", "199"}), 3, "queue 199 cannot be opened: Invalid queue path");
    ExpectOneLine(send({"--message", "m", "--follow"}), 2, "--follow goes with --queue only");
}

} // namespace
