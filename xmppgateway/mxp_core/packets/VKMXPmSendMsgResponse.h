#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device replies to a message, by one of its response choices or freely. The code is a text.
class VKMXPmSendMsgResponse : public vk::mxp::TablePacket<VKMXPmSendMsgResponse>
{
public:
    std::string m_strJobID;
    std::string m_strResponseCode;
    std::string m_strResponseText;
    std::string m_strDescription;

    static constexpr char kElement[] = "send-msg-response";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmSendMsgResponse;
        using namespace vk::mxp;
        return Fields(
            Field<&P::m_strJobID>("job-id", NotEmpty{}), Field<&P::m_strResponseCode>("response-code", NotEmpty{}),
            Field<&P::m_strResponseText>("response-text", NotEmpty{}), Field<&P::m_strDescription>("description"));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmSendMsgResponse>;
