#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKTableField.h"

/// What a session at the XMPP gateway speaks.
enum VKXmppGWSessionType : int {
    VKXmppGWSessionNone = 0,
    VKXmppGWSessionMXP = 1,
    VKXmppGWSessionXMPP = 2 ///< plain XMPP
};

/// One JID that is logged in at the XMPP gateway. Times are seconds since the epoch.
struct VKXmppGWUserSession
{
    unsigned long id = 0;
    VKXmppGWSessionType type = VKXmppGWSessionNone;
    unsigned long user_id = 0; ///< the receiver
    std::string user_name;
    unsigned long activation_id = 0;
    bool is_suspended = false;
    long created_time = 0; ///< written once
    long suspended_time = 0;
    unsigned long assigned_user_id = 0;
    std::string assigned_user_name;
    bool is_emergency_mode = false;
    std::string user_ip_address;
    std::string user_platform;
    std::string client_name;
    std::string jid;
    std::int32_t login_count = 0;
};

void EmptyXmppGWUserSession(VKXmppGWUserSession* session);
void EmptyXmppGWUserSessionList(std::vector<VKXmppGWUserSession>* sessions);

namespace vk {

inline constexpr Table kUserSessionTable{
    TableName{"xmpp_user_sessions", "xmpp_user_sessions"}, // always a file, whatever stores the entities
    Fields(Field<&VKXmppGWUserSession::id>("id", PrimaryKey{}),
           Field<&VKXmppGWUserSession::type>("type", NotNull{}, DefaultZero{}),
           Field<&VKXmppGWUserSession::user_id>("user_id", NotNull{}, DefaultZero{}),
           Field<&VKXmppGWUserSession::user_name>("user_name", Varchar{50}, NotNull{}),
           Field<&VKXmppGWUserSession::activation_id>("activation_id", NotNull{}, DefaultZero{}),
           Field<&VKXmppGWUserSession::is_suspended>("is_suspended"),
           Field<&VKXmppGWUserSession::created_time>("created_time", WrittenOnce{}),
           Field<&VKXmppGWUserSession::suspended_time>("suspended_time"),
           Field<&VKXmppGWUserSession::assigned_user_id>("assigned_user_id"),
           Field<&VKXmppGWUserSession::assigned_user_name>("assigned_user_name", Varchar{50}, NotNull{}),
           Field<&VKXmppGWUserSession::is_emergency_mode>("is_emergency_mode"),
           Field<&VKXmppGWUserSession::user_ip_address>("user_ip_address", Varchar{20}),
           Field<&VKXmppGWUserSession::user_platform>("user_platform", Varchar{100}),
           Field<&VKXmppGWUserSession::client_name>("client_name", Varchar{100}),
           Field<&VKXmppGWUserSession::jid>("jid", Varchar{256}, NotNull{}),
           Field<&VKXmppGWUserSession::login_count>("login_count", NotNull{}, DefaultZero{}))};

} // namespace vk
