#pragma once

#include <cstdint>
#include <string>

#include "VKFlagged.h"

/// How a mobile client is configured. Goes to the client in a packet, and into the general policy and a receiver's
/// settings as JSON. Only what is present counts.
struct VKMXPClientSettings
{
    /// The alarm for messages of one severity.
    struct Alert
    {
        vk::Flagged<std::int32_t> m_objTone;
        vk::Flagged<std::int32_t> m_objCounter;
    };

    vk::Flagged<bool> m_objAutoLoginAtStart;
    vk::Flagged<bool> m_objMasterPasswordEnabled;
    vk::Flagged<bool> m_objForcePasswordChange;
    vk::Flagged<std::string> m_objPassword;
    vk::Flagged<bool> m_objPromptOnForeground;
    vk::Flagged<bool> m_objPromptOnNewMessage;
    vk::Flagged<bool> m_objOpenMessagesAtLaunch;
    vk::Flagged<bool> m_objShowMessageTime;
    vk::Flagged<bool> m_objShowMessageJobID;
    vk::Flagged<bool> m_objShowMessageProperties;
    vk::Flagged<bool> m_objShowMessageOneLine;
    vk::Flagged<bool> m_objAutoDelete;
    vk::Flagged<bool> m_objSaveSentMessage;
    vk::Flagged<std::int32_t> m_objCleanReceivedAfter;
    vk::Flagged<std::int32_t> m_objCleanSentAfter;
    vk::Flagged<std::int32_t> m_objCleanDraftsAfter;
    Alert m_objNormal;
    Alert m_objImportant;
    Alert m_objWarning;
    Alert m_objCritical;
    Alert m_objEmergency;
};
