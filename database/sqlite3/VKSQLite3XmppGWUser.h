#pragma once

#include "VKSQLite3TableDesc.h"
#include "VKSqlXmppGWUser.h"

/// The gateway's accounts in the file "xmpp_gw_users.sdb".
class VKSQLite3XmppGWUser : public vk::SqlXmppGWUser
{
public:
    /// Also makes the file of the server's users, which the view joins.
    bool Initialize(VKDBsystem* system) override;

    static const VKSQLite3TableDesc tTableDesc[1];
};
