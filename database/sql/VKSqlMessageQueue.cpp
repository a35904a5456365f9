#include "VKSqlMessageQueue.h"

#include "VKMessageName.h"
#include "VKSqlMessageQueueTurn.h"

namespace vk {

namespace {

void SetNameParts(QueueRow& row, const std::string& name)
{
    RequireMessageName(name);
    const MessageName parts = MessageName::Parse(name);
    SetText(row.msg_name, name, "msg_name");
    SetText(row.msg_status, std::string(1, parts.status), "msg_status");
    row.msg_query_count = parts.queryCount;
    SetText(row.msg_job_id, parts.job, "msg_job_id");
    SetText(row.msg_protocol, parts.protocol, "msg_protocol");
}

QueueRow RowOf(const VK_MESSAGE_HEADER& header)
{
    QueueRow row;
    static_cast<VK_MESSAGE_HEADER&>(row) = header;
    SetNameParts(row, std::string(GetText(header.msg_name, sizeof header.msg_name, "msg_name")));
    return row;
}

} // namespace

SqlMessageQueue::SqlMessageQueue(int queueNumber, const std::string& serviceName)
    : m_iQueueNumber(queueNumber), m_strService(serviceName)
{
}

SqlMessageQueue::~SqlMessageQueue() = default;

void SqlMessageQueue::UseStore(std::unique_ptr<SqlStore> store, std::unique_ptr<MessageBodies> bodies,
                               const TableName& table)
{
    m_store = std::move(store);
    m_bodies = std::move(bodies);
    m_table = table;
}

/// In the fax and voice queues a name that ends in "p" is also that of the message without the "p".
std::string SqlMessageQueue::NameClause(const std::string& name) const
{
    RequireSearchable(m_store->Dialect(), name);
    const bool twoNames = (m_iQueueNumber == 6 || m_iQueueNumber == 7) && !name.empty() && name.back() == 'p';
    if (twoNames)
        return m_store->Part("(msg_name={} OR msg_name={})", name.substr(0, name.size() - 1), name).text;
    return m_store->Part("msg_name={}", name).text;
}

SqlMessageQueue::Names SqlMessageQueue::SelectNames(const std::string& condition)
{
    const auto rows = m_store->Select("SELECT msg_name FROM {} WHERE {}", m_table, SqlRaw{condition});
    Names names;
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        names.push_back((*rows)[row][0].GetValueString());
    return names;
}

/// Deletes the rows that a condition names, with their bodies; gives back how many there were.
long SqlMessageQueue::DeleteRows(const std::string& condition)
{
    if (m_bodies->StandApart()) {
        const Names names = SelectNames(condition);
        if (names.empty())
            return 0;
        m_bodies->Remove(names);
    }
    return m_store->Update("DELETE FROM {} WHERE {}", m_table, SqlRaw{condition});
}

bool SqlMessageQueue::Add(VK_MESSAGE_CONTENT* content)
{
    VK_MESSAGE_HEADER& header = content->header;
    header.last_modify_time = Now();
    header.priority = header.priority == 0 ? 3 : header.priority;
    const QueueRow row = RowOf(header);
    const std::string same = NameClause(row.msg_name);
    header.id = Change([&] {
        DeleteRows(same);
        return m_bodies->Insert(row, *content);
    });
    return true;
}

bool SqlMessageQueue::Modify(VK_MESSAGE_CONTENT* content, const std::string& oldName)
{
    QueueRow row = RowOf(content->header);
    const std::string name = row.msg_name;
    return Change([&] {
        const auto found = m_store->Select("SELECT id, msg_name FROM {} WHERE {}", m_table,
                                           SqlRaw{NameClause(oldName.empty() ? name : oldName)});
        if (found->GetReturnedRowsCount() == 0)
            return false;
        row.id = (*found)[0][0].GetValueULong();
        const std::string present = (*found)[0][1].GetValueString();
        m_store->Update("DELETE FROM {} WHERE msg_name={} AND id<>{}", m_table, name, row.id);
        if (present != name)
            m_bodies->Remove({present});
        m_bodies->Update(row, *content);
        content->header.id = row.id;
        return true;
    });
}

bool SqlMessageQueue::Delete(const std::string& name)
{
    RequireMessageName(name);
    const std::string same = NameClause(name);
    return Change([&] { return DeleteRows(same) > 0; });
}

bool SqlMessageQueue::DeleteMsgList(VK_MESSAGE_HEADER_LIST* list)
{
    Ids ids;
    for (int i = 0; i < list->count; ++i)
        ids.push_back(list->list[i].id);
    return Change([&] {
        ForIds(ids, [&](const SqlRaw& some) { DeleteRows("id IN (" + some.text + ")"); });
        return true;
    });
}

bool SqlMessageQueue::Rename(const std::string& oldName, const std::string& newName, const time_t* time)
{
    RequireMessageName(oldName);
    QueueRow row;
    SetNameParts(row, newName);
    RequireSearchable(m_store->Dialect(), newName);
    const SqlRaw timeToo{time == nullptr ? "" : m_store->Part(", last_modify_time={}", *time).text};
    return Change([&] {
        if (SelectNames(m_store->Part("msg_name={}", oldName).text).empty())
            return false;
        if (newName != oldName)
            m_store->Update("DELETE FROM {} WHERE msg_name={}", m_table, newName);
        m_store->Update("UPDATE {} SET msg_name={}, msg_status={}, msg_query_count={}, msg_job_id={}, "
                        "msg_protocol={}{} WHERE msg_name={}",
                        m_table, newName, std::string(row.msg_status), row.msg_query_count,
                        std::string(row.msg_job_id), std::string(row.msg_protocol), timeToo, oldName);
        m_bodies->Move(oldName, newName);
        return true;
    });
}

bool SqlMessageQueue::UpdateName(const std::string& oldName, const std::string& newName)
{
    return Rename(oldName, newName, nullptr);
}

bool SqlMessageQueue::UpdateNameAndTime(const std::string& oldName, const std::string& newName, time_t time)
{
    return Rename(oldName, newName, &time);
}

bool SqlMessageQueue::UpdateTime(const std::string& name, time_t time)
{
    RequireSearchable(m_store->Dialect(), name);
    return Change([&] {
        return m_store->Update("UPDATE {} SET last_modify_time={} WHERE msg_name={}", m_table, time, name) > 0;
    });
}

bool SqlMessageQueue::Morph(const std::string& name, const std::string& prefix, bool withTime, time_t time)
{
    if (!HasStatusLetter(name))
        return false;
    const std::string newName = prefix + name.substr(2);
    return withTime ? UpdateNameAndTime(name, newName, time) : UpdateName(name, newName);
}

bool SqlMessageQueue::EmptyQueue()
{
    return Change([&] {
        m_store->Update("DELETE FROM {}", m_table);
        m_bodies->RemoveAll();
        return true;
    });
}

void SqlMessageQueue::SetSort(SortFldOption field, bool ascending)
{
    m_sortField = field;
    m_bAscending = ascending;
}

void SqlMessageQueue::SetFilter(int pageSize, int pageNumber)
{
    m_iPageSize = pageSize;
    m_iPageNumber = pageNumber;
}

void SqlMessageQueue::SetFilter(const std::string& protocol, const std::string& nameOrStatus, time_t from, time_t to)
{
    m_filter.protocol = protocol;
    m_filter.name = nameOrStatus;
    m_filter.from = from == 0 ? 0 : from - 1;
    m_filter.to = to == 0 ? 0 : to + 1;
}

void SqlMessageQueue::SetFilterByPin(const std::string& protocol, const std::string& pin)
{
    m_filter.protocol = protocol;
    m_filter.pin = pin;
}

void SqlMessageQueue::SetFilterView(const std::string& name, const std::string& sender, const std::string& receiver,
                                    const std::string& group, const std::string& pin, const std::string& carrier,
                                    time_t from, time_t to, time_t modifiedFrom, time_t modifiedTo, int priority)
{
    m_filter.name = name;
    m_filter.sender = sender;
    m_filter.receiver = receiver;
    m_filter.group = group;
    m_filter.pinBeginning = pin;
    m_filter.carrier = carrier;
    m_filter.createdFrom = from;
    m_filter.createdTo = to;
    m_filter.from = modifiedFrom;
    m_filter.to = modifiedTo;
    m_filter.priority = priority;
}

void SqlMessageQueue::ClearFilter()
{
    m_filter = MessageFilter{};
    m_iPageSize = m_iPageNumber = m_iPageCount = 0;
    m_lTotalRecords = 0;
}

void SqlMessageQueue::ClearSort() { SetSort(SortByCreateTime, true); }

} // namespace vk
