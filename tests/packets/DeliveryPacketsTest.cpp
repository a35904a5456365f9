#include <gtest/gtest.h>

#include "PacketKit.h"

namespace {

TEST(MessagePacket, IsWrittenToTheByte)
{
    VKMXPmMessage message;
    EXPECT_EQ(message.GenerateParamXML(), "<job-id></job-id>\n<is-2way>0</is-2way>\n<sender></sender>\n"
                                          "<dispatch-at>0</dispatch-at>\n<severity>0</severity>\n"
                                          "<expiration>0</expiration>\n<is-confidential>0</is-confidential>\n"
                                          "<subject></subject>\n<body></body>\n"
                                          "<response-choices count='0'>\n</response-choices>\n"
                                          "<attachments count='0'>\n</attachments>\n\n");
    message.m_strJobID = "J_1";
    message.m_bTwoWay = true;
    message.m_strSender = "Ops";
    message.m_tDispatchTime = 1700000000;
    message.m_iSeverity = 3;
    message.m_iExpiration = -1;
    message.m_bConfidential = true;
    message.m_strSubject = "&><'\"\t\n\r";
    message.m_strBody = "Fire";
    message.m_vecResponseChoices = {"Yes", "N&o"};
    message.m_vecAttachments = {{"a'b", "text/plain", "/tmp/<a>", "k-1"}};
    message.m_strCustomParameters = "<custom-parameters><x/></custom-parameters>";
    message.m_iSequence = 12;
    EXPECT_EQ(message.GenerateXML(),
              "<message xmlns='vardock:mxp:request' type='request' seq='12'>\n<parameters>\n<job-id>J_1</job-id>\n"
              "<is-2way>1</is-2way>\n<sender>Ops</sender>\n<dispatch-at>1700000000</dispatch-at>\n"
              "<severity>3</severity>\n<expiration>-1</expiration>\n<is-confidential>1</is-confidential>\n"
              "<subject>&amp;&gt;&lt;&apos;&quot;&#x9;&#xa;&#xd;</subject>\n<body>Fire</body>\n"
              "<response-choices count='2'>\n<choice>Yes</choice>\n<choice>N&amp;o</choice>\n</response-choices>\n"
              "<attachments count='1'>\n<file id='a&apos;b' mime='text/plain' secure-key='k-1'>/tmp/&lt;a&gt;</file>\n"
              "</attachments>\n<custom-parameters><x/></custom-parameters>\n</parameters>\n</message>");
}

TEST(MessagePacket, ToleratesWhatItsReaderTolerates)
{
    const auto read = [](const std::string& flag, const std::string& choices, const std::string& files,
                         VKMXPmEnvelope& envelope) -> const VKMXPmMessage* {
        envelope.ParseXML(kit::Envelope(kit::Request(
            "message", "<job-id>1</job-id><is-2way>" + flag +
                           "</is-2way><sender>s</sender><dispatch-at/>"
                           "<severity>2x</severity><expiration>abc</expiration><is-confidential>1</is-confidential>"
                           "<subject/><body> </body><body>never read</body><response-choices count='9'>" +
                           choices + "</response-choices><unknown/><attachments>" + files + "</attachments>")));
        return envelope.GetCount() ? static_cast<VKMXPmMessage*>(envelope.Get(0)) : nullptr;
    };
    VKMXPmEnvelope blankBody;
    EXPECT_EQ(read("1", "", "", blankBody), nullptr) << "a body of blanks is an empty one";
    EXPECT_EQ(blankBody.m_iErrorCode, 1008);

    const auto tolerant = [&](const std::string& text) {
        auto message = std::make_unique<VKMXPmMessage>();
        EXPECT_TRUE(message->ParseXML(text));
        return message;
    };
    std::string text = kit::Request(
        "message", "<job-id>1</job-id><is-2way>2</is-2way><sender>s</sender><dispatch-at/><severity>2x</severity>"
                   "<expiration>abc</expiration><is-confidential> +1</is-confidential><subject/><body>b</body>"
                   "<response-choices count='9'><choice>a</choice><other/></response-choices><unknown/>"
                   "<attachments><x id='i' mime='m'>f</x></attachments>");
    const auto message = tolerant(text);
    EXPECT_FALSE(message->m_bTwoWay);
    EXPECT_TRUE(message->m_bConfidential);
    EXPECT_EQ(message->m_tDispatchTime, 0);
    EXPECT_EQ(message->m_iSeverity, 2);
    EXPECT_EQ(message->m_iExpiration, 0);
    EXPECT_EQ(message->m_vecResponseChoices, (std::vector<std::string>{"a", ""}));
    ASSERT_EQ(message->m_vecAttachments.size(), 1u);
    EXPECT_EQ(message->m_vecAttachments[0].m_strFileName, "f");
    EXPECT_EQ(message->m_vecAttachments[0].m_strSecureKey, "");

    VKMXPmEnvelope noMime;
    EXPECT_FALSE(noMime.ParseXML(kit::Envelope(text.erase(text.find(" mime='m'"), 9))));
    EXPECT_EQ(noMime.m_iErrorCode, 1007);
    EXPECT_EQ(noMime.m_strErrorText, "XML parsing error. No attribute by given name.");
}

} // namespace
