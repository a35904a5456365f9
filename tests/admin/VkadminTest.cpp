#include "VkadminRun.h"

namespace {

using testing::HasSubstr;

TEST_F(Vkadmin, ANewRootHasItsDirectoriesAndFiles)
{
    Init();
    for (const char* folder : {"config", "temp", "logs", "waiting"})
        EXPECT_TRUE(std::filesystem::is_directory(dir.Path() / "root" / folder)) << folder;
    EXPECT_THAT(dir.Read("root/config/dir"), HasSubstr("waiting_dir:\t\t" + (dir / "root/waiting")));
    EXPECT_THAT(dir.Read("root/config/datasource"), HasSubstr("database_type:"));
    EXPECT_THAT(dir.Read("root/config/vklogs.ini"), HasSubstr("[common]"));
    EXPECT_NE(dir.Read("root/config/version"), "");
}

TEST_F(Vkadmin, ARootIsNeverMadeTwice)
{
    Init();
    dir.Write("root/config/datasource", "mine");
    ExpectOneLine(Admin({"init"}), 2, dir / "root");
    EXPECT_EQ(dir.Read("root/config/datasource"), "mine");
    ExpectOneLine(AdminOn(dir.Write("file", ""), {"init"}), 2, dir / "file");
    const std::string longPath = dir / ("long/" + std::string(240, 'x'));
    ExpectOneLine(AdminOn(longPath, {"init"}), 2, "too long");
    EXPECT_FALSE(std::filesystem::exists(longPath));
}

TEST_F(Vkadmin, ReceiversAreAddedShownAndListed)
{
    Init();
    EXPECT_EQ(Add({"receiver", "add", "--name", "Bob", "--pin", "bob@localhost", "--type", "two-way"}), "1\n");
    EXPECT_EQ(Add({"receiver", "add", "--name", "Al", "--pin", "al@localhost", "--json"}), "{\"id\":2}\n");

    const auto shown = Admin({"receiver", "show", "--name", "bob", "--json"});
    ASSERT_EQ(shown.exitCode, 0) << shown.err;
    const Json::Value bob = Lines(shown.out).front();
    EXPECT_EQ(bob["id"].asInt(), 1);
    EXPECT_EQ(bob["pin"].asString(), "bob@localhost");
    EXPECT_EQ(bob["type"].asString(), "two-way");
    EXPECT_FALSE(bob.isMember("acct_pwd"));

    const auto list = Admin({"receiver", "list", "--json"});
    ASSERT_EQ(Lines(list.out).size(), 2u) << list.err;
    EXPECT_EQ(Lines(list.out)[0]["name"].asString(), "Al");
    EXPECT_EQ(Admin({"receiver", "list"}).out, "id  name  pin            type     department_id  description\n"
                                               "2   Al    al@localhost   alpha    0\n"
                                               "1   Bob   bob@localhost  two-way  0\n");
}

TEST_F(Vkadmin, DepartmentsAreAddedShownAndListed)
{
    Init();
    EXPECT_EQ(Add({"department", "add", "--name", "Surgery", "--description", "Second floor"}), "1\n");
    EXPECT_THAT(Admin({"department", "show", "--id", "1"}).out, HasSubstr("description: Second floor\n"));
    EXPECT_EQ(Lines(Admin({"department", "list", "--json"}).out).size(), 1u);
}

TEST_F(Vkadmin, SessionsComeAndGo)
{
    Init();
    EXPECT_EQ(Admin({"session", "add", "--user-id", "7", "--jid", "al@localhost/mxp"}).exitCode, 0);
    const auto list = Lines(Admin({"session", "list", "--json"}).out);
    ASSERT_EQ(list.size(), 1u);
    EXPECT_EQ(list[0]["user_id"].asInt(), 7);
    EXPECT_EQ(list[0]["jid"].asString(), "al@localhost/mxp");
    EXPECT_EQ(list[0]["user_name"].asString(), "al");
    EXPECT_EQ(list[0]["type"].asString(), "MXP");
    ExpectOneLine(Admin({"session", "add", "--user-id", "7", "--jid", "al@localhost/mxp"}), 1, "al@localhost/mxp");
    ExpectOneLine(Admin({"session", "remove", "--jid", "x' OR '1'='1"}), 1, "x' OR '1'='1");
    EXPECT_EQ(Admin({"session", "remove", "--jid", "al@localhost/mxp"}).exitCode, 0);
    EXPECT_EQ(Admin({"session", "list", "--json"}).out, "");
}

TEST_F(Vkadmin, WhatIsRefusedSaysWhy)
{
    Init();
    Add({"receiver", "add", "--name", "Al", "--pin", "al@localhost"});
    ExpectOneLine(Admin({"receiver", "add", "--name", "AL", "--pin", "other@localhost"}), 1, "vkadmin: ");
    ExpectOneLine(Admin({"receiver", "add", "--name", "Bo", "--pin", " "}), 1, "vkadmin: ");
    ExpectOneLine(Admin({"receiver", "add", "--name", std::string(51, 'x'), "--pin", "p"}), 2, "--name: is longer than 50");
    ExpectOneLine(Admin({"receiver", "add", "--name", "Bo", "--pin", "p", "--department-id", "-1"}), 2, "--department-id");
    ExpectOneLine(Admin({"receiver", "add", "--name", "Bo", "--pin", "p", "--type", "pager"}), 2, "--type: 'pager'");
    ExpectOneLine(Admin({"receiver", "show", "--id", "9"}), 1, "there is no receiver 9");
    ExpectOneLine(Admin({"receiver", "show"}), 2, "give one of --id and --name");
    ExpectOneLine(Admin({"session", "add", "--user-id", "x", "--jid", "a@b"}), 2, "--user-id: 'x'");
    ExpectOneLine(Admin({"session", "add", "--user-id", "1", "--jid", "@"}), 2, "--jid: '@'");
}

TEST_F(Vkadmin, ABrokenRootIsNamedAndLeftAsItIs)
{
    ExpectOneLine(Admin({"receiver", "list"}), 2, dir / "root");
    Init();
    dir.Write("root/config/receivers.sdb", "this is no database, but it is somebody's file");
    const auto run = Admin({"receiver", "list"});
    ExpectOneLine(run, 3, "vkadmin: ");
    EXPECT_EQ(dir.Read("root/config/receivers.sdb"), "this is no database, but it is somebody's file");
    dir.Write("root/config/datasource", "database_type:\tPaper\n");
    ExpectOneLine(Admin({"receiver", "list"}), 2, dir / "root/config/datasource");
    std::filesystem::remove(dir.Path() / "root/config/datasource");
    ExpectOneLine(Admin({"receiver", "list"}), 2, dir / "root/config/datasource");
}

TEST_F(Vkadmin, AMessageGoesThroughAQueue)
{
    Init();
    const std::string body = R"({"text":"it's 5 o'clock"})";
    const std::vector<std::string> add = {"queue", "add", "--queue", "10", "--file", dir.Write("m.json", body),
                                          "--job", "J1",  "--pin",   "a@t",  "--priority", "1"};
    EXPECT_EQ(Add(add), "1\n");
    ExpectOneLine(Admin(add), 1, "M.0.J1.mxp");
    EXPECT_EQ(dir.Read("root/waiting/M.0.J1.mxp"), body);

    const auto list = [&](std::vector<std::string> filter) {
        filter.insert(filter.begin(), {"--json", "queue", "list", "--queue", "10"});
        return Lines(Admin(filter).out);
    };
    ASSERT_EQ(list({}).size(), 1U);
    EXPECT_EQ(list({})[0]["msg_name"].asString(), "M.0.J1.mxp");
    EXPECT_EQ(list({"--pin", "A@T"}).size(), 1U);
    EXPECT_EQ(list({"--pin", "a"}).size(), 0U);
    EXPECT_EQ(list({"--status", "Q"}).size(), 0U);
    const auto shown = Lines(Admin({"--json", "queue", "show", "--queue", "10", "--name", "M.0.J1.mxp"}).out);
    ASSERT_EQ(shown.size(), 1U);
    EXPECT_EQ(shown[0]["body"].asString(), body);
    EXPECT_EQ(shown[0]["priority"].asInt(), 1);

    ExpectOneLine(Admin({"queue", "show", "--queue", "10", "--name", "M.0.J2.mxp"}), 1, "M.0.J2.mxp");
    ExpectOneLine(Admin({"queue", "list", "--queue", "11"}), 3, "queue 11");
    ExpectOneLine(Admin({"queue", "clean", "--queue", "10"}), 2, "--days");
    ExpectOneLine(Admin({"queue", "add", "--queue", "10", "--job", "a/b", "--file", dir / "m.json"}), 1, "a/b");
    ExpectOneLine(Admin({"queue", "add", "--queue", "10", "--job", "J3", "--file", dir.Write("bad", "[")}), 2, "bad");
    EXPECT_THAT(Admin({"queue", "unlock", "--queue", "10"}).out, HasSubstr("no service"));
    EXPECT_THAT(Admin({"queue", "clean", "--queue", "10", "--keep", "0"}).out, HasSubstr("1 deleted, 0 left"));
    EXPECT_FALSE(std::filesystem::exists(dir.Path() / "root/waiting/M.0.J1.mxp"));
}

} // namespace
