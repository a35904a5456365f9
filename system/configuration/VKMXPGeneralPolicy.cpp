// The general policy for mobile clients, as the JSON text that stands in "mxp_config.xml".
#include "VKMXPGeneralPolicy.h"

#include "VKConfiguration.h"
#include "VKJson.h"
#include "VKMXPManagerSettings.h"
#include "VKMXPPolicyJson.h"

namespace {

constexpr const char* kPolicy = "GeneralPolicy";

} // namespace

bool VKConfiguration::ConvertJSONToGeneralPolicyData(const std::string& text, VKMXPManagerSettings* settings)
{
    settings->m_strGeneralPolicy = text;
    settings->m_objPolicySettings = {};
    settings->m_objPolicyPermissions = {};
    Json::Value document;
    if (!vk::ParseJsonObject(text, document))
        return false;
    const Json::Value& policy = vk::JsonMember(document, kPolicy);
    vk::ReadPolicyGroups(policy, settings->m_objPolicySettings, settings->m_objPolicyPermissions);
    return true;
}

std::string VKConfiguration::ConvertGeneralPolicyToJSON(VKMXPManagerSettings* settings)
{
    Json::Value document;
    vk::ParseJsonObject(settings->m_strGeneralPolicy, document);
    if (!vk::JsonMember(document, kPolicy).isObject())
        document[kPolicy] = Json::Value(Json::objectValue);
    vk::WritePolicyGroups(document[kPolicy], settings->m_objPolicySettings, settings->m_objPolicyPermissions,
                          vk::AbsentValue::Removed);
    return vk::CompactJson(document);
}
