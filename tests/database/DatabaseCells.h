#pragma once

#include <string>

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
