#include <utility>

#include "VKDBexception.h"
#include "VKDBsystem.h"
#include "VKRDBiDatabase.h"

/// \file
/// The relational half of the system object; the file half knows no server.

bool VKDBsystem::OpenDatabase(const std::string& connectString, const std::string& userName,
                              const std::string& userPassword, DbType type, const VK_DIRECTORY_PATH* directories,
                              bool oracle, bool multipleConnections, bool dsn, VKsysEventLogInterface* eventLog)
{
    if (is_Open)
        return true;
    connect_String = connectString;
    user_Name = userName;
    password = userPassword;
    db_Type = type;
    if (directories != nullptr)
        directory_Pathes = *directories;
    isOracle = oracle;
    mutiple_Connections = multipleConnections;
    isDSN = dsn;
    event_Log = eventLog;
    is_Open = true;
    try {
        rdb_database.reset(VKRDBiDatabase::GetInstance(0, event_Log));
        return rdb_database->Open(connect_String, user_Name, password, isDSN, true);
    } catch (const VKDBexception& failure) {
        Close(); // so that the next try does try
        throw VKDBexception(failure.GetErrorCode(), __FILE__, __LINE__, failure.GetMsg());
    } catch (...) {
        Close();
        throw;
    }
}

std::shared_ptr<VKRDBiDatabase> VKDBsystem::CreateNewDatabaseInstance()
{
    if (db_Type == DbTypeSdb)
        return nullptr;
    std::shared_ptr<VKRDBiDatabase> database(VKRDBiDatabase::GetInstance(0, event_Log));
    // Meant: a data source by name, whatever the first connection was opened with.
    database->Open(connect_String, user_Name, password, true, true);
    return database;
}

std::shared_ptr<VKRDBiDatabase> VKDBsystem::GetDatabaseInstance()
{
    if (mutiple_Connections)
        return CreateNewDatabaseInstance();
    if (rdb_database_custom)
        return std::exchange(rdb_database_custom, nullptr);
    return rdb_database;
}

void VKDBsystem::SetCustomDatabaseInstance(std::shared_ptr<VKRDBiDatabase> database)
{
    rdb_database_custom = std::move(database);
}

void VKDBsystem::PrepareThreadConnection(std::shared_ptr<VKRDBiDatabase>& connection)
{
    if (db_Type != DbTypeOdbc || mutiple_Connections)
        return;
    if (!connection)
        connection = CreateNewDatabaseInstance();
    else
        connection->TestNReconnect(); // one that stays dead tells why with the first statement
    SetCustomDatabaseInstance(connection);
}

void VKDBsystem::ReviveSharedConnection()
{
    if (rdb_database)
        rdb_database->TestNReconnect();
}
