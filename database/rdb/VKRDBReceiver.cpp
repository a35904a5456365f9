#include "VKRDBReceiver.h"

#include "VKRDBConnection.h"
#include "VKSqlStore.h"

bool VKRDBReceiver::Initialize(VKDBsystem* system)
{
    auto connection = std::make_unique<vk::RdbConnection>(vk::RequireConnection(*system));
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
