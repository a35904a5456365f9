#pragma once

#include "ThreadDbConn.h"
#include "VKDatabase.h"
#include "VKconLock.h"

/// The database for many threads: each has a cache of its own, so that an entity object is used by one thread only. The
/// objects of a thread that has ended go when another thread comes new, or at the next PurgeAllCache(true); those of a
/// living thread only when they were not used for their time. All operations may be called from any thread.
class VKDatabaseMultiThreaded : public VKDatabase
{
public:
    ~VKDatabaseMultiThreaded() override;

    void preprocessDbSystem() override;
    void resetCache() override;
    void adjustCache() override;
    bool isKeyInCache(const std::string& key) override;
    std::unique_ptr<VKDBbaseInterface>* getCacheLine(const std::string& key) override;
    void setCacheLine(const std::string& key, VKDBbaseInterface* object) override;
    void setCacheLineExpiry(const std::string& key) override;
    void PurgeAllCache(bool onlyEndedThreads) override;
    void PurgeMyCache() override;

    /// How many threads have a cache.
    int GetThreadCount();

protected:
    friend class VKDatabase;
    VKDatabaseMultiThreaded(VKsysEventLogInterface* eventLog, bool multiThreaded);

    VKDBbaseInterface* TakeFromCache(const std::string& key) override;

private:
    using Threads = std::map<unsigned long, ThreadDbConn>;

    ThreadDbConn& MyEntry(Threads& ended);
    Threads TakeEnded();

    Threads m_mapThreads; ///< guarded by m_lock
    int m_iCount = 0;     ///< guarded by m_lock
    VKconLock m_lock;
};
