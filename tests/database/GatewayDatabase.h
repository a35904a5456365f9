#pragma once

#include "FileDatabase.h"
#include "PostgresServer.h"
#include "VKPostgreSqlDialect.h"
#include "VKRDBiDatabase.h"
#include "VKSqlRecord.h"

enum class GatewayBackend { Files, PostgreSql };

/// The same cases on the file database and on a real server.
class GatewayDatabase : public FileDatabase, public testing::WithParamInterface<GatewayBackend>
{
protected:
    GatewayDatabase()
    {
        if (OnFiles())
            return;
        PostgresServer::Get();
        system.Close();
        system.OpenDatabase(PostgresServer::kSource, "postgres", "", DbTypeOdbc, nullptr, false, false, true, nullptr);
    }
    static bool OnFiles() { return GetParam() == GatewayBackend::Files; }

    /// An empty table; in the file database its entity makes it.
    template <class Fields> void MakeServerTable(const vk::Table<Fields>& table)
    {
        if (OnFiles())
            return;
        const vk::SqlDialect& dialect = vk::PostgreSqlDialect::Get();
        const auto server = system.GetDatabaseInstance();
        server->ExecuteCommand("DROP TABLE IF EXISTS " + dialect.TableOf(table.name));
        server->ExecuteCommand("CREATE TABLE " + dialect.TableOf(table.name) + " (" +
                               vk::ColumnsText(dialect, table.fields) + ")");
    }
};
