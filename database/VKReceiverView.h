#pragma once

#include "VKTableField.h"

/// A receiver as lists show it, with the names of what it points to. Read only. Texts are zero-terminated UTF-8.
struct VK_RECEIVER_VIEW
{
    unsigned long id = 0;
    char name[51] = {};
    char description[101] = {};
    char pin[256] = {};
    char email[256] = {};
    char first_name[26] = {};
    char last_name[26] = {};
    int type = 0;
    bool two_way = false;
    unsigned long carrier_id = 0;
    char carrier_name[51] = {};   ///< "Fax" and "Voice" for the carriers that have no row
    char special_carrier[6] = {}; ///< "Fax" or "Voice" on one of those two, else empty
    int protocol_id = 0;          ///< of the carrier, 0 when it has no row
    unsigned long owner_id = 0;
    unsigned long department_id = 0;
    char department_name[51] = {};
    int status_code = 0;
    long disable_start_date = 0;
    long disable_end_date = 0;
    unsigned long forward_to_id = 0;
    char forward_to_name[51] = {}; ///< of the cover receiver
    bool advanced_messaging = false;
    bool is_secure = false;
};

/// Views in an array that the list owns (malloc).
struct VK_RECEIVER_VIEW_LIST
{
    int count = 0;
    VK_RECEIVER_VIEW* list = nullptr;
};

void AddReceiverView(VK_RECEIVER_VIEW_LIST* list, const VK_RECEIVER_VIEW* view);
void EmptyReceiverViewList(VK_RECEIVER_VIEW_LIST* list);

/// What a client is told about a receiver's abilities.
struct VKReceProperty
{
    unsigned long id = 0;
    bool two_way = false;
    bool device = false; ///< a mobile client: its carrier speaks MXP
    bool secure = false;
    bool numeric = false; ///< takes digits only
};

namespace vk {

/// Mark: a view's column is this expression; tables stand as "{name}".
struct SelectedAs
{
    const char* expression;
};

inline constexpr auto kReceiverViewFields =
    Fields(Field<&VK_RECEIVER_VIEW::id>("id"), Field<&VK_RECEIVER_VIEW::name>("name"),
           Field<&VK_RECEIVER_VIEW::description>("description"), Field<&VK_RECEIVER_VIEW::pin>("pin"),
           Field<&VK_RECEIVER_VIEW::email>("email"), Field<&VK_RECEIVER_VIEW::first_name>("first_name"),
           Field<&VK_RECEIVER_VIEW::last_name>("last_name"), Field<&VK_RECEIVER_VIEW::type>("type"),
           Field<&VK_RECEIVER_VIEW::two_way>("two_way"), Field<&VK_RECEIVER_VIEW::carrier_id>("carrier_id"),
           Field<&VK_RECEIVER_VIEW::carrier_name>("carrier_name", SelectedAs{"{carrier}.name"}),
           Field<&VK_RECEIVER_VIEW::special_carrier>(
               "special_carrier", SelectedAs{"(CASE WHEN ({receiver}.carrier_id=2147483646) THEN 'Fax' WHEN "
                                             "({receiver}.carrier_id=2147483647) THEN 'Voice' ELSE '' END)"}),
           Field<&VK_RECEIVER_VIEW::protocol_id>("protocol_id", SelectedAs{"{carrier}.protocol_id"}),
           Field<&VK_RECEIVER_VIEW::owner_id>("owner_id"), Field<&VK_RECEIVER_VIEW::department_id>("department_id"),
           Field<&VK_RECEIVER_VIEW::department_name>("department_name", SelectedAs{"{department}.name"}),
           Field<&VK_RECEIVER_VIEW::status_code>("status_code"),
           Field<&VK_RECEIVER_VIEW::disable_start_date>("disable_start_date"),
           Field<&VK_RECEIVER_VIEW::disable_end_date>("disable_end_date"),
           Field<&VK_RECEIVER_VIEW::forward_to_id>("forward_to_id"),
           Field<&VK_RECEIVER_VIEW::forward_to_name>("ForwardToName", SelectedAs{"{ifnull}(Recv2.name, '')"}),
           Field<&VK_RECEIVER_VIEW::advanced_messaging>("advanced_messaging"),
           Field<&VK_RECEIVER_VIEW::is_secure>("is_secure"));

} // namespace vk
