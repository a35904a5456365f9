#pragma once

#include <algorithm>
#include <string>

#include "VKSqlMessageQueue.h"

/// \file
/// What the parts of SqlMessageQueue share: the turn on a queue, its transaction, and tests of what callers give.

namespace vk {

/// The caller's turn on the bodies, as long as the object lives.
class MessageTurn
{
public:
    explicit MessageTurn(MessageBodies& bodies) : m_bodies(bodies) { m_bodies.Enter(); }
    ~MessageTurn() { m_bodies.Leave(); }
    MessageTurn(const MessageTurn&) = delete;
    MessageTurn& operator=(const MessageTurn&) = delete;

private:
    MessageBodies& m_bodies;
};

/// A transaction on rows and bodies together. Reads run in one too: a body whose row is being changed is not looked at.
template <class Body> auto SqlMessageQueue::InQueue(TransactionLock lock, Body&& body)
{
    const MessageTurn turn(*m_bodies);
    auto result = InTransaction(m_store->Connection(), lock, [&] {
        m_bodies->Begin(*m_store, m_table, lock);
        try {
            return body();
        } catch (...) {
            m_bodies->Undo();
            throw;
        }
    });
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

/// A name that is looked for need not be one that a message may have.
inline void RequireSearchable(const SqlDialect& dialect, const std::string& name)
{
    dialect.RequireStorable(name, "msg_name");
}

inline void RequireServiceName(const SqlDialect& dialect, const std::string& name)
{
    RequireFits(name, sizeof(QueueRow::last_lock_owner_svc_name), "last_lock_owner_svc_name");
    dialect.RequireStorable(name, "last_lock_owner_svc_name");
}

} // namespace vk
