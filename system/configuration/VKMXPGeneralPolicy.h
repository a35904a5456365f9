#pragma once

#include "VKField.h"

#include <optional>
#include <string>

/// How a client signals a message of one severity.
struct VKMXPAlertTone
{
    std::optional<unsigned int> counter;
    std::optional<unsigned int> ringtone;
};

/// The settings that all mobile clients are to have. What is not present is not to be changed on the client.
struct VKMXPPolicySettings
{
    std::optional<bool> master_pswrd_enabled;
    std::optional<bool> force_pswrd_change;
    std::optional<std::string> master_pswrd;
    std::optional<bool> prompt_for_fg; ///< when the client comes to the foreground
    std::optional<bool> prompt_on_new_msg;
    std::optional<bool> open_msg_at_start;
    std::optional<bool> auto_login;
    std::optional<bool> show_time;
    std::optional<bool> show_jobid;
    std::optional<bool> show_msg_info;
    std::optional<bool> one_line;
    std::optional<bool> auto_del;
    std::optional<bool> save_sent;
    std::optional<unsigned int> clean_inbox;
    std::optional<unsigned int> clean_sent;
    std::optional<unsigned int> clean_draft;
    VKMXPAlertTone alert_norm;
    VKMXPAlertTone alert_imp;
    VKMXPAlertTone alert_warn;
    VKMXPAlertTone alert_crit;
    VKMXPAlertTone alert_emer;
    std::optional<unsigned int> last_updated; ///< seconds since the epoch
};

/// What the users of all mobile clients may do.
struct VKMXPPolicyPermissions
{
    std::optional<bool> view_msg;
    std::optional<bool> receive_msg;
    std::optional<bool> send_msg;
    std::optional<bool> query_msg;
    std::optional<bool> confirm_reject;
    std::optional<bool> favourites;
    std::optional<bool> query_receiver;
    std::optional<bool> response_actions;
    std::optional<unsigned int> settings;
    std::optional<unsigned int> last_updated; ///< seconds since the epoch
};

namespace vk {

/// Mark: says when the policy changed, and is nothing that a client could apply.
struct PolicyStamp
{
};

inline constexpr auto kAlertToneFields = Fields(Field<&VKMXPAlertTone::counter>("counter"),
                                                Field<&VKMXPAlertTone::ringtone>("ringtone"));

inline constexpr auto kPolicySettingsFields = Fields(
    Field<&VKMXPPolicySettings::master_pswrd_enabled>("master_pswrd_enabled"),
    Field<&VKMXPPolicySettings::force_pswrd_change>("force_pswrd_change"),
    Field<&VKMXPPolicySettings::master_pswrd>("master_pswrd"),
    Field<&VKMXPPolicySettings::prompt_for_fg>("prompt_for_fg"),
    Field<&VKMXPPolicySettings::prompt_on_new_msg>("prompt_on_new_msg"),
    Field<&VKMXPPolicySettings::open_msg_at_start>("open_msg_at_start"),
    Field<&VKMXPPolicySettings::auto_login>("auto_login"), Field<&VKMXPPolicySettings::show_time>("show_time"),
    Field<&VKMXPPolicySettings::show_jobid>("show_jobid"), Field<&VKMXPPolicySettings::show_msg_info>("show_msg_info"),
    Field<&VKMXPPolicySettings::one_line>("one_line"), Field<&VKMXPPolicySettings::auto_del>("auto_del"),
    Field<&VKMXPPolicySettings::save_sent>("save_sent"), Field<&VKMXPPolicySettings::clean_inbox>("clean_inbox"),
    Field<&VKMXPPolicySettings::clean_sent>("clean_sent"), Field<&VKMXPPolicySettings::clean_draft>("clean_draft"),
    Field<&VKMXPPolicySettings::alert_norm>("alert_norm"), Field<&VKMXPPolicySettings::alert_imp>("alert_imp"),
    Field<&VKMXPPolicySettings::alert_warn>("alert_warn"), Field<&VKMXPPolicySettings::alert_crit>("alert_crit"),
    Field<&VKMXPPolicySettings::alert_emer>("alert_emer"),
    Field<&VKMXPPolicySettings::last_updated>("last_updated", PolicyStamp{}));

inline constexpr auto kPolicyPermissionsFields = Fields(
    Field<&VKMXPPolicyPermissions::view_msg>("view_msg"), Field<&VKMXPPolicyPermissions::receive_msg>("receive_msg"),
    Field<&VKMXPPolicyPermissions::send_msg>("send_msg"), Field<&VKMXPPolicyPermissions::query_msg>("query_msg"),
    Field<&VKMXPPolicyPermissions::confirm_reject>("confirm_reject"),
    Field<&VKMXPPolicyPermissions::favourites>("favourites"),
    Field<&VKMXPPolicyPermissions::query_receiver>("query_receiver"),
    Field<&VKMXPPolicyPermissions::response_actions>("response_actions"),
    Field<&VKMXPPolicyPermissions::settings>("settings"),
    Field<&VKMXPPolicyPermissions::last_updated>("last_updated", PolicyStamp{}));

} // namespace vk
