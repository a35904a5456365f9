#pragma once

#include "VKSqlActiveMxpClient.h"

/// The enrolled clients on a relational server. The tables are there already.
class VKRDBActiveMxpClient : public vk::SqlActiveMxpClient
{
public:
    /// Throws VKDBexception when there is no connection.
    bool Initialize(VKDBsystem* system) override;
};
