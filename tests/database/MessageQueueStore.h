#pragma once

#include <ctime>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "FileDatabase.h"
#include "RecordColumns.h"
#include "VKDBiMessageQueue.h"
#include "VKSQLite3MessageQueue.h"

/// A message whose body goes with it.
struct Message : VK_MESSAGE_CONTENT
{
    Message() = default;
    /// Its header has these columns.
    Message(const std::string& name, const std::string& text, const ColumnValues& values = {})
    {
        vk::QueueRow row;
        SetColumns(vk::kQueueTable.fields, row, values);
        header = row;
        vk::SetText(header.msg_name, name, "msg_name");
        AddMessageContent(this, text);
    }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;
    ~Message() { EmptyMessageContent(this); }

    std::string operator[](const std::string& columns) const
    {
        vk::QueueRow row;
        static_cast<VK_MESSAGE_HEADER&>(row) = header;
        return Columns(vk::kQueueTable.fields, row, columns);
    }
    std::string Body() const { return {body, length}; }
};

/// A time of January 2026, whose 4th is a Sunday.
inline time_t LocalTime(int day, int hour, int minute)
{
    tm local{};
    local.tm_year = 126;
    local.tm_mday = day;
    local.tm_hour = hour;
    local.tm_min = minute;
    local.tm_isdst = -1;
    return mktime(&local);
}

/// Queues 1 to 10, on the database of a fixture; their directories are their own.
template <class Database> class QueuesOn : public Database
{
protected:
    QueuesOn()
    {
        VK_DIRECTORY_PATH paths{};
        auto* const slots = reinterpret_cast<char(*)[256]>(&paths);
        for (int slot = 0; slot < 16; ++slot) {
            const std::string path = this->dir / ("slot" + std::to_string(slot));
            std::filesystem::create_directories(path);
            vk::SetText(slots[slot], path, "path");
        }
        VKDBsystem::directory_Pathes = paths;
    }

    std::unique_ptr<VKDBiMessageQueue> Open(int number, const std::string& service = "svc")
    {
        return std::unique_ptr<VKDBiMessageQueue>(VKDBiMessageQueue::CreateInstance(&this->system, number, service));
    }

    static unsigned long Add(VKDBiMessageQueue& queue, const std::string& name, const std::string& body = "{}",
                             const ColumnValues& values = {})
    {
        Message message(name, body, values);
        queue.Add(&message);
        return message.header.id;
    }

    static bool Modify(VKDBiMessageQueue& queue, const std::string& oldName, const std::string& newName,
                       const std::string& body)
    {
        Message message(newName, body);
        return queue.Modify(&message, oldName);
    }

    /// Columns of a message's header; "(none)" when there is no such message.
    static std::string Header(VKDBiMessageQueue& queue, const std::string& name, const std::string& columns)
    {
        Message message;
        return queue.GetByName(name, &message, true, false) ? message[columns] : "(none)";
    }

    static std::vector<std::string> Names(VKDBiMessageQueue& queue, bool ready = false)
    {
        VK_MESSAGE_HEADER_LIST list;
        try {
            ready ? queue.GetReadyMsg(&list, false) : queue.Get(&list, false);
        } catch (...) {
            EXPECT_EQ(list.count, 0) << "nobody may send what it does not hold";
            throw;
        }
        std::vector<std::string> names;
        for (int i = 0; i < list.count; ++i)
            names.push_back(list.list[i].msg_name);
        EmptyMessageHeaderList(&list);
        return names;
    }
    static std::vector<std::string> Ready(VKDBiMessageQueue& queue) { return Names(queue, true); }

    static std::string Body(VKDBiMessageQueue& queue, const std::string& name)
    {
        Message message;
        return queue.GetByName(name, &message, true, true) ? message.Body() : "(none)";
    }

    /// The backups of changes that are over; none may stay.
    static std::size_t Backups(VKDBiMessageQueue& queue)
    {
        std::error_code none;
        const std::filesystem::directory_iterator entries(queue.GetQueueName() + "/queue_metabase.sdb-undo", none);
        return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
    }

    /// The message files of a queue on files: all but the queue's own.
    static std::set<std::string> Files(VKDBiMessageQueue& queue)
    {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(queue.GetQueueName()))
            if (const std::string name = entry.path().filename().string();
                name.rfind("queue_metabase.sdb", 0) != 0)
                names.insert(name);
        return names;
    }
};

using MessageQueueStore = QueuesOn<FileDatabase>;
