#include <gtest/gtest.h>

#include <thread>

#include "PacketKit.h"

namespace {

/// A packet that answers with XML of its own.
class Query : public VKMXPmBase
{
public:
    const char* GetName() const override { return "query"; }
    std::string GenerateParamXML() const override { return "<p>own</p>\n"; }
    bool ParseParamXML(XmlReaderWriter::Node& parameters) override { return parameters == "parameters"; }
    bool ValidateParams() const override { return true; }
    std::string GenerateResponseXML() const override { return result; }
    bool ParseResponseXML(XmlReaderWriter::Node& node) override
    {
        found = node.isNull() ? "no node" : std::string(node["item"].contentsText());
        return found != "refuse";
    }

    std::string result;
    std::string found;
};

std::string Response(const std::string& result)
{
    return "<query xmlns='vardock:mxp:response' type='response' seq='3'><parameters/><response><code>1</code>"
           "<err-code>-4</err-code><message> m </message>" +
           result + "</response></query>";
}

TEST(PacketBase, WritesTheResponseBlockToTheByte)
{
    Query query;
    query.m_iPacketType = 2;
    query.m_iResponseCode = 1;
    query.m_strResponseMessage = "It's done";
    const std::string head = "<query xmlns='vardock:mxp:response' type='response' seq='0'>\n<parameters>\n<p>own</p>\n"
                             "</parameters>\n<response>\n<code>1</code>\n<err-code>0</err-code>\n"
                             "<message>It&apos;s done</message>\n<result type='";
    EXPECT_EQ(query.GenerateXML(), head + "none'>\n</result>\n</response>\n</query>");
    query.m_eResponseResultType = eRespResultXml;
    query.result = "<item/>";
    EXPECT_EQ(query.GenerateXML(), head + "xml'>\n<item/>\n</result>\n</response>\n</query>");
    query.m_iPacketType = 3;
    EXPECT_EQ(query.GenerateXML(), "<query xmlns='vardock:mxp:response' type='response' seq='0'>\n<parameters>\n"
                                   "<p>own</p>\n</parameters>\n</query>")
        << "neither request nor response";
}

TEST(PacketBase, ResponseEchoesTheReceivedParametersByteForByte)
{
    const std::string parameters =
        "<parameters  ><!-- kept --><job-id>J&#x31;</job-id><response >CONFIRM</response >\r\n<remarks/></parameters >";
    VKMXPmConfirmMsg confirm;
    ASSERT_TRUE(confirm.ParseXML("<confirm-msg seq='5' type='request' xmlns='vardock:mxp:request'>" + parameters +
                                 "</confirm-msg>"));
    EXPECT_EQ(confirm.m_strJobID, "J1");
    confirm.m_strJobID = "another";
    confirm.m_iPacketType = 2;
    confirm.m_iResponseCode = 1;
    EXPECT_EQ(confirm.GenerateXML(), "<confirm-msg xmlns='vardock:mxp:response' type='response' seq='5'>\n" +
                                         parameters +
                                         "<response>\n<code>1</code>\n<err-code>0</err-code>\n<message></message>\n"
                                         "<result type='none'>\n</result>\n</response>\n</confirm-msg>");
}

TEST(PacketBase, ResultIsTextUnlessItIsXml)
{
    struct Row
    {
        const char* result;
        eRespResultType type;
        const char* text;
        const char* found;
    };
    const Row table[] = {
        {"<result type='text'> t </result>", eRespResultText, " t ", "no node"},
        {"<result type='banana'>b</result>", eRespResultUnknown, "b", "no node"},
        {"<result type='none'>\n</result>", eRespResultNone, "<result type='none'>\n</result>", "no node"},
        {"<result type='json'><a/></result>", eRespResultJson, "<result type='json'><a/></result>", "no node"},
        {"<result type='xml'><item>i</item></result>", eRespResultXml, "", "i"},
    };
    for (const Row& row : table) {
        Query query;
        EXPECT_TRUE(query.ParseXML(Response(row.result))) << row.result;
        EXPECT_EQ(query.m_eResponseResultType, row.type) << row.result;
        EXPECT_EQ(query.m_strResponseResultText, row.text);
        EXPECT_EQ(query.found, row.found);
        EXPECT_EQ(query.m_strResponseMessage, " m ");
        EXPECT_EQ(query.m_iResponseErrorCode, -4);
    }
    Query refusing;
    EXPECT_FALSE(refusing.ParseXML(Response("<result type='xml'><item>refuse</item></result>")));
    EXPECT_THROW(refusing.ParseXML(Response("<result/>")), XmlReaderWriter::NodeException);
    EXPECT_FALSE(refusing.ParseXML(std::string()));
    EXPECT_FALSE(refusing.ParseXML("<query"));
}

TEST(PacketBase, ResultNodeOutlivesWhatItWasReadFrom)
{
    auto packet = std::make_unique<Query>();
    {
        XmlReaderWriter document;
        ASSERT_TRUE(document.readFrom(Response("<result type='xml'><item>i</item></result>")));
        XmlReaderWriter::Node root = document.getRootNode();
        ASSERT_TRUE(packet->ParseXML(root));
    }
    Query copy = *packet;
    packet.reset();
    EXPECT_EQ(copy.m_objResponseResultNode.sourceText(), "<result type='xml'><item>i</item></result>");
    EXPECT_EQ(copy.m_objResponseResultNode["item"].value().str(), "i");
}

TEST(PacketBase, ResponsesOfOneEnvelopeMayBeReadByTwoThreads)
{
    VKMXPmEnvelope envelope;
    std::string text;
    for (int i = 0; i < 200; ++i)
        text +=
            kit::Response("exec-resp-action", "<name>n</name><params/>", "<result type='xml'><a>1</a><b/></result>");
    ASSERT_TRUE(envelope.ParseXML(kit::Envelope(text)));
    const auto read = [&](std::size_t from) {
        for (std::size_t i = from; i < envelope.GetCount(); i += 2) {
            XmlReaderWriter::Node result = envelope.Get(i)->m_objResponseResultNode;
            EXPECT_EQ(result["a"].sourceText() + result["b"].sourceText(), "<a>1</a><b/>");
        }
    };
    std::thread other(read, 1);
    read(0);
    other.join();
}

TEST(PacketBase, ResultTypesHaveTheirWords)
{
    const char* words[] = {"none", "text", "xml", "json", "base64", "cdata", "unknown"};
    for (int i = 0; i < 7; ++i) {
        EXPECT_EQ(VKMXPmBase::GetResponseResultTypeAsStr(static_cast<eRespResultType>(i)), words[i]);
        EXPECT_EQ(VKMXPmBase::GetResponseResultTypeAsEnum(words[i]), i);
    }
    EXPECT_EQ(VKMXPmBase::GetResponseResultTypeAsStr(static_cast<eRespResultType>(9)), "unknown");
    EXPECT_EQ(VKMXPmBase::GetResponseResultTypeAsEnum("XML"), eRespResultUnknown);
}

TEST(PacketBase, CarriesAttachedFilesInOrder)
{
    Query query;
    EXPECT_FALSE(query.AreAnyAttachedFiles());
    query.AttachFile("/a", "1");
    query.AttachFiles({{"/b", "2"}, {"/a", "3"}});
    query.RemoveFile("/a");
    query.RemoveFile("/x");
    EXPECT_EQ(query.GetAttachedFiles(), (VKMXPmBase::FileList{{"/b", "2"}, {"/a", "3"}}));
    EXPECT_EQ(query.GetAttachedFilesCount(), 2u);
}

} // namespace
