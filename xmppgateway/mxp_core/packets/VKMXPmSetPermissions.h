#pragma once

#include "VKMXPClientPermissions.h"
#include "VKMXPmTablePacket.h"

/// The server tells a client what it may do. Unless told otherwise it says all of it.
class VKMXPmSetPermissions : public vk::mxp::TablePacket<VKMXPmSetPermissions>, public VKMXPClientPermissions
{
public:
    VKMXPmSetPermissions() { SetPerms(false, false, false, 0); }

    static constexpr char kElement[] = "set-permissions";
    static constexpr bool kServerSends = true;

    static constexpr auto ParamFields()
    {
        using P = VKMXPClientPermissions;
        using namespace vk::mxp;
        return Fields(
            EnableFlag<&P::m_optAccessInbox>("access-inbox"), EnableFlag<&P::m_optReceiveMessage>("recv-msg"),
            EnableFlag<&P::m_optSendMessage>("send-msg"), EnableFlag<&P::m_optQueryMessageStatus>("query-msg-stat"),
            EnableFlag<&P::m_optConfirmMessage>("conf-msg"), EnableFlag<&P::m_optAccessFavorites>("access-fav"),
            EnableFlag<&P::m_optQueryReceivers>("query-recvr"),
            EnableFlag<&P::m_optAccessResponseActions>("access-resp-action"),
            // Meant: the reader takes the text, so a written number reads back as 0.
            Field<&P::m_optSettings>("settings", WrittenInAttribute{"value"}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmSetPermissions>;
