#pragma once

#include "VKOndutySchedule.h"
#include "VKReceiverMisc.h"
#include "VKReceiverParts.h"

/// What kind of device a receiver is.
enum VKReceiverType { VKReceiverAlpha = 0, VKReceiverNumeric = 1, VKReceiverTwoWay = 2, VKReceiverFax = 3 };

/// Carriers that stand in carrier_id and have no row of their own.
constexpr unsigned long VK_FAX_CARRIER_ID = 2147483646;
constexpr unsigned long VK_VOICE_CARRIER_ID = 2147483647;

/// One addressable device or person. Texts are zero-terminated UTF-8, sizes in bytes; times are seconds since the
/// epoch. The arrays and texts behind pointers belong to the record (malloc) and go with EmptyReceiver; a record is
/// copied with DuplicateReceiver, never by assignment alone.
struct VK_RECEIVER
{
    unsigned long id = 0;
    char name[51] = {}; ///< unique without regard to case
    char description[101] = {};
    char pin[256] = {}; ///< address on the carrier
    char email[256] = {};
    int type = VKReceiverAlpha;
    bool ldap = false;
    bool two_way = false;
    unsigned long carrier_id = 0;
    unsigned long owner_id = 0;
    unsigned long department_id = 0;
    char bk_pin[41] = {};
    unsigned long bk_carrier_id = 0; ///< 0 for none
    bool voice_enable = false;
    bool disabled = false; ///< read, never written
    long disable_start_date = 0;
    long disable_end_date = 0; ///< 0 or less: open ended
    int time_zone_hr_diff = 0;
    unsigned long time_zone_id = 0;
    int status_code = 0; ///< 1 available; above 1 not available; 2 off duty with cover
    char security_code[11] = {};
    char first_name[26] = {};
    char last_name[26] = {};
    unsigned long forward_to_id = 0; ///< the cover receiver, 0 for none
    bool email_fail_over = false;
    bool email_cc = false;
    bool keep_alpha_for_num_type = false;
    char voice_number[21] = {};
    char forward_to_number[11] = {};
    bool use_alter_carrier = false;
    char ad_code[16] = {};
    char acct_name[21] = {};
    char acct_pwd[33] = {}; ///< clear on the way in, an MD5 digest in the store
    bool can_update_rece = false;
    bool can_update_schd = false;
    bool remedy_flag = false;
    bool advanced_messaging = false;
    int msg_encrypt_opt = 0;
    char* misc_settings = nullptr; ///< JSON, null for none
    bool is_secure = false;

    int dept_rights_count = 0;
    VK_DEPT_RIGHTS* dept_rights = nullptr; ///< guest departments
    int schedule_count = 0;
    VK_ONDUTY_SCHEDULE* schedules = nullptr;
    VK_ADV_MESSAGING* adv_messaging = nullptr; ///< of misc_settings, when it was decoded or is to be stored
    VK_MXP_FIELDS* mxp = nullptr;              ///< likewise
    void* block = nullptr;                     ///< the caller's own (malloc): neither stored nor copied
    unsigned int protocol_id = 0;              ///< of the carrier, when a view joined it
};

/// Receivers in an array that the list owns (malloc).
struct VK_RECEIVER_LIST
{
    int count = 0;
    VK_RECEIVER* list = nullptr;
};

/// Frees what the record owns and clears it.
void EmptyReceiver(VK_RECEIVER* receiver);

/// Makes dst a copy of src with arrays and texts of its own; what dst owned before is freed.
void DuplicateReceiver(VK_RECEIVER* dst, const VK_RECEIVER* src);

/// Adds a copy, with arrays and texts of its own, at the end.
void AddReceiver(VK_RECEIVER_LIST* list, const VK_RECEIVER* receiver);

/// Frees all receivers and the array, and zeroes the list.
void EmptyReceiverList(VK_RECEIVER_LIST* list);

/// Adds a guest department to the receiver.
void AddDeptRights(VK_RECEIVER* receiver, unsigned long departmentId);

namespace vk {

/// The columns of the table in order. A file made by an older version may lack the last ones.
inline constexpr Table kReceiverTable{
    kReceiverName,
    Fields(Field<&VK_RECEIVER::id>("id", PrimaryKey{}),
           Field<&VK_RECEIVER::name>("name", NotNull{}, Indexed{"ix_receiver_name"},
                                     IndexedNoCase{"ix_receiver_name_nocase"}),
           Field<&VK_RECEIVER::description>("description", NotNull{}),
           Field<&VK_RECEIVER::pin>("pin", NotNull{}, IndexedNoCase{"ix_receiver_pin_nocase"}),
           Field<&VK_RECEIVER::email>("email", NotNull{}), Field<&VK_RECEIVER::type>("type"),
           Field<&VK_RECEIVER::ldap>("ldap"), Field<&VK_RECEIVER::two_way>("two_way"),
           Field<&VK_RECEIVER::carrier_id>("carrier_id", Indexed{"ix_receiver_carr_id"}),
           Field<&VK_RECEIVER::owner_id>("owner_id", Indexed{"ix_receiver_owner_id"}),
           Field<&VK_RECEIVER::department_id>("department_id", Indexed{"ix_receiver_dept_id"},
                                              References{kDepartmentTable.name, Reference::RowOrZero}),
           Field<&VK_RECEIVER::bk_pin>("bk_pin", NotNull{}), Field<&VK_RECEIVER::bk_carrier_id>("bk_carrier_id"),
           Field<&VK_RECEIVER::voice_enable>("voice_enable", Indexed{"ix_receiver_voice_enable"}),
           Field<&VK_RECEIVER::disabled>("disabled", NotWritten{}),
           Field<&VK_RECEIVER::disable_start_date>("disable_start_date"),
           Field<&VK_RECEIVER::disable_end_date>("disable_end_date"),
           Field<&VK_RECEIVER::time_zone_hr_diff>("time_zone_hr_diff"),
           Field<&VK_RECEIVER::time_zone_id>("time_zone_id"),
           Field<&VK_RECEIVER::status_code>("status_code", Indexed{"ix_receiver_status_code"}),
           Field<&VK_RECEIVER::security_code>("security_code", NotNull{}, Secret{}),
           Field<&VK_RECEIVER::first_name>("first_name", NotNull{}),
           Field<&VK_RECEIVER::last_name>("last_name", NotNull{}),
           Field<&VK_RECEIVER::forward_to_id>("forward_to_id", Indexed{"ix_receiver_forward_to"}),
           Field<&VK_RECEIVER::email_fail_over>("email_fail_over"), Field<&VK_RECEIVER::email_cc>("email_cc"),
           Field<&VK_RECEIVER::keep_alpha_for_num_type>("keep_alpha_for_num_type"),
           Field<&VK_RECEIVER::voice_number>("voice_number", NotNull{}),
           Field<&VK_RECEIVER::forward_to_number>("forward_to_number", NotNull{}),
           Field<&VK_RECEIVER::use_alter_carrier>("use_alter_carrier"),
           Field<&VK_RECEIVER::ad_code>("ad_code", NotNull{}), Field<&VK_RECEIVER::acct_name>("acct_name", NotNull{}),
           Field<&VK_RECEIVER::acct_pwd>("acct_pwd", NotNull{}, Secret{}),
           Field<&VK_RECEIVER::can_update_rece>("can_update_rece"),
           Field<&VK_RECEIVER::can_update_schd>("can_update_schd"), Field<&VK_RECEIVER::remedy_flag>("remedy_flag"),
           Field<&VK_RECEIVER::advanced_messaging>("advanced_messaging"),
           Field<&VK_RECEIVER::msg_encrypt_opt>("msg_encrypt_opt"),
           Field<&VK_RECEIVER::misc_settings>("misc_settings", Secret{}), Field<&VK_RECEIVER::is_secure>("is_secure"))};

} // namespace vk
