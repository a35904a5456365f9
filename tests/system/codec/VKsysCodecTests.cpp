#include "VKsysCodec.h"

#include "VKfileName.h"

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

std::string Encode64(const std::string& text, bool lineBreaks = false)
{
    return VKsysCodec::EncodeBase64(reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()),
                                    lineBreaks);
}

/// The decoded text, or "(refused)".
std::string Decode64(std::string text)
{
    int length = static_cast<int>(text.size());
    if (!VKsysCodec::DecodeBase64(reinterpret_cast<unsigned char*>(text.data()), length))
        return length == 0 ? "(refused)" : "(refused, but a length left)";
    return text.substr(0, static_cast<std::size_t>(length));
}

TEST(Base64, GivesTheVectorsOfRfc4648)
{
    const char* const vectors[][2] = {{"", ""},
                                      {"f", "Zg=="},
                                      {"fo", "Zm8="},
                                      {"foo", "Zm9v"},
                                      {"foob", "Zm9vYg=="},
                                      {"fooba", "Zm9vYmE="},
                                      {"foobar", "Zm9vYmFy"}};
    for (const auto& [plain, encoded] : vectors) {
        EXPECT_EQ(Encode64(plain), encoded);
        EXPECT_EQ(Decode64(encoded), plain);
        std::string unpadded(encoded);
        unpadded.erase(std::min(unpadded.find('='), unpadded.size()));
        EXPECT_EQ(Decode64(unpadded), plain) << "without padding";
    }
    std::string out("before");
    EXPECT_FALSE(VKsysCodec::EncodeBase64(nullptr, 5, out, false));
    EXPECT_EQ(out, "");
}

TEST(Base64, BreaksLinesAfter76Characters)
{
    const std::string line(76, 'A');
    EXPECT_EQ(Encode64(std::string(57, '\0'), true), line + "\r\n");
    EXPECT_EQ(Encode64(std::string(58, '\0'), true), line + "\r\nAA==\r\n");
    EXPECT_EQ(Encode64(std::string(58, '\0'), false), line + "AA==");
    EXPECT_EQ(Encode64("", true), "");
}

TEST(Base64, EveryLengthOfEveryByteComesBack)
{
    const std::string all = AllBytes();
    for (std::size_t length = 0; length <= all.size(); ++length) {
        const std::string text = all.substr(all.size() - length);
        ASSERT_EQ(Decode64(Encode64(text)), text);
        ASSERT_EQ(Decode64(Encode64(text, true)), text);
    }
    const std::string large(200000, '\xA5'); // more than one piece for OpenSSL
    EXPECT_EQ(Decode64(Encode64(large)), large);
}

TEST(Base64, SkipsWhiteSpaceAndRefusesForeignCharacters)
{
    EXPECT_EQ(Decode64(" Zm\r\n9v\tYm Fy\n"), "foobar");
    EXPECT_EQ(Decode64("Zg==ignored!"), "f");
    for (const char* bad : {"Zm9v!", "Zm9-", "Z", "Zm9vY", "Zm\x80v", "*"})
        EXPECT_EQ(Decode64(bad), "(refused)") << bad;
    EXPECT_EQ(Decode64(std::string("Zm\0v", 4)), "(refused)");
    int length = 4;
    EXPECT_FALSE(VKsysCodec::DecodeBase64(nullptr, length));
    EXPECT_EQ(length, 0);
}

TEST(FileNames, WriteTheSignedByteAndReadItBack)
{
    EXPECT_EQ(VKsysCodec::EncodeFileName("Fire 1/\xE9.x"), "Fire%201%2F%FFFFFFE9%2Ex");
    EXPECT_EQ(VKsysCodec::EncodeName(std::string("\0\x7F\x80\xFF", 4)), "%00%7F%FFFFFF80%FFFFFFFF");
    EXPECT_EQ(VKsysCodec::DecodeFileName(VKsysCodec::EncodeFileName(AllBytes())), AllBytes());
    const std::string followed("\xFF"
                               "FFFF80"
                               "\x80"
                               "41");
    EXPECT_EQ(VKsysCodec::DecodeName(VKsysCodec::EncodeName(followed)), followed);
}

TEST(FileNames, DecodeEitherCaseAndKeepWhatIsNoCode)
{
    EXPECT_EQ(VKsysCodec::DecodeFileName("%2f%2F%ffffffe9"), "//\xE9");
    EXPECT_EQ(VKsysCodec::DecodeFileName("100%"), "100%");
    EXPECT_EQ(VKsysCodec::DecodeFileName("%4%zz%"), "%4%zz%");
    EXPECT_EQ(VKsysCodec::DecodeFileName("%FFFFFF41"), "\xFF"
                                                       "FFFF41"); // no sign of a signed byte
    EXPECT_EQ(VKsysCodec::DecodeFileName("%FFFFFF8"), "\xFF"
                                                      "FFFF8");
}

TEST(FileNames, HaveATwinOnCharacterArrays)
{
    char* const encoded = VKutilEncodeFileName("a b");
    char* const decoded = VKutilDecodeFileName(encoded);
    EXPECT_STREQ(encoded, "a%20b");
    EXPECT_STREQ(decoded, "a b");
    std::free(encoded);
    std::free(decoded);
    EXPECT_EQ(VKutilEncodeFileName(nullptr), nullptr);
    EXPECT_EQ(VKutilDecodeFileName(nullptr), nullptr);
}

TEST(Url, EncodesAllButBlankDigitsLettersAndUnderscore)
{
    EXPECT_EQ(VKsysCodec::EncodeUrl("a b_Z9-.~\xE9"), "a+b_Z9%2D%2E%7E%E9");
    EXPECT_EQ(VKsysCodec::DecodeUrl(VKsysCodec::EncodeUrl(AllBytes())), AllBytes());
    EXPECT_EQ(VKsysCodec::DecodeUrl("%e9+%2b"), "\xE9 +");
    for (const char* bad : {"abc%", "abc%4", "abc%zz"})
        EXPECT_EQ(VKsysCodec::DecodeUrl(bad), "") << bad;
}

TEST(HttpText, FillsItsBufferWithWholeCodesOnly)
{
    char out[10];
    struct Row
    {
        const char* in;
        int size;
        const char* written;
    };
    const Row rows[] = {
        {"a/_.9", 10, "a/_.9"},     {"-\xE9", 10, "%2D%E9"},
        {"\n", 10, "%0D%0A"},       {"\r\n", 10, "%0D%0A"},
        {"ab\nc", 10, "ab%0D%0Ac"}, {"abc\nd", 9, "abc"},
        {"abcdef", 5, "abcd"},      {"ab--", 8, "ab%2D"},
        {"a  ", 7, "a%20"},         {"", 5, ""},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(VKsysCodec::VKhttpStrEncode(out, row.size, row.in),
                  static_cast<int>(std::string(row.written).size()));
        EXPECT_STREQ(out, row.written);
    }
    EXPECT_EQ(VKsysCodec::VKhttpStrEncode(out, 4, "a"), -1);
    EXPECT_EQ(VKsysCodec::VKhttpStrEncode(nullptr, 5, "a"), -1);
    EXPECT_EQ(VKsysCodec::VKhttpStrEncode(out, 5, nullptr), -1);
}

TEST(WebInput, WritesTheTableAndJoinsLineEnds)
{
    EXPECT_EQ(VKsysCodec::EncodeWebInputData("&><'\"|\ta b", false), "&amp;&gt;&lt;&#x27;&quot;&#x7C;&#x09;a b");
    EXPECT_EQ(VKsysCodec::EncodeWebInputData("a b", true), "a&nbsp;b");
    const char* const lineEnds[][2] = {
        {"a\r\nb", "a&#x0A;b"},     {"a\n\rb", "a&#x0A;b"},       {"a\nb", "a&#x0A;b"},
        {"a\rb", "a&#x0D;b"},       {"\r\n\r\n", "&#x0A;&#x0A;"}, {"\n\r\n", "&#x0A;&#x0A;"},
        {"\r\r\n", "&#x0D;&#x0A;"}, {"\n\n", "&#x0A;&#x0A;"},     {"\r", "&#x0D;"},
    };
    for (const auto& [text, encoded] : lineEnds)
        EXPECT_EQ(VKsysCodec::EncodeWebInputData(text, false), encoded);
    EXPECT_EQ(VKsysCodec::EncodeWebInputAndEscapeBackSlash("a\\'b", false), "a\\\\&#x27;b");
}

TEST(WebInput, DecodesOnceInEitherCase)
{
    for (const bool flag : {false, true}) {
        EXPECT_EQ(VKsysCodec::DecodeWebInputData("a&nbsp;b&#x7c;&#X0a;", flag), "a b|\n");
        EXPECT_EQ(VKsysCodec::DecodeWebInputData("&amp;lt;&amp;amp;&unknown;&#x41;&", flag),
                  "&lt;&amp;&unknown;&#x41;&");
        const std::string all = AllBytes(); // holds no pair of line end characters
        EXPECT_EQ(VKsysCodec::DecodeWebInputData(VKsysCodec::EncodeWebInputData(all, flag), flag), all);
    }
}

TEST(Html, TurnsLineEndsIntoBreaks)
{
    EXPECT_EQ(VKsysCodec::EncodeHTML("a\r\nb\nc\r\"d\"&#x0A;", false), "a<br>b<br>c\r&quot;d&quot;&#x0A;");
    EXPECT_EQ(VKsysCodec::EncodeHTML("a&#x0A;b&#x0a;c", true), "a<br>b<br>c");
    EXPECT_EQ(VKsysCodec::DecodeHTML("a<br><br>b&quot;"), "a\n\nb&quot;");
}

TEST(Json, EscapesTheFiveAndComesBack)
{
    EXPECT_EQ(VKsysCodec::EscapeJsonString("\\\"\n\r\t/\x01"), "\\\\\\\"\\n\\r\\t/\x01");
    EXPECT_EQ(VKsysCodec::EscapeInternalJSON("\"\n"), "\\\\\\\"\\\\n");
    EXPECT_EQ(VKsysCodec::UnescapeJsonString(VKsysCodec::EscapeJsonString(AllBytes())), AllBytes());
    EXPECT_EQ(VKsysCodec::UnescapeJsonString("\\\\n \\N \\u0041 \\"), "\\n \\N \\u0041 \\");
    EXPECT_EQ(VKsysCodec::EncodeUnicodeCharacters("<b>"), "\\u003cb\\u003e");
}

TEST(Backslash, IsDoubledAndHalved)
{
    EXPECT_EQ(VKsysCodec::EscapeBackslash("a\\b\\\\"), "a\\\\b\\\\\\\\");
    EXPECT_EQ(VKsysCodec::UnescapeBackslash("a\\\\b\\\\\\"), "a\\b\\\\");
    EXPECT_EQ(VKsysCodec::EncodeDBFilterInput("a_b\\c%"), "a\\_b\\\\c%");
}

TEST(LineEnds, AreStoredAsOneMark)
{
    const std::string text("a\r\nb\nc\rd\r\n");
    const std::string stored = VKsysCodec::EncodeMultiLineData(text);
    EXPECT_EQ(stored.find("\r\n"), std::string::npos);
    EXPECT_NE(stored.find("b\nc\rd"), std::string::npos) << "lone ones stay";
    EXPECT_EQ(VKsysCodec::DecodeMultiLineData(stored), text);
    EXPECT_EQ(VKsysCodec::EncodeNewLineCharacters("a\r\nb\nc"), "a<br>b\nc");
}

TEST(Speech, HasNoQuotesAndNoLineEnds)
{
    EXPECT_EQ(VKsysCodec::EscapeTTSData("say \"hello\" o'clock\r\n"), "say hello oclock");
    EXPECT_EQ(VKsysCodec::EscapeTTSData("\nfire\r\nfloor 3 \n\n east"), "fire floor 3  east");
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
