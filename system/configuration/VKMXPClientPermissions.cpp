#include "VKMXPClientPermissions.h"

void VKMXPClientPermissions::SetPerms(bool accessInbox, bool receiveMessage, bool others, std::int32_t settings)
{
    m_optAccessInbox = accessInbox;
    m_optReceiveMessage = receiveMessage;
    m_optSendMessage = others;
    m_optQueryMessageStatus = others;
    m_optConfirmMessage = others;
    m_optAccessFavorites = others;
    m_optQueryReceivers = others;
    m_optAccessResponseActions = others;
    m_optSettings = settings;
}
