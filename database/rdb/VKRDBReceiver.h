#pragma once

#include "VKSqlReceiver.h"

/// The receivers on a relational server. The tables are there already.
class VKRDBReceiver : public vk::SqlReceiver
{
public:
    /// Throws VKDBexception when there is no connection.
    bool Initialize(VKDBsystem* system) override;
};
