#include "VKMXPEventNotifier.h"

#include "VKLog.h"
#include "VKPushNotifierImplAPNS.h"
#include "VKPushNotifierImplAPNS2.h"
#include "VKPushNotifierImplFCM.h"
#include "VKPushNotifierImplGCMS.h"
#include "VKstringCase.h"

#include <algorithm>
#include <new>

namespace {

constexpr int kApnsAnswerMs = 2000; // how long silence has to last to mean yes

/// The two parts of a device id; without an at sign all of it is the token.
struct DeviceId
{
    std::string profile;
    std::string token;
};

DeviceId SplitDeviceId(const std::string& id)
{
    const std::size_t at = id.find('@');
    if (at == std::string::npos)
        return {std::string(), id};
    return {id.substr(0, at), id.substr(at + 1)};
}

VKPushNotifierImplAPNS::Notification AppleNotification(const DeviceId& device, int waitingCount,
                                                       const std::string& text)
{
    VKPushNotifierImplAPNS::Notification notification;
    notification.aps.badge = std::max(waitingCount, 0);
    notification.aps.sound = "alert4.mp3";
    notification.aps.alert.actionKey = "Launch";
    notification.aps.alert.body = text;
    if (!device.profile.empty())
        notification.aps.alert.body += " This alert is generated at '" + device.profile + "'.";
    return notification;
}

Json::Value GoogleData(const DeviceId& device, int waitingCount, const std::string& text)
{
    Json::Value data(Json::objectValue);
    if (!device.profile.empty())
        data["profile_id"] = device.profile;
    data["num_pending_messages"] = waitingCount;
    data["push_message"] = text;
    return data;
}

/// One row a service; its name is matched in any case.
struct PushService
{
    const char* name;
    std::unique_ptr<VKPushNotifierIface> (*make)();
    bool (*send)(VKMXPEventNotifier& self, VKPushNotifierIface& notifier, const std::string& deviceId, int waitingCount,
                 const std::string& text, int timeToLive);
};

template <class Notifier> constexpr PushService Service(const char* name)
{
    return {name, []() -> std::unique_ptr<VKPushNotifierIface> { return std::make_unique<Notifier>(); },
            [](VKMXPEventNotifier& self, VKPushNotifierIface& notifier, const std::string& deviceId, int waitingCount,
               const std::string& text, int timeToLive) {
                auto* const own = dynamic_cast<Notifier*>(&notifier); // null for another service's
                return own && self.SendNotificationForWaitingMsgs(*own, deviceId, waitingCount, text, timeToLive);
            }};
}

constexpr PushService kServices[] = {
    Service<VKPushNotifierImplAPNS>("apns"),
    Service<VKPushNotifierImplAPNS2>("apns2"),
    Service<VKPushNotifierImplGCMS>("gcms"),
    Service<VKPushNotifierImplFCM>("fcm"),
};

const PushService* FindService(const std::string& name)
{
    for (const PushService& service : kServices)
        if (vk::EqualNoCase(service.name, name))
            return &service;
    return nullptr;
}

} // namespace

VKMXPEventNotifier* VKMXPEventNotifier::m_pobjMe = nullptr;

VKMXPEventNotifier::~VKMXPEventNotifier() = default;

VKMXPEventNotifier* VKMXPEventNotifier::GetInstance(VKLogInterface* logger)
{
    if (!m_pobjMe) {
        std::unique_ptr<VKMXPEventNotifier> made(new (std::nothrow) VKMXPEventNotifier);
        if (!made || !made->Initialize())
            return nullptr;
        m_pobjMe = made.release(); // FinalizeAll deletes it
    }
    m_pobjMe->m_pLogger = logger;
    return m_pobjMe;
}

int VKMXPEventNotifier::PushForWaitingMessages(const std::string& service, const std::string& deviceId,
                                               int waitingCount, const std::string& suffix, int timeToLive,
                                               VKLogInterface* logger)
{
    VK_LOG_SCOPE(scope, logger, "VKMXPEventNotifier::PushForWaitingMessages()");
    VKMXPEventNotifier* const notifier = GetInstance(logger);
    if (!notifier) {
        VK_LOG_ERROR(logger, "Failed to get MXP Event Notifier object.");
        return scope.Result(static_cast<int>(NoNotifier));
    }
    try {
        return scope.Result(notifier->Push(service, deviceId, waitingCount, suffix, timeToLive));
    } catch (const std::exception& failure) { // out of memory; nothing else throws here
        VK_LOG_ERROR(logger, "Failed to send notification to Push service '%s'. Details: %s.", service.c_str(),
                     failure.what());
        return scope.Result(static_cast<int>(Failed));
    }
}

int VKMXPEventNotifier::Push(const std::string& service, const std::string& deviceId, int waitingCount,
                             const std::string& suffix, int timeToLive)
{
    const std::string text = PrepareNotificationForWaitingMsgs(waitingCount, suffix);
    VKPushNotifierIface* const notifier = GetPushService(service);
    if (!notifier) {
        VK_LOG_ERROR(m_pLogger, "Failed to get Push service object by name '%s'.", service.c_str());
        return NoSuchService;
    }
    if (!notifier->IsEnabled()) {
        VK_LOG_ERROR(m_pLogger, "The Push service object by name '%s' is DISABLED.", service.c_str());
        return Disabled;
    }
    if (!SendNotificationForWaitingMsgs(service, notifier, deviceId, waitingCount, text, timeToLive)) {
        VK_LOG_ERROR(m_pLogger, "Failed to send notification to Push service '%s'.", service.c_str());
        return Failed;
    }
    // Meant: the device's id does not stand in this text.
    VK_LOG_INFO(m_pLogger,
                "Successfully send notification to device ID:'%%' through Push service '%s' with message '%s'.",
                service.c_str(), text.c_str());
    return Sent;
}

std::string VKMXPEventNotifier::PrepareNotificationForWaitingMsgs(int waitingCount, const std::string& suffix)
{
    std::string text =
        waitingCount == 1
            ? "There is a new message waiting in the server queue. Kindly login to fetch this message."
            : printfToString("There are %d new messages waiting in the server queue. Kindly login to fetch these "
                             "messages.",
                             waitingCount);
    if (!suffix.empty())
        text += " " + suffix;
    return text;
}

VKPushNotifierIface* VKMXPEventNotifier::GetPushService(const std::string& service)
{
    const auto known = m_mapPushServices.find(service);
    if (known != m_mapPushServices.end() && known->second) {
        known->second->SetLogger(m_pLogger); // the one it was made with may be gone
        return known->second.get();
    }
    const PushService* const row = FindService(service);
    if (!row)
        return nullptr;
    std::unique_ptr<VKPushNotifierIface> made = row->make();
    made->SetLogger(m_pLogger);
    made->Initialize();
    return (m_mapPushServices[service] = std::move(made)).get();
}

bool VKMXPEventNotifier::SendNotificationForWaitingMsgs(const std::string& service, VKPushNotifierIface* notifier,
                                                        const std::string& deviceId, int waitingCount,
                                                        const std::string& text, int timeToLive)
{
    const PushService* const row = FindService(service);
    return row && notifier && row->send(*this, *notifier, deviceId, waitingCount, text, timeToLive);
}

bool VKMXPEventNotifier::SendNotificationForWaitingMsgs(VKPushNotifierImplAPNS& notifier, const std::string& deviceId,
                                                        int waitingCount, const std::string& text, int)
{
    const DeviceId device = SplitDeviceId(deviceId);
    VKPushNotifierImplAPNS::Notification notification = AppleNotification(device, waitingCount, text);
    if (!notifier.SendTo(device.token, notification)) {
        VK_LOG_ERROR(m_pLogger, "Failed to send APNS notification to device ID: '%s'.", deviceId.c_str());
        return false;
    }
    int code = 0;
    std::string answer;
    if (notifier.GetResponse(kApnsAnswerMs, code, answer))
        return true;
    VK_LOG_ERROR(m_pLogger,
                 "Failure error received from APNS gateway for device ID: '%s'. Error code: %d. Error text: %s.",
                 deviceId.c_str(), code, answer.c_str());
    return false;
}

bool VKMXPEventNotifier::SendNotificationForWaitingMsgs(VKPushNotifierImplAPNS2& notifier, const std::string& deviceId,
                                                        int waitingCount, const std::string& text, int timeToLive)
{
    const DeviceId device = SplitDeviceId(deviceId);
    VKPushNotifierImplAPNS::Notification notification = AppleNotification(device, waitingCount, text);
    if (notifier.SendTo(device.token, notification, timeToLive))
        return true;
    VK_LOG_ERROR(m_pLogger, "Failed to send APNS2 notification to device ID: '%s'.", deviceId.c_str());
    return false;
}

bool VKMXPEventNotifier::SendNotificationForWaitingMsgs(VKPushNotifierImplGCMS& notifier, const std::string& deviceId,
                                                        int waitingCount, const std::string& text, int timeToLive)
{
    const DeviceId device = SplitDeviceId(deviceId);
    Json::Value data = GoogleData(device, waitingCount, text);
    if (notifier.SendTo(device.token, data, timeToLive))
        return true;
    VK_LOG_ERROR(m_pLogger, "Failed to send GCMS notification to device ID: '%s'.", deviceId.c_str());
    return false;
}

bool VKMXPEventNotifier::SendNotificationForWaitingMsgs(VKPushNotifierImplFCM& notifier, const std::string& deviceId,
                                                        int waitingCount, const std::string& text, int timeToLive)
{
    const DeviceId device = SplitDeviceId(deviceId);
    Json::Value data = GoogleData(device, waitingCount, text);
    if (notifier.SendTo(device.token, data, timeToLive))
        return true;
    VK_LOG_ERROR(m_pLogger, "Failed to send FCM notification to device ID: '%s'.", deviceId.c_str());
    return false;
}

bool VKMXPEventNotifier::Finalize()
{
    for (const auto& [name, notifier] : m_mapPushServices) {
        VK_LOG_INFO(m_pLogger, "Releasing push service object '%s' now.", notifier->GetNotifierTypeName().c_str());
        notifier->SetLogger(m_pLogger);
        notifier->Finalize();
    }
    m_mapPushServices.clear();
    VK_LOG_INFO(m_pLogger, "Successfully released all push service objects.");
    return true;
}

bool VKMXPEventNotifier::FinalizeAll()
{
    if (!m_pobjMe)
        return false;
    m_pobjMe->Finalize();
    delete m_pobjMe;
    m_pobjMe = nullptr;
    return true;
}
