#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A device rejects a message.
class VKMXPmRejectMsg : public vk::mxp::TablePacket<VKMXPmRejectMsg>
{
public:
    std::string m_strJobID;
    std::string m_strResponse;
    std::string m_strRemarks;

    static constexpr char kElement[] = "reject-msg";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmRejectMsg;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strJobID>("job-id", NotEmpty{}), Field<&P::m_strResponse>("response", NotEmpty{}),
                      Field<&P::m_strRemarks>("remarks"));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmRejectMsg>;
