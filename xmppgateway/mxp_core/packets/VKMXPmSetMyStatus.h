#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A client tells its state. The response tells who its receiver is.
class VKMXPmSetMyStatus : public vk::mxp::TablePacket<VKMXPmSetMyStatus>
{
public:
    std::string m_strStatusID;
    std::string m_strDescription;
    std::string m_strActivationKey; ///< the client's own credential with the server
    std::string m_strReceiverID;
    std::string m_strPassword;
    std::string m_strIPAddress;
    std::string m_strDeviceID;
    std::string m_strPushServiceName;
    std::string m_strReceiverName;      ///< response
    std::string m_strReceiverLastName;  ///< response
    std::string m_strReceiverFirstName; ///< response
    std::string m_strGCMSSenderID;      ///< response

    static constexpr char kElement[] = "set-my-status";
    static constexpr bool kReadsResult = false;

    static constexpr auto ParamFields()
    {
        using P = VKMXPmSetMyStatus;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strStatusID>("status-id"), Field<&P::m_strDescription>("description"),
                      Field<&P::m_strActivationKey>("activation-key"), Field<&P::m_strReceiverID>("receiver-id"),
                      Field<&P::m_strPassword>("password"), Field<&P::m_strIPAddress>("ip-address"),
                      Field<&P::m_strDeviceID>("device-id", Optional{}),
                      Field<&P::m_strPushServiceName>("push-serv-name", Optional{}));
    }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmSetMyStatus;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strReceiverName>("receiver-name", OmitEmpty{}, NoLineFeed{}),
                      Field<&P::m_strReceiverLastName>("receiver-last-name", OmitEmpty{}, NoLineFeed{}),
                      Field<&P::m_strReceiverFirstName>("receiver-first-name", OmitEmpty{}, NoLineFeed{}),
                      Field<&P::m_strGCMSSenderID>("gcms-sender-id", OmitEmpty{}, NoLineFeed{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmSetMyStatus>;
