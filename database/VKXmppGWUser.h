#pragma once

#include <string>

#include "VKTableField.h"

/// Whose account an account at the XMPP gateway is.
enum VKXmppGWUserType : int {
    VKXmppGWUserNone = 0,
    VKXmppGWUserEmergency = 1,
    VKXmppGWUserMXPCarrier = 2,
    VKXmppGWUserNormal = 3,
    VKXmppGWUserXmppGWUser = 4
};

/// An account that may log in to the XMPP gateway.
struct VKXmppGWUser
{
    unsigned long id = 0;
    VKXmppGWUserType type = VKXmppGWUserNone;
    std::string user_id; ///< the login, unique without regard to case
    std::string user_password;
    std::string name;
    std::string nick_name;
    std::string resource;
    std::string ip;         ///< from where it may log in
    long creation_time = 0; ///< seconds since the epoch
    bool enabled = false;
    unsigned long vk_user_id = 0; ///< the server's user who owns it, 0 for none
    bool enable_readonly = false;
    bool enable_hidden = false;
    bool enable_roster = false;
    bool enable_multi_login = false;
    std::string misc_settings;
};

/// An account as lists show it.
struct VKXmppGWUserView
{
    unsigned long id = 0;
    VKXmppGWUserType type = VKXmppGWUserNone;
    std::string user_id;
    std::string name;
    bool enabled = false;
    unsigned long vk_user_id = 0;
    bool enable_readonly = false;
    bool enable_hidden = false;
    std::string vk_user_name; ///< of the server's user, empty when there is none
};

namespace vk {

inline constexpr Table kXmppGWUserTable{
    TableName{"xmpp_user", "VK_XMPP_USER"},
    Fields(Field<&VKXmppGWUser::id>("id", PrimaryKey{}), Field<&VKXmppGWUser::type>("type"),
           Field<&VKXmppGWUser::user_id>("user_id", Varchar{50}, NotNull{}),
           Field<&VKXmppGWUser::user_password>("user_password", Varchar{128}, NotNull{}, Secret{}),
           Field<&VKXmppGWUser::name>("name", Varchar{50}, NotNull{}),
           Field<&VKXmppGWUser::nick_name>("nick_name", Varchar{50}),
           Field<&VKXmppGWUser::resource>("resource", Varchar{50}),
           Field<&VKXmppGWUser::ip>("ip", Varchar{50}, NotNull{}), Field<&VKXmppGWUser::creation_time>("creation_time"),
           Field<&VKXmppGWUser::enabled>("enabled"), Field<&VKXmppGWUser::vk_user_id>("vk_user_id"),
           Field<&VKXmppGWUser::enable_readonly>("enable_readonly"),
           Field<&VKXmppGWUser::enable_hidden>("enable_hidden"), Field<&VKXmppGWUser::enable_roster>("enable_roster"),
           Field<&VKXmppGWUser::enable_multi_login>("enable_multi_login"),
           Field<&VKXmppGWUser::misc_settings>("misc_settings", LongText{}, Secret{}))};

/// The columns of the view's rows in order.
inline constexpr auto kXmppGWUserViewFields = Fields(
    Field<&VKXmppGWUserView::id>("id"), Field<&VKXmppGWUserView::type>("type"),
    Field<&VKXmppGWUserView::user_id>("user_id"), Field<&VKXmppGWUserView::name>("name"),
    Field<&VKXmppGWUserView::enabled>("enabled"), Field<&VKXmppGWUserView::vk_user_id>("vk_user_id"),
    Field<&VKXmppGWUserView::enable_readonly>("enable_readonly"),
    Field<&VKXmppGWUserView::enable_hidden>("enable_hidden"), Field<&VKXmppGWUserView::vk_user_name>("VKUserName"));

} // namespace vk
