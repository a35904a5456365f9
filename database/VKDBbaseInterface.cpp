#include "VKDBbaseInterface.h"

#include "VKDBsystem.h"

bool VKDBbaseInterface::Initialize(VKDBsystem* system)
{
    m_pDbSystem = system;
    m_bInitialized = true;
    m_uLostConnections = VKDBsystem::GetLostConnections();
    return true;
}

bool VKDBbaseInterface::IsConnectionStale() const
{
    return VKDBsystem::db_Type == DbTypeOdbc && m_uLostConnections != VKDBsystem::GetLostConnections();
}
