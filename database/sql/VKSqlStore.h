#pragma once

#include <memory>
#include <string>
#include <utility>

#include "VKSqlConnection.h"
#include "VKSqlRecord.h"
#include "VKSqlRowPlan.h"
#include "VKSqlTransaction.h"

namespace vk {

/// What an entity's operations are written on: a connection, its dialect and the length a statement of this entity may
/// have. A statement that is longer is refused, never cut.
class SqlStore
{
public:
    SqlStore(std::unique_ptr<SqlConnection> connection, std::size_t statementLimit)
        : m_connection(std::move(connection)), m_statementLimit(statementLimit)
    {
    }

    SqlConnection& Connection() { return *m_connection; }
    const SqlDialect& Dialect() const { return m_connection->Dialect(); }

    /// Run a body in a transaction; its statements are what Select, Update and Insert below run.
    template <class Body> auto Shared(Body&& body)
    {
        return InTransaction(*m_connection, TransactionLock::Shared, std::forward<Body>(body));
    }
    template <class Body> auto Exclusive(Body&& body)
    {
        return InTransaction(*m_connection, TransactionLock::Exclusive, std::forward<Body>(body));
    }

    /// Keeps every other transaction that asks for the same table waiting until this exclusive one ends. A server lets
    /// exclusive ones go side by side otherwise.
    void HoldTable(const TableName& table)
    {
        if (const std::string hold = Dialect().HoldName(table.relational); !hold.empty())
            Select("{}", SqlRaw{hold});
    }

    /// A part of a statement, its values conditioned.
    template <class... Values> SqlRaw Part(std::string_view pattern, const Values&... values) const
    {
        return {SqlText(Dialect(), pattern, values...)};
    }

    template <class... Values> std::unique_ptr<VKDBiResultSet> Select(std::string_view pattern, const Values&... values)
    {
        return RunSelect(SqlText(Dialect(), pattern, values...));
    }

    /// Hands on each row of a ready SELECT.
    void ForEachRow(const std::string& query, const SqlRowReader& take);

    /// Reads each row of a SELECT by position into a new record of a field table, and hands that on with the row.
    template <class Record, class Fields, class Take, class... Values>
    void SelectRecords(const Fields& fields, Take&& take, std::string_view pattern, const Values&... values)
    {
        SqlRowPlan<Fields> plan(fields);
        ForEachRow(SqlText(Dialect(), pattern, values...), [&](const SqlRow& row) {
            Record record;
            plan.Read(row, record);
            take(record, row);
        });
    }

    /// The single number that a SELECT gives; 0 without a row.
    template <class... Values> long SelectNumber(std::string_view pattern, const Values&... values)
    {
        return (*Select(pattern, values...))[0][0].GetValueLong();
    }

    /// Gives back how many rows were touched.
    template <class... Values> long Update(std::string_view pattern, const Values&... values)
    {
        return RunUpdate(SqlText(Dialect(), pattern, values...));
    }

    /// Stores a new row from a record; gives back its id.
    template <class Fields, class Record>
    unsigned long InsertRow(const Table<Fields>& table, const Record& record, RowId id = RowId::FromStore)
    {
        return HidingSecrets(table, record,
                             [&] { return RunInsert(InsertText(Dialect(), table, record, id), m_statementLimit); });
    }

    /// The same with a limit of its own for the statement.
    template <class Fields, class Record>
    unsigned long InsertRowWithin(std::size_t limit, const Table<Fields>& table, const Record& record)
    {
        return HidingSecrets(table, record, [&] {
            return RunInsert(InsertText(Dialect(), table, record, RowId::FromStore), limit);
        });
    }

    /// Stores a changed row by its id; gives back how many rows were touched.
    template <class Fields, class Record> long UpdateRow(const Table<Fields>& table, const Record& record)
    {
        return HidingSecrets(table, record, [&] { return RunUpdate(UpdateText(Dialect(), table, record)); });
    }

    /// Stores records with the ids that they carry, as a move from another backend does; all or none. `what` names them
    /// in an error: "department". `failure` is what an error of the insert says in place of its own words, which go to
    /// the system message.
    template <class Fields, class Record>
    void InsertRowsWithIds(const Table<Fields>& table, const Record* records, int count, const char* what,
                           const char* failure = nullptr)
    {
        if (count == 0)
            return;
        KeepingIds(table.name, [&] {
            for (int i = 0; i < count; ++i)
                Renaming(failure, [&] { InsertRowWithId(table, records[i], what); });
        });
    }

    /// Runs a body that inserts rows with the ids that they carry. A body that fails leaves the connection as it was: no
    /// rollback takes such a switch back.
    template <class Body> void KeepingIds(const TableName& table, Body&& body)
    {
        SwitchKeepIdentity(table, true);
        try {
            body();
        } catch (...) {
            AbandonKeepIdentity(table);
            throw;
        }
        SwitchKeepIdentity(table, false);
    }

    /// Stores one of them.
    template <class Fields, class Record>
    void InsertRowWithId(const Table<Fields>& table, const Record& record, const char* what)
    {
        RequireSameId(InsertRow(table, record, RowId::FromRecord), record.id, what);
    }

    /// Runs a body; an error of it is thrown on with another message, and its own as system message.
    template <class Body> static auto Renaming(const char* message, Body&& body)
    {
        try {
            return body();
        } catch (const VKDBexception& failure) {
            if (message == nullptr)
                throw;
            throw VKDBexception(failure.GetErrorCode(), failure.GetFile(), failure.GetLine(), message,
                                failure.GetSysMsg().empty() ? failure.GetMsg() : failure.GetSysMsg());
        }
    }

    /// Runs a body; an error that quotes one of these texts is thrown on without them.
    template <class Body> static auto HidingTexts(const std::vector<std::string>& texts, Body&& body)
    {
        try {
            return body();
        } catch (const VKDBexception& failure) {
            throw WithoutTexts(failure, texts);
        }
    }

private:
    /// Runs a body; an error that quotes the record's statement is thrown on without its secrets.
    template <class Fields, class Record, class Body>
    auto HidingSecrets(const Table<Fields>& table, const Record& record, Body&& body)
    {
        try {
            return body();
        } catch (const VKDBexception& failure) {
            throw WithoutTexts(failure, SecretLiterals(Dialect(), table.fields, record));
        }
    }

    static VKDBexception WithoutTexts(const VKDBexception& failure, const std::vector<std::string>& texts);
    std::unique_ptr<VKDBiResultSet> RunSelect(const std::string& text);
    long RunUpdate(const std::string& text);
    unsigned long RunInsert(const std::string& text, std::size_t limit);
    void SwitchKeepIdentity(const TableName& table, bool on);
    void AbandonKeepIdentity(const TableName& table) noexcept;
    static void RequireFitsLimit(const std::string& statement, std::size_t limit);
    static void RequireSameId(unsigned long added, unsigned long old, const char* what);

    std::unique_ptr<SqlConnection> m_connection;
    std::size_t m_statementLimit;
};

} // namespace vk
