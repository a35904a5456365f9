#include "VKutilDatabase.h"

#include <memory>

#include "VKDBiReceiver.h"

bool VKutilDatabase::IsDepartmentBeingUsed(unsigned long departmentId, VKDBsystem* system)
{
    return std::unique_ptr<VKDBiReceiver>(VKDBiReceiver::CreateInstance(system))->IsDepartmentBeingUsed(departmentId);
}

bool VKutilDatabase::IsUniqueDeviceName(const std::string& name, unsigned long excludeId, VKDBsystem* system)
{
    return IsUniqueDeviceName(name, excludeId,
                              *std::unique_ptr<VKDBiReceiver>(VKDBiReceiver::CreateInstance(system)));
}

bool VKutilDatabase::IsUniqueDeviceName(const std::string& name, unsigned long excludeId, VKDBiReceiver& receivers)
{
    return receivers.IsUniqueName(name, excludeId) && !receivers.IsGroupName(name);
}
