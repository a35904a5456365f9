#include "VKSQLite3Department.h"

#include "VKSQLite3EntityFile.h"

const VKSQLite3TableDesc VKSQLite3Department::tTableDesc[1] = {
    {vk::kDepartmentTable.name.file, vk::SQLite3Columns<vk::kDepartmentTable>()}};

bool VKSQLite3Department::Initialize(VKDBsystem* system)
{
    auto connection = vk::OpenEntityFile(*system, {"departments.sdb", tTableDesc, 1});
    vk::CreateIndexes(*connection, vk::kDepartmentTable);
    UseStore(std::make_unique<vk::SqlStore>(std::move(connection), kStatementLimit));
    return VKDBbaseInterface::Initialize(system);
}
