#pragma once

#include "VKSQLite3TableDesc.h"
#include "VKSqlMessageQueue.h"

/// A queue as a directory: message files, and their rows in "queue_metabase.sdb" beside them.
class VKSQLite3MessageQueue : public vk::SqlMessageQueue
{
public:
    using SqlMessageQueue::SqlMessageQueue;

    bool Initialize(VKDBsystem* system) override;
    bool CreateQueue(int queueNumber) override;
    bool DeleteQueue(int queueNumber) override;

    static const VKSQLite3TableDesc tTableDesc[1];
};
