#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device rejects a message.
class VKMXPmRejectMsg : public vk::TablePacket<VKMXPmRejectMsg>
{
public:
    std::string m_strJobID;
    std::string m_strResponse;
    std::string m_strRemarks;

    static constexpr char kElement[] = "reject-msg";

    static constexpr auto ParamFields()
    {
        return vk::Fields(vk::Field<&VKMXPmRejectMsg::m_strJobID>("job-id", vk::NotEmpty{}),
                          vk::Field<&VKMXPmRejectMsg::m_strResponse>("response", vk::NotEmpty{}),
                          vk::Field<&VKMXPmRejectMsg::m_strRemarks>("remarks"));
    }
};

extern template class vk::TablePacket<VKMXPmRejectMsg>;
