#include "VKMXPPolicyJson.h"

#include "VKJson.h"

namespace vk {

namespace {

constexpr const char* kSettings = "settings";
constexpr const char* kPermissions = "permissions";
constexpr const char* kNew = "new";

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

void Take(const Json::Value& json, VKMXPClientSettings::Alert& tone) { TakeAll(json, kAlertToneFields, tone); }

template <class Table, class Record> void TakeAll(const Json::Value& json, const Table& table, Record& record)
{
    ForEachField(table, [&](const auto& field) { Take(JsonMember(json, field.name), field.of(record)); });
}

// Writing: what is present; members that are not known here stay. Each tells whether the value is there then.

template <class Value>
bool Put(Json::Value& object, const char* name, const std::optional<Value>& value, AbsentValue absent)
{
    if (absent == AbsentValue::Removed)
        object.removeMember(name);
    if (value)
        object[name] = *value;
    return object.isMember(name);
}

template <class Table, class Record>
bool PutAll(Json::Value& object, const Table& table, const Record& record, AbsentValue absent);

bool Put(Json::Value& object, const char* name, const VKMXPClientSettings::Alert& tone, AbsentValue absent)
{
    if (!JsonMember(object, name).isObject())
        object[name] = Json::Value(Json::objectValue);
    const bool any = PutAll(object[name], kAlertToneFields, tone, absent);
    if (object[name].empty())
        object.removeMember(name);
    return any;
}

template <class Table, class Record>
bool PutAll(Json::Value& object, const Table& table, const Record& record, AbsentValue absent)
{
    bool any = false;
    ForEachField(table, [&](const auto& field) {
        const bool put = Put(object, field.name, field.of(record), absent);
        any = any || (put && !std::decay_t<decltype(field)>::template has<PolicyStamp>);
    });
    return any;
}

template <class Table, class Record>
void PutGroup(Json::Value& policy, const char* name, const Table& table, const Record& record, AbsentValue absent)
{
    if (!JsonMember(policy, name).isObject())
        policy[name] = Json::Value(Json::objectValue);
    policy[name][kNew] = PutAll(policy[name], table, record, absent);
}

} // namespace

void ReadPolicyGroups(const Json::Value& policy, VKMXPPolicySettings& settings, VKMXPPolicyPermissions& permissions)
{
    TakeAll(JsonMember(policy, kSettings), kPolicySettingsFields, settings);
    TakeAll(JsonMember(policy, kPermissions), kPolicyPermissionsFields, permissions);
}

void WritePolicyGroups(Json::Value& policy, const VKMXPPolicySettings& settings,
                       const VKMXPPolicyPermissions& permissions, AbsentValue absent)
{
    PutGroup(policy, kSettings, kPolicySettingsFields, settings, absent);
    PutGroup(policy, kPermissions, kPolicyPermissionsFields, permissions, absent);
}

} // namespace vk
