#pragma once

#include <memory>
#include <string>
#include <vector>

#include "VKDBexception.h"
#include "VKSqlConnection.h"
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
