#include "VKDBsystem.h"

#include <cstring>

#include "VKstringPath.h"

bool VKDBsystem::OpenSdb(const std::string& configDir, const std::string& dataRootDir,
                         const VK_DIRECTORY_PATH* directories, VK_QUEUE_DIRECTORY_PATH* queueDirectories, int numQueues,
                         VKsysEventLogInterface* eventLog)
{
    sys_Config_Dir = configDir;
    data_Root_Dir = dataRootDir;
    if (directories != nullptr)
        directory_Pathes = *directories;
    queue_Directory = queueDirectories;
    num_Queues = numQueues;
    event_Log = eventLog;
    db_Type = DbTypeSdb;
    is_Open = true;
    return true;
}

bool VKDBsystem::Close()
{
    is_Open = false;
    rdb_database.reset();
    rdb_database_custom.reset();
    return true;
}

std::string VKDBsystem::GetDataConfigDir() const
{
    return data_Root_Dir.empty() ? sys_Config_Dir : VKstringCreatePath(data_Root_Dir, "config");
}

std::string VKDBsystem::GetStatisticsDir() const
{
    const auto& path = directory_Pathes.stat_dir;
    return std::string(path, strnlen(path, sizeof path));
}
