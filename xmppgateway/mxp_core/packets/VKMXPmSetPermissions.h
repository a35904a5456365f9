#pragma once

#include "VKMXPClientPermissions.h"
#include "VKMXPmTablePacket.h"

/// The server tells a client what it may do. Unless told otherwise it says all of it.
class VKMXPmSetPermissions : public vk::TablePacket<VKMXPmSetPermissions>, public VKMXPClientPermissions
{
public:
    VKMXPmSetPermissions() { SetPresent(true); }

    static constexpr char kElement[] = "set-permissions";

    static constexpr auto ParamFields()
    {
        using P = VKMXPClientPermissions;
        using namespace vk;
        return Fields(
            EnableFlag<&P::m_objAccessInbox>("access-inbox"), EnableFlag<&P::m_objReceiveMessage>("recv-msg"),
            EnableFlag<&P::m_objSendMessage>("send-msg"), EnableFlag<&P::m_objQueryMessageStatus>("query-msg-stat"),
            EnableFlag<&P::m_objConfirmMessage>("conf-msg"), EnableFlag<&P::m_objAccessFavorites>("access-fav"),
            EnableFlag<&P::m_objQueryReceivers>("query-recvr"),
            EnableFlag<&P::m_objAccessResponseActions>("access-resp-action"),
            // Meant: the reader takes the text, so a written number reads back as 0.
            Field<&P::m_objSettings>("settings", WrittenInAttribute{"value"}));
    }
};

extern template class vk::TablePacket<VKMXPmSetPermissions>;
