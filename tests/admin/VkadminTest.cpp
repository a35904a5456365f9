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

} // namespace
