#pragma once

#include "VKSQLite3TableDesc.h"
#include "VKSqlReceiver.h"

/// The receivers in the file "receivers.sdb".
class VKSQLite3Receiver : public vk::SqlReceiver
{
public:
    /// Also adds the columns that a file made by an older version lacks.
    bool Initialize(VKDBsystem* system) override;

    static const VKSQLite3TableDesc tTableDesc[6];
};
