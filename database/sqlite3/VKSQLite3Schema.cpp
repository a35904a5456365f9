#include "VKSQLite3Database.h"

#include <sqlite3.h>

#include "VKDBexception.h"
#include "VKSqlTransaction.h"

/// \file
/// The schema of VKSQLite3Database: which tables there are to be, and making those that are missing.

bool VKSQLite3Database::SetSchema(const VKSQLite3TableDesc* tables, int count)
{
    if (tables == nullptr || count < 1)
        return false;
    std::map<std::string, std::string> schema;
    for (int i = 0; i < count; ++i) {
        if (tables[i].tableName == nullptr || tables[i].columns == nullptr)
            return false;
        schema[tables[i].tableName] = tables[i].columns;
    }
    return SetSchema(schema);
}

bool VKSQLite3Database::SetSchema(const std::map<std::string, std::string>& schema)
{
    for (const auto& [name, columns] : schema)
        if (name.empty() || columns.empty())
            return false;
    m_mapSchema = schema;
    return true;
}

bool VKSQLite3Database::CheckNCreateSchema()
{
    struct RestoreReady
    {
        bool& ready;
        bool before;
        ~RestoreReady() { ready = before; }
    } restore{m_bReady, m_bReady};
    m_bReady = true;
    return RunSchemaCheck();
}

bool VKSQLite3Database::RunSchemaCheck()
{
    vk::Transaction transaction(*this, vk::TransactionLock::Exclusive);
    if (!transaction.IsOpen())
        return false;
    for (const auto& [name, columns] : m_mapSchema)
        if (!IsTableExists(name) && !CreateTable(name, columns))
            return false;
    return transaction.Commit();
}

bool VKSQLite3Database::CreateTable(const std::string& name, const std::string& columns)
{
    if (!m_bOpened)
        return false;
    for (const std::string& statement :
         {"DROP TABLE IF EXISTS " + name + ";", "CREATE TABLE " + name + " (" + columns + ");"}) {
        char* message = nullptr;
        const int code = sqlite3_exec(m_pHandle, statement.c_str(), nullptr, nullptr, &message);
        if (StoreError(code, message) != SQLITE_OK)
            return false;
    }
    return true;
}

bool VKSQLite3Database::IsTableExists(const std::string& name)
{
    if (!m_bOpened)
        return false;
    const std::string query =
        "SELECT name FROM sqlite_master WHERE type='table' AND name='" + PreprocessSqlStringCopy(name, 0) + "';";
    char** table = nullptr;
    char* message = nullptr;
    int rows = 0;
    int columns = 0;
    const int code = sqlite3_get_table(m_pHandle, query.c_str(), &table, &rows, &columns, &message);
    if (StoreError(code, message) != SQLITE_OK)
        throw VKDBexception(code, __FILE__, __LINE__, "Unable to check table '" + name + "' existance", m_strLastError);
    sqlite3_free_table(table);
    return rows > 0;
}
