#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "VKMXPmTablePacket.h"

/// A client asks for the response actions that it may run, and what to ask its user for each.
class VKMXPmGetListRespAction : public vk::mxp::TablePacket<VKMXPmGetListRespAction>
{
public:
    /// A field of the form that the client shows before it runs the action.
    struct SetupParam
    {
        std::string m_strName;
        std::int32_t m_iMaxLength = 0;
        bool m_bMandatory = false;
        std::string m_strDefaultValue;

        static constexpr auto Fields()
        {
            using R = SetupParam;
            using namespace vk::mxp;
            return vk::Fields(Field<&R::m_strName>("name", Attribute{}), Field<&R::m_iMaxLength>("maxlen", Attribute{}),
                              Flag<&R::m_bMandatory>("mandatory", Attribute{}),
                              Field<&R::m_strDefaultValue>("default", Attribute{}));
        }
    };

    struct ResponseAction
    {
        std::string m_strType;
        bool m_bNative = false;
        std::string m_strName;
        std::string m_strDescription;
        std::string m_strCommand;
        std::vector<SetupParam> m_vecSetupParams;

        static constexpr auto Fields()
        {
            using R = ResponseAction;
            using namespace vk::mxp;
            return vk::Fields(Field<&R::m_strType>("type", Attribute{}), Flag<&R::m_bNative>("native", Attribute{}),
                              Field<&R::m_strName>("name"), Field<&R::m_strDescription>("description"),
                              Field<&R::m_strCommand>("command"),
                              Field<&R::m_vecSetupParams>("setup-params", ItemsNamed{"param"}));
        }
    };

    std::vector<ResponseAction> m_vecResponseActions; ///< response

    static constexpr char kElement[] = "getlist-resp-action";

    static constexpr auto ParamFields() { return vk::Fields(); }

    static constexpr auto ResultFields()
    {
        using P = VKMXPmGetListRespAction;
        using namespace vk::mxp;
        return Fields(Field<&P::m_vecResponseActions>("response-actions", ItemsNamed{"response-action"}));
    }
};

extern template class vk::mxp::TablePacket<VKMXPmGetListRespAction>;
