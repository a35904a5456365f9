#pragma once

#include "Backend.h"
#include "FileDatabase.h"
#include "PostgresServer.h"
#include "VKPostgreSqlDialect.h"
#include "VKRDBiDatabase.h"
#include "VKSchema.h"

/// The same cases on the file database and on a real server, each with all tables new and empty.
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
        MakeTables(*server);
    }

    static bool OnFiles() { return GetParam() == Backend::Files; }

public:
    static void MakeTables(VKRDBiDatabase& server)
    {
        server.ExecuteCommand("DROP SCHEMA public CASCADE");
        server.ExecuteCommand("CREATE SCHEMA public");
        for (const std::string& statement : vk::SchemaStatements(vk::PostgreSqlDialect::Get()))
            server.ExecuteCommand(statement);
    }

protected:
    /// The backend's own class of an entity, without the rules of the layer above, which refuse odd texts.
    template <class Entity, class OnFile, class OnServer> std::unique_ptr<Entity> MakeStore()
    {
        std::unique_ptr<Entity> store;
        if (OnFiles())
            store = std::make_unique<OnFile>();
        else
            store = std::make_unique<OnServer>();
        store->Initialize(&system);
        return store;
    }

    std::shared_ptr<VKRDBiDatabase> server; ///< what all entities share; null on files
};
