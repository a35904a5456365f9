#include "VKMXPClientPermissions.h"

namespace {

using Permission = vk::Flagged<bool> VKMXPClientPermissions::*;

constexpr Permission kPermissions[] = {
    &VKMXPClientPermissions::m_objAccessInbox,    &VKMXPClientPermissions::m_objReceiveMessage,
    &VKMXPClientPermissions::m_objSendMessage,    &VKMXPClientPermissions::m_objQueryMessageStatus,
    &VKMXPClientPermissions::m_objConfirmMessage, &VKMXPClientPermissions::m_objAccessFavorites,
    &VKMXPClientPermissions::m_objQueryReceivers, &VKMXPClientPermissions::m_objAccessResponseActions,
};

} // namespace

void VKMXPClientPermissions::SetPresent(bool present)
{
    for (const Permission permission : kPermissions)
        (this->*permission).present = present;
    m_objSettings.present = present;
}

void VKMXPClientPermissions::SetPerms(bool accessInbox, bool receiveMessage, bool others, std::int32_t settings)
{
    for (const Permission permission : kPermissions)
        (this->*permission).value = others;
    m_objAccessInbox.value = accessInbox;
    m_objReceiveMessage.value = receiveMessage;
    m_objSettings.value = settings;
}
