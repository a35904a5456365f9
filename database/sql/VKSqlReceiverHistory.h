#pragma once

#include "VKReceiver.h"
#include "VKSqlStore.h"

namespace vk {

/// When receivers were not available. All but List run in the transaction of their caller.
class SqlReceiverHistory
{
public:
    explicit SqlReceiverHistory(SqlStore& store) : m_store(store) {}

    void Add(const VK_DISABLE_HISTORY& history);
    /// A row for the period that a receiver's record tells.
    void AddFor(const VK_RECEIVER& receiver, unsigned long receiverId);
    /// Changes a row by its id; without an id the receiver's latest row.
    void Update(VK_DISABLE_HISTORY history);
    /// Applies what callers hand in; null for nothing.
    void Apply(const VK_DISABLE_HISTORY* update, const VK_DISABLE_HISTORY* add, unsigned long receiverId);
    /// Lets what the receiver's history has under way, or ahead, end now.
    void Close(unsigned long receiverId, long now);
    void DeleteOf(unsigned long receiverId);

    /// The rows of one receiver, or of all for id 0, that touch a period; `to` 0 or less: open ended. Oldest first.
    void List(VK_DISABLE_HISTORY_LIST* list, unsigned long receiverId, long from, long to);

private:
    SqlStore& m_store;
};

} // namespace vk
