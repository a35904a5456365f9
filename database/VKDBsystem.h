#pragma once

#include <string>

#include "VKDirectoryPath.h"

class VKsysEventLogInterface;

/// Which database stores the entities.
enum DbType : int {
    DbTypeNone = 0,
    DbTypeSdb = 1, ///< SQLite, one file an entity family
    DbTypeOdbc = 2 ///< a relational server
};

/// What the entities need to know of the system they run in. All of it is shared by the whole process: every object of
/// this class shows the same. Set up by one thread before others use it.
class VKDBsystem
{
public:
    /// The start of the file database: keeps the values. No file is opened here, each entity opens its own. The block
    /// of directories is copied (null: left as it is); the queue directories and the logger stay the caller's.
    bool OpenSdb(const std::string& configDir, const std::string& dataRootDir, const VK_DIRECTORY_PATH* directories,
                 VK_QUEUE_DIRECTORY_PATH* queueDirectories, int numQueues, VKsysEventLogInterface* eventLog);
    bool Close();

    VKsysEventLogInterface* GetEventLog() const { return event_Log; }

    /// Where all database files stand: "config" in the data root directory when there is one, else the configuration
    /// directory.
    std::string GetDataConfigDir() const;
    std::string GetStatisticsDir() const;

    /// Nothing to do on this platform.
    void InitializeCOMThread() {}
    void FreeCOMThread() {}

    static inline bool is_Open = false;
    static inline DbType db_Type = DbTypeNone;
    static inline VKsysEventLogInterface* event_Log = nullptr;
    static inline VK_DIRECTORY_PATH directory_Pathes{};
    static inline std::string sys_Config_Dir;
    static inline std::string data_Root_Dir;
    static inline VK_QUEUE_DIRECTORY_PATH* queue_Directory = nullptr;
    static inline int num_Queues = 0;
};
