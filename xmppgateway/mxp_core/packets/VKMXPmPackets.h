#pragma once

#include <tuple>

#include "VKMXPmActivate.h"
#include "VKMXPmConfirmMsg.h"
#include "VKMXPmDeactivate.h"
#include "VKMXPmDeleteData.h"
#include "VKMXPmExecRespAction.h"
#include "VKMXPmGetListReceivers.h"
#include "VKMXPmGetListRecipients.h"
#include "VKMXPmGetListRespAction.h"
#include "VKMXPmGetMsgStatus.h"
#include "VKMXPmGetRecipients.h"
#include "VKMXPmMessage.h"
#include "VKMXPmRejectMsg.h"
#include "VKMXPmSendMsg.h"
#include "VKMXPmSendMsgResponse.h"
#include "VKMXPmSetMsgStatus.h"
#include "VKMXPmSetMyStatus.h"
#include "VKMXPmSetPermissions.h"
#include "VKMXPmSetSettings.h"

/// \file
/// The list of all kinds of packets. Whatever has to know them all walks it.

namespace vk::mxp {

/// Stands for a kind of packet in a walk.
template <class Packet> struct Kind
{
    using Type = Packet;
};

inline constexpr auto kPackets = std::tuple(
    Kind<VKMXPmSetMyStatus>{}, Kind<VKMXPmMessage>{}, Kind<VKMXPmSetMsgStatus>{}, Kind<VKMXPmSendMsgResponse>{},
    Kind<VKMXPmConfirmMsg>{}, Kind<VKMXPmRejectMsg>{}, Kind<VKMXPmSendMsg>{}, Kind<VKMXPmGetMsgStatus>{},
    Kind<VKMXPmExecRespAction>{}, Kind<VKMXPmGetListRespAction>{}, Kind<VKMXPmActivate>{}, Kind<VKMXPmDeactivate>{},
    Kind<VKMXPmSetPermissions>{}, Kind<VKMXPmSetSettings>{}, Kind<VKMXPmDeleteData>{}, Kind<VKMXPmGetListReceivers>{},
    Kind<VKMXPmGetListRecipients>{}, Kind<VKMXPmGetRecipients>{});

/// Calls visit(Kind<Packet>{}) for each kind.
template <class Visit> constexpr void ForEachPacket(Visit&& visit)
{
    std::apply([&](const auto&... kinds) { (static_cast<void>(visit(kinds)), ...); }, kPackets);
}

/// Calls visit(packet) with the packet as what it is; false, and no call, for one of a kind that is not in the list.
template <class Visit> bool WithPacket(VKMXPmBase& base, Visit&& visit)
{
    bool found = false;
    ForEachPacket([&](auto kind) {
        using Packet = typename decltype(kind)::Type;
        if (auto* packet = found ? nullptr : dynamic_cast<Packet*>(&base)) {
            found = true;
            visit(*packet);
        }
    });
    return found;
}

} // namespace vk::mxp
