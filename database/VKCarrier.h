#pragma once

#include "VKTableField.h"

/// Protocols of carriers that something here looks at.
enum VKCarrierProtocol : int {
    VKProtocolVoip = 27,
    VKProtocolOaiOneWay = 28,
    VKProtocolOaiTwoWay = 29,
    VKProtocolXmpp = 33,
    VKProtocolMxpOneWay = 34,
    VKProtocolMxpTwoWay = 35
};

constexpr bool IsMxpProtocol(int protocolId)
{
    return protocolId == VKProtocolMxpOneWay || protocolId == VKProtocolMxpTwoWay;
}

/// A messaging service that is reached by one protocol. The text behind the pointer belongs to the record (malloc) and
/// goes with EmptyCarrier. Texts are zero-terminated UTF-8.
struct VK_CARRIER
{
    unsigned long id = 0;
    char name[51] = {};
    char description[101] = {};
    int protocol_id = 0;
    int queue_id = 0;
    bool split_long_msg = false;
    bool truncate_long_msg = false;
    bool disabled = false;
    int max_msg_len = 0;
    int max_combined_len = 0;
    int max_retry = 0;
    int expiration = 0;
    unsigned long backup_carrier_id_1 = 0;
    unsigned long backup_carrier_id_2 = 0;
    int num_prefix_digits = 0;
    int num_postfix_digits = 0;
    char pin_template[21] = {}; ///< what PINs look like, as ValidatePinAgainstPinTemplate reads it
    bool auto_carr_update = false;
    double carr_update_version = 0;
    char* carrier_data = nullptr; ///< JSON of the protocol's own settings
    int has_num_scheme = 0;
};

/// Frees what the record owns and clears it.
void EmptyCarrier(VK_CARRIER* carrier);

namespace vk {

inline constexpr Table kCarrierTable{
    TableName{"carrier", "VK_CARRIER"},
    Fields(Field<&VK_CARRIER::id>("id", PrimaryKey{}), Field<&VK_CARRIER::name>("name"),
           Field<&VK_CARRIER::description>("description"), Field<&VK_CARRIER::protocol_id>("protocol_id"),
           Field<&VK_CARRIER::queue_id>("queue_id"), Field<&VK_CARRIER::split_long_msg>("split_long_msg"),
           Field<&VK_CARRIER::truncate_long_msg>("truncate_long_msg"), Field<&VK_CARRIER::disabled>("disabled"),
           Field<&VK_CARRIER::max_msg_len>("max_msg_len"), Field<&VK_CARRIER::max_combined_len>("max_combined_len"),
           Field<&VK_CARRIER::max_retry>("max_retry"), Field<&VK_CARRIER::expiration>("expiration"),
           Field<&VK_CARRIER::backup_carrier_id_1>("backup_carrier_id_1"),
           Field<&VK_CARRIER::backup_carrier_id_2>("backup_carrier_id_2"),
           Field<&VK_CARRIER::num_prefix_digits>("num_prefix_digits"),
           Field<&VK_CARRIER::num_postfix_digits>("num_postfix_digits"),
           Field<&VK_CARRIER::pin_template>("pin_template"), Field<&VK_CARRIER::auto_carr_update>("auto_carr_update"),
           Field<&VK_CARRIER::carr_update_version>("carr_update_version"),
           Field<&VK_CARRIER::carrier_data>("carrier_data", Secret{}),
           Field<&VK_CARRIER::has_num_scheme>("has_num_scheme"))};

} // namespace vk
