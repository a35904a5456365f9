#include "VKRecordList.h"
#include "VKSqlMessageQueueTurn.h"
#include "VKTableRow.h"

/// \file
/// Reading a queue: polls, lists, single messages and counts.

namespace vk {

namespace {

[[noreturn]] void Fail(int line, const std::string& message)
{
    throw VKDBexception(DbError::General, __FILE__, line, message);
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

/// A list grows by so many: to grow it for each row would cost as much as the row's file test.
constexpr std::size_t kHandedAtOnce = 128;

bool TakesServiceName(ReadyOption option) { return option == ReadyOption::Normal; }

ReadyOption ReadyOptionOf(int queueNumber)
{
    if (queueNumber == 3)
        return ReadyOption::Cascade;
    return queueNumber == 2 ? ReadyOption::Schedule : ReadyOption::Normal;
}

} // namespace

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
    const auto hand = [&] {
        CopyRecords(list->list, list->count, m_read.data(), static_cast<int>(m_read.size()));
        m_read.clear();
    };
    const auto read = [&] {
        Ids taken;
        Ids withoutBody;
        m_store->ForEachRow(PageStatement(full, filter, order), [&](const SqlRow& row) {
            if (m_read.size() == kHandedAtOnce)
                hand();
            m_read.push_back(HeaderOf(row, full));
            const VK_MESSAGE_HEADER& header = m_read.back();
            const bool whole = m_bodies->Exists(header.msg_name);
            (whole ? taken : withoutBody).push_back(header.id);
            if (!whole)
                m_read.pop_back();
        });
        hand();
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
        m_read.clear();
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

} // namespace vk
