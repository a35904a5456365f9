#include "VkadminRun.h"

namespace {

using testing::HasSubstr;

TEST_F(Vkadmin, AnInstallationMayWordItsOwnMessages)
{
    Init();
    const auto refused = [this] { return Admin({"department", "add", "--name", "a/b"}).err; };
    EXPECT_THAT(refused(), HasSubstr("Letters, digits, blanks"));

    std::string constants = dir.Read("root/config/message_constants.h");
    const std::string shipped = "The department name is not valid.";
    ASSERT_NE(constants.find(shipped), std::string::npos);
    constants.replace(constants.find(shipped), shipped.size(), "Ask the front desk for a name at 100%.");
    const auto built = Admin({"messages", "build", dir.Write("ours.h", constants), "--json"});
    ASSERT_EQ(built.exitCode, 0) << built.err;
    EXPECT_EQ(Lines(built.out).front()["texts"].asInt(), 37);
    EXPECT_THAT(refused(), HasSubstr("at 100%. Letters"));

    std::filesystem::remove(dir / "root/config/messages.sdb");
    EXPECT_THAT(refused(), HasSubstr(shipped)) << "what the program itself says";
}

TEST_F(Vkadmin, ACatalogueIsNotReplacedByAFileThatIsNone)
{
    Init();
    const auto build = [this](const std::string& file) { return Admin({"messages", "build", file}); };
    ExpectOneLine(build(dir / "missing.h"), 2, "missing.h: No such file");
    ExpectOneLine(build(dir.Path()), 2, "is a directory");
    ExpectOneLine(build(dir.Write("empty.h", "#define A 1\n")), 2, "holds no text");
    ExpectOneLine(build(dir.Write("twice.h", "#define A 1 /* a */\n#define B 1 /* b */\n")), 2,
                  "Failed to execute INSERT query (UNIQUE");
    EXPECT_THAT(Admin({"department", "add", "--name", "a/b"}).err, HasSubstr("Letters, digits, blanks"));
}

} // namespace
