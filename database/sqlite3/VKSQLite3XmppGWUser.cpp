#include "VKSQLite3XmppGWUser.h"

#include "VKSQLite3EntityFile.h"
#include "VKUser.h"

const VKSQLite3TableDesc VKSQLite3XmppGWUser::tTableDesc[1] = {
    {vk::kXmppGWUserTable.name.file, vk::SQLite3Columns<vk::kXmppGWUserTable>()}};

bool VKSQLite3XmppGWUser::Initialize(VKDBsystem* system)
{
    static const VKSQLite3TableDesc kUsers[] = {{vk::kUserTable.name.file, vk::SQLite3Columns<vk::kUserTable>()}};

    vk::OpenEntityFile(*system, {"users.sdb", kUsers, 1});
    auto connection = vk::OpenEntityFile(*system, {"xmpp_gw_users.sdb", tTableDesc, 1});
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit));
    VKDBbaseInterface::Initialize(system);
    return PopulateDefaultUsers();
}
