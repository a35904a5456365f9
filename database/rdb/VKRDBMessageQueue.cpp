#include "VKRDBMessageQueue.h"

#include "VKMessageRows.h"
#include "VKQueueTables.h"
#include "VKRDBConnection.h"

namespace {

/// Queues with a higher number are further ones of the installation; they share the first one's table.
constexpr int kLastFixedQueue = 100;

/// Bodies stand in the statements.
constexpr std::size_t kServerStatementLimit = 64 * 1024 * 1024;

const vk::TableName& TableOf(int queue)
{
    for (const vk::QueueServerTable& table : vk::kQueueServerTables)
        if (table.queue == (queue > kLastFixedQueue ? 1 : queue))
            return table.name;
    throw VKDBexception(vk::DbError::General, __FILE__, __LINE__, "Unknown queue type");
}

} // namespace

bool VKRDBMessageQueue::Initialize(VKDBsystem* system)
{
    const vk::TableName& table = TableOf(QueueNumber());
    UseStore(vk::OpenServerStore(*system, kServerStatementLimit), std::make_unique<vk::MessageRows>(table), table);
    return VKDBbaseInterface::Initialize(system);
}
