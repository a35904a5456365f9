#include "VKstringXmlText.h"

#include <gtest/gtest.h>

namespace {

const std::string kMark = "\xEF\xBF\xBD";

TEST(CleanXmlText, ReplacesWhatXmlCannotCarry)
{
    const std::string m = kMark;
    const std::tuple<const char*, std::string, std::string, std::size_t> rows[] = {
        {"empty", "", "", 0},
        {"plain, longer than a block", "a plain text of more than sixteen bytes~\x7F", "", 0},
        {"allowed controls", "a\tb\nc\rd, and again: \t\n\r", "", 0},
        {"two to four bytes", "\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x9A\x92 \xF4\x8F\xBF\xBF \xEF\xBF\xBD", "", 0},
        {"edges of the surrogates", "\xED\x9F\xBF\xEE\x80\x80", "", 0},
        {"escape", "a\x1B[0m", "a" + m + "[0m", 1},
        {"zero byte", std::string("a\0b", 3), "a" + m + "b", 1},
        {"control inside a block", "1234567\x01 2345678\x1F", "1234567" + m + " 2345678" + m, 2},
        {"lone continuation", "a\x80z", "a" + m + "z", 1},
        {"cut at the end", "ab\xE2\x82", "ab" + m, 1},
        {"cut by a letter", "\xF0\x9F\x9A!", m + "!", 1},
        {"cut by a new character", "\xE2\x82\xC3\xA9", m + "\xC3\xA9", 1},
        {"overlong two", "\xC0\x80", m + m, 2},
        {"overlong three", "\xE0\x80\xAF", m + m + m, 3},
        {"overlong four", "\xF0\x80\x80\xAF", m + m + m + m, 4},
        {"surrogate", "\xED\xA0\x80", m + m + m, 3},
        {"above the last code point", "\xF4\x90\x80\x80", m + m + m + m, 4},
        {"bytes that never occur", "\xF5\xFF\xFE", m + m + m, 3},
        {"U+FFFE and U+FFFF", "\xEF\xBF\xBE|\xEF\xBF\xBF", m + "|" + m, 2},
    };
    for (const auto& [name, dirty, clean, replaced] : rows) {
        std::string text = dirty;
        EXPECT_EQ(VKstringCleanXmlText(text), replaced) << name;
        EXPECT_EQ(text, replaced ? clean : dirty) << name;
        EXPECT_EQ(VKstringCleanXmlText(text), 0u) << name << ": not clean after cleaning";
    }
}

TEST(CleanXmlText, FindsABadByteAtEveryPlaceOfABlock)
{
    for (const char bad : {'\x01', '\x80', '\xFF'})
        for (std::size_t at = 0; at < 20; ++at) {
            std::string text(20, 'x');
            text[at] = bad;
            EXPECT_EQ(VKstringCleanXmlText(text), 1u);
            EXPECT_EQ(text, std::string(at, 'x') + kMark + std::string(19 - at, 'x'));
        }
}

TEST(CleanXmlText, LeavesAllThatIsCleanWhereItStands)
{
    std::string text(1000, 'a');
    const char* const before = text.data();
    EXPECT_EQ(VKstringCleanXmlText(text), 0u);
    EXPECT_EQ(text.data(), before);
}

} // namespace
