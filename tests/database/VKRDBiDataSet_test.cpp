#include <gmock/gmock.h>

#include <filesystem>

#include "BackendDatabase.h"
#include "VKDriverOutput.h"
#include "VKODBCdatabase.h"
#include "VKOracleCall.h"
#include "VKRDBConvert.h"
#include "VKRDBiDataSet.h"

namespace {

/// Tables as the older interface of a connection gives them, from a real server.
class DataSetTest : public BackendDatabase
{
protected:
    ~DataSetTest() override { delete table; }

    /// The table as "column,column|cell,cell|..."; it is gone afterwards.
    std::string Taken()
    {
        if (table == nullptr)
            return "none";
        std::string text;
        for (int column = 0; column < table->GetColumnCount(); ++column)
            text += (column > 0 ? "," : "") + table->GetColumnName(column);
        for (int row = 0; row < table->GetRowCount(); ++row)
            for (int column = 0; column < table->GetColumnCount(); ++column) {
                const char* const cell = table->GetCellValue(row, column);
                text += (column > 0 ? "," : "|") + std::string(cell != nullptr ? cell : "NULL");
            }
        delete std::exchange(table, nullptr);
        return text;
    }

    VKRDBiDataSet* table = nullptr;
};

INSTANTIATE_TEST_SUITE_P(PostgreSql, DataSetTest, testing::Values(Backend::PostgreSql));

constexpr const char* kNumbers = "SELECT n AS num, NULL AS nothing FROM generate_series(1, 5) AS n ORDER BY n";

template <class Value> void ExpectNumber(const char* text, bool fits, Value expected)
{
    SCOPED_TRACE(text != nullptr ? text : "NULL");
    Value value = 7;
    EXPECT_EQ(VKRDBcharpToType(text, value), fits);
    EXPECT_EQ(value, expected);
    if (!fits)
        return;
    Value again = 7;
    EXPECT_TRUE(VKRDBstrToType(VKRDBtypeToSqlStr(value), again));
    EXPECT_EQ(again, value);
}

} // namespace

TEST_P(DataSetTest, ATableHasItsNamesAndItsPartOfTheRows)
{
    const std::tuple<int, int, const char*> rows[] = {{0, 0, "num,nothing|1,NULL|2,NULL|3,NULL|4,NULL|5,NULL"},
                                                      {-1, -1, "num,nothing|1,NULL|2,NULL|3,NULL|4,NULL|5,NULL"},
                                                      {1, 2, "num,nothing|2,NULL|3,NULL"},
                                                      {4, 9, "num,nothing|5,NULL"},
                                                      {5, 1, "num,nothing"}};
    for (const auto& [first, count, text] : rows) {
        EXPECT_TRUE(server->ExecuteQuerySet(kNumbers, table, first, count));
        EXPECT_EQ(Taken(), text) << first << " " << count;
    }
    EXPECT_TRUE(server->ExecuteQuery("SELECT 1 AS a WHERE FALSE", table));
    EXPECT_EQ(Taken(), "a") << "names without rows";

    ASSERT_TRUE(server->ExecuteQuery(kNumbers, table));
    EXPECT_STREQ(table->GetCellValue(2, "NUM"), "3");
    EXPECT_EQ(ErrorOf([&] { table->GetCellValue(0, 2); }), "-1 Invalid coloumn number");
    EXPECT_EQ(ErrorOf([&] { table->GetColumnName(-1); }), "-1 Invalid coloumn number");
    EXPECT_EQ(ErrorOf([&] { table->GetCellValue(5, 0); }), "-1 Invalid row number");
    EXPECT_EQ(ErrorOf([&] { table->GetCellValue(-1, 0); }), "-1 Invalid row number");
    EXPECT_EQ(ErrorOf([&] { table->GetCellValue(0, "none"); }), "-1 Unknown column name [none]");
    Taken();
}

TEST_P(DataSetTest, ABatchGivesOneResultAfterTheOther)
{
    const std::string update = "UPDATE pg_class SET relname='' WHERE FALSE";
    const std::string batch = kNumbers + ("; " + update) + "; SELECT 'b' AS second";
    bool more = false;
    EXPECT_TRUE(server->ExecuteQueryMultiSet(batch, table, more, 3, 1));
    EXPECT_EQ(Taken(), "num,nothing|4,NULL");
    EXPECT_TRUE(more);
    EXPECT_TRUE(server->getRSData(table, more));
    EXPECT_EQ(Taken(), "second") << "the same rows of each";
    EXPECT_FALSE(more);
    EXPECT_FALSE(server->getRSData(table, more));
    EXPECT_EQ(Taken(), "none");

    EXPECT_TRUE(server->ExecuteQueryMultiSet(batch, table, more, 0, 0));
    Taken();
    server->ExecuteCommand("SELECT 1");
    EXPECT_FALSE(server->getRSData(table, more)) << "whatever runs next drops the rest";
    EXPECT_FALSE(server->ExecuteQueryMultiSet(update, table, more, 0, 0));
    EXPECT_EQ(Taken(), "none");
    EXPECT_THROW(server->ExecuteQueryMultiSet("SELECT 1; SELECT 1/0", table, more, 0, 0), VKDBexception);
    EXPECT_EQ(table, nullptr);
    EXPECT_FALSE(server->getRSData(table, more));

    EXPECT_TRUE(server->ExecuteQuery(batch, table));
    EXPECT_EQ(Taken(), "second|b") << "the last one";
    EXPECT_THROW(server->ExecuteQuery("SELECT 5 AS ErrorCode; SELECT 1", table), VKDBexception) << "each may tell one";
    EXPECT_EQ(table, nullptr);
}

TEST_P(DataSetTest, FormattedStatementsAreNeverCut)
{
    const std::string text(5000, 'x');
    EXPECT_TRUE(server->ExecuteQuery(table, "SELECT '%s%d%%' AS a", text.c_str(), 7));
    EXPECT_EQ(Taken(), "a|" + text + "7%");
    EXPECT_TRUE(server->ExecuteCommandFormat("CREATE TEMPORARY TABLE %s (id BIGSERIAL, name TEXT)", "made"));
    EXPECT_TRUE(server->ExecuteCommandFormat("INSERT INTO made (name) VALUES ('%s'), ('b')", text.c_str()));
    EXPECT_EQ(server->GetNoRowsAffected(), 2);
    EXPECT_EQ(server->GetLastRowInsertID(DatabaseTypePostgreSql, "made_id_seq"), 2u);
    EXPECT_EQ(ErrorOf([&] { server->GetLastRowInsertID(DatabaseTypeOracle, "a'; DROP"); }),
              "-1 [a'; DROP] is no name of a sequence.");
    EXPECT_THAT(ErrorOf([&] { server->GetLastRowInsertID(DatabaseTypeOracle, "made_seq"); }),
                testing::HasSubstr("SQL query[SELECT made_seq.currval AS ID, 0 AS ErrorCode FROM dual]"));
    EXPECT_THAT(ErrorOf([&] { server->GetLastRowInsertID(DatabaseTypeSqlServer, ""); }),
                testing::HasSubstr("@@IDENTITY"));
}

TEST_P(DataSetTest, ErrorsOfTheDriverHaveTheirTexts)
{
    std::string text = "before";
    VKODBCdatabase::GetSQLError(SQL_SUCCESS, SQL_NULL_HSTMT, text);
    EXPECT_EQ(text, "");
    VKODBCdatabase::GetSQLError(SQL_ERROR, SQL_NULL_HSTMT, text);
    EXPECT_EQ(text, "Invalid Handle.");
}

TEST(VKRDBConvert, CellsBecomeValuesOrSayThatTheyDoNot)
{
    ExpectNumber<short>("-32768", true, -32768);
    ExpectNumber<short>("32768", false, 0);
    ExpectNumber<int>("12x", false, 0);
    ExpectNumber<unsigned int>("4294967295", true, 4294967295u);
    ExpectNumber<unsigned int>("-1", false, 0u);
    ExpectNumber<long>("", false, 0l);
    ExpectNumber<unsigned long>("18446744073709551615", true, 18446744073709551615ul);
    ExpectNumber<float>("0.1", true, 0.1f);
    ExpectNumber<double>("0.30000000000000004", true, 0.1 + 0.2);
    ExpectNumber<double>("1e999", false, 0.0);
    ExpectNumber<long>(nullptr, false, 0l);
    EXPECT_EQ(VKRDBtypeToSqlStr(std::numeric_limits<double>::infinity()), "NULL");

    char text[4] = "old";
    EXPECT_TRUE(VKRDBstrToType("abc", text, sizeof text));
    EXPECT_STREQ(text, "abc");
    EXPECT_FALSE(VKRDBcharpToType("abcd", text, sizeof text));
    EXPECT_STREQ(text, "");
    EXPECT_FALSE(VKRDBcharpToType(nullptr, text, sizeof text));
    EXPECT_EQ(VKRDBtypeToSqlStr("O'Brien"), "'O''Brien'");
    EXPECT_EQ(VKRDBtypeToSqlStr("abcd", 2), "'ab'");
    EXPECT_EQ(VKRDBtypeToSqlStr(static_cast<const char*>(nullptr)), "NULL");
}

TEST(VKOracleCall, CursorParametersAreTakenOutOfCallsOnly)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"{call list_all(vk_cursor)}", "{call list_all()}", "vk_cursor"},
        {"{ CALL p(1, :vk_cursor1, 'x', vk_cursor2)}", "{ CALL p(1, 'x')}", "vk_cursor1"},
        {"BEGIN p(:vk_cursor, f(1, 2)); END;", "BEGIN p( f(1, 2)); END;", "vk_cursor"},
        {"call p('vk_cursor', ', vk_cursor', 'it''s (', vk_cursor)", "call p('vk_cursor', ', vk_cursor', 'it''s (')",
         "vk_cursor"},
        {"call p(vk_cursor3, f(vk_cursor))", "call p(vk_cursor3, f(vk_cursor))", ""},
        {"SELECT f(vk_cursor)", "SELECT f(vk_cursor)", ""},
        {"call p('open, vk_cursor)", "call p('open, vk_cursor)", ""},
        {"", "", ""}};
    for (const auto& [text, rewritten, cursor] : rows) {
        const vk::OracleCall call = vk::WithoutCursorParameters(text);
        EXPECT_EQ(call.text, rewritten);
        EXPECT_EQ(call.cursor, cursor) << text;
    }
}

TEST(DriverOutput, TheLastHolderGivesTheOutputBack)
{
    const TempDir dir;
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(dir.Path());
    testing::internal::CaptureStdout();
    {
        auto first = std::make_unique<vk::DriverOutput>(true);
        const vk::DriverOutput second(true);
        first.reset();
        std::printf("from a driver\n");
    }
    std::printf("ours\n");
    {
        const vk::DriverOutput unwanted(false);
        std::printf("ours too\n");
    }
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "ours\nours too\n");
    std::filesystem::current_path(before);
    EXPECT_EQ(dir.Read("datadirect.logs"), "from a driver\n");
}

TEST(VKRDBiDatabase, TheOneWithoutAServerDoesNothing)
{
    const std::unique_ptr<VKRDBiDatabase> made(VKRDBiDatabase::GetInstance(1, nullptr));
    EXPECT_FALSE(made->Open("a", "b", "c", true, true));
    EXPECT_FALSE(made->IsOpen());
    EXPECT_FALSE(made->TestNReconnect());
    EXPECT_FALSE(made->ExecuteCommand("SELECT 1"));
    VKRDBiDatabase none;
    VKRDBiDataSet unused;
    bool more = true;
    VKRDBiDataSet* table = &unused;
    EXPECT_FALSE(none.ExecuteQueryMultiSet("SELECT 1", table, more, 0, 0));
    EXPECT_EQ(table, nullptr);
    EXPECT_FALSE(more);
    table = &unused;
    EXPECT_FALSE(none.ExecuteQuery(table, "%d", 1));
    EXPECT_EQ(table, nullptr);
    EXPECT_EQ(none.GetLastRowInsertID(DatabaseTypeOracle, "s"), 0u);
    EXPECT_FALSE(none.BeginTransaction());
    EXPECT_FALSE(none.EndTransactionRollbackNoExcep("", true, 1, 1));
}
