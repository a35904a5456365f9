#pragma once

#include "VKDepartment.h"
#include "VKTableField.h"

/// \file
/// The small records around a receiver, one a table.

/// A guest department of a receiver: it is seen there beside its own.
struct VK_DEPT_RIGHTS
{
    unsigned long id = 0;
    unsigned long owner_id = 0; ///< the receiver
    unsigned long department_id = 0;
};

/// A period in which a receiver was not available. Times are seconds since the epoch.
struct VK_DISABLE_HISTORY
{
    unsigned long id = 0;
    unsigned long receiver_id = 0;
    long disable_start_date = 0;
    long disable_end_date = 0; ///< 0 while it lasts
    unsigned long forward_to_id = 0;
    char forward_to_number[11] = {};
};

/// A property that an operator defined for receivers. The texts behind pointers belong to the record (malloc).
struct VK_ATTRIBUTE
{
    unsigned long id = 0;
    char name[257] = {};
    int attr_order = 0;
    int type = 0;
    char* attr_values = nullptr; ///< the choices
    char* misc = nullptr;
};

/// A receiver's value of such a property.
struct VK_RECEIVER_ATTRIBUTE
{
    unsigned long id = 0;
    unsigned long receiver_id = 0;
    unsigned long attribute_id = 0;
    char attribute_values[101] = {};
};

// Lists: arrays that the list owns (malloc). Add... adds a copy at the end, Empty... frees all and zeroes the list.

struct VK_DISABLE_HISTORY_LIST
{
    int count = 0;
    VK_DISABLE_HISTORY* list = nullptr;
};

struct VK_ATTRIBUTE_LIST
{
    int count = 0;
    VK_ATTRIBUTE* list = nullptr;
};

struct VK_RECEIVER_ATTRIBUTE_LIST
{
    int count = 0;
    VK_RECEIVER_ATTRIBUTE* list = nullptr;
};

void AddDisableHistory(VK_DISABLE_HISTORY_LIST* list, const VK_DISABLE_HISTORY* history);
void EmptyDisableHistoryList(VK_DISABLE_HISTORY_LIST* list);

/// Frees what the record owns and clears it.
void EmptyAttribute(VK_ATTRIBUTE* attribute);
/// The copy gets texts of its own.
void AddAttribute(VK_ATTRIBUTE_LIST* list, const VK_ATTRIBUTE* attribute);
void EmptyAttributeList(VK_ATTRIBUTE_LIST* list);

void AddReceiverAttribute(VK_RECEIVER_ATTRIBUTE_LIST* list, const VK_RECEIVER_ATTRIBUTE* attribute);
void EmptyReceiverAttributeList(VK_RECEIVER_ATTRIBUTE_LIST* list);

namespace vk {

inline constexpr TableName kReceiverName{"receiver", "VK_RECEIVER"};

inline constexpr Table kReceiverDeptTable{
    TableName{"receiver_dept", "VK_RECEIVER_DEPT"},
    Fields(Field<&VK_DEPT_RIGHTS::id>("id", PrimaryKey{}),
           Field<&VK_DEPT_RIGHTS::owner_id>("owner_id", Indexed{"ix_rcvrdept_owner_id"},
                                            References{kReceiverName, Reference::OwningRow}),
           Field<&VK_DEPT_RIGHTS::department_id>("department_id", Indexed{"ix_rcvrdept_dept_id"},
                                                 References{kDepartmentTable.name}))};

inline constexpr Table kDisableHistoryTable{
    TableName{"recv_disable_history", "VK_RECV_DISABLE_HISTORY"},
    Fields(Field<&VK_DISABLE_HISTORY::id>("id", PrimaryKey{}),
           Field<&VK_DISABLE_HISTORY::receiver_id>("receiver_id", References{kReceiverName, Reference::OwningRow}),
           Field<&VK_DISABLE_HISTORY::disable_start_date>("disable_start_date"),
           Field<&VK_DISABLE_HISTORY::disable_end_date>("disable_end_date"),
           Field<&VK_DISABLE_HISTORY::forward_to_id>("forward_to_id"),
           Field<&VK_DISABLE_HISTORY::forward_to_number>("forward_to_number"))};

inline constexpr Table kAttributeTable{
    TableName{"attribute", "VK_ATTRIBUTE"},
    Fields(Field<&VK_ATTRIBUTE::id>("id", PrimaryKey{}), Field<&VK_ATTRIBUTE::name>("name", NotNull{}),
           Field<&VK_ATTRIBUTE::attr_order>("attr_order", NotNull{}), Field<&VK_ATTRIBUTE::type>("type"),
           Field<&VK_ATTRIBUTE::attr_values>("attr_values"), Field<&VK_ATTRIBUTE::misc>("misc"))};

inline constexpr Table kReceiverAttributeTable{
    TableName{"recv_attribute", "VK_RECV_ATTRIBUTE"},
    Fields(Field<&VK_RECEIVER_ATTRIBUTE::id>("id", PrimaryKey{}),
           Field<&VK_RECEIVER_ATTRIBUTE::receiver_id>("receiver_id", NotNull{},
                                                      References{kReceiverName, Reference::OwningRow}),
           Field<&VK_RECEIVER_ATTRIBUTE::attribute_id>("attribute_id", NotNull{},
                                                       References{kAttributeTable.name, Reference::OwningRow}),
           Field<&VK_RECEIVER_ATTRIBUTE::attribute_values>("attribute_values"))};

} // namespace vk
