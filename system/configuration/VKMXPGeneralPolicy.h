#pragma once

#include "VKField.h"
#include "VKMXPClientPermissions.h"
#include "VKMXPClientSettings.h"

#include <optional>

/// The settings that all mobile clients are to have, as a packet carries them.
struct VKMXPPolicySettings : VKMXPClientSettings
{
    std::optional<unsigned int> m_optLastUpdated; ///< seconds since the epoch
};

/// What the users of all mobile clients may do, as a packet carries it.
struct VKMXPPolicyPermissions : VKMXPClientPermissions
{
    std::optional<unsigned int> m_optLastUpdated; ///< seconds since the epoch
};

namespace vk {

/// Mark: says when the policy changed, and is nothing that a client could apply.
struct PolicyStamp
{
};

inline constexpr auto kAlertToneFields = Fields(Field<&VKMXPClientSettings::Alert::m_optCounter>("counter"),
                                                Field<&VKMXPClientSettings::Alert::m_optTone>("ringtone"));

inline constexpr auto kPolicySettingsFields = Fields(
    Field<&VKMXPPolicySettings::m_optMasterPasswordEnabled>("master_pswrd_enabled"),
    Field<&VKMXPPolicySettings::m_optForcePasswordChange>("force_pswrd_change"),
    Field<&VKMXPPolicySettings::m_optPassword>("master_pswrd"),
    Field<&VKMXPPolicySettings::m_optPromptOnForeground>("prompt_for_fg"),
    Field<&VKMXPPolicySettings::m_optPromptOnNewMessage>("prompt_on_new_msg"),
    Field<&VKMXPPolicySettings::m_optOpenMessagesAtLaunch>("open_msg_at_start"),
    Field<&VKMXPPolicySettings::m_optAutoLoginAtStart>("auto_login"),
    Field<&VKMXPPolicySettings::m_optShowMessageTime>("show_time"),
    Field<&VKMXPPolicySettings::m_optShowMessageJobID>("show_jobid"),
    Field<&VKMXPPolicySettings::m_optShowMessageProperties>("show_msg_info"),
    Field<&VKMXPPolicySettings::m_optShowMessageOneLine>("one_line"),
    Field<&VKMXPPolicySettings::m_optAutoDelete>("auto_del"),
    Field<&VKMXPPolicySettings::m_optSaveSentMessage>("save_sent"),
    Field<&VKMXPPolicySettings::m_optCleanReceivedAfter>("clean_inbox"),
    Field<&VKMXPPolicySettings::m_optCleanSentAfter>("clean_sent"),
    Field<&VKMXPPolicySettings::m_optCleanDraftsAfter>("clean_draft"),
    Field<&VKMXPPolicySettings::m_objNormal>("alert_norm"), Field<&VKMXPPolicySettings::m_objImportant>("alert_imp"),
    Field<&VKMXPPolicySettings::m_objWarning>("alert_warn"), Field<&VKMXPPolicySettings::m_objCritical>("alert_crit"),
    Field<&VKMXPPolicySettings::m_objEmergency>("alert_emer"),
    Field<&VKMXPPolicySettings::m_optLastUpdated>("last_updated", PolicyStamp{}));

inline constexpr auto kPolicyPermissionsFields =
    Fields(Field<&VKMXPPolicyPermissions::m_optAccessInbox>("view_msg"),
           Field<&VKMXPPolicyPermissions::m_optReceiveMessage>("receive_msg"),
           Field<&VKMXPPolicyPermissions::m_optSendMessage>("send_msg"),
           Field<&VKMXPPolicyPermissions::m_optQueryMessageStatus>("query_msg"),
           Field<&VKMXPPolicyPermissions::m_optConfirmMessage>("confirm_reject"),
           Field<&VKMXPPolicyPermissions::m_optAccessFavorites>("favourites"),
           Field<&VKMXPPolicyPermissions::m_optQueryReceivers>("query_receiver"),
           Field<&VKMXPPolicyPermissions::m_optAccessResponseActions>("response_actions"),
           Field<&VKMXPPolicyPermissions::m_optSettings>("settings"),
           Field<&VKMXPPolicyPermissions::m_optLastUpdated>("last_updated", PolicyStamp{}));

} // namespace vk
