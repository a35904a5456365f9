#pragma once

#include <string>

#include "VKMXPmTablePacket.h"

/// A client signs off.
class VKMXPmDeactivate : public vk::TablePacket<VKMXPmDeactivate>
{
public:
    std::string m_strActivationKey; ///< the client's own credential with the server

    static constexpr char kElement[] = "deactivate";

    static constexpr auto ParamFields()
    {
        return vk::Fields(vk::Field<&VKMXPmDeactivate::m_strActivationKey>("activation-key", vk::NotEmpty{}));
    }
};

extern template class vk::TablePacket<VKMXPmDeactivate>;
