#include "VKbuffer.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>

namespace {

class Buffer : public testing::Test
{
protected:
    void SetUp() override { InitVdkBuffer(&buffer, 0); }
    void TearDown() override { EmptyVdkBuffer(&buffer); }

    VDK_BUFFER buffer;
};

TEST_F(Buffer, StartsEmptyAndGrowsByAHundred)
{
    EXPECT_EQ(AppendDataToVdkBuffer(&buffer, nullptr), 0);
    EXPECT_EQ(AppendDataToVdkBufferWithSize(&buffer, "a", 0), 0);
    EXPECT_EQ(AppendDataToVdkBufferWithSize(&buffer, "a", -1), -1);
    EXPECT_EQ(AppendDataToVdkBufferWithSize(&buffer, "a", INT_MAX), -1);
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(AppendDataToVdkBuffer(&buffer, "abc"), 0);
    EXPECT_EQ(buffer.capacity, 103);
    EXPECT_EQ(buffer.used, 3);
    // 98 + 3 + 2 is 103 and fits; one more does not.
    EXPECT_EQ(AppendDataToVdkBuffer(&buffer, std::string(98, 'x').c_str()), 0);
    EXPECT_EQ(buffer.capacity, 103);
    EXPECT_EQ(AppendDataToVdkBuffer(&buffer, "y"), 0);
    EXPECT_EQ(buffer.capacity, 202);
    EXPECT_EQ(std::string(buffer.data), "abc" + std::string(98, 'x') + "y");
}

TEST_F(Buffer, EndsDataAtItsFirstZeroByte)
{
    EXPECT_EQ(AppendDataToVdkBufferWithSize(&buffer, "ab\0cd", 5), 0);
    EXPECT_EQ(AppendDataToVdkBufferWithSize(&buffer, "efgh", 2), 0);
    EXPECT_STREQ(buffer.data, "abef");
    EXPECT_EQ(buffer.used, 4);
}

TEST_F(Buffer, ResetKeepsTheMemoryAndEmptyGivesItBack)
{
    EXPECT_EQ(InitVdkBuffer(&buffer, 16), 0);
    EXPECT_STREQ(buffer.data, "");
    AppendDataToVdkBuffer(&buffer, "secret");
    const char* const memory = buffer.data;
    ResetVdkBuffer(&buffer);
    EXPECT_EQ(buffer.data, memory);
    EXPECT_EQ(std::string(buffer.data, 6), std::string(6, '\0'));
    EXPECT_EQ(buffer.used, 0);
    EmptyVdkBuffer(&buffer);
    EXPECT_EQ(buffer.data, nullptr);
    EXPECT_EQ(buffer.capacity, 0);
}

} // namespace
