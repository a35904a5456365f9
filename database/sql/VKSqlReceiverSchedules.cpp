#include "VKSqlReceiverSchedules.h"

#include "VKTableRow.h"

namespace vk {

namespace {

constexpr const auto& kTable = kReceiverScheduleTable;

} // namespace

bool SqlReceiverSchedules::Add(VK_ONDUTY_SCHEDULE* schedule)
{
    schedule->id = m_store.Exclusive([&] { return m_store.InsertRow(kTable, *schedule); });
    return true;
}

bool SqlReceiverSchedules::Modify(const VK_ONDUTY_SCHEDULE& schedule)
{
    return m_store.Exclusive([&] { return m_store.UpdateRow(kTable, schedule); }) > 0;
}

bool SqlReceiverSchedules::Delete(unsigned long id)
{
    return m_store.Exclusive([&] { return m_store.Update("DELETE FROM {} WHERE id={}", kTable.name, id); }) > 0;
}

bool SqlReceiverSchedules::DeleteOf(unsigned long ownerId, unsigned long memberId, int memberType)
{
    return m_store.Exclusive([&] {
        return m_store.Update("DELETE FROM {} WHERE owner_id={} AND member_id={} AND member_type={}", kTable.name,
                              ownerId, memberId, memberType);
    }) > 0;
}

bool SqlReceiverSchedules::Get(VK_ONDUTY_SCHEDULE* schedule, unsigned long id)
{
    *schedule = VK_ONDUTY_SCHEDULE{};
    const auto rows = m_store.Shared([&] { return m_store.Select("SELECT * FROM {} WHERE id={}", kTable.name, id); });
    if (rows->GetReturnedRowsCount() == 0)
        return false;
    ReadRow(kTable.fields, (*rows)[0], *schedule);
    return true;
}

bool SqlReceiverSchedules::IsUniqueName(const std::string& name, unsigned long ownerId, unsigned long excludeId)
{
    const SqlRaw same{m_store.Dialect().EqualsNoCase("name", name)};
    const auto rows = m_store.Shared([&] {
        return m_store.Select("SELECT id FROM {} WHERE {} AND owner_id={} AND archived=0 AND id<>{}", kTable.name, same,
                              ownerId, excludeId);
    });
    return rows->GetReturnedRowsCount() == 0;
}

} // namespace vk
