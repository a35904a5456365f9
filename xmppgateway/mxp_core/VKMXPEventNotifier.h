#pragma once

#include <json/value.h>
#include <map>
#include <memory>
#include <string>

class VKLogInterface;
class VKPushNotifierIface;
class VKPushNotifierImplAPNS;
class VKPushNotifierImplAPNS2;
class VKPushNotifierImplFCM;
class VKPushNotifierImplGCMS;

/// Wakes the device of a receiver that is offline while messages wait for it: words the notification and hands it to
/// the push service that the device is registered with. One object a process, with no thread of its own: it acts on the
/// caller's, which is always the host's, so nothing is locked.
///
/// A service is made, and reads its settings, on the first push for its name, and lives until FinalizeAll.
class VKMXPEventNotifier
{
public:
    /// What became of a push.
    enum PushResult { Sent = 1, NoNotifier = 2, Failed = 3, Disabled = 4, NoSuchService = 5 };

    virtual ~VKMXPEventNotifier();
    VKMXPEventNotifier(const VKMXPEventNotifier&) = delete;
    VKMXPEventNotifier& operator=(const VKMXPEventNotifier&) = delete;

    /// The one object, made on first use. The logger replaces the one before; it must live until the next call or
    /// FinalizeAll. Null on failure.
    static VKMXPEventNotifier* GetInstance(VKLogInterface* logger);

    /// Tells the device that so many messages wait. `deviceId` is "profile@token" or the token alone; `service` is
    /// "apns", "apns2", "gcms" or "fcm" in any case. The service keeps the notification for `timeToLive` seconds
    /// ("apns" for a day, whatever it is). May take the seconds that a service needs to answer. A PushResult.
    static int PushForWaitingMessages(const std::string& service, const std::string& deviceId, int waitingCount,
                                      const std::string& suffix, int timeToLive, VKLogInterface* logger);

    bool Initialize() { return true; }
    /// Releases all services.
    bool Finalize();
    /// Releases the one object with all its services; false when there is none.
    static bool FinalizeAll();

    std::string PrepareNotificationForWaitingMsgs(int waitingCount, const std::string& suffix);
    /// The service of that name, made when it is asked for the first time; null for an unknown name. A service that
    /// could not be initialised is kept all the same, until FinalizeAll.
    VKPushNotifierIface* GetPushService(const std::string& service);

    /// Hands the text to the service, in the form that suits it.
    bool SendNotificationForWaitingMsgs(const std::string& service, VKPushNotifierIface* notifier,
                                        const std::string& deviceId, int waitingCount, const std::string& text,
                                        int timeToLive);
    bool SendNotificationForWaitingMsgs(VKPushNotifierImplAPNS& notifier, const std::string& deviceId, int waitingCount,
                                        const std::string& text, int timeToLive);
    bool SendNotificationForWaitingMsgs(VKPushNotifierImplAPNS2& notifier, const std::string& deviceId,
                                        int waitingCount, const std::string& text, int timeToLive);
    bool SendNotificationForWaitingMsgs(VKPushNotifierImplGCMS& notifier, const std::string& deviceId, int waitingCount,
                                        const std::string& text, int timeToLive);
    bool SendNotificationForWaitingMsgs(VKPushNotifierImplFCM& notifier, const std::string& deviceId, int waitingCount,
                                        const std::string& text, int timeToLive);

private:
    VKMXPEventNotifier() = default;

    int Push(const std::string& service, const std::string& deviceId, int waitingCount, const std::string& suffix,
             int timeToLive);

    VKLogInterface* m_pLogger = nullptr;
    std::map<std::string, std::unique_ptr<VKPushNotifierIface>> m_mapPushServices; ///< by the name as asked for

    static VKMXPEventNotifier* m_pobjMe;
};
