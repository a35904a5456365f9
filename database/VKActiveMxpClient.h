#pragma once

#include <string>

#include "VKTableField.h"

/// How much a mobile client may do.
enum VKActivationMode : int {
    VKActivationModeNone = 0, ///< in questions: any
    VKActivationModeBasic = 1,
    VKActivationModeAdvanced = 2
};

/// A mobile client that is enrolled with the server. Times are seconds since the epoch.
struct VKActiveMxpClientInfo
{
    unsigned long id = 0;
    std::string activation_key; ///< the client's own credential
    bool is_suspended = false;
    long created_time = 0;
    long suspended_time = 0;
    std::string ip_address;
    std::string platform;
    std::string client_name;
    VKActivationMode active_mode = VKActivationModeBasic;
    bool is_authorized = false;
    std::string activation_user_name; ///< the receiver who enrolled it
};

/// A client as lists show it, with the receiver who enrolled it; the receiver's texts are empty when there is none.
struct VKActiveMxpClientView : VKActiveMxpClientInfo
{
    std::string receiver_name;
    std::string receiver_first_name;
    std::string receiver_last_name;

    /// "name ( first, last )"; empty without a receiver.
    std::string GetShownName() const
    {
        return receiver_name.empty() ? ""
                                     : receiver_name + " ( " + receiver_first_name + ", " + receiver_last_name + " )";
    }
};

namespace vk {

inline constexpr Table kActiveMxpClientTable{
    TableName{"active_mxp_client", "VK_ACTIVE_MXP_CLIENT"},
    Fields(Field<&VKActiveMxpClientInfo::id>("id", PrimaryKey{}),
           Field<&VKActiveMxpClientInfo::activation_key>("activation_key", Varchar{128}, NotNull{}, Secret{}),
           Field<&VKActiveMxpClientInfo::is_suspended>("is_suspended"),
           Field<&VKActiveMxpClientInfo::created_time>("created_time"),
           Field<&VKActiveMxpClientInfo::suspended_time>("suspended_time"),
           Field<&VKActiveMxpClientInfo::ip_address>("ip_address", Varchar{20}),
           Field<&VKActiveMxpClientInfo::platform>("platform", Varchar{100}),
           Field<&VKActiveMxpClientInfo::client_name>("client_name", Varchar{100}),
           Field<&VKActiveMxpClientInfo::active_mode>("active_mode", NotNull{}),
           Field<&VKActiveMxpClientInfo::is_authorized>("is_authorized"),
           Field<&VKActiveMxpClientInfo::activation_user_name>("activation_user_name", Varchar{100}))};

/// What a view's row has behind the table's columns.
inline constexpr auto kActiveMxpClientReceiverFields =
    Fields(Field<&VKActiveMxpClientView::receiver_name>("receiver_name"),
           Field<&VKActiveMxpClientView::receiver_first_name>("receiver_first_name"),
           Field<&VKActiveMxpClientView::receiver_last_name>("receiver_last_name"));

} // namespace vk
