#include "VKMXPSessionGlooxImpl.h"

#include <gloox/messagesession.h>

VKMXPSessionGlooxImpl::VKMXPSessionGlooxImpl(const std::string& jid, VKMXPConnIface* connection, VKLogInterface* logger)
    : VKMXPSession(jid, connection, logger)
{
}

void VKMXPSessionGlooxImpl::ResetResource()
{
    if (m_pobjClientLock) {
        const std::lock_guard<std::recursive_mutex> inside(*m_pobjClientLock);
        if (m_pobjMessageSession)
            m_pobjMessageSession->resetResource();
    }
    VKMXPSession::ResetResource();
}
