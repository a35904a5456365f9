#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A client signs off.
class VKMXPmDeactivate : public vk::mxp::TablePacket<VKMXPmDeactivate>
{
public:
    std::string m_strActivationKey; ///< the client's own credential with the server

    static constexpr char kElement[] = "deactivate";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmDeactivate;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strActivationKey>("activation-key", NotEmpty{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmDeactivate>;
