#include "PushCommand.h"

#include "AdminOutput.h"
#include "AdminRoot.h"
#include "HostLogger.h"
#include "TextLine.h"
#include "VKConfiguration.h"
#include "VKMXPEventNotifier.h"
#include "VKPushNotifierIface.h"
#include "VKstringCase.h"

namespace vk {

namespace {

constexpr int kTimeToLive = 300; // seconds; a test that arrives later helps nobody
constexpr const char* kTestText = "This is a test.";

/// One row a service: the key of its switch.
struct ServiceSwitch
{
    const char* service;
    const char* key;
    bool VKMXPManagerSettings::*isOn;
};

constexpr ServiceSwitch kSwitches[] = {
    {"apns", "push_notification.apns_enabled", &VKMXPManagerSettings::m_bApnsEnabled},
    {"apns2", "apns2_notification.apns2_enabled", &VKMXPManagerSettings::m_bApns2Enabled},
    {"gcms", "gcms_notification.gcms_enabled", &VKMXPManagerSettings::m_bGcmsEnabled},
    {"fcm", "fcm_notification.fcm_enabled", &VKMXPManagerSettings::m_bFcmEnabled},
};

const ServiceSwitch& SwitchOf(const std::string& service)
{
    std::string known;
    for (const ServiceSwitch& row : kSwitches) {
        if (EqualNoCase(row.service, service))
            return row;
        known += (known.empty() ? "" : ", ") + std::string(row.service);
    }
    throw UsageError("SERVICE: '" + service + "' is none of " + known);
}

/// Releases the services before the logger that they write to goes.
struct NotifierGuard
{
    ~NotifierGuard() { VKMXPEventNotifier::FinalizeAll(); }
};

/// Throws InputError that says what is wrong with the settings of a service that is not ready.
void RequireReady(const VKPushNotifierIface& service, const ServiceSwitch& row, HostLogger& logger)
{
    if (service.IsEnabled())
        return;
    VKConfiguration& configuration = *VKConfiguration::getVKConfiguration();
    const VKMXPManagerSettings* const settings = configuration.getMXPManagerSettings(false);
    if (settings == nullptr)
        throw InputError(configuration.getGatewaySettingsError());
    if (!(settings->*row.isOn))
        throw InputError(std::string("the push service '") + row.service + "' is switched off; \"settings mxp set " +
                         row.key + " true\" switches it on");
    throw InputError(std::string("the push service '") + row.service + "' is not ready: " +
                     OneLine(logger.TakeErrors()));
}

} // namespace

int TestPush(const Arguments& arguments)
{
    const ServiceSwitch& row = SwitchOf(arguments.Operands()[0]);
    const std::string& token = arguments.Operands()[1];
    if (token.empty() || token.back() == '@')
        throw UsageError("TOKEN: is empty");
    const std::string log = UseRoot(arguments) + "/logs/vkadmin.log";
    HostLogger logger("vkadmin", log, VKLogInterface::INFO);
    const NotifierGuard guard;
    VKMXPEventNotifier* const notifier = VKMXPEventNotifier::GetInstance(&logger);
    VKPushNotifierIface* const service = notifier ? notifier->GetPushService(row.service) : nullptr;
    if (service == nullptr)
        throw std::runtime_error("the push notifier cannot be made");
    RequireReady(*service, row, logger);
    const std::string text = notifier->PrepareNotificationForWaitingMsgs(1, kTestText);
    const bool taken = notifier->SendNotificationForWaitingMsgs(row.service, service, token, 1, text, kTimeToLive);
    const std::string answer = OneLine(service->GetLastAnswer());
    std::string sentence = std::string(row.service) + (taken ? ": taken. " : ": not taken. ") + answer;
    if (service->IsTokenDead())
        sentence += " Drop this token.";
    if (!taken)
        sentence += "\nMore stands in " + log;
    PrintDone(sentence,
              {{"service", row.service}, {"taken", taken}, {"answer", answer}, {"token_dead", service->IsTokenDead()}},
              arguments.Has("--json"));
    return taken ? kExitOk : kExitFailed;
}

} // namespace vk
