#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device tells what became of a message; "RECEIVED" and "READ" are the words that count.
class VKMXPmSetMsgStatus : public vk::mxp::TablePacket<VKMXPmSetMsgStatus>
{
public:
    std::string m_strJobID;
    std::string m_strStatus;
    std::string m_strDescription;

    static constexpr char kElement[] = "set-msg-status";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmSetMsgStatus;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strJobID>("job-id", NotEmpty{}), Field<&P::m_strStatus>("status", NotEmpty{}),
                      Field<&P::m_strDescription>("description"));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmSetMsgStatus>;
