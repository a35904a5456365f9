#include <gtest/gtest.h>

#include "PacketKit.h"

/// What is particular to single kinds of packets: where writer and reader differ, what may be left out, what is
/// refused.

namespace {

struct Case
{
    const char* what;
    const char* packet;
    const char* parameters;
    const char* error; ///< code and text; empty when the request is read
};

class RequestOfAClient : public testing::TestWithParam<Case>
{
};

TEST_P(RequestOfAClient, IsReadOrRefusedAsPromised)
{
    std::string error;
    const auto packet = kit::Received<VKMXPmBase>(kit::Request(GetParam().packet, GetParam().parameters), &error);
    EXPECT_EQ(error, GetParam().error);
    EXPECT_EQ(packet != nullptr, error.empty());
}

constexpr char kInvalid[] = "1008 NULL modal object.";
constexpr char kNoAttribute[] = "1007 XML parsing error. No attribute by given name.";

INSTANTIATE_TEST_SUITE_P(
    Kinds, RequestOfAClient,
    testing::Values(
        Case{"SendMsgMayBeEmpty", "send-msg", "", ""},
        Case{"LocationNeedsBoth", "send-msg", "<location latitude='1'/>", kNoAttribute},
        Case{"StatusNeedsAJob", "get-msg-status", "<jobid/>", kInvalid},
        Case{"ActionNeedsAName", "exec-resp-action", "<name/><params/>", kInvalid},
        Case{"ActionNeedsParams", "exec-resp-action", "<name>n</name>",
             "1007 XML parsing error. Unable to find child node 'params'."},
        Case{"ParamNeedsAName", "exec-resp-action", "<name>n</name><params><param>v</param></params>", kNoAttribute},
        Case{"ActionListHasNoParameters", "getlist-resp-action", "<what>ever</what>", ""},
        Case{"RecipientsNeedRequires", "getlist-recipients",
             "<filter><text/><attribute/><groups enabled='1'/></filter><page-nr/><page-size/>",
             "1007 XML parsing error. Unable to find child node 'requires'."},
        Case{"ActivateNeedsAnAddress", "activate",
             "<activation-key>k</activation-key><ip-address/><platform/><client/>", kInvalid},
        Case{"WipeNeedsThreeElements", "wipe",
             "<messages enable='true'/><saved-responses enable='x'/><favorites enable=''/>", ""},
        Case{"WipeOfReadNeedsItsFlag", "wipe",
             "<messages enable='1'><received><read/></received></messages><saved-responses enable=''/>"
             "<favorites enable=''/>",
             kNoAttribute},
        Case{"PermissionsMayBeEmpty", "set-permissions", "", ""},
        Case{"PermissionNeedsItsFlag", "set-permissions", "<recv-msg/>", kNoAttribute},
        Case{"SettingsMayBeEmpty", "set-settings", "<system-conf/><alert-conf><tone-normal/></alert-conf>", ""},
        Case{"PasswordMayBeMissing", "set-settings", "<system-conf><master-passwd enable='true'/></system-conf>", ""},
        Case{"PasswordMayNotBeEmpty", "set-settings",
             "<system-conf><master-passwd><password/></master-passwd></system-conf>", kInvalid}),
    [](const auto& test) { return test.param.what; });

template <class Packet> std::unique_ptr<Packet> Read(const std::string& parameters)
{
    std::string error;
    auto packet = kit::Received<Packet>(kit::Request(Packet::kElement, parameters), &error);
    EXPECT_TRUE(packet) << error;
    return packet ? std::move(packet) : std::make_unique<Packet>();
}

template <class Packet> std::string Parameters(const std::string& read)
{
    return Read<Packet>(read)->GenerateParamXML();
}

TEST(SendMsgPacket, ReadsItsFlagsByTheirOwnWords)
{
    const auto flags = [](const std::string& word) {
        const auto packet =
            Read<VKMXPmSendMsg>("<is-2way>" + word + "</is-2way><is-confidential-msg>" + word +
                                "</is-confidential-msg><reply-to-recipients notify-me='" + word + "'/>");
        return std::array{packet->m_bTwoWay, packet->m_bConfidential, packet->m_bNotifyMe};
    };
    EXPECT_EQ(flags("true"), (std::array{true, true, true}));
    EXPECT_EQ(flags("1"), (std::array{false, true, false}));
    EXPECT_EQ(flags("0"), (std::array{false, false, false}));
    EXPECT_EQ(flags("TRUE"), (std::array{false, false, false}));
    EXPECT_EQ(flags(" true"), (std::array{false, false, false}));
}

TEST(SendMsgPacket, TakesEveryChildOfAListAndWritesAllOfItsElements)
{
    const auto packet = Read<VKMXPmSendMsg>("<recipients count='9'><name>a</name><group>b</group></recipients>");
    EXPECT_EQ(packet->m_vecRecipients, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(VKMXPmSendMsg().GenerateParamXML(),
              "<recipients count='0'>\n</recipients>\n<subject></subject>\n<message></message>\n<is-2way>0</is-2way>\n"
              "<severity>0</severity>\n<expiration>0</expiration>\n<response-choices count='0'>\n</response-choices>\n"
              "<location latitude='0' longitude='0'/>\n<is-confidential-msg>0</is-confidential-msg>\n"
              "<reply-to-recipients count='0'>\n</reply-to-recipients>\n\n");
}

TEST(SendMsgPacket, ReadsTheFlagOfItsResultByTheRuleForFlags)
{
    const auto disabled = [](const std::string& word) {
        const auto packet =
            kit::Received<VKMXPmSendMsg>(kit::Response("send-msg", "",
                                                       "<result type='xml'><jobid>J</jobid><total-files>3</total-files>"
                                                       "<cc-resp-disabled>" +
                                                           word + "</cc-resp-disabled></result>"));
        EXPECT_TRUE(packet && packet->m_iTotalFiles == 3 && packet->m_strJobID == "J");
        return packet && packet->m_bCopyResponsesDisabled;
    };
    for (const char* word : {"1", "true", "yes", "x"})
        EXPECT_TRUE(disabled(word)) << word;
    for (const char* word : {"", "0", "No", "FALSE"})
        EXPECT_FALSE(disabled(word)) << word;
}

TEST(GetMsgStatusPacket, WithoutJobsIsOneElementThatClosesItself)
{
    VKMXPmGetMsgStatus packet;
    EXPECT_EQ(packet.GenerateResponseXML(), "<statuses count='0'/>\n");
    packet.m_vecStatuses.resize(1);
    EXPECT_EQ(packet.GenerateResponseXML(),
              "<statuses count='1'>\n<job id='' to='' status='' at='0'></job>\n</statuses>");
}

TEST(ExecRespActionPacket, ResultComesBackWithoutTheFrameItStandsIn)
{
    for (const char* text : {"done", "", " blanks kept ", "\nfeeds\n\n"}) {
        VKMXPmExecRespAction sent;
        sent.m_iPacketType = VKMXPmBase::kResponse;
        sent.m_eResponseResultType = eRespResultXml;
        sent.m_strResult = text;
        const auto received = kit::Received<VKMXPmExecRespAction>(sent.GenerateXML());
        ASSERT_TRUE(received);
        EXPECT_EQ(received->m_strResult, text);
    }
    const auto inlined = kit::Received<VKMXPmExecRespAction>(
        kit::Response("exec-resp-action", "<name>n</name><params/>", "<result type='xml'>done</result>"));
    ASSERT_TRUE(inlined);
    EXPECT_EQ(inlined->m_strResult, "done");
}

TEST(GetListReceiversPacket, DoesNotReadWhatItWrites)
{
    VKMXPmGetListReceivers packet;
    std::string error;
    EXPECT_FALSE(kit::Received<VKMXPmGetListReceivers>(packet.GenerateXML(), &error));
    EXPECT_EQ(error, kNoAttribute);
    EXPECT_EQ(packet.GenerateResponseXML(),
              "<receivers count='0' page_nr='1' page_size='1' is_last='false'>\n</receivers>");
    const auto read = Read<VKMXPmGetListReceivers>(
        "<name-filter/><attr-filter/><get-firstname enable='yes'/><get-lastname enable='no'/>"
        "<get-description enable=''/><get-attributes enable='1'/><get-properties enable='False'>true</get-properties>"
        "<page-nr/><page-size>5</page-size>");
    EXPECT_TRUE(read->m_bGetFirstName && read->m_bGetAttributes);
    EXPECT_FALSE(read->m_bGetLastName || read->m_bGetDescription || read->m_bGetProperties);
    EXPECT_EQ(read->m_iPageNumber, 0);
    EXPECT_EQ(read->m_iPageSize, 5);
}

TEST(GetRecipientsPacket, TakesNoIdsForNoneAndAnswersWithOneLastPage)
{
    std::string details;
    vk::mxp::AppendFields<vk::mxp::Form::Read>(details, VKMXPmRecipientDetails(), VKMXPmRecipientDetails::Fields());
    const auto packet = Read<VKMXPmGetRecipients>(
        "<receivers/><groups><ids><id>3</id><x>4x</x></ids></groups><requires>" + details + "</requires>");
    EXPECT_TRUE(packet->m_vecReceiverIDs.empty());
    EXPECT_EQ(packet->m_vecGroupIDs, (std::vector<std::int32_t>{3, 4}));
    EXPECT_EQ(packet->GenerateParamXML(), "");
    EXPECT_EQ(packet->GenerateResponseXML(),
              "<recipients count='0' page_nr='1' page_size='0' is_last='true'>\n</recipients>");
}

TEST(RecipientOfADirectory, TellsWhoCoversOnlyWhileItIsDisabled)
{
    const auto status = [](bool enabled) {
        VKMXPmGetListRecipients packet;
        packet.m_vecRecipients.resize(1);
        packet.m_vecRecipients[0].m_bStatusEnabled = enabled;
        packet.m_vecRecipients[0].m_tDisabledTo = 4294967295;
        packet.m_vecRecipients[0].m_strCoverBy = "bob";
        const std::string text = packet.GenerateResponseXML();
        return text.substr(text.find("<status "));
    };
    EXPECT_EQ(status(true), "<status enabled=\"true\">\n</status>\n</recipient>\n</recipients>");
    EXPECT_EQ(status(false), "<status enabled=\"false\">\n<disabled from=\"0\" to=\"4294967295\"/>\n"
                             "<cover-by>bob</cover-by>\n</status>\n</recipient>\n</recipients>");
}

TEST(DirectoryResponse, OfTenThousandRecipientsIsWrittenAndReadWhole)
{
    VKMXPmGetRecipients packet;
    packet.m_iPacketType = VKMXPmBase::kResponse;
    packet.m_eResponseResultType = eRespResultXml;
    packet.m_strParameters = "<parameters><receivers/><groups/><requires>";
    vk::mxp::AppendFields<vk::mxp::Form::Read>(packet.m_strParameters, packet.m_objDetails,
                                               VKMXPmRecipientDetails::Fields());
    packet.m_strParameters += "</requires></parameters>\n";
    packet.m_vecRecipients.resize(10000);
    for (auto& recipient : packet.m_vecRecipients)
        recipient.m_vecAttributes = {"lang=de", "shift=night", "floor=3"};
    std::string error;
    const auto received = kit::Received<VKMXPmGetRecipients>(packet.GenerateXML(), &error);
    ASSERT_TRUE(received) << error;
    vk::mxp::ReadFields(received->m_objResponseResultNode, *received, VKMXPmGetRecipients::ResultFields());
    EXPECT_TRUE(vk::mxp::SameValue(received->m_vecRecipients, packet.m_vecRecipients));
}

TEST(WipePacket, ErasesOnlyWhatIsSaid)
{
    const auto packet =
        Read<VKMXPmDeleteData>("<messages enable='true'/><saved-responses enable='1'/><favorites enable='TRUE'/>");
    EXPECT_TRUE(packet->m_bMessages);
    EXPECT_FALSE(packet->m_bReceivedRead || packet->m_bReceivedUnread || packet->m_bSent || packet->m_bDraft);
    EXPECT_FALSE(packet->m_bFailed || packet->m_bSavedResponses || packet->m_bFavorites);
}

TEST(ActivatePacket, TakesTheAdvanceModeByTheRuleForFlags)
{
    const std::string rest = "<activation-key>k</activation-key><ip-address>i</ip-address><platform/><client/>";
    EXPECT_TRUE(Read<VKMXPmActivate>(rest + "<is-advance-mode enable='1'/>")->m_bAdvanceMode);
    EXPECT_FALSE(Read<VKMXPmActivate>(rest + "<is-advance-mode enable='no'/>")->m_bAdvanceMode);
    EXPECT_FALSE(Read<VKMXPmActivate>(rest)->m_bAdvanceMode);
    EXPECT_EQ(VKMXPmActivate().GenerateResponseXML(), "");
    EXPECT_EQ(VKMXPmSetMyStatus().GenerateResponseXML(), "");
}

TEST(PermissionsPacket, SaysAllUnlessToldOtherwise)
{
    VKMXPmSetPermissions packet;
    const auto written = [&] { return packet.GenerateParamXML(); };
    const auto eight = [](const char* inbox, const char* receive, const char* others) {
        std::string text =
            std::string("<access-inbox enable='") + inbox + "'/>\n<recv-msg enable='" + receive + "'/>\n";
        for (const char* name :
             {"send-msg", "query-msg-stat", "conf-msg", "access-fav", "query-recvr", "access-resp-action"})
            text += std::string("<") + name + " enable='" + others + "'/>\n";
        return text;
    };
    EXPECT_EQ(written(), eight("false", "false", "false") + "<settings value='0'/>\n");
    packet.SetLeastPerms();
    EXPECT_EQ(written(), eight("true", "false", "false") + "<settings value='4'/>\n");
    packet.SetFullPerms();
    EXPECT_EQ(written(), eight("true", "true", "true") + "<settings value='0'/>\n");
    packet.SetEmergencyPerms();
    EXPECT_EQ(written(), eight("true", "true", "false") + "<settings value='0'/>\n");
    static_cast<VKMXPClientPermissions&>(packet) = {};
    packet.m_optConfirmMessage = true;
    EXPECT_EQ(written(), "<conf-msg enable='true'/>\n");
}

TEST(PermissionsPacket, ReadsTheTextOfSettingsButWritesAnAttribute)
{
    const auto packet = Read<VKMXPmSetPermissions>("<access-inbox enable='true'/><settings value='7'/>");
    EXPECT_EQ(packet->m_optSettings, (std::optional<std::int32_t>{0}));
    EXPECT_EQ(packet->m_optReceiveMessage, (std::optional<bool>{false})) << "missing, yet present by default";
    EXPECT_EQ(Read<VKMXPmSetPermissions>("<settings>7</settings>")->m_optSettings, 7);
}

TEST(SettingsPacket, WritesBackOnlyWhatItWasTold)
{
    struct Turn
    {
        const char* read;
        const char* written;
    };
    const Turn table[] = {
        {"", ""},
        {"<system-conf><master-passwd/></system-conf><session-conf/><display-conf/><messaging-conf/><alert-conf/>", ""},
        {"<session-conf><auto-login-at-start enable='1'/></session-conf>",
         "<session-conf>\n<auto-login-at-start enable='false'/>\n</session-conf>\n"},
        {"<system-conf><master-passwd><prompt-when-comes-to-fg enable='true'/></master-passwd></system-conf>",
         "<system-conf>\n<master-passwd>\n<prompt-when-comes-to-fg enable='true'>\n</prompt-when-comes-to-fg>\n"
         "</master-passwd>\n</system-conf>\n"},
        {"<messaging-conf><clean-draft-msg-after/></messaging-conf>",
         "<messaging-conf>\n<clean-draft-msg-after>0</clean-draft-msg-after>\n</messaging-conf>\n"},
        {"<alert-conf><tone-critical counter='3'/><tone-normal>5</tone-normal><tone-warning/></alert-conf>",
         "<alert-conf>\n<tone-normal>5</tone-normal>\n<tone-critical counter='3'></tone-critical>\n</alert-conf>\n"},
    };
    for (const Turn& turn : table)
        EXPECT_EQ(Parameters<VKMXPmSetSettings>(turn.read), turn.written) << turn.read;
}

} // namespace
