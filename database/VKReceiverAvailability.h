#pragma once

#include <ctime>

struct VK_RECEIVER;

/// \file
/// Whether a receiver is disabled at a time. While covers are not allowed (VKDBiReceiver::s_bIsCoverByAllowed) an
/// open-ended period counts as ended in all forms, which is meant. Times are seconds since the epoch.

bool IsReceiverDisabledAtTime(int status, unsigned long forwardToId, long start, long end, time_t time);
bool IsReceiverDisabledAtTime(const VK_RECEIVER* receiver, time_t time);
/// At any time of a period.
bool IsReceiverDisabledAtTime(const VK_RECEIVER* receiver, time_t from, time_t to);
