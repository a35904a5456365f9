#include <gtest/gtest.h>

#include <stdexcept>

#include "DatabaseCells.h"
#include "TempDir.h"
#include "VKBALMessages.h"
#include "VKDBexception.h"
#include "VKMessageManager.h"
#include "VKShippedMessages.h"

namespace {

/// A catalogue in a directory of its own.
class MessageCatalogue : public testing::Test
{
protected:
    MessageCatalogue()
    {
        VKMessageManager::DeleteInstance();
        VKMessageManager::CreateInstance(dir.Path().string());
    }
    ~MessageCatalogue() override { VKMessageManager::DeleteInstance(); }

    void Build(const std::string& constants) { VKMessageManager::BuildMessageDB(dir.Write("constants.h", constants)); }

    /// The text of the logic_error that building ends with; empty when it ends well.
    template <class Building> static std::string ErrorOf(Building&& building)
    {
        try {
            building();
        } catch (const std::logic_error& failure) {
            return failure.what();
        }
        return "";
    }

    TempDir dir;
};

TEST_F(MessageCatalogue, ReadsEachFormOfAnEntry)
{
    Build("#pragma once\n"
          "/* about the file */\n"
          "#define GUARD\n"
          "#define NO_TEXT 6\n"
          "#define PLAIN 7 /* plain */\n"
          "  #define\tLONG 8\t/* begins here\r\n     and ends\n\n here */ int x;\n"
          "#define BELOW 9\n"
          "/* stands below */\n"
          "#define OCTAL 010 // ten\n"
          "/*it's 100% \"so\" \\ */");
    const std::pair<unsigned long, const char*> cases[] = {
        {6, ""}, {7, "plain"}, {8, "begins here and ends here"}, {9, "stands below"}, {10, "it's 100%% \"so\" \\"},
        {0, ""}, {11, ""}};
    for (const auto& [id, text] : cases)
        EXPECT_EQ(VKMessageManager::GetMsg(id), text) << id;
}

TEST_F(MessageCatalogue, IsReplacedAsAWholeOrNotAtAll)
{
    Build("#define A 1 /* old one */\n#define B 2 /* old two */\n");
    EXPECT_EQ(ErrorOf([&] { Build("#define A 1 /* new */\n#define AGAIN 1 /* twice */\n"); }),
              "Failed to execute INSERT query");
    EXPECT_EQ(ErrorOf([&] { Build("#define A 1 /* new */\n#define LAST 2 /* and\nno end\n"); }),
              "The text of [LAST] has no end.");
    EXPECT_EQ(VKMessageManager::GetMsg(1), "old one");
    Build("#define A 1 /* new */\n");
    EXPECT_EQ(VKMessageManager::GetMsg(1), "new");
    EXPECT_EQ(VKMessageManager::GetMsg(2), "");

    EXPECT_EQ(ErrorOf([] { VKMessageManager::BuildMessageDB(""); }), "No message constants file specified.");
    const std::string missing = dir / "missing.h";
    EXPECT_EQ(ErrorOf([&] { VKMessageManager::BuildMessageDB(missing); }),
              "No message constants file exist at the specified path: [" + missing + "].");
    EXPECT_EQ(VKMessageManager::GetMsg(1), "new");
}

TEST_F(MessageCatalogue, TellsWhyTheOldTextsCouldNotBeFlushed)
{
    Build("#define A 1 /* old */\n");
    RunOn(dir / "messages.sdb",
          "CREATE TRIGGER keep BEFORE DELETE ON messages BEGIN SELECT RAISE(ABORT, 'kept'); END;");
    try {
        Build("#define A 1 /* new */\n");
        FAIL() << "built";
    } catch (const std::logic_error& failure) {
        EXPECT_STREQ(failure.what(),
                     "Could not flush existing messages from the database. Failed to execute DELETE query.");
        try {
            std::rethrow_if_nested(failure);
        } catch (const VKDBexception& cause) {
            EXPECT_EQ(cause.GetSysMsg(), "kept");
        }
    }
    EXPECT_EQ(VKMessageManager::GetMsg(1), "old");
}

TEST_F(MessageCatalogue, KeepsLanguagesApart)
{
    Build("#define A 1 /* hello */\n");
    VKMessageManager::SetLanguage(1031);
    EXPECT_EQ(VKMessageManager::GetMsg(1), "");
    Build("#define A 1 /* hallo */\n");
    EXPECT_EQ(VKMessageManager::GetMsg(1), "hallo");
}

TEST_F(MessageCatalogue, ReadingMakesNoFileAndNeverFails)
{
    EXPECT_EQ(VKMessageManager::GetMsg(1003), "");
    EXPECT_FALSE(std::filesystem::exists(dir / "messages.sdb"));
    dir.Write("messages.sdb", "this is no database, but it is there and long enough to look like one");
    EXPECT_EQ(VKMessageManager::GetMsg(1003), "");
}

TEST_F(MessageCatalogue, KeepsItsFirstPath)
{
    const std::string path = dir / "messages.sdb";
    EXPECT_EQ(VKMessageManager::GetMessageDBFilePath("/elsewhere"), path);
    EXPECT_EQ(VKMessageManager::CreateInstance("/elsewhere"), VKMessageManager::CreateInstance(""));
    EXPECT_EQ(VKMessageManager::GetMessageDBFilePath(""), path);
    VKMessageManager::DeleteInstance();
    EXPECT_EQ(VKMessageManager::GetMessageDBFilePath("/elsewhere"), "/elsewhere/messages.sdb");
    EXPECT_EQ(VKMessageManager::GetMessageDBFilePath(""), "/usr/local/vardock/config/messages.sdb");
}

TEST_F(MessageCatalogue, ABrokenRuleIsAlwaysReadable)
{
    constexpr unsigned long numbers[] = {1003, 1004, 1005, 1006, 1007, 1108, 1109, 1110, 1111, 1113, 1114, 1115,
                                         1116, 1117, 1118, 1119, 1120, 1121, 1122, 1123, 1124, 1125, 1126, 1127,
                                         1128, 1130, 1131, 1132, 1133, 1153, 1165, 1166, 1167, 1168, 1169, 1171, 1172};
    for (const unsigned long number : numbers)
        EXPECT_NE(vk::ShippedMessage(number), "") << number;
    EXPECT_EQ(vk::MessageText(1167), vk::ShippedMessage(1167));
    Build(vk::kShippedMessageConstants);
    for (const unsigned long number : numbers)
        EXPECT_EQ(vk::MessageText(number), vk::ShippedMessage(number));
    Build("#define OURS 1003 /* Give it a name. */");
    EXPECT_EQ(vk::MessageText(1003), "Give it a name.");
    EXPECT_EQ(vk::MessageText(99999), "The record breaks the rule 99999.");
}

} // namespace
