#include "VKReceiverMisc.h"

#include <cstdlib>
#include <cstring>
#include <json/json.h>
#include <memory>
#include <new>

#include "VKDBexception.h"
#include "VKReceiver.h"
#include "VKRecordText.h"
#include "VKsysCodec.h"

namespace {

constexpr const char* kMxp = "MXP";
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

[[noreturn]] void ThrowUnreadable(const VK_RECEIVER& receiver, const std::string& why)
{
    const std::string name(vk::GetText(receiver.name, sizeof receiver.name, "name"));
    throw VKDBexception(vk::DbError::General, __FILE__, __LINE__,
                        "Unable to parse MXP Settings Data for Receiver[ " + name + " ].", why);
}

/// The object in misc_settings; an empty one for an empty text.
Json::Value Parse(const VK_RECEIVER& receiver)
{
    if (receiver.misc_settings == nullptr || *receiver.misc_settings == '\0')
        return Json::Value(Json::objectValue);
    const std::unique_ptr<Json::CharReader> reader(Json::CharReaderBuilder().newCharReader());
    const char* const end = receiver.misc_settings + std::strlen(receiver.misc_settings);
    Json::Value root;
    std::string why = "not an object";
    try {
        if (reader->parse(receiver.misc_settings, end, &root, &why) && root.isObject() &&
            (!root.isMember(kMxp) || root[kMxp].isObject()))
            return root;
    } catch (const std::exception& failure) { // nested too deeply
        why = failure.what();
    }
    ThrowUnreadable(receiver, why);
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

void ConvertMiscSettingsToJSON(VK_RECEIVER* receiver, VKMiscSettings_Rece part)
{
    if (part != VKMiscSettingsMxp || receiver->mxp == nullptr)
        return;
    Json::Value root = Parse(*receiver);
    for (const MxpKey& row : kMxpKeys) {
        if (!(receiver->mxp->*row.given))
            continue;
        const std::string text(vk::GetText(receiver->mxp->*row.text, sizeof(receiver->mxp->*row.text), row.key));
        root[kMxp][row.key] = row.encoded ? VKsysCodec::EncodeWebInputData(text, kEncodeBlanks) : text;
    }
    Store(*receiver, root);
}

bool ConvertJSONToMXPFieldsData(VK_RECEIVER* receiver)
{
    const Json::Value root = Parse(*receiver);
    VK_MXP_FIELDS fields;
    for (const MxpKey& row : kMxpKeys) {
        const Json::Value& value = root[kMxp][row.key];
        if (!value.isString())
            continue;
        const std::string text = value.asString();
        vk::SetText(fields.*row.text, row.encoded ? VKsysCodec::DecodeWebInputData(text, kEncodeBlanks) : text,
                    row.key);
        fields.*row.given = true;
    }
    *NeedMxpFields(receiver) = fields;
    return root.isMember(kMxp);
}
