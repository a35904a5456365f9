#include "VKSQLite3Receiver.h"

#include "VKSQLite3EntityFile.h"

namespace {

template <const auto& kTable> VKSQLite3TableDesc Description()
{
    return {kTable.name.file, vk::SQLite3Columns<kTable>()};
}

constexpr vk::SQLite3Index kIndexes[] = {{"ix_receiver_name", "receiver", "name"},
                                         {"ix_receiver_dept_id", "receiver", "department_id"},
                                         {"ix_receiver_carr_id", "receiver", "carrier_id"},
                                         {"ix_receiver_owner_id", "receiver", "owner_id"},
                                         {"ix_receiver_voice_enable", "receiver", "voice_enable"},
                                         {"ix_receiver_status_code", "receiver", "status_code"},
                                         {"ix_receiver_forward_to", "receiver", "forward_to_id"},
                                         {"ix_rcvrdept_owner_id", "receiver_dept", "owner_id"},
                                         {"ix_rcvrdept_dept_id", "receiver_dept", "department_id"},
                                         {"ix_rcvrschd_owner_id", "receiver_schd", "owner_id"},
                                         {"ix_rcvrschd_name", "receiver_schd", "name"},
                                         {"ix_rcvrschd_archived", "receiver_schd", "archived"}};

} // namespace

const VKSQLite3TableDesc VKSQLite3Receiver::tTableDesc[6] = {
    Description<vk::kReceiverTable>(),         Description<vk::kReceiverDeptTable>(),
    Description<vk::kReceiverScheduleTable>(), Description<vk::kDisableHistoryTable>(),
    Description<vk::kAttributeTable>(),        Description<vk::kReceiverAttributeTable>()};

bool VKSQLite3Receiver::Initialize(VKDBsystem* system)
{
    auto connection = vk::OpenEntityFile(*system, {"receivers.sdb", tTableDesc, 6});
    vk::AddMissingColumns(*connection, vk::kReceiverTable, "The Receiver table could not be accessed.");
    vk::CreateIndexes(*connection, kIndexes, std::size(kIndexes));
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit, kReadLimit));
    return VKDBbaseInterface::Initialize(system);
}
