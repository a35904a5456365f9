#pragma once

#include "VKSqlMessageQueue.h"

/// A queue as a table of a relational server, bodies included. The tables are there already.
class VKRDBMessageQueue : public vk::SqlMessageQueue
{
public:
    using SqlMessageQueue::SqlMessageQueue;

    /// Throws VKDBexception when there is no connection, or no table for the number.
    bool Initialize(VKDBsystem* system) override;
    bool CreateQueue(int) override { return true; }
    bool DeleteQueue(int) override { return true; }
};
