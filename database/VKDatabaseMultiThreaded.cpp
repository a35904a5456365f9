#include "VKDatabaseMultiThreaded.h"

#include <vector>

#include "VKconCriticalSection.h"
#include "VKconThread.h"

/// \file
/// Objects are taken out of the map under the lock and deleted after it: closing a file, or a connection to a server that
/// does not answer, may take its time, and other threads need not wait for it.

VKDatabaseMultiThreaded::VKDatabaseMultiThreaded(VKsysEventLogInterface* eventLog, bool multiThreaded)
    : VKDatabase(eventLog, multiThreaded)
{
}

VKDatabaseMultiThreaded::~VKDatabaseMultiThreaded() { VKDatabaseMultiThreaded::resetCache(); }

/// The calling thread's entry, under the lock; makes it when there is none, and lets go then of what ended threads left:
/// that goes to the caller, to be deleted behind the lock.
ThreadDbConn& VKDatabaseMultiThreaded::MyEntry(Threads& ended)
{
    const unsigned long thread = VKconThread::GetMyThreadID();
    const auto found = m_mapThreads.find(thread);
    if (found != m_mapThreads.end())
        return found->second;
    ended = TakeEnded();
    ThreadDbConn& entry = m_mapThreads[thread];
    m_iCount = static_cast<int>(m_mapThreads.size());
    return entry;
}

/// The connection is opened and tested outside the lock: a server that does not answer holds up its own thread only.
/// Nobody but its thread touches an entry while that thread lives.
void VKDatabaseMultiThreaded::preprocessDbSystem()
{
    if (VKDBsystem::db_Type == DbTypeSdb)
        return; // each object holds its own handle
    std::shared_ptr<VKRDBiDatabase>* connection = nullptr;
    {
        Threads ended;
        const vk::ScopedSection held(m_lock);
        connection = &MyEntry(ended).connection;
    }
    System().PrepareThreadConnection(*connection);
}

bool VKDatabaseMultiThreaded::isKeyInCache(const std::string& key)
{
    const vk::ScopedSection held(m_lock);
    const auto found = m_mapThreads.find(VKconThread::GetMyThreadID());
    return found != m_mapThreads.end() && found->second.cache.count(key) != 0;
}

std::unique_ptr<VKDBbaseInterface>* VKDatabaseMultiThreaded::getCacheLine(const std::string& key)
{
    Threads ended;
    const vk::ScopedSection held(m_lock);
    return &MyEntry(ended).cache[key].object;
}

void VKDatabaseMultiThreaded::setCacheLine(const std::string& key, VKDBbaseInterface* object)
{
    Threads ended;
    std::unique_ptr<VKDBbaseInterface> replaced;
    const vk::ScopedSection held(m_lock);
    replaced = Store(MyEntry(ended).cache[key], object);
}

void VKDatabaseMultiThreaded::setCacheLineExpiry(const std::string& key)
{
    Threads ended;
    const vk::ScopedSection held(m_lock);
    Renew(MyEntry(ended).cache[key]);
}

VKDBbaseInterface* VKDatabaseMultiThreaded::TakeFromCache(const std::string& key)
{
    const vk::ScopedSection held(m_lock);
    const auto found = m_mapThreads.find(VKconThread::GetMyThreadID());
    return found == m_mapThreads.end() ? nullptr : Use(found->second.cache, key);
}

void VKDatabaseMultiThreaded::adjustCache()
{
    std::vector<Cache> old;
    const vk::ScopedSection held(m_lock);
    for (auto& [thread, entry] : m_mapThreads)
        old.push_back(TakeOld(entry.cache));
}

void VKDatabaseMultiThreaded::PurgeAllCache(bool onlyEndedThreads)
{
    Threads gone;
    const vk::ScopedSection held(m_lock);
    if (onlyEndedThreads)
        gone = TakeEnded();
    else
        gone.swap(m_mapThreads);
    m_iCount = static_cast<int>(m_mapThreads.size());
}

VKDatabaseMultiThreaded::Threads VKDatabaseMultiThreaded::TakeEnded()
{
    Threads ended;
    for (auto entry = m_mapThreads.begin(); entry != m_mapThreads.end();) {
        const auto next = std::next(entry);
        if (!VKconThread::IsThreadAlive(entry->first))
            ended.insert(m_mapThreads.extract(entry));
        entry = next;
    }
    return ended;
}

void VKDatabaseMultiThreaded::PurgeMyCache()
{
    Threads::node_type gone;
    const vk::ScopedSection held(m_lock);
    gone = m_mapThreads.extract(VKconThread::GetMyThreadID());
    m_iCount = static_cast<int>(m_mapThreads.size());
}

void VKDatabaseMultiThreaded::resetCache() { PurgeAllCache(false); }

int VKDatabaseMultiThreaded::GetThreadCount()
{
    const vk::ScopedSection held(m_lock);
    return m_iCount;
}
