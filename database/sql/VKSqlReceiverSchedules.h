#pragma once

#include <string>

#include "VKOndutySchedule.h"
#include "VKSqlStore.h"

namespace vk {

/// When receivers are on duty: rows that belong to a receiver, or to a member of a group.
class SqlReceiverSchedules
{
public:
    explicit SqlReceiverSchedules(SqlStore& store) : m_store(store) {}

    bool Add(VK_ONDUTY_SCHEDULE* schedule);
    bool Modify(const VK_ONDUTY_SCHEDULE& schedule);
    bool Delete(unsigned long id);
    bool DeleteOf(unsigned long ownerId, unsigned long memberId, int memberType);
    bool Get(VK_ONDUTY_SCHEDULE* schedule, unsigned long id);
    /// An archived schedule frees its name.
    bool IsUniqueName(const std::string& name, unsigned long ownerId, unsigned long excludeId);

private:
    SqlStore& m_store;
};

} // namespace vk
