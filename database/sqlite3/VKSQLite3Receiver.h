#pragma once

#include "VKSQLite3TableDesc.h"
#include "VKSqlReceiver.h"

namespace vk {
class SQLite3Connection;
}

/// The receivers in the file "receivers.sdb".
class VKSQLite3Receiver : public vk::SqlReceiver
{
public:
    bool Initialize(VKDBsystem* system) override;

    /// Brings a file that an older version made up to date, by the carriers beside it. Throws VKDBexception.
    static void BringUpToDate(vk::SQLite3Connection& connection);

    static const VKSQLite3TableDesc tTableDesc[6];

private:
    /// Adds the columns that a file made before 4.7 lacks.
    static void ConvertTable(vk::SQLite3Connection& connection);
    /// A file of 4.7 gets is_secure, which follows the carriers' protocols, and history rows that were left open get
    /// their ends. All or nothing.
    static void ConvertTableFrom4_7(vk::SQLite3Connection& connection);
};
