#pragma once

#include "VKMXPCoreManager.h"
#include "VKconLock.h"

/// The right to log one connection ID in, again, or to end it. A login takes up to half a minute; whoever holds the
/// claim holds none of the core's locks meanwhile. The work thread never waits for a claim, nor does a handler of
/// attachment statuses: for them Held() may be false.
class VKMXPCoreManager::Claim
{
public:
    Claim(VKMXPCoreManager& manager, const std::string& connectionId) : m_manager(manager), m_strId(connectionId)
    {
        std::unique_lock<std::mutex> lock(m_manager.m_mtxClaims);
        const auto free = [this] { return m_manager.m_setClaimed.count(m_strId) == 0; };
        if (!m_manager.OnWorkThread() && !VKMXPConnIface::InStatusHandler())
            m_manager.m_cvClaims.wait(lock, free);
        if (free())
            m_bHeld = m_manager.m_setClaimed.insert(m_strId).second;
    }

    ~Claim()
    {
        if (!m_bHeld)
            return;
        {
            const std::lock_guard<std::mutex> lock(m_manager.m_mtxClaims);
            m_manager.m_setClaimed.erase(m_strId);
        }
        m_manager.m_cvClaims.notify_all();
    }

    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;

    bool Held() const { return m_bHeld; }

private:
    VKMXPCoreManager& m_manager;
    std::string m_strId;
    bool m_bHeld = false;
};

/// The cycle lock for a terminating thread. The work thread, which takes the lock again and again, lets it go first.
class VKMXPCoreManager::CycleHold
{
public:
    explicit CycleHold(VKMXPCoreManager& manager) : m_manager(manager)
    {
        {
            const std::lock_guard<std::mutex> lock(m_manager.m_mtxTurn);
            ++m_manager.m_iCycleWaiters;
        }
        m_manager.m_pobjCycleLock->Lock();
        {
            const std::lock_guard<std::mutex> lock(m_manager.m_mtxTurn);
            --m_manager.m_iCycleWaiters;
        }
        m_manager.m_cvTurn.notify_all();
    }

    ~CycleHold() { m_manager.m_pobjCycleLock->Unlock(); }

    CycleHold(const CycleHold&) = delete;
    CycleHold& operator=(const CycleHold&) = delete;

private:
    VKMXPCoreManager& m_manager;
};

/// A connection that is out of the map and still to be ended; its ID stays claimed until it is gone, so that nobody logs
/// in anew beside it. Without a claim what a handler on the work thread has ended, which may log in anew itself.
struct VKMXPCoreManager::Ended
{
    std::unique_ptr<Claim> pobjClaim;
    std::unique_ptr<VKMXPConnIface> pobjConnection;
};
