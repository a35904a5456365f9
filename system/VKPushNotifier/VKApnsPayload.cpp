#include "VKJson.h"
#include "VKPushNotifierImplAPNS.h"

namespace vk {

namespace {

using Alert = VKPushNotifierImplAPNS::Notification::APS::Alert;

void PutIfAny(Json::Value& object, const char* name, const std::string& text)
{
    if (!text.empty())
        object[name] = text;
}

Json::Value AlertValue(const Alert& alert)
{
    const bool plain = alert.locKey.empty() && alert.actionKey.empty() && alert.launchImage.empty() &&
                       alert.locArgs.empty() && !alert.actionIsNull;
    if (plain)
        return alert.body;
    Json::Value object(Json::objectValue);
    PutIfAny(object, "body", alert.body);
    if (alert.actionIsNull)
        object["action-loc-key"] = Json::Value(Json::nullValue);
    else
        PutIfAny(object, "action-loc-key", alert.actionKey);
    PutIfAny(object, "loc-key", alert.locKey);
    for (const std::string& argument : alert.locArgs)
        object["loc-args"].append(argument);
    PutIfAny(object, "launch-image", alert.launchImage);
    return object;
}

} // namespace

std::string ApnsPayload(const VKPushNotifierImplAPNS::Notification& notification)
{
    Json::Value payload(Json::objectValue);
    for (const auto& [name, value] : notification.custom)
        payload[name] = value;
    Json::Value aps(Json::objectValue);
    aps["alert"] = AlertValue(notification.aps.alert);
    aps["badge"] = notification.aps.badge;
    PutIfAny(aps, "sound", notification.aps.sound);
    payload["aps"] = aps;
    return CompactJson(payload);
}

} // namespace vk
