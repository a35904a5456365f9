#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// How a mobile client is configured. Goes to the client in a packet, and into the general policy and a receiver's
/// settings as JSON. Only what is present counts.
struct VKMXPClientSettings
{
    /// The alarm for messages of one severity.
    struct Alert
    {
        std::optional<std::int32_t> m_optTone;
        std::optional<std::int32_t> m_optCounter;
    };

    std::optional<bool> m_optAutoLoginAtStart;
    std::optional<bool> m_optMasterPasswordEnabled;
    std::optional<bool> m_optForcePasswordChange;
    std::optional<std::string> m_optPassword;
    std::optional<bool> m_optPromptOnForeground;
    std::optional<bool> m_optPromptOnNewMessage;
    std::optional<bool> m_optOpenMessagesAtLaunch;
    std::optional<bool> m_optShowMessageTime;
    std::optional<bool> m_optShowMessageJobID;
    std::optional<bool> m_optShowMessageProperties;
    std::optional<bool> m_optShowMessageOneLine;
    std::optional<bool> m_optAutoDelete;
    std::optional<bool> m_optSaveSentMessage;
    std::optional<std::int32_t> m_optCleanReceivedAfter;
    std::optional<std::int32_t> m_optCleanSentAfter;
    std::optional<std::int32_t> m_optCleanDraftsAfter;
    Alert m_objNormal;
    Alert m_objImportant;
    Alert m_objWarning;
    Alert m_objCritical;
    Alert m_objEmergency;
};
