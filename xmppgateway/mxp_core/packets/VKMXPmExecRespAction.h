#pragma once

#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A client runs a response action on the server; the response is the action's text.
class VKMXPmExecRespAction : public vk::TablePacket<VKMXPmExecRespAction>
{
public:
    struct Parameter
    {
        std::string m_strName;
        std::string m_strValue;

        static constexpr auto Fields()
        {
            return vk::Fields(vk::Field<&Parameter::m_strName>("name", vk::Attribute{}),
                              vk::Field<&Parameter::m_strValue>("param", vk::Contents{}));
        }
    };

    std::string m_strName;
    std::vector<Parameter> m_vecParameters;
    std::string m_strResult; ///< response

    static constexpr char kElement[] = "exec-resp-action";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmExecRespAction;
        return vk::Fields(vk::Field<&P::m_strName>("name", vk::NotEmpty{}),
                          vk::Field<&P::m_vecParameters>("params", vk::ItemsNamed{"param"}));
    }

    static constexpr auto ResultFields()
    {
        return vk::Fields(vk::Field<&VKMXPmExecRespAction::m_strResult>("result", vk::Contents{}, vk::OnOwnLine{}));
    }
};

extern template class vk::TablePacket<VKMXPmExecRespAction>;
