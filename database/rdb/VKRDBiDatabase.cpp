#include "VKRDBiDatabase.h"

VKRDBiDatabase::~VKRDBiDatabase() = default;

bool VKRDBiDatabase::Open(const std::string&, const std::string&, const std::string&, bool, bool) { return false; }
bool VKRDBiDatabase::ExecuteCommand(const std::string&) { return false; }
bool VKRDBiDatabase::ExecuteSelectQuery(const std::string&, VKODBCResultSet&) { return false; }
bool VKRDBiDatabase::ExecuteUpdateQuery(const std::string&, VKODBCResultSet&) { return false; }
bool VKRDBiDatabase::ExecuteInsertQuery(const std::string&, VKODBCResultSet&, unsigned long&) { return false; }

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
