#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device replies to a message, by one of its response choices or freely. The code is a text.
class VKMXPmSendMsgResponse : public vk::TablePacket<VKMXPmSendMsgResponse>
{
public:
    std::string m_strJobID;
    std::string m_strResponseCode;
    std::string m_strResponseText;
    std::string m_strDescription;

    static constexpr char kElement[] = "send-msg-response";

    static constexpr auto ParamFields()
    {
        return vk::Fields(vk::Field<&VKMXPmSendMsgResponse::m_strJobID>("job-id", vk::NotEmpty{}),
                          vk::Field<&VKMXPmSendMsgResponse::m_strResponseCode>("response-code", vk::NotEmpty{}),
                          vk::Field<&VKMXPmSendMsgResponse::m_strResponseText>("response-text", vk::NotEmpty{}),
                          vk::Field<&VKMXPmSendMsgResponse::m_strDescription>("description"));
    }
};

extern template class vk::TablePacket<VKMXPmSendMsgResponse>;
