#include <gtest/gtest.h>

#include "PacketKit.h"

namespace {

TEST(MessagePacket, WritesAllItsElementsAndEscapesWhatItMust)
{
    VKMXPmMessage message;
    message.m_strSubject = "&><'\"\t\n\r";
    EXPECT_EQ(message.GenerateParamXML(), "<job-id></job-id>\n<is-2way>0</is-2way>\n<sender></sender>\n"
                                          "<dispatch-at>0</dispatch-at>\n<severity>0</severity>\n"
                                          "<expiration>0</expiration>\n<is-confidential>0</is-confidential>\n"
                                          "<subject>&amp;&gt;&lt;&apos;&quot;&#x9;&#xa;&#xd;</subject>\n<body></body>\n"
                                          "<response-choices count='0'>\n</response-choices>\n"
                                          "<attachments count='0'>\n</attachments>\n\n");
}

TEST(MessagePacket, ToleratesWhatItsReaderTolerates)
{
    const std::string head = "<job-id>1</job-id><is-2way>2</is-2way><sender>s</sender><dispatch-at/>"
                             "<severity>2x</severity><expiration>abc</expiration>"
                             "<is-confidential> +1</is-confidential><subject/>";
    const auto read = [&](const std::string& body, const std::string& file, std::string* error) {
        return kit::Received<VKMXPmMessage>(
            kit::Request("message", head + body + "<response-choices count='9'><choice>a</choice><other/>" +
                                        "</response-choices><unknown/><attachments>" + file + "</attachments>"),
            error);
    };
    std::string error;
    const auto message = read("<body>b</body><body>never read</body>", "<x id='i' mime='m'>f</x>", &error);
    ASSERT_TRUE(message) << error;
    EXPECT_EQ(message->GenerateParamXML(),
              "<job-id>1</job-id>\n<is-2way>0</is-2way>\n<sender>s</sender>\n<dispatch-at>0</dispatch-at>\n"
              "<severity>2</severity>\n<expiration>0</expiration>\n<is-confidential>1</is-confidential>\n"
              "<subject></subject>\n<body>b</body>\n<response-choices count='2'>\n<choice>a</choice>\n"
              "<choice></choice>\n</response-choices>\n<attachments count='1'>\n"
              "<file id='i' mime='m' secure-key=''>f</file>\n</attachments>\n\n");
    EXPECT_FALSE(read("<body> </body>", "", &error)) << "a body of blanks is an empty one";
    EXPECT_EQ(error, "1008 NULL modal object.");
    EXPECT_FALSE(read("<body>b</body>", "<x id='i'>f</x>", &error));
    EXPECT_EQ(error, "1007 XML parsing error. No attribute by given name.");
}

} // namespace
