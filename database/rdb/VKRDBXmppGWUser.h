#pragma once

#include "VKSqlXmppGWUser.h"

/// The gateway's accounts on a relational server. The tables are there already.
class VKRDBXmppGWUser : public vk::SqlXmppGWUser
{
public:
    /// Throws VKDBexception when there is no connection.
    bool Initialize(VKDBsystem* system) override;
};
