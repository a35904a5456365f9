#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "FileDatabase.h"
#include "VKDBexception.h"
#include "VKDBiMessageQueue.h"
#include "VKRecordText.h"
#include "VKSQLite3MessageQueue.h"

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
                             const VK_MESSAGE_HEADER& header = {})
    {
        const auto empty = [](VK_MESSAGE_CONTENT* content) { EmptyMessageContent(content); };
        VK_MESSAGE_CONTENT content;
        const std::unique_ptr<VK_MESSAGE_CONTENT, decltype(empty)> guard(&content, empty);
        content.header = header;
        vk::SetText(content.header.msg_name, name, "msg_name");
        AddMessageContent(&content, body);
        queue.Add(&content);
        return content.header.id;
    }

    static bool Modify(VKDBiMessageQueue& queue, const std::string& oldName, const std::string& newName,
                       const std::string& body)
    {
        VK_MESSAGE_CONTENT content;
        const auto empty = [](VK_MESSAGE_CONTENT* one) { EmptyMessageContent(one); };
        const std::unique_ptr<VK_MESSAGE_CONTENT, decltype(empty)> guard(&content, empty);
        vk::SetText(content.header.msg_name, newName, "msg_name");
        AddMessageContent(&content, body);
        return queue.Modify(&content, oldName);
    }

    /// What an operation fails with, its system message too; nothing when it succeeds.
    static std::string WholeErrorOf(const std::function<void()>& operation)
    {
        try {
            operation();
            return "";
        } catch (const VKDBexception& failure) {
            return failure.what();
        }
    }

    static std::vector<std::string> Names(VKDBiMessageQueue& queue, bool ready = false)
    {
        VK_MESSAGE_HEADER_LIST list;
        if (ready)
            queue.GetReadyMsg(&list, false);
        else
            queue.Get(&list, false);
        std::vector<std::string> names;
        for (int i = 0; i < list.count; ++i)
            names.push_back(list.list[i].msg_name);
        EmptyMessageHeaderList(&list);
        return names;
    }
    static std::vector<std::string> Ready(VKDBiMessageQueue& queue) { return Names(queue, true); }

    static std::string Body(VKDBiMessageQueue& queue, const std::string& name)
    {
        VK_MESSAGE_CONTENT content;
        const bool found = queue.GetByName(name, &content, true, true);
        const std::string body = found ? std::string(content.body, content.length) : "(none)";
        EmptyMessageContent(&content);
        return body;
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
