#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device confirms a message.
class VKMXPmConfirmMsg : public vk::mxp::TablePacket<VKMXPmConfirmMsg>
{
public:
    std::string m_strJobID;
    std::string m_strResponse;
    std::string m_strRemarks;

    static constexpr char kElement[] = "confirm-msg";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmConfirmMsg;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strJobID>("job-id", NotEmpty{}), Field<&P::m_strResponse>("response", NotEmpty{}),
                      Field<&P::m_strRemarks>("remarks"));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmConfirmMsg>;
