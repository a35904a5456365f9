#include "QueueInstallation.h"
#include "VkadminRun.h"

namespace {

using testing::HasSubstr;

class QueueVerbs : public Vkadmin, public testing::WithParamInterface<Backend>
{
protected:
    ProgramRun Queue(const std::string& verb, int queue, std::vector<std::string> words = {}) const
    {
        words.insert(words.begin(), {"--json", "queue", verb, "--queue", std::to_string(queue)});
        return AdminOn(installation.Root(), words);
    }
    std::vector<Json::Value> List(int queue, const std::vector<std::string>& filter = {}) const
    {
        return Lines(Queue("list", queue, filter).out);
    }
    std::string Show(const std::string& name, const char* key) const
    {
        const auto shown = Lines(Queue("show", 10, {"--name", name}).out);
        return shown.size() == 1 ? shown[0][key].asString() : "";
    }

    const QueueInstallation installation{GetParam()};
};
VK_ON_BOTH_BACKENDS(QueueVerbs);

TEST_P(QueueVerbs, AMessageIsAddedListedShownAndCleaned)
{
    const std::string body = R"({"text":"it's 5 o'clock \\ 100 %","sender":"\u00fcð¥"})";
    const std::vector<std::string> add = {"--file", dir.Write("m.json", body), "--job", "J1", "--pin", "a@t", "--priority", "1"};
    EXPECT_EQ(Queue("add", 10, add).out, "{\"id\":1}\n");
    ExpectOneLine(Queue("add", 10, add), 1, "M.0.J1.mxp");
    EXPECT_TRUE(installation.IsWhole(10));

    ASSERT_EQ(List(10).size(), 1U);
    EXPECT_EQ(List(10)[0]["msg_name"].asString(), "M.0.J1.mxp");
    EXPECT_EQ(List(10, {"--pin", "A@T"}).size(), 1U);
    EXPECT_EQ(List(10, {"--pin", "a"}).size(), 0U);
    EXPECT_EQ(List(10, {"--status", "Q"}).size(), 0U);
    EXPECT_EQ(List(1).size(), 0U) << "each queue holds its own";
    EXPECT_EQ(Show("M.0.J1.mxp", "body"), body);
    EXPECT_EQ(Show("M.0.J1.mxp", "priority"), "1");

    ExpectOneLine(Queue("show", 10, {"--name", "M.0.J2.mxp"}), 1, "M.0.J2.mxp");
    ExpectOneLine(Queue("list", 11), 3, "queue 11");
    ExpectOneLine(Queue("clean", 10), 2, "--days");
    ExpectOneLine(Queue("add", 10, {"--job", "a/b", "--file", dir / "m.json"}), 1, "a/b");
    ExpectOneLine(Queue("add", 10, {"--job", "J3", "--file", dir.Write("bad", "[")}), 2, "bad");
    EXPECT_THAT(Queue("clean", 10, {"--keep", "0"}).out, HasSubstr("\"deleted\":1"));
    EXPECT_EQ(List(10).size(), 0U);
    EXPECT_TRUE(installation.IsWhole(10));
}

TEST_P(QueueVerbs, WhatAServiceHeldIsGivenBack)
{
    installation.Add(1, "J1", "{}");
    EXPECT_EQ(installation.Queue(1).TakeReady("mxp*", "", 10).size(), 1U) << "held by the looker-on";
    EXPECT_TRUE(installation.Queue(1).Rename("M.0.J1.mxp", "R.0.J1.mxp"));
    EXPECT_THAT(Queue("unlock", 1).out, HasSubstr("\"services\":[]")) << "not for long enough";
    EXPECT_THAT(Queue("unlock", 1, {"--service", "mxp7"}).out, HasSubstr("mxp7"));
    EXPECT_EQ(List(1)[0]["msg_name"].asString(), "R.0.J1.mxp") << "it holds another's";
    EXPECT_EQ(Queue("unlock", 1, {"--service", "looker-on"}).exitCode, 0);
    EXPECT_EQ(List(1)[0]["msg_name"].asString(), "M.0.J1.mxp");
}

TEST_P(QueueVerbs, MessageFilesOutliveTheirDatabase)
{
    if (installation.OnServer()) {
        ExpectOneLine(Queue("recover", 1), 1, "rows of a server");
        return;
    }
    installation.Add(1, "J1", R"({"receiver_pin":"a@t","sender":"a\u0000b"})");
    installation.Add(1, "J2", "no JSON");
    installation.Add(1, "J3", "{}");
    ASSERT_TRUE(installation.Queue(1).Rename("M.0.J2.mxp", "R.2.J2.mxp"));
    ASSERT_TRUE(installation.Queue(1).Rename("M.0.J3.mxp", "R.0.J3.mxp"));
    EXPECT_EQ(Queue("recover", 1).out, "{\"recovered\":[]}\n");

    const std::filesystem::path spool = std::filesystem::path(installation.Root()) / "spool";
    for (const char* behind : {"", "-wal", "-shm", "-intent"})
        std::filesystem::remove(spool / (std::string("queue_metabase.sdb") + behind));
    const auto made = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    for (const char* name : {"M.0.J1.mxp", "R.2.J2.mxp", "R.0.J3.mxp"})
        std::filesystem::last_write_time(spool / name, made);
    EXPECT_EQ(List(1).size(), 0U);
    EXPECT_THAT(Queue("recover", 1, {"--dry-run"}).out, HasSubstr("R.2.J2.mxp"));
    EXPECT_EQ(List(1).size(), 0U);
    const std::string longJob = "M.0." + std::string(65, 'j') + ".mxp";
    std::ofstream(spool / longJob) << "{}";
    const ProgramRun recovered = Queue("recover", 1);
    EXPECT_EQ(recovered.exitCode, 1);
    EXPECT_THAT(recovered.err, testing::AllOf(HasSubstr(longJob), HasSubstr("msg_job_id")));
    std::filesystem::remove(spool / longJob);
    std::map<std::string, std::string> pins;
    for (const Json::Value& row : List(1)) {
        pins[row["msg_name"].asString()] = row["pin"].asString();
        EXPECT_NEAR(std::stol(row["create_time"].asString()), std::time(nullptr) - 3600, 60);
    }
    EXPECT_EQ(pins, (std::map<std::string, std::string>{{"M.0.J1.mxp", "a@t"}, {"M.0.J3.mxp", ""}, {"Q.2.J2.mxp", ""}}));
    EXPECT_TRUE(installation.IsWhole(1));
}

} // namespace
