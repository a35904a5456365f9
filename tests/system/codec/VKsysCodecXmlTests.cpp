#include "VKsysCodec.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

std::string AllBytes()
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    return all;
}

TEST(CodecXml, ReplacesTheEightCharactersAndNothingElse)
{
    EXPECT_EQ(VKsysCodec::EncodeXmlData("&><'\"\t\n\r", true), "&amp;&gt;&lt;&apos;&quot;&#x9;&#xa;&#xd;");
    EXPECT_EQ(VKsysCodec::EncodeXmlData("\\|\x01 \xC3\xA9/", true), "\\|\x01 \xC3\xA9/");
    EXPECT_EQ(VKsysCodec::EncodeXmlData("&amp;", true), "&amp;amp;");
    EXPECT_EQ(VKsysCodec::EncodeXmlData("", true), "");
    std::string out("<a>");
    VKsysCodec::AppendXmlData(out, "plain text & more");
    EXPECT_EQ(out, "<a>plain text &amp; more");
}

TEST(CodecXml, LineEndsAreEncodedOnRequest)
{
    EXPECT_EQ(VKsysCodec::EncodeXML("<'a'\t&\"b\"\r\n>", false), "&lt;&apos;a&apos;\t&amp;&quot;b&quot;\r\n&gt;");
    EXPECT_EQ(VKsysCodec::EncodeXML("a\r\nb", true), "a&#xd;&#xa;b");
}

TEST(CodecXml, EveryByteComesBackOnce)
{
    for (const std::string& text : {AllBytes(), std::string("&lt;&amp;lt;&#xa;"), std::string("&&#x;&#xA")}) {
        EXPECT_EQ(VKsysCodec::DecodeXmlData(VKsysCodec::EncodeXmlData(text, true)), text);
        EXPECT_EQ(VKsysCodec::DecodeXmlData(VKsysCodec::EncodeXML(text, true)), text);
    }
    EXPECT_EQ(VKsysCodec::DecodeXmlData("&#XA;&#xd;&lt"), "\n\r&lt");
}

/// In a child process, because the cut lasts as long as the process does.
TEST(CodecXml, FalseCutsTheTableForTheWholeProcess)
{
    const auto cut = [] {
        const bool first = VKsysCodec::EncodeXmlData("&><'\"\t\n\r", false) == "&amp;&gt;&lt;'\"\t\n\r";
        const bool later = VKsysCodec::EncodeXmlData("<'>", true) == "&lt;'&gt;";
        std::_Exit(first && later ? 0 : 1);
    };
    EXPECT_EXIT(cut(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(VKsysCodec::EncodeXmlData("'", true), "&apos;");
}

} // namespace
