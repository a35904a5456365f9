#pragma once

#include <string>

class VKDBiReceiver;
class VKDBsystem;

/// Questions that concern more than one entity. Each opens what it needs; throws VKDBexception.
class VKutilDatabase
{
public:
    /// Whether anything belongs to the department: a receiver, or one that is its guest.
    static bool IsDepartmentBeingUsed(unsigned long departmentId, VKDBsystem* system);

    /// Whether no group, and no receiver but the one with excludeId, has this name, compared without regard to case.
    static bool IsUniqueDeviceName(const std::string& name, unsigned long excludeId, VKDBsystem* system);
    /// The same on a store that is open already.
    static bool IsUniqueDeviceName(const std::string& name, unsigned long excludeId, VKDBiReceiver& receivers);
};
