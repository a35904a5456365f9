#pragma once

#include <tuple>

#include "VKMessageHeader.h"

/// \file
/// The queues' tables on a relational server: a table for each queue, with the columns that a queue's file has and the
/// body of the message.

namespace vk {

struct QueueServerRow : QueueRow
{
    char* msg_contents = nullptr; ///< not owned while it is written
};

inline constexpr auto kQueueServerFields =
    std::tuple_cat(kQueueTable.fields, Fields(Field<&QueueServerRow::msg_contents>("msg_contents", Secret{})));

struct QueueServerTable
{
    int queue;
    TableName name;
};

/// The fax and voice queues, 6 and 7, have no table: they are files on every installation.
inline constexpr QueueServerTable kQueueServerTables[] = {
    {1, {kQueueTable.name.file, "VK_QUEUE_PAGING"}},     {2, {kQueueTable.name.file, "VK_QUEUE_SCHEDULED"}},
    {3, {kQueueTable.name.file, "VK_QUEUE_ESCALATION"}}, {4, {kQueueTable.name.file, "VK_QUEUE_COMPLETED"}},
    {5, {kQueueTable.name.file, "VK_QUEUE_FAILED"}},     {8, {kQueueTable.name.file, "VK_QUEUE_WAP"}},
    {9, {kQueueTable.name.file, "VK_QUEUE_FILTERED"}},   {10, {kQueueTable.name.file, "VK_QUEUE_WAITING"}},
};

/// An index of every queue's table; its name there is the table's with this one behind it.
struct QueueIndex
{
    const char* name;
    const char* columns;
};

/// The same that a queue's file has, but what the pairs serve already.
inline constexpr QueueIndex kQueueServerIndexes[] = {
    {"lock_time", "lock_time"},
    {"last_modify_time", "last_modify_time"},
    {"msg_name", "msg_name"},
    {"msg_query_count", "msg_query_count"},
    {"msg_protocol", "msg_protocol"},
    {"status_query", "msg_status, next_query_time"},
    {"status_modify", "msg_status, last_modify_time"},
};

} // namespace vk
