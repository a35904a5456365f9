#pragma once

#include "VKSQLite3TableDesc.h"
#include "VKSqlCarrier.h"

/// The carriers in the file "carriers.sdb".
class VKSQLite3carrier : public vk::SqlCarrier
{
public:
    /// Also adds the columns that a file made by an older version lacks.
    bool Initialize(VKDBsystem* system) override;

    static const VKSQLite3TableDesc tTableDesc[1];
};
