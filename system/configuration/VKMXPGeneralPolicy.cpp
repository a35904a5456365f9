// The general policy for mobile clients, as the JSON text that stands in "mxp_config.xml".
#include "VKMXPGeneralPolicy.h"

#include "VKConfiguration.h"
#include "VKJson.h"
#include "VKMXPManagerSettings.h"

namespace {

constexpr const char* kPolicy = "GeneralPolicy";
constexpr const char* kSettings = "settings";
constexpr const char* kPermissions = "permissions";
constexpr const char* kNew = "new";

// Reading: a member of another kind than its value is not taken.

void Take(const Json::Value& json, std::optional<bool>& value)
{
    if (json.isBool())
        value = json.asBool();
}

void Take(const Json::Value& json, std::optional<unsigned int>& value)
{
    if (json.isUInt())
        value = json.asUInt();
}

void Take(const Json::Value& json, std::optional<std::int32_t>& value)
{
    if (json.isUInt() && json.isInt())
        value = json.asInt();
}

void Take(const Json::Value& json, std::optional<std::string>& value)
{
    if (json.isString())
        value = json.asString();
}

template <class Table, class Record> void TakeAll(const Json::Value& json, const Table& table, Record& record);

void Take(const Json::Value& json, VKMXPClientSettings::Alert& tone) { TakeAll(json, vk::kAlertToneFields, tone); }

template <class Table, class Record> void TakeAll(const Json::Value& json, const Table& table, Record& record)
{
    vk::ForEachField(table, [&](const auto& field) { Take(vk::JsonMember(json, field.name), field.of(record)); });
}

// Writing: what is present; members that are not known here stay. Each tells whether it wrote something.

template <class Value> bool Put(Json::Value& object, const char* name, const std::optional<Value>& value)
{
    object.removeMember(name);
    if (value)
        object[name] = *value;
    return value.has_value();
}

template <class Table, class Record> bool PutAll(Json::Value& object, const Table& table, const Record& record);

bool Put(Json::Value& object, const char* name, const VKMXPClientSettings::Alert& tone)
{
    if (!vk::JsonMember(object, name).isObject())
        object[name] = Json::Value(Json::objectValue);
    const bool any = PutAll(object[name], vk::kAlertToneFields, tone);
    if (object[name].empty())
        object.removeMember(name);
    return any;
}

template <class Table, class Record> bool PutAll(Json::Value& object, const Table& table, const Record& record)
{
    bool any = false;
    vk::ForEachField(table, [&](const auto& field) {
        const bool put = Put(object, field.name, field.of(record));
        any = any || (put && !std::decay_t<decltype(field)>::template has<vk::PolicyStamp>);
    });
    return any;
}

template <class Table, class Record>
void PutGroup(Json::Value& policy, const char* name, const Table& table, const Record& record)
{
    if (!vk::JsonMember(policy, name).isObject())
        policy[name] = Json::Value(Json::objectValue);
    policy[name][kNew] = PutAll(policy[name], table, record);
}

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
    TakeAll(vk::JsonMember(policy, kSettings), vk::kPolicySettingsFields, settings->m_objPolicySettings);
    TakeAll(vk::JsonMember(policy, kPermissions), vk::kPolicyPermissionsFields, settings->m_objPolicyPermissions);
    return true;
}

std::string VKConfiguration::ConvertGeneralPolicyToJSON(VKMXPManagerSettings* settings)
{
    Json::Value document;
    vk::ParseJsonObject(settings->m_strGeneralPolicy, document);
    if (!vk::JsonMember(document, kPolicy).isObject())
        document[kPolicy] = Json::Value(Json::objectValue);
    PutGroup(document[kPolicy], kSettings, vk::kPolicySettingsFields, settings->m_objPolicySettings);
    PutGroup(document[kPolicy], kPermissions, vk::kPolicyPermissionsFields, settings->m_objPolicyPermissions);
    return vk::CompactJson(document);
}
