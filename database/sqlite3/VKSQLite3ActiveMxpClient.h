#pragma once

#include "VKSQLite3TableDesc.h"
#include "VKSqlActiveMxpClient.h"

/// The enrolled clients in the file "active_mxp_clients.sdb".
class VKSQLite3ActiveMxpClient : public vk::SqlActiveMxpClient
{
public:
    /// Also makes the file of the receivers, which the view joins.
    bool Initialize(VKDBsystem* system) override;

    static const VKSQLite3TableDesc tTableDesc[1];
};
