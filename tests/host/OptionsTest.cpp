#include "Options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::HasSubstr;

constexpr vk::Option kCommon[] = {{"--root", "DIR", "The root.", vk::Need::Required},
                                  {"--json", nullptr, "JSON."}};
constexpr vk::Option kAdd[] = {{"--name", "NAME", "Its name.", vk::Need::Required},
                               {"--type", "TYPE", "Its type.", vk::Need::Optional, "alpha|two-way"},
                               {"--file", "FILE", "A file.", vk::Need::OneOrMore},
                               {"--count", "N", "How many."}};
constexpr vk::Command kCommands[] = {{"thing add", "Adds a thing.", kAdd, nullptr},
                                     {"thing list", "Lists things.", {}, nullptr}};
constexpr vk::Program kProgram = {"tool", "a tool", "Does things.", kCommon, kCommands, {}};

TEST(Options, AreTakenFromAnywhereInBothForms)
{
    const auto arguments = vk::ParseArguments(
        kProgram, {"--root", "/r", "thing", "--name=a=b", "add", "--file", "-x", "--file", "y", "--json"});
    EXPECT_STREQ(arguments.GetCommand().words, "thing add");
    EXPECT_EQ(arguments.Text("--root"), "/r");
    EXPECT_EQ(arguments.Text("--name"), "a=b");
    EXPECT_EQ(arguments.All("--file"), (std::vector<std::string>{"-x", "y"}));
    EXPECT_TRUE(arguments.Has("--json"));
    EXPECT_EQ(arguments.Text("--type", "alpha"), "alpha");
    EXPECT_EQ(arguments.Number("--count", 1, 9, 5), 5);
}

TEST(Options, AMistakeIsNamed)
{
    const struct
    {
        std::vector<std::string> words;
        const char* error;
    } cases[] = {
        {{}, "no command given"},
        {{"thing"}, "'thing' is no command"},
        {{"thing", "list"}, "--root is missing"},
        {{"thing", "list", "--root"}, "--root needs a value: DIR"},
        {{"thing", "list", "--root", "a", "--root", "b"}, "--root is given twice"},
        {{"thing", "list", "--root=a", "--json=yes"}, "--json takes no value"},
        {{"thing", "list", "--root=a", "--name", "n"}, "--name is no option of 'thing list'"},
        {{"thing", "list", "--root=a", "-v"}, "unknown option -v"},
        {{"thing", "add", "--root=a", "--name=n"}, "--file is missing"},
        {{"thing", "add", "--root=a", "--name=n", "--file=f", "--type", "alpha|two-way"}, "--type: 'alpha|two-way'"},
        {{"thing", "add", "--root=a", "--name=n", "--file=f", "--type", ""}, "--type: '' is none of"},
    };
    for (const auto& row : cases) {
        try {
            vk::ParseArguments(kProgram, row.words);
            ADD_FAILURE() << row.error;
        } catch (const vk::UsageError& error) {
            EXPECT_THAT(error.what(), HasSubstr(row.error));
        }
    }
}

TEST(Options, NumbersAreWholeAndWithinTheirLimits)
{
    for (const char* text : {"0", "10", "1.5", "1x", "", " 1", "+1", "99999999999999999999"}) {
        const auto arguments = vk::ParseArguments(
            kProgram, {"thing", "add", "--root=a", "--name=n", "--file=f", std::string("--count=") + text});
        EXPECT_THROW(arguments.Number("--count", 1, 9, 5), vk::UsageError) << text;
    }
}

TEST(Options, TheManualNamesEveryCommandAndOption)
{
    const std::string manual = vk::Manual(kProgram);
    for (const char* text : {"thing add --root DIR [--json] --name NAME [--type TYPE]", "--file FILE ...", "thing list",
                             "One of alpha, two-way.", "--version"})
        EXPECT_THAT(manual, HasSubstr(text));
}

} // namespace
