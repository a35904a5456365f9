#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "VKMXPmValue.h"

namespace {

TEST(Numbers, AreReadByTheirLeadingDigits)
{
    struct Row
    {
        const char* text;
        std::int32_t number;
        unsigned long large;
        double real;
    };
    const Row table[] = {
        {"", 0, 0, 0},
        {"abc", 0, 0, 0},
        {" \n\t12", 12, 12, 12},
        {"007 8", 7, 7, 7},
        {"+5", 5, 5, 5},
        {"-7x", -7, -7UL, -7},
        {"+-5", 0, 0, 0},
        {"- 1", 0, 0, 0},
        {"0x10", 0, 0, 0},
        {"1.5", 1, 1, 1.5},
        {".25", 0, 0, 0.25},
        {"2147483648", INT32_MIN, 2147483648, 2147483648.0},
        {"4294967297", 1, 4294967297, 4294967297.0},
        {"99999999999999999999", -1, UINT64_MAX, 1e20},
        {"-99999999999999999999", 0, UINT64_MAX, -1e20},
        {"1e400", 1, 1, 0},
        {"nan", 0, 0, 0},
        {"-inf", 0, 0, 0},
    };
    for (const Row& row : table) {
        EXPECT_EQ(vk::NumberOf(row.text), row.number) << row.text;
        EXPECT_EQ(vk::UnsignedNumberOf(row.text), row.large) << row.text;
        EXPECT_EQ(vk::RealNumberOf(row.text), row.real) << row.text;
    }
}

TEST(Numbers, AreWrittenInDecimal)
{
    const auto text = [](auto number) {
        std::string out;
        vk::AppendValue(out, number);
        return out;
    };
    EXPECT_EQ(text(INT32_MIN), "-2147483648");
    EXPECT_EQ(text(UINT64_MAX), "18446744073709551615");
    EXPECT_EQ(text(48.13743), "48.1374");
    EXPECT_EQ(text(-0.00001), "-1e-05");
    EXPECT_EQ(text(1e6), "1e+06");
    EXPECT_EQ(text(100000.0), "100000");
    EXPECT_EQ(text(true), "1");
}

} // namespace
