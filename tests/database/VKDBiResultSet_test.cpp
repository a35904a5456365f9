#include <gtest/gtest.h>

#include "VKDBexception.h"
#include "VKDBiResultSet.h"

TEST(VKDBiRowField, BooleanOfText)
{
    const struct
    {
        const char* text;
        bool value;
    } rows[] = {{nullptr, false}, {"", false},  {"0", false}, {"false", false}, {"F", false}, {"NO", false},
                {"n", true},      {"00", true}, {"1", true},  {"true", true},   {"x", true}};
    for (const auto& row : rows)
        EXPECT_EQ(VKDBiRowField("c", row.text).GetValueBool(), row.value) << (row.text ? row.text : "NULL");
}

TEST(VKDBiRowField, NumbersAndNull)
{
    const VKDBiRowField number("n", "-17.5 left");
    EXPECT_EQ(number.GetValueInt(), -17);
    EXPECT_DOUBLE_EQ(number.GetValueDouble(), -17.5);
    EXPECT_EQ(VKDBiRowField("n", "18446744073709551615").GetValueULong(), 18446744073709551615ul);

    const VKDBiRowField null("n", nullptr);
    EXPECT_EQ(null.GetValuePtr(), nullptr);
    EXPECT_EQ(null.GetValueString(), "");
    EXPECT_EQ(null.GetValueLong(), 0);
}

TEST(VKDBiRow, WhatIsNotThereIsTheNullField)
{
    VKDBiRow row;
    row.Add(VKDBiRowField("Name", "Ann"));
    row.Add(VKDBiRowField("pin", "7"), 2);
    EXPECT_EQ(row.GetFieldsCount(), 3);
    EXPECT_STREQ(row["name"].GetValuePtr(), "Ann");
    EXPECT_EQ(row[2].GetValueInt(), 7);
    for (const VKDBiRowField* field : {&row[-1], &row[3], &row[""], &row["unknown"]})
        EXPECT_EQ(field, &VKDBiRow::nullField);
    EXPECT_FALSE(VKDBiRow::nullField.GetValueBool());

    VKDBiResultSet result;
    result.Add(row);
    EXPECT_EQ(result.GetReturnedRowsCount(), 1);
    EXPECT_EQ(result[1]["name"].GetValuePtr(), nullptr);
}

TEST(VKDBexception, SaysAllInOneLine)
{
    const VKDBexception failure(255, "file.cpp", 12, "what", "why");
    EXPECT_EQ(failure.ToString(), "Exception raised! Error code[FF] File[file.cpp] Line[12] Msg[what] SysMsg[why]");
    EXPECT_STREQ(failure.what(), "what: why");
    EXPECT_STREQ(VKDBexception(-1, "m").what(), "m");
    EXPECT_EQ(VKDBexception(-1, "m").ToString(),
              "Exception raised! Error code[FFFFFFFF] File[] Line[0] Msg[m] SysMsg[]");
}
