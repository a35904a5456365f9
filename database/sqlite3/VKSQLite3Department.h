#pragma once

#include "VKSQLite3TableDesc.h"
#include "VKSqlDepartment.h"

/// The departments in the file "departments.sdb".
class VKSQLite3Department : public vk::SqlDepartment
{
public:
    bool Initialize(VKDBsystem* system) override;

    static const VKSQLite3TableDesc tTableDesc[1];
};
