#include <map>

#include "VKSqlMessageQueueTurn.h"

/// \file
/// Giving messages of a queue back that a service held, and removing old ones.

namespace vk {

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
        throw VKDBexception(DbError::General, __FILE__, __LINE__,
                            "A queue is cleaned to a count and an age of 0 or more.");
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

} // namespace vk
