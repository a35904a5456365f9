#include "VKSqlMessageQueue.h"

#include <algorithm>
#include <cstring>
#include <map>

#include "VKMessageName.h"
#include "VKTableRow.h"

namespace vk {

namespace {

[[noreturn]] void Fail(int line, const std::string& message)
{
    throw VKDBexception(DbError::General, __FILE__, line, message);
}

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

/// A name that is looked for need not be one that a message may have.
void RequireSearchable(const SqlDialect& dialect, const std::string& name)
{
    dialect.RequireStorable(name, "msg_name");
}

void RequireServiceName(const SqlDialect& dialect, const std::string& name)
{
    RequireFits(name, sizeof(QueueRow::last_lock_owner_svc_name), "last_lock_owner_svc_name");
    dialect.RequireStorable(name, "last_lock_owner_svc_name");
}

QueueRow RowOf(const VK_MESSAGE_HEADER& header)
{
    QueueRow row;
    static_cast<VK_MESSAGE_HEADER&>(row) = header;
    SetNameParts(row, std::string(GetText(header.msg_name, sizeof header.msg_name, "msg_name")));
    return row;
}

/// The columns of a header, in the order that HeaderOf reads them.
const std::string& HeaderColumns(bool full)
{
    const auto add = [](std::string& columns, const auto& fields) {
        ForEachField(fields, [&](const auto& field) { detail::AddWithComma(columns, field.name); });
    };
    static const std::string brief = [&] {
        std::string columns;
        add(columns, kBriefHeaderFields);
        return columns;
    }();
    static const std::string all = [&] {
        std::string columns = brief;
        add(columns, kFurtherHeaderFields);
        return columns;
    }();
    return full ? all : brief;
}

/// Reads a row of HeaderColumns by position: a poll reads many.
VK_MESSAGE_HEADER HeaderOf(const SqlRow& row, bool full)
{
    VK_MESSAGE_HEADER header;
    int position = 0;
    const auto read = [&](const auto& field) {
        ReadValue(field.of(header), SqlColumn(row, position++), field.name);
    };
    ForEachField(kBriefHeaderFields, read);
    if (full)
        ForEachField(kFurtherHeaderFields, read);
    return header;
}

/// The caller's turn on the bodies, as long as the object lives.
class Turn
{
public:
    explicit Turn(MessageBodies& bodies) : m_bodies(bodies) { m_bodies.Enter(); }
    ~Turn() { m_bodies.Leave(); }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

private:
    MessageBodies& m_bodies;
};

bool TakesServiceName(ReadyOption option) { return option == ReadyOption::Normal; }

ReadyOption ReadyOptionOf(int queueNumber)
{
    if (queueNumber == 3)
        return ReadyOption::Cascade;
    return queueNumber == 2 ? ReadyOption::Schedule : ReadyOption::Normal;
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

/// A transaction on rows and bodies together. Reads run in one too: a body whose row is being changed is not looked at.
template <class Body> auto SqlMessageQueue::InQueue(TransactionLock lock, Body&& body)
{
    const auto inTurn = [&] {
        const Turn turn(*m_bodies);
        return InTransaction(m_store->Connection(), lock, [&] {
            m_bodies->Begin(*m_store, m_table, lock);
            try {
                return body();
            } catch (...) {
                m_bodies->Undo();
                throw;
            }
        });
    };
    auto result = inTurn();
    m_bodies->Committed();
    return result;
}

/// Runs a statement on ids in lists that a statement has room for.
template <class Run> void SqlMessageQueue::ForIds(const Ids& ids, Run&& run)
{
    constexpr std::size_t kAtOnce = 500;
    for (std::size_t from = 0; from < ids.size(); from += kAtOnce) {
        std::string list;
        for (std::size_t i = from; i < std::min(from + kAtOnce, ids.size()); ++i)
            detail::AddWithComma(list, std::to_string(ids[i]));
        run(SqlRaw{list});
    }
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
    if (m_bodies->StandApart())
        m_bodies->Remove(SelectNames(condition));
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

bool SqlMessageQueue::Get(VK_MESSAGE_HEADER_LIST* list, bool full) { return GetImpl(list, full, ReadyOption::All); }

bool SqlMessageQueue::GetReadyMsg(VK_MESSAGE_HEADER_LIST* list, bool full)
{
    const ReadyOption option = ReadyOptionOf(m_iQueueNumber);
    if (TakesServiceName(option) && m_strService.empty())
        Fail(__LINE__, "Messenger service name not set");
    RequireServiceName(m_store->Dialect(), m_strService);
    return GetImpl(list, full, option);
}

bool SqlMessageQueue::GetImpl(VK_MESSAGE_HEADER_LIST* list, bool full, ReadyOption option)
{
    EmptyMessageHeaderList(list);
    const time_t now = Now();
    const std::string filter = MessageFilterClause(m_store->Dialect(), m_filter, option, m_strService, now);
    const std::string order = MessageOrder(option, m_sortField, m_bAscending);
    const auto lock = TakesServiceName(option) ? TransactionLock::Exclusive : TransactionLock::Shared;
    const auto read = [&] {
        Ids taken;
        Ids withoutBody;
        m_store->ForEachRow(PageStatement(full, filter, order), [&](const SqlRow& row) {
            const VK_MESSAGE_HEADER header = HeaderOf(row, full);
            const bool whole = m_bodies->Exists(header.msg_name);
            (whole ? taken : withoutBody).push_back(header.id);
            if (whole)
                AddMessageHeader(list, &header);
        });
        ForIds(withoutBody,
               [&](const SqlRaw& some) { m_store->Update("DELETE FROM {} WHERE id IN ({})", m_table, some); });
        if (TakesServiceName(option))
            ForIds(taken, [&](const SqlRaw& some) {
                m_store->Update("UPDATE {} SET lock_time={}, last_lock_owner_svc_name={} WHERE id IN ({})", m_table,
                                now, m_strService, some);
            });
        CountPages(filter, list->count + static_cast<long>(withoutBody.size()), list->count);
        return true;
    };
    try {
        return InQueue(lock, read);
    } catch (...) { // nobody may send what it does not hold
        EmptyMessageHeaderList(list);
        throw;
    }
}

std::string SqlMessageQueue::PageStatement(bool full, const std::string& filter, const std::string& order) const
{
    const std::string from = m_store->Part("{} {}", m_table, SqlRaw{filter}).text;
    if (m_iPageSize <= 0)
        return m_store
            ->Part("SELECT {} FROM {} ORDER BY {}", SqlRaw{HeaderColumns(full)}, SqlRaw{from}, SqlRaw{order})
            .text;
    return m_store->Dialect().PageOfTable(HeaderColumns(full), from, order, m_iPageSize, PageOffset());
}

/// At most `size` rows behind the first `offset`, in an order that need not be of columns that are read.
std::unique_ptr<VKDBiResultSet> SqlMessageQueue::SelectFirst(const std::string& columns, const std::string& from,
                                                             const std::string& order, long size, long offset)
{
    return m_store->Select("{}", SqlRaw{m_store->Dialect().PageOfTable(columns, from, order, size, offset)});
}

/// A page that is not full is the last one, and its rows need no counting. `read` holds those whose body is gone too.
void SqlMessageQueue::CountPages(const std::string& filter, long read, long returned)
{
    const bool paged = m_iPageSize > 0;
    const long before = paged ? PageOffset() : 0;
    const bool toTheEnd = !paged || (read < m_iPageSize && (read > 0 || before == 0));
    m_lTotalRecords = toTheEnd ? before + returned
                               : m_store->SelectNumber("SELECT COUNT(id) FROM {} {}", m_table, SqlRaw{filter});
    m_iPageCount = paged ? static_cast<int>((m_lTotalRecords + m_iPageSize - 1) / m_iPageSize) : 1;
}

bool SqlMessageQueue::GetByName(const std::string& name, VK_MESSAGE_CONTENT* content, bool full, bool body)
{
    EmptyMessageContent(content);
    return Read([&] {
        const auto rows = m_store->Select("SELECT {} FROM {} WHERE {}", SqlRaw{HeaderColumns(full)}, m_table,
                                          SqlRaw{NameClause(name)});
        if (rows->GetReturnedRowsCount() == 0)
            return false;
        content->header = HeaderOf(SqlResultRow((*rows)[0]), full);
        if (!m_bodies->Exists(content->header.msg_name)) {
            m_store->Update("DELETE FROM {} WHERE id={}", m_table, content->header.id);
            EmptyMessageContent(content);
            return false;
        }
        if (body && !m_bodies->Load(content->header.msg_name, content))
            Fail(__LINE__, "The message [" + name + "] cannot be read.");
        return true;
    });
}

bool SqlMessageQueue::GetByNameList(const std::string& prefix, std::vector<VK_MESSAGE_CONTENT>& contents)
{
    return Read([&] {
        const auto rows = m_store->Select("SELECT {} FROM {} WHERE {} ORDER BY {}", SqlRaw{HeaderColumns(true)},
                                          m_table, SqlRaw{m_store->Dialect().BeginsNoCase("msg_name", prefix)},
                                          SqlRaw{MessageOrder(ReadyOption::All, m_sortField, m_bAscending)});
        for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
            VK_MESSAGE_CONTENT content;
            content.header = HeaderOf(SqlResultRow((*rows)[row]), true);
            if (!m_bodies->Exists(content.header.msg_name))
                m_store->Update("DELETE FROM {} WHERE id={}", m_table, content.header.id);
            else if (m_bodies->Load(content.header.msg_name, &content))
                contents.push_back(content);
            else
                Fail(__LINE__, std::string("The message [") + content.header.msg_name + "] cannot be read.");
        }
        return true;
    });
}

bool SqlMessageQueue::UnlockMsgList(VK_MESSAGE_HEADER_LIST* list)
{
    Ids ids;
    for (int i = 0; i < list->count; ++i)
        ids.push_back(list->list[i].id);
    return Change([&] {
        ForIds(ids,
               [&](const SqlRaw& some) { m_store->Update("UPDATE {} SET lock_time=0 WHERE id IN ({})", m_table, some); });
        return true;
    });
}

/// Gives an owner's rows that a condition names back: nobody's, and M or Q. Both are parts of a condition.
void SqlMessageQueue::Release(const std::string& owner, const std::string& which)
{
    const auto rows =
        m_store->Select("SELECT msg_name, msg_query_count FROM {} WHERE {}{}", m_table, SqlRaw{owner}, SqlRaw{which});
    std::map<std::string, std::string> oldNames; // by the new one
    for (const bool sending : {true, false}) // what was being sent comes first where two would get one name
        for (int row = 0; row < rows->GetReturnedRowsCount(); ++row) {
            const std::string name = (*rows)[row][0].GetValueString();
            const std::string newName = ((*rows)[row][1].GetValueLong() > 0 ? "Q" : "M") + name.substr(1);
            if (sending != (name[0] == 'R'))
                continue;
            if (!oldNames.emplace(newName, name).second) // the other one keeps its name, so that neither is lost
                m_store->Update("UPDATE {} SET lock_time=0, last_lock_owner_svc_name='' WHERE msg_name={}", m_table,
                                name);
            else if (name != newName) // as one that is added anew is replaced
                m_store->Update("DELETE FROM {} WHERE msg_name={}", m_table, newName);
        }
    const auto update = [&](char status, const char* asked) {
        m_store->Update("UPDATE {} SET lock_time=0, last_lock_owner_svc_name='', msg_status={}, msg_name={} WHERE "
                        "{}{}{}",
                        m_table, std::string(1, status), SqlRaw{m_store->Dialect().WithFirstLetter("msg_name", status)},
                        SqlRaw{owner}, SqlRaw{asked}, SqlRaw{which});
    };
    update('M', " AND msg_query_count=0");
    update('Q', " AND msg_query_count>0");
    for (const auto& [newName, name] : oldNames)
        if (name != newName && m_bodies->Exists(name)) // a row without one goes with the next read
            m_bodies->Move(name, newName);
}

bool SqlMessageQueue::UnprocessMsgList(const std::string& serviceName)
{
    RequireServiceName(m_store->Dialect(), serviceName);
    return Change([&] {
        Release(m_store->Part("last_lock_owner_svc_name={}", serviceName).text,
                " AND (lock_time<>0 OR msg_status='R')");
        return true;
    });
}

bool SqlMessageQueue::UnprocessLockedUpMsgs(const std::vector<std::string>& services)
{
    const time_t limit = Now() - kHeldTooLong;
    std::string names;
    for (const std::string& service : services) {
        RequireServiceName(m_store->Dialect(), service);
        detail::AddWithComma(names, m_store->Dialect().Text(service));
    }
    // What is being sent by nobody is of no service's list; without this it would stay so for ever.
    const std::string orNobodys = names.empty() ? "''" : names + ", ''";
    return Change([&] {
        Release("last_lock_owner_svc_name IN (" + orNobodys + ")",
                m_store->Part(" AND msg_status='R' AND last_modify_time<{}", limit).text);
        // One that is being sent keeps its owner, so that its own age, not that of its lock, gives it back.
        if (!names.empty())
            m_store->Update("UPDATE {} SET lock_time=0, last_lock_owner_svc_name='' WHERE last_lock_owner_svc_name IN "
                            "({}) AND lock_time<>0 AND lock_time<{} AND msg_status<>'R'",
                            m_table, SqlRaw{names}, limit);
        return true;
    });
}

bool SqlMessageQueue::GetLockedUpMsgsServiceNames(std::vector<std::string>& services)
{
    services.clear();
    const time_t limit = Now() - kHeldTooLong;
    const auto rows = Read([&] {
        return m_store->Select("SELECT DISTINCT last_lock_owner_svc_name FROM {} WHERE ((lock_time<>0 AND "
                               "lock_time<{}) OR (msg_status='R' AND last_modify_time<{})) AND "
                               "last_lock_owner_svc_name<>''",
                               m_table, limit, limit);
    });
    for (int row = 0; row < rows->GetReturnedRowsCount(); ++row)
        services.push_back((*rows)[row][0].GetValueString());
    return true;
}

bool SqlMessageQueue::CleanupOldMsgs(int maxMessages, int days)
{
    if (maxMessages < 0 || days < 0)
        Fail(__LINE__, "A queue is cleaned to a count and an age of 0 or more.");
    constexpr long kDaySeconds = 86400;
    const std::string removable = "msg_status IN ('M','Q','R')";
    const std::string old =
        m_store->Part("last_modify_time<{} AND {}", Now() - days * kDaySeconds, SqlRaw{removable}).text;
    return Change([&] {
        DeleteRows(old);
        if (const std::string text = m_store->Dialect().DeleteBehindNewest(m_table, removable, maxMessages);
            !text.empty()) {
            m_store->Update("{}", SqlRaw{text});
            return true;
        }
        const long excess = m_store->SelectNumber("SELECT COUNT(id) FROM {}", m_table) - maxMessages;
        if (excess <= 0)
            return true;
        const auto oldest = SelectFirst("id", m_store->Part("{} WHERE {}", m_table, SqlRaw{removable}).text,
                                        "last_modify_time ASC, create_time ASC", excess, 0);
        Ids ids;
        for (int row = 0; row < oldest->GetReturnedRowsCount(); ++row)
            ids.push_back((*oldest)[row][0].GetValueULong());
        ForIds(ids, [&](const SqlRaw& some) { DeleteRows("id IN (" + some.text + ")"); });
        return true;
    });
}

bool SqlMessageQueue::EmptyQueue()
{
    return Change([&] {
        m_store->Update("DELETE FROM {}", m_table);
        m_bodies->RemoveAll();
        return true;
    });
}

time_t SqlMessageQueue::GetOldestMsgTime()
{
    return Read([&] {
        const std::string table = m_store->Dialect().TableOf(m_table);
        return (*SelectFirst("create_time", table, "create_time ASC", 1, 0))[0][0].GetValueLong();
    });
}

long SqlMessageQueue::GetTotalRecordCount()
{
    return Read([&] { return m_store->SelectNumber("SELECT COUNT(id) FROM {}", m_table); });
}

long SqlMessageQueue::GetFilteredRecordCount()
{
    const std::string filter =
        MessageFilterClause(m_store->Dialect(), m_filter, ReadyOption::All, m_strService, Now());
    return Read([&] { return m_store->SelectNumber("SELECT COUNT(id) FROM {} {}", m_table, SqlRaw{filter}); });
}

bool SqlMessageQueue::IsUniqueName(const std::string& name)
{
    RequireSearchable(m_store->Dialect(), name);
    return Read([&] {
        return m_store->Select("SELECT id FROM {} WHERE msg_name={}", m_table, name)->GetReturnedRowsCount() == 0;
    });
}

bool SqlMessageQueue::IsMsgExisting(const std::string& name)
{
    return Read([&] {
        const Names names = SelectNames(NameClause(name));
        return std::any_of(names.begin(), names.end(), [&](const std::string& one) { return m_bodies->Exists(one); });
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
