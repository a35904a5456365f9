#pragma once

#include "VKSqlCarrier.h"

/// The carriers on a relational server. The tables are there already.
class VKRDBcarrier : public vk::SqlCarrier
{
public:
    /// Throws VKDBexception when there is no connection.
    bool Initialize(VKDBsystem* system) override;
};
