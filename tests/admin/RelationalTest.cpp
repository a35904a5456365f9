#include "PostgresServer.h"
#include "VkadminRun.h"

namespace {

using testing::HasSubstr;

/// A root on files, and a new one on a relational server whose tables are those that the tool prints.
class VkadminOnAServer : public Vkadmin
{
protected:
    VkadminOnAServer()
    {
        PostgresServer::Get().Drop();
        Init();
        const ProgramRun init = AdminOn(newRoot, {"init", "--dsn", PostgresServer::kSource, "--db-user", "postgres"});
        EXPECT_EQ(init.exitCode, 0) << init.err;
    }
    void MakeTables() const
    {
        const ProgramRun schema = ProgramRun::Of("vkadmin", {"schema", "--dialect", "postgresql"});
        ASSERT_EQ(schema.exitCode, 0) << schema.err;
        ASSERT_EQ(PostgresServer::Get().RunScript(schema.out), "");
    }
    ProgramRun OnServer(std::vector<std::string> words) const { return AdminOn(newRoot, std::move(words)); }
    ProgramRun Convert() const
    {
        return ProgramRun::Of("vkadmin", {"convert", "--from", dir / "root", "--to", newRoot, "--json"});
    }

    const std::string newRoot = dir / "new";
};

TEST_F(VkadminOnAServer, AnInstallationMovesInThreeCommands)
{
    Add({"department", "add", "--name", "Fire"});
    Add({"receiver", "add", "--name", "Al", "--pin", "al@localhost", "--department-id", "1"});
    ExpectOneLine(Convert(), 3, "The table [VK_DEPARTMENT] cannot be read. A new database needs the tables that \"vkadmin "
                                "schema\" prints; run its output there first.: ERROR: relation \"vk_department\"");
    MakeTables();
    const ProgramRun first = Convert();
    ASSERT_EQ(first.exitCode, 0) << first.err;
    EXPECT_THAT(first.out, HasSubstr(R"({"added":1,"family":"receivers","present":0,"table":"receiver"})"));
    EXPECT_THAT(Convert().out, HasSubstr(R"({"added":0,"family":"receivers","present":1,"table":"receiver"})"));

    const auto shown = Lines(OnServer({"receiver", "show", "--name", "AL", "--json"}).out);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["pin"].asString(), "al@localhost");
    EXPECT_EQ(OnServer({"receiver", "add", "--name", "Bo", "--pin", "bo@localhost"}).out, "2\n");
    EXPECT_EQ(Lines(OnServer({"gateway-user", "list", "--all", "--json"}).out).size(), 3u);
    ExpectOneLine(OnServer({"receiver", "add", "--name", "bO", "--pin", "x@localhost"}), 1, "vkadmin: ");
}

TEST_F(VkadminOnAServer, AServerThatIsNotThereIsToldAndNothingIsDone)
{
    dir.Write("new/config/datasource", "database_type:\tOdbc\ndb_connect_type:\tDSN\ndb_connect_string:\tnowhere\n"
                                       "db_password:\thush\n");
    const ProgramRun run = OnServer({"receiver", "list"});
    ExpectOneLine(run, 3, "Data source name not found");
    EXPECT_EQ(run.err.find("hush"), std::string::npos);
    ExpectOneLine(Convert(), 3, "Data source name not found");
    ExpectOneLine(ProgramRun::Of("vkadmin", {"convert", "--from", dir / "root", "--to", dir / "root"}), 2, "same root");
    ExpectOneLine(ProgramRun::Of("vkadmin", {"schema", "--dialect", "cobol"}), 2, "--dialect: 'cobol'");
}

TEST_F(VkadminOnAServer, APasswordStandsInAFileThatOnlyItsOwnersRead)
{
    const std::string root = dir / "third";
    const ProgramRun init = AdminOn(root, {"init", "--dsn", "d", "--db-password-file", dir.Write("secret", "hush\n")});
    EXPECT_EQ(init.exitCode, 0) << init.err;
    EXPECT_THAT(dir.Read("third/config/datasource"), HasSubstr("db_password:\thush\n"));
    EXPECT_EQ(std::filesystem::status(root + "/config/datasource").permissions() & std::filesystem::perms::others_all,
              std::filesystem::perms::none);
    ExpectOneLine(AdminOn(dir / "fourth", {"init", "--db-user", "x"}), 2, "--dsn");
    EXPECT_FALSE(std::filesystem::exists(dir / "fourth"));
}

} // namespace
