#include "VKRDBiDatabase.h"

namespace {

bool NoTable(VKRDBiDataSet*& dataSet, bool* more = nullptr)
{
    dataSet = nullptr;
    if (more != nullptr)
        *more = false;
    return false;
}

} // namespace

VKRDBiDatabase::~VKRDBiDatabase() = default;

bool VKRDBiDatabase::Open(const std::string&, const std::string&, const std::string&, bool, bool) { return false; }
bool VKRDBiDatabase::ExecuteCommand(const std::string&) { return false; }
bool VKRDBiDatabase::ExecuteCommandFormat(const char*, ...) { return false; }
unsigned long VKRDBiDatabase::GetLastRowInsertID(DatabaseType, const std::string&) { return 0; }
bool VKRDBiDatabase::ExecuteSelectQuery(const std::string&, VKODBCResultSet&) { return false; }
bool VKRDBiDatabase::ExecuteUpdateQuery(const std::string&, VKODBCResultSet&) { return false; }
bool VKRDBiDatabase::ExecuteInsertQuery(const std::string&, VKODBCResultSet&, unsigned long&) { return false; }

bool VKRDBiDatabase::ExecuteQuery(const std::string&, VKRDBiDataSet*& dataSet) { return NoTable(dataSet); }
bool VKRDBiDatabase::ExecuteQuery(VKRDBiDataSet*& dataSet, const char*, ...) { return NoTable(dataSet); }
bool VKRDBiDatabase::ExecuteQuerySet(const std::string&, VKRDBiDataSet*& dataSet, int, int) { return NoTable(dataSet); }

bool VKRDBiDatabase::ExecuteQueryMultiSet(const std::string&, VKRDBiDataSet*& dataSet, bool& more, int, int)
{
    return NoTable(dataSet, &more);
}

bool VKRDBiDatabase::getRSData(VKRDBiDataSet*& dataSet, bool& more) { return NoTable(dataSet, &more); }

bool VKRDBiDatabase::StartTransactionShared(const std::string&, bool, int, long) { return BeginTransaction(); }
bool VKRDBiDatabase::StartTransactionExclusive(const std::string&, bool, int, long) { return BeginTransaction(); }
bool VKRDBiDatabase::EndTransactionCommit(const std::string&, bool, int, long) { return CommitTransaction(); }
bool VKRDBiDatabase::EndTransactionRollback(const std::string&, bool, int, long) { return RollbackTransaction(); }

bool VKRDBiDatabase::EndTransactionRollbackNoExcep(const std::string&, bool, int, long)
{
    try {
        return RollbackTransaction();
    } catch (...) { // meant: the caller has a failure to tell already
        return false;
    }
}
