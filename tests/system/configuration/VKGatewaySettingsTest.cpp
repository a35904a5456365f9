#include "TempDir.h"
#include "VKConfiguration.h"

#include <fstream>
#include <gmock/gmock.h>

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
    EXPECT_TRUE(settings->m_bEnabled);
    EXPECT_EQ(settings->m_iServerPort, 5223);
    EXPECT_EQ(settings->m_lMxpCarrier, 7);
    EXPECT_TRUE(settings->m_bEmergencyModeEnabled);
    EXPECT_THAT(settings->m_vecAllowedMxpUsersFrom, ElementsAre("10.0.0.1")) << "the count decides";
    EXPECT_EQ(settings->m_iFileTransTimeout, 2);
    EXPECT_EQ(settings->m_iSocketTimeout, 30);
    EXPECT_TRUE(settings->m_bAutoAuthEnabled);
    EXPECT_FALSE(settings->m_bApnsEnabled);
    EXPECT_EQ(settings->m_iS2SPort, 5222);
    EXPECT_EQ(VKMXPManagerSettings().m_iS2SPort, 10000);
    EXPECT_EQ(settings->m_strApns2ProductionUrl, vk::settings::kApns2ProductionUrl);
    EXPECT_FALSE(settings->m_objPolicySettings.m_optAutoDelete.has_value());
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
    const struct
    {
        std::string elements, why;
    } cases[] = {
        {without("mxp_carrier"), "The element 'mxp_carrier' is missing."},
        {without("adv_settings"), "The element 'adv_settings' is missing."},
        {required + "<push_notification/>", "The element 'apns_enabled' is missing."},
        {required + "<socket_timeout>soon</socket_timeout>", "The value 'soon' of 'socket_timeout' is no number."},
        {required + "<unclosed>", "mismatched tag"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Read(c.elements), nullptr);
        EXPECT_THAT(configuration.getGatewaySettingsError(), HasSubstr(c.why));
        EXPECT_THAT(configuration.getGatewaySettingsError(), HasSubstr("mxp_config.xml: "));
        EXPECT_EQ(configuration.getMXPSettingsObject(), nullptr);
        const std::string before = File();
        VKMXPManagerSettings other;
        EXPECT_EQ(configuration.setMXPManagerSettings(&other), c.why != "mismatched tag");
        EXPECT_EQ(File() == before, c.why == "mismatched tag") << "a file that cannot be parsed is left alone";
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
    settings->m_vecS2SProfiles[0].m_iAuthMechanism = 1;
    settings->m_vecS2SProfiles[1].m_strName = "second";
    settings->m_vecS2SProfiles[1].m_iAuthMechanism = 2;
    settings->m_vecS2SProfiles[1].m_bEnabled = true;
    settings->m_strApns2Topic = "com.example.pager";
    ASSERT_TRUE(configuration.setMXPManagerSettings(settings)) << configuration.getGatewaySettingsError();
    EXPECT_THAT(File(), HasSubstr("<new_thing level=\"3\">"));
    EXPECT_THAT(File(), HasSubstr("<auth_mechanism value=\"2\">Dial Back</auth_mechanism>"));
    EXPECT_THAT(File(), HasSubstr("<auth_mechanism value=\"1\">SASL-External</auth_mechanism>"));
    EXPECT_THAT(File(), HasSubstr("<topic>com.example.pager</topic>"));
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

/// Every row of a table is set to something of its own; what comes back must be the same.
template <class Table, class Record> void FillAll(const Table& table, Record& record)
{
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
}

template <class Table, class Record> void ExpectSame(const Table& table, Record& one, Record& other)
{
    vk::ForEachField(table, [&](const auto& row) {
        using Value = typename std::decay_t<decltype(row)>::Value;
        if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, std::string>) {
            EXPECT_EQ(row.of(one), row.of(other)) << row.name;
        }
    });
}

TEST_F(GatewaySettingsTest, EveryValueComesBackFromANewFile)
{
    VKMXPManagerSettings manager;
    FillAll(vk::settings::kMXPManagerFields, manager);
    ASSERT_TRUE(configuration.setMXPManagerSettings(&manager)) << configuration.getGatewaySettingsError();
    VKMXPManagerSettings* readManager = configuration.getMXPManagerSettings(true);
    ASSERT_NE(readManager, nullptr) << configuration.getGatewaySettingsError();
    ExpectSame(vk::settings::kMXPManagerFields, manager, *readManager);

    VKXMPPGatewaySettings gateway;
    FillAll(vk::settings::kXMPPGatewayFields, gateway);
    ASSERT_TRUE(configuration.setXMPPGatewaySettings(&gateway)) << configuration.getGatewaySettingsError();
    VKXMPPGatewaySettings* readGateway = configuration.getXMPPGatewaySettings(true);
    ASSERT_NE(readGateway, nullptr) << configuration.getGatewaySettingsError();
    ExpectSame(vk::settings::kXMPPGatewayFields, gateway, *readGateway);
    EXPECT_THAT(root.Read("config/xmppgateway_config.xml"), HasSubstr("<greetings-msg enable=\"true\">text"));
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
