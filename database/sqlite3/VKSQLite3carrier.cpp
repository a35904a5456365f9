#include "VKSQLite3carrier.h"

#include "VKSQLite3EntityFile.h"

const VKSQLite3TableDesc VKSQLite3carrier::tTableDesc[1] = {
    {vk::kCarrierTable.name.file, vk::SQLite3Columns<vk::kCarrierTable>()}};

bool VKSQLite3carrier::Initialize(VKDBsystem* system)
{
    auto connection = vk::OpenEntityFile(*system, {"carriers.sdb", tTableDesc, 1});
    vk::AddMissingColumns(*connection, vk::kCarrierTable, "The Carrier table could not be accessed.");
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
