#include "VKconCriticalSection.h"

VKconCriticalSection::VKconCriticalSection() : VKconCriticalSection(new VKconLock, false, false, true) {}

VKconCriticalSection::VKconCriticalSection(VKconLock* lock, bool lockNow, bool unlockOnDestruction, bool ownsLock)
    : m_pLock(lock), m_bOwnsLock(ownsLock), m_bUnlockOnDestruction(unlockOnDestruction)
{
    if (lockNow)
        Enter();
}

VKconCriticalSection::~VKconCriticalSection()
{
    if (m_bUnlockOnDestruction)
        Leave();
    if (m_bOwnsLock)
        delete m_pLock;
    m_pLock = nullptr;
}

bool VKconCriticalSection::Enter() { return m_pLock && m_pLock->Lock() == 0; }

void VKconCriticalSection::Leave()
{
    if (m_pLock)
        m_pLock->Unlock();
}
