#include "VKRDBReceiver.h"

#include "VKRDBConnection.h"

bool VKRDBReceiver::Initialize(VKDBsystem* system)
{
    UseStore(vk::OpenServerStore(*system, SqlReceiver::kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
