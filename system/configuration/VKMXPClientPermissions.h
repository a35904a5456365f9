#pragma once

#include <cstdint>

#include "VKFlagged.h"

/// What a mobile client may do. Goes to the client in a packet, and into the general policy and a receiver's settings
/// as JSON. Only what is present counts.
struct VKMXPClientPermissions
{
    vk::Flagged<bool> m_objAccessInbox;
    vk::Flagged<bool> m_objReceiveMessage;
    vk::Flagged<bool> m_objSendMessage;
    vk::Flagged<bool> m_objQueryMessageStatus;
    vk::Flagged<bool> m_objConfirmMessage;
    vk::Flagged<bool> m_objAccessFavorites;
    vk::Flagged<bool> m_objQueryReceivers;
    vk::Flagged<bool> m_objAccessResponseActions;
    vk::Flagged<std::int32_t> m_objSettings;

    void SetFullPerms() { SetPerms(true, true, true, 0); }
    void SetLeastPerms() { SetPerms(true, false, false, 4); }
    void SetEmergencyPerms() { SetPerms(true, true, false, 0); }

    void SetPresent(bool present); ///< all of them; the values stay

private:
    void SetPerms(bool accessInbox, bool receiveMessage, bool others, std::int32_t settings);
};
