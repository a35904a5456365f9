#pragma once

#include <cstdint>

#include "VKSetting.h"

/// What a mobile client may do. Goes to the client in a packet, and into the general policy and a receiver's settings
/// as JSON. Only what is present counts.
struct VKMXPClientPermissions
{
    vk::Setting<bool> m_objAccessInbox;
    vk::Setting<bool> m_objReceiveMessage;
    vk::Setting<bool> m_objSendMessage;
    vk::Setting<bool> m_objQueryMessageStatus;
    vk::Setting<bool> m_objConfirmMessage;
    vk::Setting<bool> m_objAccessFavorites;
    vk::Setting<bool> m_objQueryReceivers;
    vk::Setting<bool> m_objAccessResponseActions;
    vk::Setting<std::int32_t> m_objSettings;

    void SetFullPerms() { SetPerms(true, true, true, 0); }
    void SetLeastPerms() { SetPerms(true, false, false, 4); }
    void SetEmergencyPerms() { SetPerms(true, true, false, 0); }

    void SetPresent(bool present); ///< all of them; the values stay

private:
    void SetPerms(bool accessInbox, bool receiveMessage, bool others, std::int32_t settings);
};
