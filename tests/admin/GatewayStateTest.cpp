#include "VkadminRun.h"

#include "VKConfiguration.h"
#include "VKDBiActiveMxpClient.h"
#include "VKDBsystem.h"
#include "VKMsgStatusManager.h"

namespace {

using testing::HasSubstr;

TEST_F(Vkadmin, AJobsStateIsShown)
{
    Init();
    VKConfiguration::getVKConfiguration()->setConfDirectory(dir / "root/config");
    VKConfiguration::getVKConfiguration()->loadPrimaryConfiguration(true);
    VKMsgStatusManager store;
    ASSERT_TRUE(store.Initialize()) << store.GetLastError();
    VKMsgStatusManager::VKMessageStatusData data;
    data.job_id = "20240101120000_1";
    data.time_stamp = 1700000000;
    data.status = VKMsgStatusManager::MsgStatusReplied;
    ASSERT_TRUE(store.Add(data));

    const Json::Value shown = Lines(Admin({"--json", "job-status", "show", data.job_id}).out).at(0);
    EXPECT_EQ(shown["job_id"].asString(), data.job_id);
    EXPECT_EQ(shown["status"].asString(), "Replied");
    EXPECT_EQ(shown["time_stamp"].asInt64(), 1700000000);
    ExpectOneLine(Admin({"job-status", "show", "2"}), 1, "there is no state of job '2'");
    ExpectOneLine(Admin({"job-status", "show", "2' OR '1'='1"}), 1, "quote");
    dir.Write("root/report/report_msg_status.sdb", "somebody's own file, and no database");
    ExpectOneLine(Admin({"job-status", "show", "2"}), 3, "report_msg_status.sdb");
}

TEST_F(Vkadmin, GatewayUsersAreLookedAfterAndTheirPasswordsNeverShown)
{
    Init();
    const std::string password = dir.Write("password", "hunter2\n");
    EXPECT_EQ(Add({"gateway-user", "add", "--user-id", "ann", "--password-file", password, "--name", "Ann"}), "4\n");
    EXPECT_EQ(Add({"gateway-user", "add", "--user-id", "bob", "--password-file", password, "--type", "MXPCarrier",
                   "--enabled", "false", "--ip", "10.0.0.1", "--json"}),
              "{\"id\":5}\n");
    EXPECT_EQ(Admin({"gateway-user", "list"}).out, "id  user_id  name  type        enabled  vk_user_id  VKUserName\n"
                                                   "4   ann      Ann   Normal      true     0\n"
                                                   "5   bob      bob   MXPCarrier  false    0\n");
    const auto logins = [&](std::vector<std::string> filter) {
        filter.insert(filter.begin(), {"--json", "gateway-user", "list"});
        std::string shown;
        for (const Json::Value& line : Lines(Admin(filter).out))
            shown += line["user_id"].asString() + " ";
        return shown;
    };
    EXPECT_EQ(logins({"--all"}), "ann bob _vk_agent_ _vk_emerg_user_ _vk_msgr_user_ ");
    EXPECT_EQ(logins({"--name", "B"}), "bob ");
    EXPECT_EQ(logins({"--sort", "user-id", "--descending", "--page-size", "1", "--page", "2"}), "ann ");

    EXPECT_EQ(Admin({"gateway-user", "modify", "--id", "4", "--user-id", "anna", "--enable-roster", "true"}).exitCode,
              0);
    EXPECT_EQ(Admin({"gateway-user", "disable", "--user-id", "ANNA"}).exitCode, 0);
    EXPECT_EQ(Admin({"gateway-user", "enable", "--id", "5"}).exitCode, 0);
    const ProgramRun run = Admin({"--json", "gateway-user", "show", "--id", "4"});
    const Json::Value anna = Lines(run.out).at(0);
    EXPECT_EQ(anna["user_id"].asString(), "anna");
    EXPECT_EQ(anna["name"].asString(), "Ann") << "what is not given stays";
    EXPECT_TRUE(anna["enable_roster"].asBool());
    EXPECT_FALSE(anna["enabled"].asBool());
    EXPECT_EQ(run.out.find("hunter2"), std::string::npos);
    EXPECT_FALSE(anna.isMember("user_password"));
    EXPECT_THAT(Admin({"gateway-user", "show", "--user-id", "bob"}).out, HasSubstr("enabled: true"));

    ExpectOneLine(Admin({"gateway-user", "add", "--user-id", "ANNA", "--password-file", password}), 1,
                  "4 has the login");
    ExpectOneLine(Admin({"gateway-user", "modify", "--id", "5", "--user-id", "anna"}), 1, "4 has the login");
    ExpectOneLine(Admin({"gateway-user", "add", "--user-id", std::string(51, 'x'), "--password-file", password}), 2,
                  "--user-id: is longer than 50");
    ExpectOneLine(Admin({"gateway-user", "add", "--user-id", "c", "--password-file", dir.Write("none", "\n")}), 2,
                  "holds no password");
    ExpectOneLine(Admin({"gateway-user", "modify", "--id", "9"}), 1, "there is no gateway user 9");
    ExpectOneLine(Admin({"gateway-user", "show", "--id", "4", "--user-id", "anna"}), 2, "give one of");
    EXPECT_EQ(Admin({"gateway-user", "delete", "--user-id", "bob"}).exitCode, 0);
    ExpectOneLine(Admin({"gateway-user", "delete", "--user-id", "bob"}), 1, "there is no gateway user 'bob'");
}

TEST_F(Vkadmin, ClientsAreLookedAfterAndTheirKeysNeverShown)
{
    Init();
    VKDBsystem system;
    system.OpenSdb(dir / "root/config", "", nullptr, nullptr, 0, nullptr);
    const std::unique_ptr<VKDBiActiveMxpClient> store(VKDBiActiveMxpClient::CreateInstance(&system));
    VKActiveMxpClientInfo client;
    client.activation_key = "hunter2";
    client.client_name = "pager";
    client.created_time = 100;
    client.activation_user_name = "Ann";
    ASSERT_TRUE(store->Add(&client));
    client.client_name = "phone";
    client.created_time = 200;
    client.activation_user_name.clear();
    ASSERT_TRUE(store->Add(&client));
    system.Close();
    Add({"receiver", "add", "--name", "Ann", "--pin", "ann@localhost"});

    EXPECT_EQ(Admin({"client", "list"}).out,
              "id  client_name  platform  active_mode  is_authorized  is_suspended  created_time  receiver\n"
              "1   pager                  Basic        false          false         100           Ann ( ,  )\n"
              "2   phone                  Basic        false          false         200\n");
    EXPECT_EQ(Lines(Admin({"--json", "client", "list", "--from", "150"}).out).size(), 1u);
    EXPECT_EQ(Lines(Admin({"--json", "client", "list", "--to", "150", "--name", "PH"}).out).size(), 0u);
    EXPECT_EQ(Lines(Admin({"--json", "client", "list", "--descending"}).out).at(0)["client_name"].asString(), "phone");

    EXPECT_THAT(Admin({"client", "authorize", "--id", "1"}).out, HasSubstr("client 1 authorized"));
    EXPECT_EQ(Admin({"client", "mode", "--id", "1", "--mode", "Advanced"}).exitCode, 0);
    EXPECT_EQ(Admin({"client", "suspend", "--id", "1"}).exitCode, 0);
    const ProgramRun run = Admin({"--json", "client", "show", "--name", "pager"});
    const Json::Value pager = Lines(run.out).at(0);
    EXPECT_TRUE(pager["is_authorized"].asBool() && pager["is_suspended"].asBool());
    EXPECT_EQ(pager["active_mode"].asString(), "Advanced");
    EXPECT_GT(pager["suspended_time"].asInt64(), 1700000000);
    EXPECT_EQ(run.out.find("hunter2"), std::string::npos);
    EXPECT_EQ(Admin({"client", "authorize", "--id", "1", "--revoke"}).exitCode, 0);
    EXPECT_EQ(Admin({"client", "resume", "--id", "1"}).exitCode, 0);
    const Json::Value again = Lines(Admin({"--json", "client", "show", "--id", "1"}).out).at(0);
    EXPECT_FALSE(again["is_authorized"].asBool() || again["is_suspended"].asBool());

    ExpectOneLine(Admin({"client", "mode", "--id", "1", "--mode", "Expert"}), 2, "--mode");
    ExpectOneLine(Admin({"client", "suspend", "--id", "9"}), 1, "there is no client 9");
    EXPECT_EQ(Admin({"client", "delete", "--id", "1"}).exitCode, 0);
    ExpectOneLine(Admin({"client", "show", "--name", "pager"}), 1, "there is no client 'pager'");
}

} // namespace
