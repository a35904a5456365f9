#pragma once

#include "VKTableField.h"

/// A department: receivers and groups belong to one. Texts are zero-terminated UTF-8, sizes in bytes.
struct VK_DEPARTMENT
{
    unsigned long id = 0;
    char name[51] = {};
    char description[101] = {};
    long max_receivers = 0; ///< how many receivers it may have; -1 without a limit
    long num_receivers = 0; ///< how many it has, kept by IncrementReceiverCount and DecrementReceiverCount
};

/// Departments in an array that the list owns (malloc).
struct VK_DEPARTMENT_LIST
{
    int count = 0;
    VK_DEPARTMENT* list = nullptr;
};

/// Frees the array and zeroes the list.
void EmptyDepartmentList(VK_DEPARTMENT_LIST* list);

/// Adds a copy at the end.
void AddDepartment(VK_DEPARTMENT_LIST* list, const VK_DEPARTMENT* department);

namespace vk {

/// num_receivers is written once: a change of the record must not undo what was counted since it was read.
inline constexpr Table kDepartmentTable{TableName{"department", "VK_DEPARTMENT"},
                                        Fields(Field<&VK_DEPARTMENT::id>("id", PrimaryKey{}),
                                               Field<&VK_DEPARTMENT::name>("name", NotNull{}, Indexed{"ix_department_name"}),
                                               Field<&VK_DEPARTMENT::description>("description", NotNull{}),
                                               Field<&VK_DEPARTMENT::max_receivers>("max_receivers"),
                                               Field<&VK_DEPARTMENT::num_receivers>("num_receivers", WrittenOnce{}))};

} // namespace vk
