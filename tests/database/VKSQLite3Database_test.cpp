#include <gmock/gmock.h>

#include <filesystem>
#include <optional>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ChildProcess.h"
#include "CountedPauses.h"
#include "DatabaseErrors.h"
#include "FileFaults.h"
#include "TempDir.h"
#include "VKSQLite3Connection.h"
#include "VKSQLite3Database.h"
#include "VKSqlTransaction.h"

using testing::EndsWith;
using vktest::CountedPauses;
using vktest::WithoutRootRights;

namespace {

const VKSQLite3TableDesc kTables[] = {{"note", "id INTEGER PRIMARY KEY AUTOINCREMENT, text VARCHAR(50) NOT NULL"},
                                      {"tag", "id INTEGER PRIMARY KEY, note_id INTEGER"}};

class VKSQLite3DatabaseTest : public testing::Test
{
protected:
    std::unique_ptr<VKSQLite3Database> Open() const
    {
        return std::make_unique<VKSQLite3Database>(path, kTables, 2, false);
    }
    static bool Add(VKSQLite3Database& database, const std::string& text = "x")
    {
        VKSQLite3ResultSet result;
        unsigned long id = 0;
        return database.InsertQueryTransaction("INSERT INTO note (text) VALUES ('" + text + "');", result, id);
    }
    static std::string Count(VKSQLite3Database& database)
    {
        VKSQLite3ResultSet result;
        return database.SelectQueryTransaction("SELECT COUNT(*) FROM note;", result) ? result[0][0].GetValueString()
                                                                                     : "refused";
    }
    /// What opening the file says; empty when it opens.
    std::string OpenFailure() const { return WholeErrorOf([&] { Open(); }); }

    TempDir dir;
    std::string path = dir / "notes.sdb";
};

} // namespace

TEST(VKSQLite3Text, ConditioningOfValues)
{
    const std::tuple<const char*, int, const char*, const char*> rows[] = {
        {"", 0, "", ""},
        {"O'Brien", 0, "O''Brien", "O''Brien"},
        {"a_b\\c%", 0, "a_b\\c%", "a\\_b\\\\c%"},
        {"ab'c", 3, "ab'", "ab'"}, // the cut falls between the two quotes
        {"abc", 3, "abc", "abc"},
        {"\xF0\x9F\x9A\x92'", 0, "\xF0\x9F\x9A\x92''", "\xF0\x9F\x9A\x92''"}};
    for (const auto& [text, maxLen, plain, like] : rows) {
        EXPECT_EQ(VKSQLite3Database::PreprocessSqlStringCopy(text, maxLen), plain);
        EXPECT_EQ(VKSQLite3Database::PreprocessSqlLikeStringCopy(text, maxLen), like);
    }
    char inPlace[] = "it's";
    VKSQLite3Database::PreprocessSqlString(inPlace);
    EXPECT_STREQ(inPlace, "it\"s");
    EXPECT_EQ(VKSQLite3Database::PrepareSqlQuery(6, "id=%d;", 12345), "id=123");
    EXPECT_EQ(VKSQLite3Database::CreateTablePath("", "x.sdb"), "x.sdb");
    EXPECT_EQ(VKSQLite3Database::CreateTablePath("/a/", "x.sdb"), "/a/x.sdb");
    EXPECT_EQ(VKSQLite3Database::CreateTablePath("/a", "x.sdb"), "/a/x.sdb");
    EXPECT_EQ(VKSQLite3Database::CreateTablePath("a\\", "x.sdb"), "a\\x.sdb");
}

TEST_F(VKSQLite3DatabaseTest, CreatesMissingTablesAndKeepsThoseThatAreThere)
{
    unsigned long id = 0;
    VKSQLite3ResultSet result;
    {
        VKSQLite3Database first(path, kTables, 1, false);
        ASSERT_TRUE(first.IsReady());
        ASSERT_TRUE(first.InsertQueryTransaction("INSERT INTO note (text) VALUES ('one');", result, id));
        EXPECT_EQ(id, 1u);
        EXPECT_EQ(result.GetEffectedRowsCount(), 1);
        EXPECT_EQ(result.GetReturnedRowsCount(), -1);
        EXPECT_FALSE(first.IsTableExists("tag"));
    }
    const auto again = Open();
    EXPECT_TRUE(again->IsTableExists("tag"));
    ASSERT_TRUE(again->SelectQueryTransaction("SELECT id, text, NULL FROM note;", result));
    EXPECT_EQ(result.GetReturnedRowsCount(), 1);
    EXPECT_EQ(result.GetColumnsCount(), 3);
    EXPECT_EQ(result[0]["text"].GetValueString(), "one");
    EXPECT_EQ(result[0][2].GetValuePtr(), nullptr);
    ASSERT_TRUE(again->SelectQueryTransaction("SELECT * FROM note WHERE id=9;", result));
    EXPECT_EQ(result.GetReturnedRowsCount(), 0);
    EXPECT_EQ(again->SetSchema(kTables, 0), false);
    EXPECT_THROW(VKSQLite3Database(path, std::map<std::string, std::string>{{"x", ""}}, false), VKDBexception);
}

TEST_F(VKSQLite3DatabaseTest, AFailedStatementSaysWhichAndRollsBack)
{
    const auto database = Open();
    VKSQLite3ResultSet result;
    unsigned long id = 0;
    const std::string statement = "INSERT INTO note (text) VALUES (NULL);";
    EXPECT_EQ(WholeErrorOf([&] { database->InsertQueryTransaction(statement, result, id); }),
              std::to_string(SQLITE_CONSTRAINT_NOTNULL) + " Unable to execute UPDATE query [" + statement +
                  "].: NOT NULL constraint failed: note.text");
    EXPECT_EQ(database->GetLastErrorCode(), 0) << "the rollback succeeded after it";
    EXPECT_FALSE(database->IsTransactionInProgress());
    EXPECT_TRUE(database->IsAutoCommitEnabled());
    EXPECT_THROW(database->SelectQueryTransaction("SELECT nothing FROM note;", result), VKDBexception);
    EXPECT_EQ(Count(*database), "0");
}

TEST_F(VKSQLite3DatabaseTest, AFullDiskLosesOnlyWhatDidNotFit)
{
    const auto database = Open();
    VKSQLite3ResultSet result;
    ASSERT_TRUE(Add(*database));
    database->ExecuteUpdateQuery("PRAGMA max_page_count=10;", result); // as if the disk ended there
    const std::string error = WholeErrorOf([&] { Add(*database, std::string(100000, 'x')); });
    EXPECT_EQ(error.substr(0, 3), std::to_string(SQLITE_FULL) + " ");
    EXPECT_THAT(error, EndsWith(": database or disk is full"));
    EXPECT_FALSE(database->IsTransactionInProgress());
    EXPECT_TRUE(database->IsReady());
    EXPECT_TRUE(Add(*database));
    EXPECT_EQ(Count(*database), "2");
}

TEST_F(VKSQLite3DatabaseTest, TransactionsAreNotNestedAndNotEndedTwice)
{
    const auto database = Open();
    VKSQLite3ResultSet result;
    unsigned long id = 0;
    EXPECT_TRUE(database->OpenDatabase(true)) << "open already";
    EXPECT_FALSE(database->EndTransactionCommit("", true, 1, 1));
    ASSERT_TRUE(database->StartTransactionExclusive("", true, 1, 1));
    EXPECT_FALSE(database->StartTransactionShared("", true, 1, 1));
    EXPECT_FALSE(Add(*database));
    ASSERT_TRUE(database->ExecuteInsertQuery("INSERT INTO note (text) VALUES ('x');", result, id));
    ASSERT_TRUE(database->EndTransactionRollback("", true, 1, 1));
    EXPECT_FALSE(database->EndTransactionRollback("", true, 1, 1));
    EXPECT_EQ(Count(*database), "0");

    database->CloseDatabase();
    EXPECT_FALSE(database->ExecuteSelectQuery("SELECT 1;", result));
    EXPECT_FALSE(database->StartTransactionShared("", true, 1, 1));
    EXPECT_TRUE(database->OpenDatabase(false));
    EXPECT_FALSE(database->ExecuteSelectQuery("SELECT 1;", result)) << "open is not ready";
}

TEST_F(VKSQLite3DatabaseTest, WhatCannotBeADatabaseIsRefusedAtOnceAndLeftAlone)
{
    const CountedPauses pauses;
    const std::string garbage = "this is a plain text, long enough to be taken for the header of a file of some sort, "
                                "but it is none of a database";
    dir.Write("notes.sdb", garbage);
    EXPECT_EQ(OpenFailure(), "26 Unable to open DB [" + path + "]: file is not a database");
    EXPECT_EQ(dir.Read("notes.sdb"), garbage);

    std::filesystem::remove(path);
    Add(*Open(), std::string(9000, 'x'));
    const std::string whole = dir.Read("notes.sdb");
    for (const std::size_t size : {whole.size() - 4096, std::size_t{4096}, std::size_t{600}, std::size_t{100}}) {
        dir.Write("notes.sdb", whole.substr(0, size));
        EXPECT_NE(OpenFailure(), "") << size << " of " << whole.size() << " bytes";
        EXPECT_EQ(dir.Read("notes.sdb"), whole.substr(0, size));
    }

    path = dir / "missing/notes.sdb";
    EXPECT_THAT(OpenFailure(), EndsWith(" Unable to open DB [" + path + "]: the directory " + (dir / "missing/") +
                                        " does not exist or cannot be entered"));
    path = dir.Path().string();
    EXPECT_THAT(OpenFailure(), EndsWith(" Unable to open DB [" + path + "]: this is a directory"));
    EXPECT_EQ(pauses.count, 0);
}

TEST_F(VKSQLite3DatabaseTest, OpenAndTransactionRetryAsOftenAsTold)
{
    const auto database = Open();
    const CountedPauses pauses;
    // The file turns to garbage under the open handle: SQLite's code for it counts as retryable.
    ASSERT_EQ(truncate(path.c_str(), 0), 0);
    dir.Write("notes.sdb", std::string(8192, 'g'));
    EXPECT_FALSE(database->StartTransactionExclusive("", true, 4000, 30));
    EXPECT_EQ(pauses.count, 4000);
    EXPECT_EQ(pauses.total, 4000l * 30000);
    EXPECT_FALSE(database->StartTransactionShared("", false, 4000, 30));
    EXPECT_EQ(pauses.count, 4000) << "without retry there is one attempt";
    EXPECT_TRUE(database->IsReady());

    database->CloseDatabase();
    std::filesystem::remove(path);
    std::filesystem::create_directory(path); // cannot be opened as a file, code 14, which the wide test takes in
    EXPECT_FALSE(database->OpenDatabase(false));
    EXPECT_EQ(pauses.count, 4050);
    EXPECT_EQ(pauses.total, 4000l * 30000 + 50l * 500000);
    EXPECT_EQ(database->GetLastErrorCode(), SQLITE_CANTOPEN);
    EXPECT_THROW(database->RefreshDatabase(), VKDBexception);
}

TEST_F(VKSQLite3DatabaseTest, AReadOnlyFileIsReadAndRefusesChanges)
{
    Open();
    ASSERT_EQ(chmod(dir.Path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(path.c_str(), 0444), 0);
    const WithoutRootRights user;
    const CountedPauses pauses;
    const auto database = Open();
    ASSERT_TRUE(database->IsReady());
    EXPECT_EQ(Count(*database), "0");
    const std::string error = WholeErrorOf([&] { Add(*database); });
    EXPECT_EQ(error.substr(0, 2), std::to_string(SQLITE_READONLY) + " ");
    EXPECT_THAT(error, EndsWith(": attempt to write a readonly database"));
    EXPECT_FALSE(database->IsTransactionInProgress());
    EXPECT_EQ(pauses.count, 0);
}

TEST_F(VKSQLite3DatabaseTest, ReadOnlyFilesAreReadTogetherAndTheHandleHealsWhenTheRightComesBack)
{
    for (const char* file : {"notes.sdb", "other.sdb", "third.sdb"})
        VKSQLite3Database(dir / file, kTables, 2, false);
    chmod(dir.Path().c_str(), 0755);
    const auto modes = [&](mode_t mode) {
        for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
            chmod(entry.path().c_str(), mode);
    };
    modes(0444);
    std::optional<WithoutRootRights> user(std::in_place);
    vk::SQLite3Connection connection(dir.Path().string(), "notes.sdb", kTables, 2);
    for (int again = 0; again < 2; ++again) {
        const vk::SqlAttachment one(connection, {"one", "other.sdb"});
        const vk::SqlAttachment two(connection, {"two", "third.sdb"});
        vk::InTransaction(connection, vk::TransactionLock::Shared, [&] {
            connection.ExecuteSelectQuery("SELECT * FROM note, one.tag, two.tag;");
        });
    }
    const auto add = [&] {
        vk::InTransaction(connection, vk::TransactionLock::Exclusive,
                          [&] { connection.ExecuteInsertQuery("INSERT INTO note (text) VALUES ('x');"); });
    };
    EXPECT_THROW(add(), VKDBexception);
    user.reset();
    modes(0644);
    EXPECT_NO_THROW(add());
}

TEST_F(VKSQLite3DatabaseTest, WaitsForAnotherProcessThatHoldsTheFile)
{
    Open();
    const Signal locked;
    ChildProcess other([&] {
        VKSQLite3Database holder(path, true);
        if (!holder.StartTransactionExclusive("", false, 1, 1))
            return 1;
        locked.Send();
        usleep(100000);
        return holder.EndTransactionCommit("", false, 1, 1) ? 0 : 2;
    });
    ASSERT_TRUE(locked.Await());
    const auto database = Open(); // opens, and checks the schema, only after the other process has let go
    EXPECT_TRUE(database->IsReady());
    EXPECT_EQ(Count(*database), "0");
    EXPECT_EQ(other.Wait(), 0);
}

TEST_F(VKSQLite3DatabaseTest, TwoProcessesAddAtOnceAndNoRowIsLost)
{
    constexpr int kRows = 40;
    const auto add = [this](const std::string& who) {
        return [this, who] {
            const auto database = Open(); // both make the tables, only one succeeds, neither drops the other's rows
            for (int i = 0; i < kRows; ++i)
                if (!Add(*database, who))
                    return 1;
            return 0;
        };
    };
    ChildProcess one(add("one"));
    ChildProcess two(add("two"));
    EXPECT_EQ(one.Wait(), 0);
    EXPECT_EQ(two.Wait(), 0);
    EXPECT_EQ(Count(*Open()), std::to_string(2 * kRows));
}
