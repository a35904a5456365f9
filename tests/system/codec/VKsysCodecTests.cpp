#include "VKsysCodec.h"

#include "VKfileName.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace std::string_literals;
using Codec = VKsysCodec;

std::string AllBytes()
{
    std::string all;
    for (int byte = 0; byte < 256; ++byte)
        all += static_cast<char>(byte);
    return all;
}

std::string Encode64(const std::string& text, bool lineBreaks = false)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data());
    return Codec::EncodeBase64(bytes, static_cast<int>(text.size()), lineBreaks);
}

/// The decoded text, or "(refused)".
std::string Decode64(std::string text)
{
    int length = static_cast<int>(text.size());
    if (!Codec::DecodeBase64(reinterpret_cast<unsigned char*>(text.data()), length))
        return length == 0 ? "(refused)" : "(refused, but a length left)";
    return text.substr(0, static_cast<std::size_t>(length));
}

TEST(Base64, GivesTheVectorsOfRfc4648AndBreaksLinesAfter76Characters)
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
        const std::string padded(encoded);
        EXPECT_EQ(Decode64(padded), plain);
        EXPECT_EQ(Decode64(padded.substr(0, padded.find('='))), plain) << "without padding";
    }
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

TEST(Base64, SkipsWhiteSpaceAndRefusesForeignCharactersAndNull)
{
    EXPECT_EQ(Decode64(" Zm\r\n9v\tYm Fy\n"), "foobar");
    EXPECT_EQ(Decode64("Zg==ignored!"), "f");
    for (const std::string& bad : {"Zm9v!"s, "Zm9-"s, "Z"s, "Zm9vY"s, "Zm\x80v"s, "*"s, "Zm\0v"s})
        EXPECT_EQ(Decode64(bad), "(refused)") << bad;
    int length = 4;
    EXPECT_FALSE(Codec::DecodeBase64(nullptr, length));
    EXPECT_EQ(length, 0);
    std::string out("before");
    EXPECT_FALSE(Codec::EncodeBase64(nullptr, 5, out, false));
    EXPECT_EQ(out, "");
}

TEST(FileNames, WriteTheSignedByteReadItBackAndKeepWhatIsNoCode)
{
    EXPECT_EQ(Codec::EncodeFileName("Fire 1/\xE9.x"), "Fire%201%2F%FFFFFFE9%2Ex");
    EXPECT_EQ(Codec::EncodeName("\0\x7F\x80\xFF"s), "%00%7F%FFFFFF80%FFFFFFFF");
    EXPECT_EQ(Codec::DecodeFileName(Codec::EncodeFileName(AllBytes())), AllBytes());
    const std::string followed = "\xFF"s + "FFFF80" + "\x80" + "41";
    EXPECT_EQ(Codec::DecodeName(Codec::EncodeName(followed)), followed);
    EXPECT_EQ(Codec::DecodeFileName("%2f%2F%ffffffe9"), "//\xE9");
    EXPECT_EQ(Codec::DecodeFileName("100%"), "100%");
    EXPECT_EQ(Codec::DecodeFileName("%4%zz%"), "%4%zz%");
    EXPECT_EQ(Codec::DecodeFileName("%FFFFFF41"), "\xFF"s + "FFFF41") << "no sign of a signed byte";
    EXPECT_EQ(Codec::DecodeFileName("%FFFFFF8"), "\xFF"s + "FFFF8");
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
    EXPECT_EQ(Codec::EncodeUrl("a b_Z9-.~\xE9"), "a+b_Z9%2D%2E%7E%E9");
    EXPECT_EQ(Codec::DecodeUrl(Codec::EncodeUrl(AllBytes())), AllBytes());
    EXPECT_EQ(Codec::DecodeUrl("%e9+%2b"), "\xE9 +");
    for (const char* bad : {"abc%", "abc%4", "abc%zz"})
        EXPECT_EQ(Codec::DecodeUrl(bad), "") << bad;
}

TEST(HttpText, FillsItsBufferWithWholeCodesOnly)
{
    char out[10];
    const std::tuple<const char*, int, std::string> rows[] = {{"a/_.9", 10, "a/_.9"},     {"-\xE9", 10, "%2D%E9"},
                                                              {"\n", 10, "%0D%0A"},       {"\r\n", 10, "%0D%0A"},
                                                              {"ab\nc", 10, "ab%0D%0Ac"}, {"abc\nd", 9, "abc"},
                                                              {"abcdef", 5, "abcd"},      {"ab--", 8, "ab%2D"},
                                                              {"a  ", 7, "a%20"},         {"", 5, ""}};
    for (const auto& [in, size, written] : rows) {
        EXPECT_EQ(Codec::VKhttpStrEncode(out, size, in), static_cast<int>(written.size()));
        EXPECT_EQ(out, written);
    }
    EXPECT_EQ(Codec::VKhttpStrEncode(out, 4, "a"), -1);
    EXPECT_EQ(Codec::VKhttpStrEncode(nullptr, 5, "a"), -1);
    EXPECT_EQ(Codec::VKhttpStrEncode(out, 5, nullptr), -1);
}

TEST(WebInput, WritesTheTableAndJoinsLineEnds)
{
    EXPECT_EQ(Codec::EncodeWebInputData("&><'\"|\ta b", false), "&amp;&gt;&lt;&#x27;&quot;&#x7C;&#x09;a b");
    EXPECT_EQ(Codec::EncodeWebInputData("a b", true), "a&nbsp;b");
    const char* const lineEnds[][2] = {
        {"a\r\nb", "a&#x0A;b"},     {"a\n\rb", "a&#x0A;b"},       {"a\nb", "a&#x0A;b"},
        {"a\rb", "a&#x0D;b"},       {"\r\n\r\n", "&#x0A;&#x0A;"}, {"\n\r\n", "&#x0A;&#x0A;"},
        {"\r\r\n", "&#x0D;&#x0A;"}, {"\n\n", "&#x0A;&#x0A;"},     {"\r", "&#x0D;"}};
    for (const auto& [text, encoded] : lineEnds)
        EXPECT_EQ(Codec::EncodeWebInputData(text, false), encoded);
    EXPECT_EQ(Codec::EncodeWebInputAndEscapeBackSlash("a\\'b", false), "a\\\\&#x27;b");
}

TEST(WebInput, DecodesOnceInEitherCase)
{
    for (const bool flag : {false, true}) {
        EXPECT_EQ(Codec::DecodeWebInputData("a&nbsp;b&#x7c;&#X0a;", flag), "a b|\n");
        EXPECT_EQ(Codec::DecodeWebInputData("&amp;lt;&amp;amp;&unknown;&#x41;&", flag), "&lt;&amp;&unknown;&#x41;&");
        const std::string all = AllBytes(); // holds no pair of line end characters
        EXPECT_EQ(Codec::DecodeWebInputData(Codec::EncodeWebInputData(all, flag), flag), all);
    }
}

TEST(Html, TurnsLineEndsIntoBreaks)
{
    EXPECT_EQ(Codec::EncodeHTML("a\r\nb\nc\r\"d\"&#x0A;", false), "a<br>b<br>c\r&quot;d&quot;&#x0A;");
    EXPECT_EQ(Codec::EncodeHTML("a&#x0A;b&#x0a;c", true), "a<br>b<br>c");
    EXPECT_EQ(Codec::DecodeHTML("a<br><br>b&quot;"), "a\n\nb&quot;");
    EXPECT_EQ(Codec::EncodeNewLineCharacters("a\r\nb\nc"), "a<br>b\nc");
}

TEST(Escapes, OfJsonAndBackslashesComeBack)
{
    EXPECT_EQ(Codec::EscapeJsonString("\\\"\n\r\t/\x01"), "\\\\\\\"\\n\\r\\t/\x01");
    EXPECT_EQ(Codec::EscapeInternalJSON("\"\n"), "\\\\\\\"\\\\n");
    EXPECT_EQ(Codec::UnescapeJsonString(Codec::EscapeJsonString(AllBytes())), AllBytes());
    EXPECT_EQ(Codec::UnescapeJsonString("\\\\n \\N \\u0041 \\"), "\\n \\N \\u0041 \\");
    EXPECT_EQ(Codec::EncodeUnicodeCharacters("<b>"), "\\u003cb\\u003e");
    EXPECT_EQ(Codec::EscapeBackslash("a\\b\\\\"), "a\\\\b\\\\\\\\");
    EXPECT_EQ(Codec::UnescapeBackslash("a\\\\b\\\\\\"), "a\\b\\\\");
    EXPECT_EQ(Codec::EncodeDBFilterInput("a_b\\c%"), "a\\_b\\\\c%");
}

TEST(LineEnds, AreStoredAsOneMarkAndNeverSpoken)
{
    const std::string text("a\r\nb\nc\rd\r\n"), stored = Codec::EncodeMultiLineData(text);
    EXPECT_EQ(stored.find("\r\n"), std::string::npos);
    EXPECT_NE(stored.find("b\nc\rd"), std::string::npos) << "lone ones stay";
    EXPECT_EQ(Codec::DecodeMultiLineData(stored), text);
    EXPECT_EQ(Codec::EscapeTTSData("say \"hello\" o'clock\r\n"), "say hello oclock");
    EXPECT_EQ(Codec::EscapeTTSData("\nfire\r\nfloor 3 \n\n east"), "fire floor 3  east");
}

TEST(CodecXml, ReplacesTheEightCharactersAndGivesEveryByteBackOnce)
{
    EXPECT_EQ(Codec::EncodeXmlData("&><'\"\t\n\r", true), "&amp;&gt;&lt;&apos;&quot;&#x9;&#xa;&#xd;");
    EXPECT_EQ(Codec::EncodeXmlData("\\|\x01 \xC3\xA9/", true), "\\|\x01 \xC3\xA9/");
    EXPECT_EQ(Codec::EncodeXmlData("&amp;", true), "&amp;amp;");
    EXPECT_EQ(Codec::EncodeXmlData("", true), "");
    EXPECT_EQ(Codec::EncodeXML("<'a'\t&\"b\"\r\n>", false), "&lt;&apos;a&apos;\t&amp;&quot;b&quot;\r\n&gt;");
    EXPECT_EQ(Codec::EncodeXML("a\r\nb", true), "a&#xd;&#xa;b");
    std::string out("<a>");
    Codec::AppendXmlData(out, "plain text & more");
    EXPECT_EQ(out, "<a>plain text &amp; more");

    for (const std::string& text : {AllBytes(), "&lt;&amp;lt;&#xa;"s, "&&#x;&#xA"s}) {
        EXPECT_EQ(Codec::DecodeXmlData(Codec::EncodeXmlData(text, true)), text);
        EXPECT_EQ(Codec::DecodeXmlData(Codec::EncodeXML(text, true)), text);
    }
    EXPECT_EQ(Codec::DecodeXmlData("&#XA;&#xd;&lt"), "\n\r&lt");
}

/// In a child process, because the cut lasts as long as the process does.
TEST(CodecXml, FalseCutsTheTableForTheWholeProcess)
{
    const auto cut = [] {
        const bool first = Codec::EncodeXmlData("&><'\"\t\n\r", false) == "&amp;&gt;&lt;'\"\t\n\r";
        const bool later = Codec::EncodeXmlData("<'>", true) == "&lt;'&gt;";
        std::_Exit(first && later ? 0 : 1);
    };
    EXPECT_EXIT(cut(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(Codec::EncodeXmlData("'", true), "&apos;");
}

} // namespace
