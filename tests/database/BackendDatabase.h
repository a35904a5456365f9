#pragma once

#include "FileDatabase.h"
#include "PostgresServer.h"
#include "VKPostgreSqlDialect.h"
#include "VKRDBiDatabase.h"
#include "VKSqlRecord.h"

enum class Backend { Files, PostgreSql };

/// The same cases on the file database and on a real server.
class BackendDatabase : public FileDatabase, public testing::WithParamInterface<Backend>
{
protected:
    BackendDatabase()
    {
        if (OnFiles())
            return;
        PostgresServer::Get();
        system.Close();
        system.OpenDatabase(PostgresServer::kSource, "postgres", "", DbTypeOdbc, nullptr, false, false, true, nullptr);
        server = system.GetDatabaseInstance();
    }
    static bool OnFiles() { return GetParam() == Backend::Files; }

    /// An empty table; in the file database its entity makes it.
    template <class Fields> void MakeServerTable(const vk::Table<Fields>& table)
    {
        if (OnFiles())
            return;
        const vk::SqlDialect& dialect = vk::PostgreSqlDialect::Get();
        server->ExecuteCommand("DROP TABLE IF EXISTS " + dialect.TableOf(table.name));
        server->ExecuteCommand("CREATE TABLE " + dialect.TableOf(table.name) + " (" +
                               vk::ColumnsText(dialect, table.fields) + ")");
    }

    std::shared_ptr<VKRDBiDatabase> server; ///< what all entities share; null on files
};

inline std::string BackendName(const testing::TestParamInfo<Backend>& info)
{
    return info.param == Backend::Files ? "Files" : "PostgreSql";
}

#define VK_ON_BOTH_BACKENDS(suite)                                                                                     \
    INSTANTIATE_TEST_SUITE_P(Backends, suite, testing::Values(Backend::Files, Backend::PostgreSql), BackendName)
