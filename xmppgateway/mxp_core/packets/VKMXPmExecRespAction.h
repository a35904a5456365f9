#pragma once

#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A client runs a response action on the server; the response is the action's text.
class VKMXPmExecRespAction : public vk::mxp::TablePacket<VKMXPmExecRespAction>
{
public:
    struct Parameter
    {
        std::string m_strName;
        std::string m_strValue;

        static constexpr auto Fields()
        {
            using R = Parameter;
            using namespace vk::mxp;
            return vk::Fields(Field<&R::m_strName>("name", Attribute{}), Field<&R::m_strValue>("param", Contents{}));
        }
    };

    std::string m_strName;
    std::vector<Parameter> m_vecParameters;
    std::string m_strResult; ///< response

    static constexpr char kElement[] = "exec-resp-action";

    static constexpr auto ParamFields()
    {
        using P = VKMXPmExecRespAction;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strName>("name", NotEmpty{}),
                      Field<&P::m_vecParameters>("params", ItemsNamed{"param"}));
    }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmExecRespAction;
        using namespace vk::mxp;
        return Fields(Field<&P::m_strResult>("result", Contents{}, OnOwnLine{}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmExecRespAction>;
