#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device confirms a message.
class VKMXPmConfirmMsg : public vk::TablePacket<VKMXPmConfirmMsg>
{
public:
    std::string m_strJobID;
    std::string m_strResponse;
    std::string m_strRemarks;

    static constexpr char kElement[] = "confirm-msg";

    static constexpr auto ParamFields()
    {
        return vk::Fields(vk::Field<&VKMXPmConfirmMsg::m_strJobID>("job-id", vk::NotEmpty{}),
                          vk::Field<&VKMXPmConfirmMsg::m_strResponse>("response", vk::NotEmpty{}),
                          vk::Field<&VKMXPmConfirmMsg::m_strRemarks>("remarks"));
    }
};

extern template class vk::TablePacket<VKMXPmConfirmMsg>;
