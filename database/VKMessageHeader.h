#pragma once

#include <cstddef>
#include <string>
#include <tuple>

#include "VKTableField.h"

/// What a queue knows of a message without its body. Texts are zero-terminated UTF-8, sizes in bytes; times are seconds
/// since the epoch, 0 for none.
struct VK_MESSAGE_HEADER
{
    unsigned long id = 0;
    char msg_name[256] = {}; ///< the file name; docs/queues.md tells its form
    long last_modify_time = 0;
    int last_paging_queue_id = 0; ///< number of the queue from which it came
    long create_time = 0;
    int priority = 0; ///< 0 becomes 3 when it is added
    char sender_name[51] = {};
    char receiver_name[51] = {};
    char rcv_group_name[51] = {};
    char pin[256] = {};
    char carrier_name[51] = {};
    long next_send_time = 0;
    long expiry_time = 0;
    long next_query_time = 0;
    int casc_delay_mins = 0;     ///< delay of the cascade queue
    int schd_days_to_send = 0;   ///< week days of the schedule queue, see WeekdayBit; 256: at most once a day
    int schd_time_in_mins = 0;   ///< minute of the day
    long schd_last_send_time = 0;
    long schd_date_to_send = 0;  ///< a single date, 0 for a weekly one
};

/// Headers in an array that the list owns (malloc).
struct VK_MESSAGE_HEADER_LIST
{
    int count = 0;
    VK_MESSAGE_HEADER* list = nullptr;
};

/// A message with its body, which it owns (malloc) and which has a zero byte behind its length.
struct VK_MESSAGE_CONTENT
{
    VK_MESSAGE_HEADER header;
    std::size_t length = 0;
    char* body = nullptr;
};

/// Frees the array and zeroes the list.
void EmptyMessageHeaderList(VK_MESSAGE_HEADER_LIST* list);
/// Adds a copy at the end.
void AddMessageHeader(VK_MESSAGE_HEADER_LIST* list, const VK_MESSAGE_HEADER* header);

/// Frees the body and zeroes the record.
void EmptyMessageContent(VK_MESSAGE_CONTENT* content);
/// Appends to the body, which stays as it was when memory runs out (std::bad_alloc).
void AddMessageContent(VK_MESSAGE_CONTENT* content, const std::string& text);
void AddMessageContentFormat(VK_MESSAGE_CONTENT* content, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

namespace vk {

/// A row of a queue: the header, and what is read out of the message's name.
struct QueueRow : VK_MESSAGE_HEADER
{
    long lock_time = 0; ///< when a service took it, 0 free
    char last_lock_owner_svc_name[51] = {};
    char msg_status[2] = {};
    int msg_query_count = 0;
    char msg_job_id[65] = {};
    char msg_protocol[16] = {};
};

/// What every read of a queue gives, and what stands behind it in a full one.
inline constexpr auto kBriefHeaderFields =
    Fields(Field<&QueueRow::id>("id", PrimaryKey{}), Field<&QueueRow::msg_name>("msg_name"),
           Field<&QueueRow::last_modify_time>("last_modify_time"),
           Field<&QueueRow::last_paging_queue_id>("last_paging_queue_id"));
inline constexpr auto kFurtherHeaderFields = Fields(
    Field<&QueueRow::create_time>("create_time"), Field<&QueueRow::priority>("priority", SqlDefault{"3"}),
    Field<&QueueRow::sender_name>("sender_name"), Field<&QueueRow::receiver_name>("receiver_name"),
    Field<&QueueRow::rcv_group_name>("rcv_group_name"), Field<&QueueRow::pin>("pin"),
    Field<&QueueRow::carrier_name>("carrier_name"), Field<&QueueRow::next_send_time>("next_send_time"),
    Field<&QueueRow::expiry_time>("expiry_time"), Field<&QueueRow::next_query_time>("next_query_time"),
    Field<&QueueRow::casc_delay_mins>("casc_delay_mins"), Field<&QueueRow::schd_days_to_send>("schd_days_to_send"),
    Field<&QueueRow::schd_time_in_mins>("schd_time_in_mins"),
    Field<&QueueRow::schd_last_send_time>("schd_last_send_time"),
    Field<&QueueRow::schd_date_to_send>("schd_date_to_send"));

/// The columns of a queue. The lock columns are changed by statements of their own, never with the record. In a
/// relational database each queue has a table of its own name.
inline constexpr Table kQueueTable{
    TableName{"queue_metadata", "VK_QUEUE_PAGING"},
    std::tuple_cat(
        Fields(Field<&QueueRow::id>("id", PrimaryKey{}),
               Field<&QueueRow::lock_time>("lock_time", NotWritten{}, SqlDefault{"0"}),
               Field<&QueueRow::last_lock_owner_svc_name>("last_lock_owner_svc_name", NotWritten{}, SqlDefault{"''"}),
               Field<&QueueRow::msg_name>("msg_name"), Field<&QueueRow::msg_status>("msg_status"),
               Field<&QueueRow::msg_query_count>("msg_query_count"), Field<&QueueRow::msg_job_id>("msg_job_id"),
               Field<&QueueRow::msg_protocol>("msg_protocol"), Field<&QueueRow::last_modify_time>("last_modify_time"),
               Field<&QueueRow::last_paging_queue_id>("last_paging_queue_id")),
        kFurtherHeaderFields)};

} // namespace vk
