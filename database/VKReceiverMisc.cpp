#include "VKReceiverMisc.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "VKDBexception.h"
#include "VKJson.h"
#include "VKMXPPolicyJson.h"
#include "VKReceiver.h"
#include "VKRecordText.h"
#include "VKsysCodec.h"

namespace {

constexpr bool kEncodeBlanks = false;

struct MxpKey
{
    const char* key;
    char (VK_MXP_FIELDS::*text)[256];
    bool VK_MXP_FIELDS::*given;
    bool encoded; ///< passes through the web input encoding
};

constexpr MxpKey kMxpKeys[] = {
    {"MxpPassword", &VK_MXP_FIELDS::mxp_password, &VK_MXP_FIELDS::mxp_password_set, true},
    {"BkMxpPassword", &VK_MXP_FIELDS::bk_mxp_password, &VK_MXP_FIELDS::bk_mxp_password_set, true},
    {"DeviceID", &VK_MXP_FIELDS::device_id, &VK_MXP_FIELDS::device_id_set, false},
    {"DevicePushService", &VK_MXP_FIELDS::device_push_service, &VK_MXP_FIELDS::device_push_service_set, false}};

/// A part of misc_settings: the name of its object, and what an error calls it.
struct Part
{
    const char* name;
    const char* title;
};

constexpr Part kMxp = {"MXP", "MXP Settings Data"};
constexpr Part kAdvMsgng = {"AdvMsgng", "Advanced Messaging Data"};

/// The whole of misc_settings, empty for an empty text; throws unless the part in it is an object or missing.
Json::Value Parse(const VK_RECEIVER& receiver, const Part& part)
{
    Json::Value root(Json::objectValue);
    if (receiver.misc_settings == nullptr || *receiver.misc_settings == '\0')
        return root;
    const bool isObject = vk::ParseJsonObject(receiver.misc_settings, root);
    if (isObject && (!root.isMember(part.name) || root[part.name].isObject()))
        return root;
    const std::string name(vk::GetText(receiver.name, sizeof receiver.name, "name"));
    throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                        std::string("Unable to parse ") + part.title + " for Receiver[ " + name + " ].",
                        isObject ? std::string(part.name) + " is not an object" : "not a JSON object");
}

void Store(VK_RECEIVER& receiver, const Json::Value& root)
{
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    char* text = strdup(Json::writeString(builder, root).c_str());
    if (text == nullptr)
        throw std::bad_alloc();
    std::free(receiver.misc_settings);
    receiver.misc_settings = text;
}

} // namespace

VK_MXP_FIELDS* NeedMxpFields(VK_RECEIVER* receiver)
{
    if (receiver->mxp == nullptr) {
        void* memory = std::malloc(sizeof(VK_MXP_FIELDS));
        if (memory == nullptr)
            throw std::bad_alloc();
        receiver->mxp = new (memory) VK_MXP_FIELDS;
    }
    return receiver->mxp;
}

VK_ADV_MESSAGING* NeedAdvMessaging(VK_RECEIVER* receiver)
{
    if (receiver->adv_messaging == nullptr)
        receiver->adv_messaging = std::make_unique<VK_ADV_MESSAGING>().release();
    return receiver->adv_messaging;
}

void ConvertMiscSettingsToJSON(VK_RECEIVER* receiver, VKMiscSettings_Rece part)
{
    if ((part & VKMiscSettingsMxp) != 0 && receiver->mxp != nullptr) {
        Json::Value root = Parse(*receiver, kMxp);
        for (const MxpKey& row : kMxpKeys) {
            if (!(receiver->mxp->*row.given))
                continue;
            const std::string text(vk::GetText(receiver->mxp->*row.text, sizeof(receiver->mxp->*row.text), row.key));
            root[kMxp.name][row.key] = row.encoded ? VKsysCodec::EncodeWebInputData(text, kEncodeBlanks) : text;
        }
        Store(*receiver, root);
    }
    if ((part & VKMiscSettingsAdvMsgng) != 0 && receiver->adv_messaging != nullptr) {
        Json::Value root = Parse(*receiver, kAdvMsgng);
        vk::WritePolicyGroups(root[kAdvMsgng.name], receiver->adv_messaging->settings,
                              receiver->adv_messaging->permissions, vk::AbsentValue::Kept);
        Store(*receiver, root);
    }
}

bool ConvertJSONToMiscSettingsData(VK_RECEIVER* receiver)
{
    const bool mxp = ConvertJSONToMXPFieldsData(receiver);
    return ConvertJSONToAdvMessagingData(receiver) || mxp;
}

bool ConvertJSONToMXPFieldsData(VK_RECEIVER* receiver)
{
    const Json::Value root = Parse(*receiver, kMxp);
    VK_MXP_FIELDS fields;
    for (const MxpKey& row : kMxpKeys) {
        const Json::Value& value = vk::JsonMember(vk::JsonMember(root, kMxp.name), row.key);
        if (!value.isString())
            continue;
        const std::string text = value.asString();
        vk::SetText(fields.*row.text, row.encoded ? VKsysCodec::DecodeWebInputData(text, kEncodeBlanks) : text,
                    row.key);
        fields.*row.given = true;
    }
    *NeedMxpFields(receiver) = fields;
    return root.isMember(kMxp.name);
}

bool ConvertJSONToAdvMessagingData(VK_RECEIVER* receiver)
{
    const Json::Value root = Parse(*receiver, kAdvMsgng);
    VK_ADV_MESSAGING data;
    vk::ReadPolicyGroups(vk::JsonMember(root, kAdvMsgng.name), data.settings, data.permissions);
    *NeedAdvMessaging(receiver) = std::move(data);
    return root.isMember(kAdvMsgng.name);
}
