#include "TempDir.h"
#include "VKConfiguration.h"

#include <fstream>
#include <gmock/gmock.h>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

/// The elements that every "mxp_config.xml" has.
const char* const kRequired = R"(<host>h</host><domain>d</domain><server_port>5223</server_port>
<server_certificate>c</server_certificate><server_private_key>k</server_private_key>
<emergency_mode_enabled>true</emergency_mode_enabled><mxp_carrier>7</mxp_carrier>
<allowed_mxp_users_from count="1"><ip_address>10.0.0.1</ip_address><ip_address>10.0.0.2</ip_address>
</allowed_mxp_users_from>
<adv_settings><file_trans_thread_pool_size>1</file_trans_thread_pool_size><file_trans_timeout>2</file_trans_timeout>
<resp_act_exec_thread_pool_size>3</resp_act_exec_thread_pool_size><recv_files_dir_path>/r/</recv_files_dir_path>
</adv_settings><s2s_enabled>false</s2s_enabled><s2s_profiles count="0"/>)";

const char* const kPush = R"(<push_notification><apns_enabled>true</apns_enabled><ssl_certificate>cert</ssl_certificate>
<certificate_type>2</certificate_type><ssl_certificate_private_key>key</ssl_certificate_private_key>
<ssl_certificate_private_key_passwd>pw</ssl_certificate_private_key_passwd></push_notification>)";

class GatewaySettingsTest : public testing::Test
{
protected:
    GatewaySettingsTest() : configuration(*VKConfiguration::getVKConfiguration())
    {
        std::filesystem::create_directories(root / "config");
        configuration.setConfDirectory(root / "config");
        configuration.getMXPManagerSettings(true);
        configuration.getXMPPGatewaySettings(true);
    }

    VKMXPManagerSettings* Read(const std::string& elements)
    {
        root.Write("config/mxp_config.xml",
                   "<xmpp_gateway_settings enable=\"true\">" + elements + "</xmpp_gateway_settings>");
        return configuration.getMXPManagerSettings(true);
    }
    std::string File() { return root.Read("config/mxp_config.xml"); }

    TempDir root;
    VKConfiguration& configuration;
};

TEST_F(GatewaySettingsTest, ReadsWhatTheFileHasAndKeepsDefaultsForWhatMayBeMissing)
{
    const VKMXPManagerSettings* settings = Read(kRequired);
    ASSERT_NE(settings, nullptr) << configuration.getGatewaySettingsError();
    EXPECT_TRUE(settings->m_bEnabled && settings->m_bEmergencyModeEnabled && settings->m_bAutoAuthEnabled);
    EXPECT_FALSE(settings->m_bApnsEnabled || settings->m_objPolicySettings.m_optAutoDelete.has_value());
    EXPECT_EQ(settings->m_iServerPort, 5223);
    EXPECT_EQ(settings->m_lMxpCarrier, 7);
    EXPECT_THAT(settings->m_vecAllowedMxpUsersFrom, ElementsAre("10.0.0.1")) << "the count decides";
    EXPECT_EQ(settings->m_iFileTransTimeout, 2);
    EXPECT_EQ(settings->m_iSocketTimeout, 30);
    EXPECT_EQ(settings->m_iS2SPort, 5222);
    EXPECT_EQ(VKMXPManagerSettings().m_iS2SPort, 10000);
    EXPECT_EQ(settings->m_strApns2ProductionUrl, vk::settings::kApns2ProductionUrl);
    EXPECT_EQ(configuration.getMXPSettingsObject(), settings);
    EXPECT_EQ(configuration.getMXPManagerSettings(false), settings);
}

TEST_F(GatewaySettingsTest, AFileThatCannotBeUnderstoodGivesNothingAndSaysWhy)
{
    const std::string required = kRequired;
    auto without = [&](const std::string& element) {
        std::string text = required;
        const std::size_t begin = text.find("<" + element + ">"), end = text.find("</" + element + ">");
        return text.erase(begin, end + element.size() + 3 - begin);
    };
    const std::pair<std::string, std::string> cases[] = {
        {without("mxp_carrier"), "The element 'mxp_carrier' is missing."},
        {without("adv_settings"), "The element 'adv_settings' is missing."},
        {required + "<push_notification/>", "The element 'apns_enabled' is missing."},
        {required + "<socket_timeout>soon</socket_timeout>", "The value 'soon' of 'socket_timeout' is no number."},
        {required + "<unclosed>", "mismatched tag"}};
    for (const auto& [elements, why] : cases) {
        EXPECT_EQ(Read(elements), nullptr);
        EXPECT_THAT(configuration.getGatewaySettingsError(), AllOf(HasSubstr("mxp_config.xml: "), HasSubstr(why)));
        EXPECT_EQ(configuration.getMXPSettingsObject(), nullptr);
        const std::string before = File();
        VKMXPManagerSettings other;
        const bool parsed = why != "mismatched tag";
        EXPECT_EQ(configuration.setMXPManagerSettings(&other), parsed);
        EXPECT_EQ(File() != before, parsed) << "a file that cannot be parsed is left alone";
    }
}

TEST_F(GatewaySettingsTest, WritesWhatItReadsAndKeepsWhatItDoesNotKnow)
{
    VKMXPManagerSettings* settings =
        Read(std::string(kRequired) + kPush + "<new_thing level=\"3\"><deep>x</deep></new_thing>");
    ASSERT_NE(settings, nullptr) << configuration.getGatewaySettingsError();
    EXPECT_TRUE(settings->m_bApnsEnabled);
    settings->m_strDomain = "a<b>&\"c\"";
    settings->m_vecAllowedMxpUsersFrom = {"1.1.1.1", "2.2.2.2", "3.3.3.3"};
    settings->m_vecS2SProfiles.resize(2);
    VKS2SProfile& second = settings->m_vecS2SProfiles[1];
    settings->m_vecS2SProfiles[0].m_iAuthMechanism = 1;
    second.m_strName = "second";
    second.m_iAuthMechanism = 2;
    second.m_bEnabled = true;
    settings->m_strApns2Topic = "com.example.pager";
    ASSERT_TRUE(configuration.setMXPManagerSettings(settings)) << configuration.getGatewaySettingsError();
    for (const char* written :
         {"<new_thing level=\"3\">", "<auth_mechanism value=\"2\">Dial Back</auth_mechanism>",
          "<auth_mechanism value=\"1\">SASL-External</auth_mechanism>", "<topic>com.example.pager</topic>"})
        EXPECT_THAT(File(), HasSubstr(written));
    EXPECT_THAT(File(), Not(HasSubstr("fcm_notification"))) << "an extension at its default is not written";

    VKMXPManagerSettings* again = configuration.getMXPManagerSettings(true);
    ASSERT_NE(again, nullptr) << configuration.getGatewaySettingsError();
    EXPECT_EQ(again->m_strDomain, "a<b>&\"c\"");
    EXPECT_THAT(again->m_vecAllowedMxpUsersFrom, ElementsAre("1.1.1.1", "2.2.2.2", "3.3.3.3"));
    ASSERT_EQ(again->m_vecS2SProfiles.size(), 2U);
    EXPECT_EQ(again->m_vecS2SProfiles[1].m_strName, "second");
    EXPECT_EQ(again->m_vecS2SProfiles[1].m_iAuthMechanism, 2);
    EXPECT_TRUE(again->m_vecS2SProfiles[1].m_bEnabled);

    again->m_vecS2SProfiles.erase(again->m_vecS2SProfiles.begin());
    again->m_vecAllowedMxpUsersFrom.clear();
    ASSERT_TRUE(configuration.setMXPManagerSettings(again));
    EXPECT_THAT(File(), Not(HasSubstr("ip_address")));
    EXPECT_EQ(configuration.getMXPManagerSettings(true)->m_vecS2SProfiles.size(), 1U);

    again->m_strHost = "control \x01 character";
    const std::string before = File();
    EXPECT_FALSE(configuration.setMXPManagerSettings(again));
    EXPECT_EQ(File(), before);
}

/// Sets every row of a table to something of its own, writes and reads the record; what comes back must be the same.
template <class Record, class Table, class Set, class Get> void ExpectAllBack(const Table& table, Set set, Get get)
{
    Record record;
    int number = 100;
    vk::ForEachField(table, [&](const auto& row) {
        auto& value = row.of(record);
        using Value = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Value, std::string>)
            value = "text " + std::to_string(++number);
        else if constexpr (std::is_same_v<Value, bool>)
            value = !value;
        else if constexpr (std::is_arithmetic_v<Value>)
            value = static_cast<Value>(++number);
    });
    VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
    ASSERT_TRUE((configuration.*set)(&record)) << configuration.getGatewaySettingsError();
    for (const bool force : {false, true}) {
        Record* const back = (configuration.*get)(force);
        ASSERT_NE(back, nullptr) << configuration.getGatewaySettingsError();
        vk::ForEachField(table, [&](const auto& row) {
            using Value = typename std::decay_t<decltype(row)>::Value;
            if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, std::string>) {
                EXPECT_EQ(row.of(record), row.of(*back)) << row.name;
            }
        });
    }
}

TEST_F(GatewaySettingsTest, EveryValueComesBackFromANewFile)
{
    using Class = VKConfiguration;
    ExpectAllBack<VKMXPManagerSettings>(vk::settings::kMXPManagerFields, &Class::setMXPManagerSettings,
                                        &Class::getMXPManagerSettings);
    ExpectAllBack<VKXMPPGatewaySettings>(vk::settings::kXMPPGatewayFields, &Class::setXMPPGatewaySettings,
                                         &Class::getXMPPGatewaySettings);
    EXPECT_THAT(root.Read("config/xmppgateway_config.xml"), HasSubstr("<greetings-msg enable=\"true\">text"));
}

TEST_F(GatewaySettingsTest, WhoReadsAfreshDisturbsNobody)
{
    const VKMXPManagerSettings* const held = Read(kRequired);
    std::atomic<bool> done{false};
    std::atomic<int> seen{0};
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i)
        readers.emplace_back([&] {
            while (!done)
                if (const VKMXPManagerSettings* const now = configuration.getMXPManagerSettings(false))
                    seen += now->m_strHost == "h" && now->m_vecAllowedMxpUsersFrom.size() == 1 ? 1 : -1000000;
        });
    std::vector<std::thread> writers;
    for (int i = 0; i < 2; ++i)
        writers.emplace_back([&] {
            for (int read = 0; read < 50; ++read)
                EXPECT_NE(configuration.getMXPManagerSettings(true), held);
        });
    for (std::thread& writer : writers)
        writer.join();
    done = true;
    for (std::thread& reader : readers)
        reader.join();
    EXPECT_GT(seen, 0);
    EXPECT_EQ(held->m_strHost, "h") << "as long as it is held";
}

TEST_F(GatewaySettingsTest, TheManualsExampleIsGood)
{
    std::ifstream manual(VK_SOURCE_DIR "/docs/push.md");
    const std::string text{std::istreambuf_iterator<char>(manual), {}};
    const std::size_t begin = text.find("<?xml"), end = text.find("```", begin);
    ASSERT_NE(end, std::string::npos);
    root.Write("config/mxp_config.xml", text.substr(begin, end - begin));
    const VKMXPManagerSettings* settings = configuration.getMXPManagerSettings(true);
    ASSERT_NE(settings, nullptr) << configuration.getGatewaySettingsError();
    EXPECT_TRUE(settings->m_bApns2Enabled && settings->m_bFcmEnabled);
    EXPECT_EQ(settings->m_strApns2KeyId, "ABC123DEFG");
}

TEST(GeneralPolicy, CarriesOnlyWhatIsPresent)
{
    VKMXPManagerSettings settings;
    EXPECT_TRUE(VKConfiguration::ConvertJSONToGeneralPolicyData(
        R"({"GeneralPolicy":{"permissions":{"view_msg":true,"settings":4,"send_msg":"yes","future":1}}})", &settings));
    EXPECT_EQ(settings.m_objPolicyPermissions.m_optAccessInbox, true);
    EXPECT_EQ(settings.m_objPolicyPermissions.m_optSettings, 4);
    EXPECT_FALSE(settings.m_objPolicyPermissions.m_optSendMessage.has_value()) << "a text is no bool";
    EXPECT_EQ(VKConfiguration::ConvertGeneralPolicyToJSON(&settings),
              R"({"GeneralPolicy":{"permissions":{"future":1,"new":true,"settings":4,"view_msg":true},)"
              R"("settings":{"new":false}}})");

    settings.m_objPolicySettings.m_objCritical.m_optCounter = 3;
    settings.m_objPolicySettings.m_optPassword = "";
    settings.m_objPolicyPermissions = {};
    settings.m_objPolicyPermissions.m_optLastUpdated = 9;
    const std::string json = VKConfiguration::ConvertGeneralPolicyToJSON(&settings);
    EXPECT_EQ(json, R"({"GeneralPolicy":{"permissions":{"future":1,"last_updated":9,"new":false},)"
                    R"("settings":{"alert_crit":{"counter":3},"master_pswrd":"","new":true}}})");
    VKMXPManagerSettings back;
    EXPECT_TRUE(VKConfiguration::ConvertJSONToGeneralPolicyData(json, &back));
    EXPECT_EQ(back.m_objPolicySettings.m_objCritical.m_optCounter, 3);
    EXPECT_FALSE(back.m_objPolicySettings.m_objCritical.m_optTone.has_value());
}

TEST(GeneralPolicy, BadJsonLeavesItEmpty)
{
    const std::string deep = std::string(500, '[') + std::string(500, ']');
    for (const std::string& text : {std::string(), std::string("{\"GeneralPolicy\":"), std::string("[1]"), deep}) {
        VKMXPManagerSettings settings;
        settings.m_objPolicySettings.m_optAutoDelete = true;
        EXPECT_FALSE(VKConfiguration::ConvertJSONToGeneralPolicyData(text, &settings));
        EXPECT_FALSE(settings.m_objPolicySettings.m_optAutoDelete.has_value());
    }
}

} // namespace
