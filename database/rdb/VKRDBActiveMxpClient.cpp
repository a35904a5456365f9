#include "VKRDBActiveMxpClient.h"

#include "VKRDBConnection.h"

bool VKRDBActiveMxpClient::Initialize(VKDBsystem* system)
{
    UseStore(vk::OpenServerStore(*system, kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
