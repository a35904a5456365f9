#pragma once

#include <memory>
#include <regex>
#include <string>
#include <utility>
#include <vector>

#include "VKDBexception.h"
#include "VKSqlConnection.h"
#include "VKSqlStore.h"
#include "VKTransactSqlDialect.h"

/// A connection, T-SQL unless told otherwise, that notes what is run, and answers as told.
class NotingConnection : public vk::SqlConnection
{
public:
    explicit NotingConnection(std::vector<std::string>& notes,
                              const vk::SqlDialect& dialect = vk::TransactSqlDialect::Get())
        : m_notes(notes), m_dialect(dialect)
    {
    }

    const vk::SqlDialect& Dialect() const override { return m_dialect; }
    std::string GetPath() const override { return "server"; }
    std::unique_ptr<VKDBiResultSet> ExecuteSelectQuery(const std::string& query) override
    {
        m_notes.push_back(query);
        auto result = std::make_unique<VKDBiResultSet>();
        for (const auto& [part, cells] : answers)
            if (query.find(part) != std::string::npos) {
                VKDBiRow row;
                for (const char* cell : cells)
                    row.Add(VKDBiRowField("", cell));
                result->Add(row);
                break;
            }
        return result;
    }
    long ExecuteUpdateQuery(const std::string& query) override
    {
        m_notes.push_back(query);
        if (query == failing)
            throw VKDBexception(8101, "failed");
        return touched;
    }
    unsigned long ExecuteInsertQuery(const std::string& query) override
    {
        m_notes.push_back(query);
        return 77;
    }
    bool StartTransactionShared(const std::string&, bool, int, long) override { return Note("shared", starts); }
    bool StartTransactionExclusive(const std::string&, bool, int, long) override { return Note("exclusive", starts); }
    bool EndTransactionCommit(const std::string&, bool, int, long) override { return Note("commit", commits); }
    bool EndTransactionRollback(const std::string&, bool, int, long) override { return Note("rollback", true); }

    bool starts = true;
    bool commits = true;
    long touched = 1; ///< rows of each change
    /// The one row that a query with this text in it gives; the first that fits. Any other query gives none.
    std::vector<std::pair<std::string, std::vector<const char*>>> answers{{"COUNT(", {"25"}}};
    std::string failing;

private:
    bool Note(const char* what, bool answer)
    {
        m_notes.push_back(what);
        return answer;
    }

    std::vector<std::string>& m_notes;
    const vk::SqlDialect& m_dialect;
};

/// An entity on a connection that notes what it sends.
template <class Entity> class Noted : public Entity
{
public:
    explicit Noted(const vk::SqlDialect& dialect = vk::TransactSqlDialect::Get())
    {
        this->UseStore(MakeStore(dialect));
    }

    /// What an operation sends; times of the clock are "NOW".
    template <class Operation> std::vector<std::string> NotesOf(Operation&& operation)
    {
        m_notes.clear();
        operation();
        for (std::string& note : m_notes)
            note = std::regex_replace(note, std::regex("\\b1[0-9]{9}\\b"), "NOW");
        return std::exchange(m_notes, {});
    }

    NotingConnection* connection = nullptr; ///< the store's

protected:
    struct WithoutStore
    {
    };
    template <class... Arguments>
    explicit Noted(WithoutStore, const Arguments&... arguments) : Entity(arguments...)
    {
    }
    std::unique_ptr<vk::SqlStore> MakeStore(const vk::SqlDialect& dialect = vk::TransactSqlDialect::Get())
    {
        auto made = std::make_unique<NotingConnection>(m_notes, dialect);
        connection = made.get();
        return std::make_unique<vk::SqlStore>(std::move(made), 65535);
    }

private:
    std::vector<std::string> m_notes;
};
