#pragma once

#include <string>

class VKDBsystem;

/// Questions that concern more than one entity. Each opens what it needs; throws VKDBexception.
class VKutilDatabase
{
public:
    /// Whether anything belongs to the department: a receiver, or one that is its guest.
    static bool IsDepartmentBeingUsed(unsigned long departmentId, VKDBsystem* system);

    /// Whether no receiver but the one with excludeId has this name, compared without regard to case.
    static bool IsUniqueDeviceName(const std::string& name, unsigned long excludeId, VKDBsystem* system);
};
