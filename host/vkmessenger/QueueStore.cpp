#include "QueueStore.h"

#include "VKDBexception.h"

#include <ctime>
#include <stdexcept>

namespace vk {

namespace {

/// The store's records own memory; these free it.
struct List : VK_MESSAGE_HEADER_LIST
{
    List() = default;
    ~List() { EmptyMessageHeaderList(this); }
    List(const List&) = delete;
    List& operator=(const List&) = delete;

    QueueStore::Headers Headers() const
    {
        return count == 0 ? QueueStore::Headers() : QueueStore::Headers(list, list + count);
    }
};

struct Content : VK_MESSAGE_CONTENT
{
    Content() = default;
    Content(const VK_MESSAGE_HEADER& row, const std::string& text)
    {
        header = row;
        AddMessageContent(this, text);
    }
    ~Content() { EmptyMessageContent(this); }
    Content(const Content&) = delete;
    Content& operator=(const Content&) = delete;
};

} // namespace

QueueStore::QueueStore(VKDBsystem& system, int number, const std::string& service)
    : m_system(system), m_number(number), m_service(service)
{
    try {
        m_queue = Open();
    } catch (const VKDBexception& error) {
        throw std::runtime_error("queue " + std::to_string(number) + " cannot be opened: " + error.GetMsg());
    }
}

std::unique_ptr<VKDBiMessageQueue> QueueStore::Open() const
{
    return std::unique_ptr<VKDBiMessageQueue>(VKDBiMessageQueue::CreateInstance(&m_system, m_number, m_service));
}

void QueueStore::Reconnect()
{
    if (IsCutOff())
        m_queue = Open();
}

void QueueStore::Select(const std::string& protocol, const std::string& pin, const std::string& status, int most)
{
    m_queue->SetFilter(protocol, status, 0, 0);
    m_queue->SetFilterByPin(protocol, pin);
    m_queue->SetFilter(most, most > 0 ? 1 : 0);
}

QueueStore::Headers QueueStore::TakeReady(const std::string& protocol, const std::string& pin, int most)
{
    Select(protocol, pin, "", most);
    vk::List list;
    m_queue->GetReadyMsg(&list, true);
    return list.Headers();
}

QueueStore::Headers QueueStore::List(const std::string& protocol, const std::string& pin, const std::string& status)
{
    Select(protocol, pin, status, 0);
    vk::List list;
    m_queue->Get(&list, true);
    return list.Headers();
}

void QueueStore::Unlock(const Headers& headers)
{
    vk::List list;
    for (const VK_MESSAGE_HEADER& header : headers)
        AddMessageHeader(&list, &header);
    if (list.count > 0)
        m_queue->UnlockMsgList(&list);
}

void QueueStore::GiveBack(const std::string& service) { m_queue->UnprocessMsgList(service); }

void QueueStore::GiveBackForgotten()
{
    std::vector<std::string> services;
    m_queue->GetLockedUpMsgsServiceNames(services);
    m_queue->UnprocessLockedUpMsgs(services);
}

bool QueueStore::Load(const std::string& name, VK_MESSAGE_HEADER& header, std::string& body)
{
    Content content;
    if (!m_queue->GetByName(name, &content, true, true))
        return false;
    header = content.header;
    body.assign(content.body == nullptr ? "" : content.body, content.length);
    return true;
}

bool QueueStore::Find(const std::string& name, VK_MESSAGE_HEADER& header)
{
    Content content;
    if (!m_queue->GetByName(name, &content, true, false))
        return false;
    header = content.header;
    return true;
}

bool QueueStore::Rename(const std::string& oldName, const std::string& newName)
{
    return m_queue->UpdateNameAndTime(oldName, newName, std::time(nullptr));
}

bool QueueStore::Touch(const std::string& name) { return m_queue->UpdateTime(name, std::time(nullptr)); }

bool QueueStore::Change(VK_MESSAGE_HEADER& header, const std::string& body, const std::string& oldName)
{
    header.last_modify_time = std::time(nullptr);
    Content content(header, body);
    return m_queue->Modify(&content, oldName);
}

void QueueStore::Add(const VK_MESSAGE_HEADER& header, const std::string& body)
{
    Content content(header, body);
    m_queue->Add(&content);
}

} // namespace vk
