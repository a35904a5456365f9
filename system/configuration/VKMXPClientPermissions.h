#pragma once

#include <cstdint>
#include <optional>

/// What a mobile client may do. Goes to the client in a packet, and into the general policy and a receiver's settings
/// as JSON. Only what is present counts.
struct VKMXPClientPermissions
{
    std::optional<bool> m_optAccessInbox;
    std::optional<bool> m_optReceiveMessage;
    std::optional<bool> m_optSendMessage;
    std::optional<bool> m_optQueryMessageStatus;
    std::optional<bool> m_optConfirmMessage;
    std::optional<bool> m_optAccessFavorites;
    std::optional<bool> m_optQueryReceivers;
    std::optional<bool> m_optAccessResponseActions;
    std::optional<std::int32_t> m_optSettings;

    void SetFullPerms() { SetPerms(true, true, true, 0); }
    void SetLeastPerms() { SetPerms(true, false, false, 4); }
    void SetEmergencyPerms() { SetPerms(true, true, false, 0); }

    /// All nine, all of them present.
    void SetPerms(bool accessInbox, bool receiveMessage, bool others, std::int32_t settings);
};
