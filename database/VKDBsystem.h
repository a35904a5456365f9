#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "VKDirectoryPath.h"

class VKRDBiDatabase;
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
    /// The start of a relational server: opens the first connection. While something is open already it does nothing.
    /// Throws VKDBexception with the driver's code and words.
    bool OpenDatabase(const std::string& connectString, const std::string& userName, const std::string& userPassword,
                      DbType type, const VK_DIRECTORY_PATH* directories, bool oracle, bool multipleConnections,
                      bool dsn, VKsysEventLogInterface* eventLog);

    bool Close();

    /// A new open connection; null in the file database. Throws VKDBexception.
    std::shared_ptr<VKRDBiDatabase> CreateNewDatabaseInstance();

    /// What the next entity works on: a new connection when there are to be many, else the custom one, which is used
    /// once, else the one that all share.
    std::shared_ptr<VKRDBiDatabase> GetDatabaseInstance();
    void SetCustomDatabaseInstance(std::shared_ptr<VKRDBiDatabase> database);

    /// Gets the calling thread's connection ready for the next entity that the thread makes: opened when there is none,
    /// opened anew when it is dead. Does nothing in the file database, or when each entity opens a connection of its
    /// own. Throws VKDBexception when it cannot be opened.
    void PrepareThreadConnection(std::shared_ptr<VKRDBiDatabase>& connection);

    /// Opens the connection that all share anew when it is dead.
    void ReviveSharedConnection();

    /// How often a statement has found its connection to the server lost, in this process.
    static unsigned long GetLostConnections() { return lost_Connections; }
    static void NoteLostConnection() { ++lost_Connections; }

    VKsysEventLogInterface* GetEventLog() const { return event_Log; }

    /// Where all database files stand: "config" in the data root directory when there is one, else the configuration
    /// directory.
    std::string GetDataConfigDir() const;
    std::string GetStatisticsDir() const;

    /// Nothing to do on this platform.
    void InitializeCOMThread() {}
    void FreeCOMThread() {}

    static inline bool is_Open = false;
    static inline bool isOracle = false;
    static inline bool isDSN = false;
    static inline bool mutiple_Connections = false;
    static inline DbType db_Type = DbTypeNone;
    static inline std::string connect_String;
    static inline std::string user_Name;
    static inline std::string password; ///< never logged
    static inline VKsysEventLogInterface* event_Log = nullptr;
    static inline VK_DIRECTORY_PATH directory_Pathes{};
    static inline std::string sys_Config_Dir;
    static inline std::string data_Root_Dir;
    static inline VK_QUEUE_DIRECTORY_PATH* queue_Directory = nullptr;
    static inline int num_Queues = 0;
    static inline std::shared_ptr<VKRDBiDatabase> rdb_database;
    static inline thread_local std::shared_ptr<VKRDBiDatabase> rdb_database_custom; ///< of the thread that set it

private:
    static inline std::atomic<unsigned long> lost_Connections{0};
};
