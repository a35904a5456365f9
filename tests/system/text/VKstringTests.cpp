#include "VKstring.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>
#include <memory>

namespace {

using Parts = std::vector<std::string>;

std::string Owned(char* text)
{
    const std::unique_ptr<char, void (*)(void*)> owner(text, VKutilFree);
    return text ? std::string(text) : std::string("(null)");
}

TEST(Trim, TakesItsSideAndSetAndKeepsZeroBytesInside)
{
    const std::tuple<char* (*)(char*), const char*, const char*> rows[] = {
        {VKstringTrim, " \t\r\n a b \v\f\n", "a b"},
        {VKstringTrim, "", ""},
        {VKstringTrim, " \n ", ""},
        {VKstringTrimLeft, "  a ", "a "},
        {VKstringTrimRight, "  a \n", "  a"},
        {VKstringTrimSpacesAndTabs, " \ta\n", "a\n"},
        {VKstringTrimSpacesAndTabs, "\n a\t ", "\n a"},
        {VKutilStrStripTrailWhite, " a\r\n", " a"},
        {VKstringChop, "line \r\n", "line "},
        {VKutilStrStrip, "\xC2\xA0x ", "\xC2\xA0x"}, // no-break space is no white space, and stays whole
    };
    for (const auto& [trim, text, trimmed] : rows)
        EXPECT_STREQ(trim(std::string(text).data()), trimmed) << "of [" << text << "]";
    EXPECT_EQ(VKstringTrim(static_cast<char*>(nullptr)), nullptr);

    std::string text("--a-b--");
    EXPECT_EQ(VKstringTrimLeft(text, "-"), "a-b--");
    EXPECT_EQ(VKstringTrimRight(text, "-"), "a-b");
    EXPECT_EQ(VKstringTrim(text, "ab"), "-");
    EXPECT_EQ(VKstringTrim(std::string(" a\0b \0 ", 7)), std::string("a\0b \0", 5));
    EXPECT_STREQ(VKstringTrimRight(std::string("a//b///").data(), '/'), "a//b");
}

TEST(NoCase, ComparesLettersOnlyPutsNullFirstAndFindsTheFirst)
{
    EXPECT_EQ(VKstringNoCaseCmp("Fire Brigade", "fIRE bRIGADE"), 0);
    EXPECT_LT(VKstringNoCaseCmp("alpha", "Beta"), 0);
    EXPECT_GT(VKstringNoCaseCmp("abc", "AB"), 0);
    EXPECT_NE(VKstringNoCaseCmp("\xC3\xA4", "\xC3\x84"), 0); // a umlaut, small and capital: not folded
    EXPECT_LT(VKstringNoCaseCmp(nullptr, ""), 0);
    EXPECT_EQ(VKstringNoCaseCmp(nullptr, nullptr), 0);
    EXPECT_EQ(VKstringNoCaseNCmp("CODE blue", "code red", 5), 0);
    EXPECT_NE(VKstringNoCaseNCmp("CODE blue", "code red", 6), 0);
    EXPECT_EQ(VKstringReverseNoCaseNCmp("report.SDB", "x.sdb", 4), 0);
    EXPECT_NE(VKstringReverseNoCaseNCmp("report.SDB", "x.sdb", 5), 0);
    EXPECT_NE(VKstringReverseNoCaseNCmp("b", "sdb", 3), 0);
    const std::string mixed("a1Z\xC3\xA4");
    EXPECT_EQ(VKstringUpperCase(mixed), "A1Z\xC3\xA4");
    EXPECT_EQ(VKstringLowerCase(mixed), "a1z\xC3\xA4");

    const char* const text = "Job done, JOB closed";
    EXPECT_EQ(VKstringFindNoCaseSubstring(text, "job"), text);
    EXPECT_EQ(VKstringFindNoCaseSubstringQuick(text, "CLOSED"), text + 14);
    EXPECT_EQ(VKstringFindNoCaseSubstring(text, "jobs"), nullptr);
    EXPECT_EQ(VKstringFindNoCaseSubstring(std::string(text), "job", 1), 10u);
    EXPECT_EQ(VKstringFindNoCaseSubstring(std::string("ab"), "", 2), 2u);
    EXPECT_EQ(VKstringFindNoCaseSubstring(std::string("ab"), "a", 3), std::string::npos);
}

TEST(Replace, CoversCharactersTextsAndColons)
{
    EXPECT_EQ(VKstringReplaceColon("12:30: yes"), "12-30- yes");
    EXPECT_STREQ(VKutilStrReplaceColon(std::string("a::b").data()), "a--b");
    EXPECT_EQ(VKstringReplaceChar(std::string("a.b."), '.', std::string("\\.")), "a\\.b\\.");
    EXPECT_EQ(VKstringReplaceStr("aaa", "aa", "b"), "ba");
    EXPECT_EQ(VKstringReplaceStr("x", "x", "xx"), "xx");
    EXPECT_EQ(VKstringReplaceStr("x", "", "y"), "x");
    std::string text("a,b;c");
    EXPECT_EQ(VKstringReplaceCharAnyOf(text, ",;", ' '), "a b c");
    EXPECT_EQ(VKstringRemoveSpaceChars(std::string(" 0a f\t9\n")), "0af9");
}

TEST(Numbers, AreWrittenInDecimalWithAPoint)
{
    EXPECT_EQ(VKintToStr(INT_MIN), "-2147483648");
    EXPECT_EQ(VKuintToStr(UINT_MAX), "4294967295");
    EXPECT_EQ(VKulongToStr(ULONG_MAX), "18446744073709551615");
    EXPECT_EQ(VKint64ToStr(INT64_MIN), "-9223372036854775808");
    EXPECT_EQ(VKdblToStr(2.345, 2), "2.35"); // the double lies just above
    EXPECT_EQ(VKdblToStr(-0.5, 0), "-0");
    EXPECT_EQ(VKdblToStr(1.0, 1000).size(), 66u);
    EXPECT_EQ(VKdblToStr(std::numeric_limits<double>::max(), 64).size(), 374u);
    EXPECT_EQ(VKdblToStr(0.1f), "0.1");
}

TEST(Hexadecimal, ReadsBothCasesAndRefusesTheRest)
{
    EXPECT_EQ(VKHexStrToUInt("ff"), 255u);
    EXPECT_EQ(VKHexStrToUInt("0XFFFFFFFF"), UINT_MAX);
    for (const char* bad : {"", "0x", "100000000", "fg", " 1", "-1"})
        EXPECT_EQ(VKHexStrToUInt(bad), 0u) << bad;

    unsigned char bytes[2] = {};
    EXPECT_EQ(VKHexStrToBytes("00fFA0", bytes, 2), 2);
    EXPECT_EQ(bytes[1], 0xFF);
    EXPECT_EQ(VKHexStrToBytes("0", bytes, 2), -1);
    EXPECT_EQ(VKHexStrToBytes("0g", bytes, 2), -1);
    std::vector<unsigned char> all;
    EXPECT_TRUE(VKHexStrToBytes(std::string("00ff"), all));
    EXPECT_EQ(all, (std::vector<unsigned char>{0, 255}));
    EXPECT_FALSE(VKHexStrToBytes(std::string("00f"), all));
    EXPECT_TRUE(all.empty());
}

TEST(Sql, TextsAreMadeSafeForTheirPlaceAndNumbersAreTheirOwn)
{
    struct Row
    {
        const char *text, *plain, *like, *filter;
    };
    const char* const attack = "x'; DROP TABLE receiver;--";
    const char* const harmless = "x''; DROP TABLE receiver;--";
    const Row rows[] = {{"", "", "", ""},
                        {"O'Hara", "O''Hara", "O''Hara", "O''Hara"},
                        {"''", "''''", "''''", "''''"},
                        {"50%_[a]\\*", "50%_[a]\\*", "50\\%\\_\\[a]\\\\*", "50\\%\\_\\[a]\\\\%"},
                        {attack, harmless, harmless, harmless}};
    for (const Row& row : rows) {
        EXPECT_EQ(VKstringSQLEncode(row.text), row.plain);
        EXPECT_EQ(VKstringSQLLikeEncode(row.text), row.like);
        EXPECT_EQ(VKstringSQLFilterEncode(row.text), row.filter);
    }
    EXPECT_EQ(VKstringSQLEncode(-7), "-7");
    EXPECT_EQ(VKstringSQLEncode(LONG_MIN), "-9223372036854775808");
    EXPECT_EQ(VKstringSQLEncode(ULONG_MAX), "18446744073709551615");
    EXPECT_EQ(VKstringSQLEncode(0.1f), "0.1");
    EXPECT_EQ(VKstringSQLEncode(-2.5), "-2.5");
    EXPECT_EQ(VKstringSQLEncode(std::nan("")), "NULL");
    EXPECT_EQ(VKstringSQLFilterEncode(42L), "42");
}

TEST(Tokens, AreCutByAnyDelimiterOrByTheWholeSeparator)
{
    EXPECT_EQ(VKstringTokenize(",a;;b,", ",;"), (Parts{"a", "b"}));
    EXPECT_EQ(VKstringTokenize("", ","), Parts{});
    EXPECT_EQ(VKstringSplitString(",a,,b,", ","), (Parts{"", "a", "", "b", ""}));
    EXPECT_EQ(VKstringSplitString("a<br>b", "<br>"), (Parts{"a", "b"}));
    EXPECT_EQ(VKstringSplitString("ab", ""), Parts{"ab"});
    EXPECT_EQ(VKstringJoin(VKstringSplitString(",a,,b,", ","), ","), ",a,,b,");
    EXPECT_EQ(VKstringNStrTok("a:b::c", ":", 2), "c");
    EXPECT_EQ(VKstringNStrTok("a:b", ":", 2), "");
    EXPECT_EQ(VKstringNStrTok("a:b", ":", -1), "");
    EXPECT_EQ(Owned(VKutilNStrTok("a:b", ":", 1)), "b");
    EXPECT_EQ(VKutilNStrTok("a:b", ":", 2), nullptr);
    EXPECT_EQ(BuildStringVector(" a, ,b c ,"), (Parts{"a", "b c"}));
}

TEST(Tokens, SafeStrTokKeepsItsStateWithTheCaller)
{
    std::string outer("a=1;b=2"), seen;
    char* outerRest = nullptr;
    for (char* pair = VKstringSafeStrTok(outer.data(), ";", &outerRest); pair;
         pair = VKutilSafeStrTok(nullptr, ";", &outerRest)) {
        char* innerRest = nullptr;
        for (char* part = VKstringSafeStrTok(pair, "=", &innerRest); part;
             part = VKstringSafeStrTok(nullptr, "=", &innerRest))
            seen.append(part).append("/");
    }
    EXPECT_EQ(seen, "a/1/b/2/");
    EXPECT_EQ(VKstringSafeStrTok(nullptr, ";", &outerRest), nullptr);
}

TEST(Tokens, CommandLinesKeepWhatIsQuoted)
{
    EXPECT_EQ(BuildCommandLineArguments("  run 'a b' \"c \\\"d\" e\\ f g'h'i ''"),
              (Parts{"run", "a b", "c \"d", "e f", "ghi", ""}));
    EXPECT_EQ(BuildCommandLineArguments("open 'to the end"), (Parts{"open", "to the end"}));
    EXPECT_EQ(BuildCommandLineArguments("last\\"), Parts{"last\\"});
}

TEST(Paths, AreJoinedAndTakenApart)
{
    EXPECT_EQ(VKstringCreatePath("/opt/vk", "temp"), "/opt/vk/temp");
    EXPECT_EQ(VKstringCreatePath("/opt/vk/", "/temp"), "/opt/vk/temp");
    EXPECT_EQ(VKstringCreatePath("/", "temp"), "/temp");
    EXPECT_EQ(VKstringCreatePath("", "temp"), "temp");
    EXPECT_EQ(VKstringCreatePath("/opt", ""), "/opt");
    EXPECT_EQ(Owned(VKutilCreatePath("a", "b")), "a/b");
    char path[4];
    EXPECT_EQ(VKutilCreatePathEx(path, sizeof path, "a", "b"), 3);
    EXPECT_STREQ(path, "a/b");
    EXPECT_EQ(VKutilCreatePathEx(path, sizeof path, "a", "bc"), -1);
    EXPECT_STREQ(path, "");

    EXPECT_EQ(GetFileName("/a/b.txt"), "b.txt");
    EXPECT_EQ(GetFileName("/a/"), "");
    EXPECT_STREQ(VKutilGetFileName("b.txt"), "b.txt");
    EXPECT_STREQ(VKutilGetFileExtension("/a.d/b.tar.gz"), "gz");
    EXPECT_STREQ(VKutilGetFileExtension("/a.d/b"), "");
    EXPECT_STREQ(VKutilGetFileExtension("/a/.profile"), "");
    EXPECT_EQ(GetLastSubDirFromPath("/a/b/"), "b");
    EXPECT_EQ(Owned(VKutilGetLastSubDirFromPath("/a/b")), "b");
    EXPECT_EQ(GetLastSubDirFromPath("/"), "");
    EXPECT_STREQ(VKutilPathFilter(std::string("c:\\a\\b").data()), "c:/a/b");
}

TEST(Copy, IsCutToItsPlaceAndAlwaysEnded)
{
    char place[4] = {'x', 'x', 'x', 'x'};
    EXPECT_EQ(VKstringMsgCpy(place, "abcdef", sizeof place), 3);
    EXPECT_STREQ(place, "abc");
    EXPECT_EQ(VKstringMsgCpy(place, "abc", 0), -1);
    EXPECT_EQ(VKstringMsgCpy(place, nullptr, sizeof place), -1);
    EXPECT_EQ(VKstringMsgCpy2(place, "ab\xE2\x82\xAC", sizeof place), 2); // the euro sign does not fit: none of it
    EXPECT_STREQ(place, "ab");
    EXPECT_EQ(VKstringMsgCpy2(place, "\x80\x80\x80\x80\x80", sizeof place), 3);

    EXPECT_EQ(Owned(VKutilStrMalloc("a")), "a");
    EXPECT_EQ(VKutilStrMalloc(nullptr), nullptr);
    EXPECT_EQ(Owned(VKutilStrMallocCat("a", nullptr)), "a");
    const char* const parts[] = {"a", nullptr, "c"};
    EXPECT_EQ(Owned(VKutilStrJoin(parts, 3, ", ")), "a, , c");
    char* grown = VKutilStrExpand(VKutilStrMalloc("ab"), 3);
    VKstringMsgCpy(grown + 2, "cde", 4);
    EXPECT_EQ(Owned(grown), "abcde");
}

} // namespace
