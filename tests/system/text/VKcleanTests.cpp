#include "VKstring.h"

#include <gtest/gtest.h>

#include <fnmatch.h>

namespace {

TEST(SafeString, NamesWhatIsNotPrintable)
{
    EXPECT_STREQ(VKutilSafeByteString("\t\x01", 2), "<TAB><01>");
    EXPECT_STREQ(VKstringSafeByteString("a b\n\r\x1B\0\x7F\xE9~", 10), "a b<LF><CR><ESC><00><7F><E9>~");
    EXPECT_STREQ(VKutilSafeString("<x>\n"), "<x><LF>");
    EXPECT_STREQ(VKutilSafeString(nullptr), "");
    EXPECT_STREQ(VKutilSafeByteString("x", -1), "");
}

TEST(SafeString, StopsOnceMoreThan4090CharactersAreOut)
{
    EXPECT_EQ(std::string(VKutilSafeString(std::string(5000, 'x').c_str())).size(), 4091u);
    EXPECT_EQ(std::string(VKutilSafeString((std::string(4090, 'x') + "\x1B\x1B").c_str())).size(), 4095u);
}

/// Every short pattern against every short text, with the C library as the model.
TEST(Pattern, AgreesWithFnmatch)
{
    std::vector<std::string> patterns{""};
    for (std::size_t at = 0; patterns[at].size() < 5; ++at)
        for (const char c : {'a', 'b', '*'})
            patterns.push_back(patterns[at] + c);
    for (const std::string& text : patterns) {
        if (text.find('*') != std::string::npos)
            continue;
        for (const std::string& pattern : patterns)
            ASSERT_EQ(VKstrContainPattern(text.c_str(), pattern.c_str(), false),
                      fnmatch(pattern.c_str(), text.c_str(), FNM_NOESCAPE) == 0)
                << text << " in " << pattern;
    }
}

TEST(Pattern, TreatsNullCaseAndAllOtherCharactersPlainly)
{
    EXPECT_TRUE(VKstrContainPattern("any", nullptr, false));
    EXPECT_TRUE(VKstrContainPattern(nullptr, "*", false));
    EXPECT_TRUE(VKstrContainPattern(nullptr, "", false));
    EXPECT_FALSE(VKstrContainPattern(nullptr, "a", false));
    EXPECT_TRUE(VKstrContainPattern("Report.SDB", "rep*.sdb", true));
    EXPECT_TRUE(VKstrContainPattern("a REPORT of", "*report*", true));
    EXPECT_FALSE(VKstrContainPattern("Report.SDB", "rep*.sdb", false));
    EXPECT_FALSE(VKstrContainPattern("ab", "a?", false));
    EXPECT_TRUE(VKstrContainPattern("[a]\\?", "[a]\\*?", false));
}

TEST(Clean, KeepsOnlyWhatEachFormIsFor)
{
    const std::tuple<char* (*)(char*), const char*, const char*> rows[] = {
        {VKstringCleanText, "a\x01\tb\x7F\r\nc\xC3\xA9", "a\tb\r\nc\xC3\xA9"},
        {VKutilCleanText2, "\x01 a \t\r\n b\n", " a b "},
        {VKstringCleanNumeric, "+1 (555) 01-\xC3\xA9", "155501"},
        {VKutilCleanUnprintableChar, "a\tb \xC3\xA9\x7F~", "ab ~"}};
    for (const auto& [clean, text, kept] : rows) {
        EXPECT_STREQ(clean(std::string(text).data()), kept);
        EXPECT_EQ(clean(nullptr), nullptr);
    }
    std::string withZero = {'1', '\0', '2', 'a'};
    EXPECT_EQ(VKstringCleanNumeric(withZero), "12");
}

TEST(Clean, TakesOutOfAMessageWhatTheSystemAdded)
{
    const char* const message = "Sent by Ann Msg ID: 7\r\nFire, Sent by hand\nSubject: drill\nMsg ID: 7";
    const auto cleaned = [&](bool id, bool sender, bool recipient, bool time, bool subject) {
        std::string text(message);
        return std::string(VKutilCleanMessageIncludeParams(text.data(), id, sender, recipient, time, subject));
    };
    EXPECT_EQ(cleaned(false, false, false, false, false), message);
    EXPECT_EQ(cleaned(true, false, false, false, false), "Sent by Ann \r\nFire, Sent by hand\nSubject: drill\n");
    EXPECT_EQ(cleaned(false, true, false, false, false), "Msg ID: 7\r\nFire, Sent by hand\nSubject: drill\nMsg ID: 7");
    EXPECT_EQ(cleaned(true, true, true, true, true), "Fire, Sent by hand\n");
    EXPECT_EQ(VKutilCleanMessageIncludeParams(nullptr, true, true, true, true, true), nullptr);
}

} // namespace
