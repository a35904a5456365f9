#include "VKReceiverAvailability.h"

#include "VKDBiReceiver.h"

namespace {

constexpr int kFirstDisabled = 2;
constexpr int kOffDutyWithCover = 2;

enum class Answer { Disabled, NotDisabled, ByDates };

/// What status and cover say before the dates are looked at.
Answer ByStatus(int status, unsigned long forwardToId, long end)
{
    if (status < kFirstDisabled)
        return Answer::NotDisabled;
    if (!VKDBiReceiver::s_bIsCoverByAllowed)
        return Answer::ByDates;
    if (status == kOffDutyWithCover && forwardToId != 0)
        return Answer::NotDisabled;
    return end <= 0 ? Answer::Disabled : Answer::ByDates;
}

Answer ByStatus(const VK_RECEIVER& receiver)
{
    return ByStatus(receiver.status_code, receiver.forward_to_id, receiver.disable_end_date);
}

} // namespace

bool IsReceiverDisabledAtTime(int status, unsigned long forwardToId, long start, long end, time_t time)
{
    const Answer answer = ByStatus(status, forwardToId, end);
    return answer == Answer::ByDates ? start <= time && end >= time : answer == Answer::Disabled;
}

bool IsReceiverDisabledAtTime(const VK_RECEIVER* receiver, time_t time)
{
    return IsReceiverDisabledAtTime(receiver->status_code, receiver->forward_to_id, receiver->disable_start_date,
                                    receiver->disable_end_date, time);
}

bool IsReceiverDisabledAtTime(const VK_RECEIVER* receiver, time_t from, time_t to)
{
    const Answer answer = ByStatus(*receiver);
    if (answer != Answer::ByDates)
        return answer == Answer::Disabled;
    const long start = receiver->disable_start_date;
    const long end = receiver->disable_end_date;
    if (start > from && start > to)
        return false;
    return from > end ? end >= to : true;
}
