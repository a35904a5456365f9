// Waking the device of a receiver that is offline.
#include "VKMxpDriver.h"

#include "VKLog.h"
#include "VKMXPEventNotifier.h"

#include <algorithm>
#include <limits>

namespace {

/// The notification lives that much longer than the message.
constexpr int kSpareSeconds = 300;

/// How many messages wait for the receiver, with this one. Others cannot be counted here: the waiting queue is the
/// host's.
constexpr int kWaitingCount = 1;

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
    const int result =
        VKMXPEventNotifier::PushForWaitingMessages(file.strPushServiceName, file.strPushDeviceToken, kWaitingCount, "",
                                                   NotificationSeconds(file.iSecondsToLive), m_pobjLogger);
    const char* const job = file.strJobID.c_str();
    switch (result) {
    case VKMXPEventNotifier::Sent:
        VK_LOG_INFO(m_pobjLogger,
                    "Job ID: [%s] >> Successfully PUSHED notification to device '%s' for waiting messages count :%d.",
                    job, file.strPushDeviceToken.c_str(), kWaitingCount);
        return true;
    case VKMXPEventNotifier::Disabled:
    case VKMXPEventNotifier::NoSuchService:
        VK_LOG_ERROR(m_pobjLogger, "Job ID: [%s] >> PUSH service '%s' is either disabled or undefined.", job,
                     file.strPushServiceName.c_str());
        return false;
    default:
        VK_LOG_ERROR(m_pobjLogger,
                     "Job ID: [%s] >> Failed to PUSH notification to device '%s' for waiting messages count :%d.", job,
                     file.strPushDeviceToken.c_str(), kWaitingCount);
        return false;
    }
}
