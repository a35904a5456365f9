#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "VKXMPPGlooxdTypes.h"

namespace {

template <std::size_t N>
void ExpectEveryNumberHasItsRow(const VKXMPPGlooxdTypes::Row (&table)[N], const char* (*lookup)(int))
{
    for (std::size_t i = 0; i + 1 < N; ++i) {
        EXPECT_EQ(table[i].code, static_cast<int>(i));
        EXPECT_NE(*table[i].text, '\0') << i;
        EXPECT_EQ(lookup(static_cast<int>(i)), table[i].text);
    }
    EXPECT_EQ(table[N - 1].code, -1);
    for (const int unknown : {-1, 99, static_cast<int>(N) - 1})
        EXPECT_STREQ(lookup(unknown), "") << unknown;
}

} // namespace

TEST(VKXMPPGlooxdTypes, EveryNumberHasItsRowAndUnknownOnesAreEmpty)
{
    ExpectEveryNumberHasItsRow(VKXMPPGlooxdTypes::GlooxConnErrTable, VKXMPPGlooxdTypes::GetGlooxConnErrString);
    ExpectEveryNumberHasItsRow(VKXMPPGlooxdTypes::GlooxStreamErrTable, VKXMPPGlooxdTypes::GetGlooxStreamErrString);
    ExpectEveryNumberHasItsRow(VKXMPPGlooxdTypes::GlooxStanzaErrTypeTable,
                               VKXMPPGlooxdTypes::GetGlooxStanzaErrTypeString);
    ExpectEveryNumberHasItsRow(VKXMPPGlooxdTypes::GlooxStanzaErrTable, VKXMPPGlooxdTypes::GetGlooxStanzaErrString);
}

TEST(VKXMPPGlooxdTypes, StanzaConditionsEndWithTheirErrorType)
{
    for (int number = 0; number < 24; ++number)
        EXPECT_NE(strstr(VKXMPPGlooxdTypes::GetGlooxStanzaErrString(number), " The associated error type SHOULD be "),
                  nullptr)
            << number;
}
