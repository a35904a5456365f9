#include "RunningProgram.h"
#include "VkadminRun.h"

namespace {

using testing::HasSubstr;
using testing::Not;

class SettingsVerbs : public Vkadmin
{
protected:
    void SetUp() override { Init(); }

    ProgramRun Settings(const std::string& file, const std::string& verb, std::vector<std::string> words) const
    {
        words.insert(words.begin(), {"settings", file, verb});
        return Admin(std::move(words));
    }
    Json::Value Shown(const std::string& file) const
    {
        const ProgramRun run = Settings(file, "show", {"--json"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        return Lines(run.out).at(0);
    }
};

TEST_F(SettingsVerbs, EveryKindOfValueIsSetAndShown)
{
    ExpectOneLine(Settings("mxp", "show", {}), 1, "mxp_config.xml is not there");
    const struct
    {
        const char *file, *key, *value;
        Json::Value shown;
    } kRows[] = {
        {"mxp", "enable", "true", true},
        {"mxp", "host", "10.0.0.9", "10.0.0.9"},
        {"mxp", "push_proxy.host", "proxy:3128", "proxy:3128"},
        {"mxp", "push_notification.ca_bundle", "/etc/ssl/a & b.pem", "/etc/ssl/a & b.pem"},
        {"mxp", "fcm_notification.ca_bundle", "/etc/ssl/b.pem", "/etc/ssl/b.pem"},
        {"mxp", "server_port", "65535", 65535},
        {"mxp", "allowed_mxp_users_from", "10.0.0.1,fe80::1", Lines("[\"10.0.0.1\",\"fe80::1\"]")[0]},
        {"mxp", "mxp_general_policy", R"({"GeneralPolicy":{"settings":{"auto_del":true,"ours":1}}})",
         R"({"GeneralPolicy":{"permissions":{"new":false},"settings":{"auto_del":true,"new":true,"ours":1}}})"},
        {"gateway", "templates.greetings-msg.enable", "true", true},
        {"gateway", "templates.greetings-msg", "Good morning", "Good morning"},
        {"gateway", "roster-support.enable", "true", true},
    };
    for (const auto& row : kRows) {
        const ProgramRun run = Settings(row.file, "set", {row.key, row.value});
        EXPECT_EQ(run.exitCode, 0) << row.key << ": " << run.err;
    }
    for (const auto& row : kRows)
        EXPECT_EQ(Shown(row.file)[row.key], row.shown) << row.key;
    const std::string profiles = R"([{"name":"north","enable":true,"server_port":5269}])";
    EXPECT_EQ(Settings("gateway", "set", {"s2s_profiles", profiles}).exitCode, 0);
    EXPECT_EQ(Shown("gateway")["s2s_profiles"][0]["server_port"].asInt(), 5269);
    EXPECT_EQ(Settings("mxp", "show", {"server_port"}).out, "server_port: 65535\n");
    EXPECT_EQ(Settings("mxp", "set", {"allowed_mxp_users_from", ""}).exitCode, 0);
    EXPECT_TRUE(Shown("mxp")["allowed_mxp_users_from"].empty());
}

TEST_F(SettingsVerbs, SecretsComeFromAFileAndAreNeverShown)
{
    const std::string policy = R"({"GeneralPolicy":{"settings":{"master_pswrd":"s3cret"}}})";
    const std::string file = dir.Write("key", "s3cret\n");
    const auto set = [&](std::vector<std::string> words) { return Settings("mxp", "set", std::move(words)); };
    ExpectOneLine(set({"push_proxy.passwd", "s3cret"}), 2, "comes from --file");
    ExpectOneLine(set({"mxp_general_policy", policy}), 2, "comes from --file");
    for (const char* key : {"push_proxy.passwd", "gcms_notification.gcms_server_key",
                            "apns2_notification.ssl_certificate_private_key_passwd"}) {
        const ProgramRun run = set({key, "--file", file});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr("is now '***'"));
        EXPECT_EQ(Shown("mxp")[key], "***");
    }
    EXPECT_EQ(set({"mxp_general_policy", "--file", dir.Write("policy", policy)}).exitCode, 0);
    const std::string shown = Settings("mxp", "show", {}).out;
    EXPECT_THAT(shown, Not(HasSubstr("s3cret")));
    EXPECT_THAT(shown, HasSubstr("push_notification.ssl_certificate_private_key_passwd: \n")) << "none is set";
    EXPECT_THAT(dir.Read("root/config/mxp_config.xml"), HasSubstr("<passwd>s3cret</passwd>"));
    EXPECT_EQ(set({"push_proxy.passwd", ""}).exitCode, 0);
    EXPECT_EQ(Shown("mxp")["push_proxy.passwd"], "");
}

TEST_F(SettingsVerbs, AWrongKeyOrValueIsNamedWithWhatWouldDo)
{
    const struct
    {
        const char *file, *key, *value, *error;
    } kRows[] = {
        {"mxp", "ca_bundle", "a", "did you mean push_notification.ca_bundle, gcms_notification.ca_bundle, apns2"},
        {"gateway", "colour", "a", "the keys are: enable, host, domain, server_port"},
        {"mxp", "server_port", "65536", "'65536' is no whole number from 1 to 65535"},
        {"mxp", "socket_timeout", "30s", "'30s' is no whole number from 1 to 2147483647"},
        {"mxp", "mxp_carrier", "-1", "'-1'"},
        {"mxp", "fcm_notification.fcm_enabled", "yes", "'yes' is neither true nor false"},
        {"mxp", "allowed_mxp_users_from", "10.0.0.1,10.0.0", "'10.0.0' is no IP address"},
        {"mxp", "host", "a\x01", "characters that no XML file can hold"},
        {"mxp", "mxp_general_policy", "{\"a\":1}", "is no JSON such as"},
        {"mxp", "mxp_general_policy", R"({"GeneralPolicy":{"settings":{"auto_del":"yes"}}})", "'auto_del' has a value"},
        {"gateway", "s2s_profiles", "north", "is no JSON list"},
        {"gateway", "s2s_profiles", R"([{"nam":"north"}])", "there is no key 'nam'"},
        {"gateway", "s2s_profiles", R"([{"server_port":0}])", "s2s_profiles: server_port: '0' is no whole number"},
    };
    for (const auto& row : kRows)
        ExpectOneLine(Settings(row.file, "set", {"--", row.key, row.value}), 2, row.error);
    ExpectOneLine(Settings("mxp", "set", {"host"}), 2, "give one of VALUE and --file");
    ExpectOneLine(Settings("mxp", "show", {"hots"}), 2, "there is no key 'hots'");
    EXPECT_FALSE(std::filesystem::exists(dir / "root/config/mxp_config.xml")) << "nothing was done";
}

TEST_F(SettingsVerbs, TwoAdministratorsAtOnceLoseNothingOfEachOther)
{
    const auto set = [&](const char* key, int value) {
        return std::vector<std::string>{"--root", dir / "root", "settings", "mxp", "set", key, std::to_string(value)};
    };
    for (int round = 1; round <= 4; ++round) {
        RunningProgram one("vkadmin", set("server_port", round));
        RunningProgram two("vkadmin", set("socket_timeout", round));
        EXPECT_EQ(one.Wait(), 0) << one.Err();
        EXPECT_EQ(two.Wait(), 0) << two.Err();
        const Json::Value shown = Shown("mxp");
        EXPECT_EQ(shown["server_port"].asInt(), round);
        EXPECT_EQ(shown["socket_timeout"].asInt(), round);
    }
}

TEST_F(SettingsVerbs, AFileThatCannotBeUnderstoodIsLeftAloneAndForeignContentStays)
{
    const std::string path = "root/config/xmppgateway_config.xml";
    dir.Write(path, "<xmpp_gateway_settings enable=\"true\"><host/></xmpp_gateway_settings>");
    const std::string before = dir.Read(path);
    ExpectOneLine(Settings("gateway", "set", {"host", "a"}), 2, "xmppgateway_config.xml: ");
    ExpectOneLine(Settings("gateway", "show", {}), 2, "'domain'");
    EXPECT_EQ(dir.Read(path), before);

    std::filesystem::remove(dir / path);
    EXPECT_EQ(Settings("gateway", "set", {"host", "a"}).exitCode, 0);
    std::string text = dir.Read(path);
    text.insert(text.rfind("</"), "<ours>kept</ours>");
    dir.Write(path, text);
    EXPECT_EQ(Settings("gateway", "set", {"host", "b"}).exitCode, 0);
    EXPECT_THAT(dir.Read(path), testing::AllOf(HasSubstr("<ours>kept</ours>"), HasSubstr("<host>b</host>")));
}

} // namespace
