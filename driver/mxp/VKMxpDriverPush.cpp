// Waking the device of a receiver that is offline.
#include "VKMxpDriver.h"

#include "VKDBexception.h"
#include "VKDBiMessageQueue.h"
#include "VKDatabase.h"
#include "VKLog.h"
#include "VKMXPEventNotifier.h"

#include <algorithm>
#include <limits>

namespace {

/// The notification lives that much longer than the message.
constexpr int kSpareSeconds = 300;

constexpr int kWaitingQueue = 10;

/// How many messages wait for the receiver, with this one. A waiting queue that cannot be asked holds up no
/// notification: this one counts alone then.
int CountWaiting(const VKMessageFile& file, VKLogInterface* logger)
{
    std::string failure;
    try {
        VKDatabase* const database = VKDatabase::getVKMultiThreadedDatabase(nullptr, true);
        if (VKDBiMessageQueue* const waiting = database->getVKDBiMessageQueueObject(kWaitingQueue)) {
            waiting->SetFilterByPin("mxp*", file.strReceiverPin);
            return static_cast<int>(waiting->GetFilteredRecordCount()) + 1;
        }
        failure = database->getLastErrorString();
    } catch (const VKDBexception& error) {
        failure = error.ToString();
    }
    VK_LOG_WARN(logger, "Job ID: [%s] >> The waiting messages cannot be counted: %s", file.strJobID.c_str(),
                   failure.c_str());
    return 1;
}

int NotificationSeconds(int secondsToLive)
{
    return std::min(secondsToLive, std::numeric_limits<int>::max() - kSpareSeconds) + kSpareSeconds;
}

} // namespace

/// Whether a notification went out.
bool VKMxpDriver::Wake(const VKMessageFile& file)
{
    if (!file.bPushEnabled || file.strPushDeviceToken.empty())
        return false;
    const int waiting = CountWaiting(file, m_pobjLogger);
    const int result =
        VKMXPEventNotifier::PushForWaitingMessages(file.strPushServiceName, file.strPushDeviceToken, waiting, "",
                                                   NotificationSeconds(file.iSecondsToLive), m_pobjLogger);
    const char* const job = file.strJobID.c_str();
    switch (result) {
    case VKMXPEventNotifier::Sent:
        VK_LOG_INFO(m_pobjLogger,
                    "Job ID: [%s] >> Successfully PUSHED notification to device '%s' for waiting messages count :%d.",
                    job, file.strPushDeviceToken.c_str(), waiting);
        return true;
    case VKMXPEventNotifier::Disabled:
    case VKMXPEventNotifier::NoSuchService:
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> PUSH service '%s' is either disabled or undefined.", job,
                     file.strPushServiceName.c_str());
        return false;
    default:
        VK_LOG_ERROR(m_pobjLogger,
                     "Job ID: [%s] >> Failed to PUSH notification to device '%s' for waiting messages count :%d.", job,
                     file.strPushDeviceToken.c_str(), waiting);
        return false;
    }
}
