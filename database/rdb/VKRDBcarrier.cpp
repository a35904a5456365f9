#include "VKRDBcarrier.h"

#include "VKRDBConnection.h"

bool VKRDBcarrier::Initialize(VKDBsystem* system)
{
    UseStore(vk::OpenServerStore(*system, kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
