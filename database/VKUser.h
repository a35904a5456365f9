#pragma once

#include "VKTableField.h"

/// A user of the server's interfaces. Texts are zero-terminated UTF-8, sizes in bytes; times are seconds since the
/// epoch.
struct VK_USER
{
    unsigned long id = 0;
    char name[51] = {};
    char password[129] = {};
    unsigned long user_group_id = 0; ///< 1 for the administrators
    bool gui = false;
    bool cli = false;
    char ip[51] = {};
    char email[256] = {};
    char description[101] = {};
    bool host_name_as_ip = false;
    char access_code[11] = {};
    int time_zone_hr_diff = 0;
    bool ldap = false;
    bool vardock = false;
    bool ferrox = false;
    long login_time = 0;
    unsigned long time_zone_id = 0;
    bool pwd_encrypted = false;
    bool result_2_email = false;
    long last_pwd_changed_time = 0;
    int user_expiry_state = 0; ///< below 3 active, above 2 expired
};

namespace vk {

inline constexpr Table kUserTable{
    TableName{"user", "VK_USER"},
    Fields(Field<&VK_USER::id>("id", PrimaryKey{}), Field<&VK_USER::name>("name", NotNull{}),
           Field<&VK_USER::password>("password", NotNull{}, Secret{}), Field<&VK_USER::user_group_id>("user_group_id"),
           Field<&VK_USER::gui>("gui"), Field<&VK_USER::cli>("cli"), Field<&VK_USER::ip>("ip", NotNull{}),
           Field<&VK_USER::email>("email", NotNull{}), Field<&VK_USER::description>("description", NotNull{}),
           Field<&VK_USER::host_name_as_ip>("host_name_as_ip"),
           Field<&VK_USER::access_code>("access_code", NotNull{}, Secret{}),
           Field<&VK_USER::time_zone_hr_diff>("time_zone_hr_diff"), Field<&VK_USER::ldap>("ldap"),
           Field<&VK_USER::vardock>("vardock"), Field<&VK_USER::ferrox>("ferrox"),
           Field<&VK_USER::login_time>("login_time"), Field<&VK_USER::time_zone_id>("time_zone_id"),
           Field<&VK_USER::pwd_encrypted>("pwd_encrypted"), Field<&VK_USER::result_2_email>("result_2_email"),
           Field<&VK_USER::last_pwd_changed_time>("last_pwd_changed_time"),
           Field<&VK_USER::user_expiry_state>("user_expiry_state"))};

} // namespace vk
