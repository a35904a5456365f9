#pragma once

#include "VKMXPmTablePacket.h"

/// The server orders a client to erase data.
class VKMXPmDeleteData : public vk::mxp::TablePacket<VKMXPmDeleteData>
{
public:
    bool m_bMessages = false;
    bool m_bReceivedRead = false;
    bool m_bReceivedUnread = false;
    bool m_bSent = false;
    bool m_bDraft = false;
    bool m_bFailed = false;
    bool m_bSavedResponses = false;
    bool m_bFavorites = false;

    static constexpr char kElement[] = "wipe";
    static constexpr bool kServerSends = true;

    static constexpr auto ParamFields()
    {
        using P = VKMXPmDeleteData;
        using namespace vk::mxp;
        return Fields(Group("messages", Fields(Flag<&P::m_bMessages>("enable", Attribute{}),
                                               Group("received",
                                                     Fields(EnableFlag<&P::m_bReceivedRead>("read", Optional{}),
                                                            EnableFlag<&P::m_bReceivedUnread>("unread", Optional{})),
                                                     Optional{}),
                                               EnableFlag<&P::m_bSent>("sent", Optional{}),
                                               EnableFlag<&P::m_bDraft>("draft", Optional{}),
                                               EnableFlag<&P::m_bFailed>("failed", Optional{}))),
                      EnableFlag<&P::m_bSavedResponses>("saved-responses"), EnableFlag<&P::m_bFavorites>("favorites"));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmDeleteData>;
