#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A client enrols. The response may carry the sender id with which it registers for push notifications.
class VKMXPmActivate : public vk::mxp::TablePacket<VKMXPmActivate>
{
public:
    std::string m_strActivationKey; ///< the client's own credential with the server
    bool m_bAdvanceMode = false;
    std::string m_strIPAddress;
    std::string m_strPlatform;
    std::string m_strClient;
    std::string m_strGCMSSenderID; ///< response

    static constexpr char kElement[] = "activate";
    static constexpr bool kReadsResult = false;

    static constexpr auto ParamFields()
    {
        using P = VKMXPmActivate;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strActivationKey>("activation-key", NotEmpty{}),
                      // Meant: this one element has a blank before its end, and no line of its own.
                      Field<&P::m_bAdvanceMode>("is-advance-mode", InAttribute{"enable"}, InWords{}, Optional{},
                                                BlankBeforeEnd{}, NoLineFeed{}),
                      Field<&P::m_strIPAddress>("ip-address", NotEmpty{}), Field<&P::m_strPlatform>("platform"),
                      Field<&P::m_strClient>("client"));
    }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmActivate;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strGCMSSenderID>("gcms-sender-id", OmitEmpty{}, NoLineFeed{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmActivate>;
