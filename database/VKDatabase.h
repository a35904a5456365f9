#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "CacheLine.h"
#include "VKDBsystem.h"

class VKConfiguration;
class VKDBiActiveMxpClient;
class VKDBiDepartment;
class VKDBiMessageQueue;
class VKDBiCarrier;
class VKDBiReceiver;
class VKDBiReceiverView;
class VKDBiXmppGWUser;
class VKsysEventLogInterface;

/// The database of the process: hands out entity objects, which stay its own, and keeps them so that the opening of a
/// file is paid once. A caller uses an object at once and asks again next time; it never deletes it. Who wants an
/// object of his own calls the entity's CreateInstance.
///
/// This class serves one thread; VKDatabaseMultiThreaded serves many. The state of opening and the last error may be
/// read from any thread in both.
class VKDatabase
{
public:
    /// The one database of the process, made and opened on the first call of either; the first caller decides which
    /// class it is. The logger stays the caller's, and may be null.
    static VKDatabase* getVKDatabase(VKsysEventLogInterface* eventLog, bool multiThreaded);
    static VKDatabase* getVKMultiThreadedDatabase(VKsysEventLogInterface* eventLog, bool multiThreaded);

    virtual ~VKDatabase();
    VKDatabase(const VKDatabase&) = delete;
    VKDatabase& operator=(const VKDatabase&) = delete;

    /// Gets ready what the next entity object works on: a connection to a relational server that was lost is opened
    /// anew. In the file database each object holds its own handle, and there is nothing to do.
    virtual void preprocessDbSystem();

    // The cache. A line lives 1800 seconds from its last store or setCacheLineExpiry; until adjustCache removes it, an
    // expired line still counts. All work on the calling thread's lines where threads have their own.

    /// Deletes all objects of all threads.
    virtual void resetCache();
    /// Deletes the lines that are expired or empty. Call it from time to time.
    virtual void adjustCache();
    virtual bool isKeyInCache(const std::string& key);
    /// The object of a line, which is made, empty, when it is not there.
    virtual std::unique_ptr<VKDBbaseInterface>* getCacheLine(const std::string& key);
    /// Stores an object, which becomes the cache's own; storing the same again only renews its time.
    virtual void setCacheLine(const std::string& key, VKDBbaseInterface* object);
    virtual void setCacheLineExpiry(const std::string& key);
    /// Deletes what belongs to threads that have ended, or everything.
    virtual void PurgeAllCache(bool onlyEndedThreads);
    /// Deletes what belongs to the calling thread.
    virtual void PurgeMyCache();

    /// Opens what the data source settings name, closing first when it is open. False leaves the reason in
    /// getLastErrorString; every factory operation tries again.
    bool openDatabase();
    bool closeDatabase();
    bool isReady() const { return m_bReady; }
    /// Null while not ready.
    VKDBsystem* getDBSystemObject();
    std::string getLastErrorString() const;
    bool isErrorOccured() const { return !getLastErrorString().empty(); }

    // The factory: null when the database or the entity's file cannot be opened, with the reason in getLastErrorString.
    VKDBiDepartment* getVKDBiDepartmentObject();
    VKDBiReceiver* getVKDBiReceiverObject();
    VKDBiReceiverView* getVKDBiReceiverViewObject();
    VKDBiCarrier* getVKDBiCarrierObject();
    VKDBiXmppGWUser* getVKDBiXmppGWUserObject();
    VKDBiActiveMxpClient* getVKDBiActiveMxpClientObject();
    /// One for each queue number, or for each queue number and service.
    VKDBiMessageQueue* getVKDBiMessageQueueObject(int queueNumber);
    VKDBiMessageQueue* getVKDBiMessageQueueObject(int queueNumber, const std::string& serviceName);

protected:
    VKDatabase(VKsysEventLogInterface* eventLog, bool multiThreaded);

    using Cache = std::map<std::string, CacheLine>;

    VKDBsystem& System() { return m_dbSystem; }

    /// The time that expiry is counted in.
    virtual time_t Now() const;

    /// The object of a line, its time renewed; null when there is none. One step, so that adjustCache on another thread
    /// cannot take an expired line away in between.
    virtual VKDBbaseInterface* TakeFromCache(const std::string& key);

    /// Puts an object into a line; gives back the one that it replaces, for deletion outside any lock.
    std::unique_ptr<VKDBbaseInterface> Store(CacheLine& line, VKDBbaseInterface* object) const;
    void Renew(CacheLine& line) const;
    VKDBbaseInterface* Use(Cache& cache, const std::string& key) const;
    /// Takes the lines that are expired or empty out of a cache and gives them back, for deletion outside any lock.
    Cache TakeOld(Cache& cache) const;

private:
    template <class Entity, class... Keys> Entity* ObjectOf(const std::string& key, const Keys&... keys);
    bool OpenLocked();
    void OpenSource(VKConfiguration& configuration);
    bool EnsureOpen();
    void SetLastError(const std::string& text);

    template <class Database> static VKDatabase* Instance(VKsysEventLogInterface* eventLog, bool multiThreaded);

    static VKDatabase* me; ///< lives until the host deletes it; guarded by a lock of its own in the source

    VKDBsystem m_dbSystem;
    std::atomic<bool> m_bReady{false};
    const bool m_bMultiThreaded; ///< a relational store would open a connection for each thread
    std::string m_strLastError;  ///< guarded by m_errorLock
    VKsysEventLogInterface* m_pEventLog;
    Cache m_cache;
    std::mutex m_openLock; ///< one thread opens or closes
    mutable std::mutex m_errorLock;
};
