#pragma once

#include <cstdint>
#include <string>

#include "VKSetting.h"

/// How a mobile client is configured. Goes to the client in a packet, and into the general policy and a receiver's
/// settings as JSON. Only what is present counts.
struct VKMXPClientSettings
{
    /// The alarm for messages of one severity.
    struct Alert
    {
        vk::Setting<std::int32_t> m_objTone;
        vk::Setting<std::int32_t> m_objCounter;
    };

    vk::Setting<bool> m_objAutoLoginAtStart;
    vk::Setting<bool> m_objMasterPasswordEnabled;
    vk::Setting<bool> m_objForcePasswordChange;
    vk::Setting<std::string> m_objPassword;
    vk::Setting<bool> m_objPromptOnForeground;
    vk::Setting<bool> m_objPromptOnNewMessage;
    vk::Setting<bool> m_objOpenMessagesAtLaunch;
    vk::Setting<bool> m_objShowMessageTime;
    vk::Setting<bool> m_objShowMessageJobID;
    vk::Setting<bool> m_objShowMessageProperties;
    vk::Setting<bool> m_objShowMessageOneLine;
    vk::Setting<bool> m_objAutoDelete;
    vk::Setting<bool> m_objSaveSentMessage;
    vk::Setting<std::int32_t> m_objCleanReceivedAfter;
    vk::Setting<std::int32_t> m_objCleanSentAfter;
    vk::Setting<std::int32_t> m_objCleanDraftsAfter;
    Alert m_objNormal;
    Alert m_objImportant;
    Alert m_objWarning;
    Alert m_objCritical;
    Alert m_objEmergency;
};
