#include "TempDir.h"
#include "VKsystemResource.h"

#include <gtest/gtest.h>

namespace {

TEST(VKsystemResource, TakesOnlyLinesOfTheFixedForm)
{
    const TempDir dir;
    VKsystemResource resource;
    ASSERT_TRUE(resource.Load(dir.Write("a.res", "KEY0000001 first text \r\n"
                                                 "SHORT      second\n"
                                                 "#EY0000003 a comment\n"
                                                 "KEY0000004xno white space\n"
                                                 "KEY5\n"
                                                 "KEY0000006\n"
                                                 "KEY0000007\tlast")));
    const std::pair<const char*, const char*> cases[] = {
        {"KEY0000001", "first text "}, {"SHORT", "second"},       {"SHORT     ", "second"}, {"#EY0000003", "Unknown"},
        {"KEY0000004", "Unknown"},     {"KEY5", "Unknown"},       {"KEY0000006", ""},       {"KEY0000007", "last"},
        {"", "Unknown"}};
    for (const auto& [key, text] : cases)
        EXPECT_EQ(resource.GetString(key), text) << key;

    EXPECT_FALSE(resource.Load(dir / "missing.res"));
    EXPECT_EQ(resource.GetString("SHORT"), "second");
    ASSERT_TRUE(resource.Load(dir.Write("long.res", "SHORT      " + std::string(70000, 'x'))));
    EXPECT_EQ(resource.GetString("SHORT").size(), 65534u - 11);
    resource.Unload();
    EXPECT_EQ(resource.GetString("KEY0000001"), "Unknown");
}

} // namespace
