#include "VKRDBDepartment.h"

#include "VKRDBConnection.h"

bool VKRDBDepartment::Initialize(VKDBsystem* system)
{
    UseStore(vk::OpenServerStore(*system, kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
