#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device tells what became of a message; "RECEIVED" and "READ" are the words that count.
class VKMXPmSetMsgStatus : public vk::TablePacket<VKMXPmSetMsgStatus>
{
public:
    std::string m_strJobID;
    std::string m_strStatus;
    std::string m_strDescription;

    static constexpr char kElement[] = "set-msg-status";

    static constexpr auto ParamFields()
    {
        return vk::Fields(vk::Field<&VKMXPmSetMsgStatus::m_strJobID>("job-id", vk::NotEmpty{}),
                          vk::Field<&VKMXPmSetMsgStatus::m_strStatus>("status", vk::NotEmpty{}),
                          vk::Field<&VKMXPmSetMsgStatus::m_strDescription>("description"));
    }
};

extern template class vk::TablePacket<VKMXPmSetMsgStatus>;
