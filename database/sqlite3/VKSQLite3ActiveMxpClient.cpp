#include "VKSQLite3ActiveMxpClient.h"

#include "VKSQLite3EntityFile.h"
#include "VKSQLite3Receiver.h"

const VKSQLite3TableDesc VKSQLite3ActiveMxpClient::tTableDesc[1] = {
    {vk::kActiveMxpClientTable.name.file, vk::SQLite3Columns<vk::kActiveMxpClientTable>()}};

bool VKSQLite3ActiveMxpClient::Initialize(VKDBsystem* system)
{
    VKSQLite3Receiver().Initialize(system);
    auto connection = vk::OpenEntityFile(*system, {"active_mxp_clients.sdb", tTableDesc, 1});
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
