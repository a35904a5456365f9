#pragma once

#include <chrono>
#include <string>
#include <thread>

#include "VKODBCResultSet.h"
#include "VKRDBiDatabase.h"
#include "VKSQLite3Database.h"

/// \file
/// What stands in a database, and changes of it, behind the back of its entities.

/// The first cell that a query on a file gives; "none" when it gives no row.
inline std::string CellOf(const std::string& path, const std::string& query)
{
    VKSQLite3Database file(path, true);
    VKSQLite3ResultSet result;
    file.SelectQueryTransaction(query, result);
    return result.GetReturnedRowsCount() > 0 ? result[0][0].GetValueString() : "none";
}

/// The first cell that a query on a server gives; empty when it gives no row.
inline std::string CellOf(VKRDBiDatabase& server, const std::string& query)
{
    VKODBCResultSet result;
    server.ExecuteSelectQuery(query, result);
    return result[0][0].GetValueString();
}

/// Runs a statement on a file.
inline void RunOn(const std::string& path, const std::string& statement)
{
    VKSQLite3Database file(path, true);
    VKSQLite3ResultSet result;
    file.ExecuteUpdateQuery(statement, result);
}

/// Whether a server has so many connections within a bound; it takes its time to let those go whose clients ended.
inline bool AwaitConnections(VKRDBiDatabase& server, const std::string& count)
{
    const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    const char* const query = "SELECT COUNT(*) FROM pg_stat_activity WHERE backend_type='client backend'";
    while (CellOf(server, query) != count) {
        if (std::chrono::steady_clock::now() > giveUp)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}
