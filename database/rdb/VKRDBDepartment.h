#pragma once

#include "VKSqlDepartment.h"

/// The departments on a relational server. The tables are there already.
class VKRDBDepartment : public vk::SqlDepartment
{
public:
    /// Throws VKDBexception when there is no connection.
    bool Initialize(VKDBsystem* system) override;
};
