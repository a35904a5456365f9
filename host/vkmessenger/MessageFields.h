#pragma once

#include "VKField.h"
#include "VKMessageFile.h"

#include <cstdint>

/// \file
/// The JSON form of a message file: one object, its keys are the members without their type letters.

namespace vk {

/// What became of a message, as a queue keeps it beside the message's own keys. Passed over when a message is read, so
/// that one from the archive can be sent again as it is.
inline constexpr char kReportKey[] = "report";

/// The key must be there and must not be empty.
struct Required
{
};

/// Limits of a number that are narrower than its type.
struct Range
{
    std::int64_t least;
    std::int64_t most;
};

/// A number in the record, true or false (or 1 or 0) in the file.
struct Flag
{
};

/// A number in the record, "terminal" or "non-terminal" in the file.
struct ActionType
{
};

inline constexpr CodeText<std::int32_t> kActionTypes[] = {
    {0, "terminal"},
    {VKMessageFile::kNonTerminalAction, "non-terminal"},
};

inline constexpr auto kMessageFields = Fields(
    Field<&VKMessageFile::strJobID>("job_id", Required{}),
    Field<&VKMessageFile::strSender>("sender"),
    Field<&VKMessageFile::strFallbackSender>("fallback_sender"),
    Field<&VKMessageFile::strSubject>("subject"),
    Field<&VKMessageFile::strBody>("body"),
    Field<&VKMessageFile::strReceiverPin>("receiver_pin", Required{}),
    Field<&VKMessageFile::ulReceiverID>("receiver_id"),
    Field<&VKMessageFile::strCarrierName>("carrier_name"),
    Field<&VKMessageFile::strServer>("server"),
    Field<&VKMessageFile::strDomain>("domain"),
    Field<&VKMessageFile::strUserID>("user_id"),
    Field<&VKMessageFile::strPassword>("password"),
    Field<&VKMessageFile::strResource>("resource"),
    Field<&VKMessageFile::iPort>("port", Range{1, 65535}),
    Field<&VKMessageFile::tDispatchAt>("dispatch_at"),
    Field<&VKMessageFile::iSeverity>("severity"),
    Field<&VKMessageFile::iExpiration>("expiration"),
    Field<&VKMessageFile::bConfidential>("confidential"),
    Field<&VKMessageFile::bQueueWhenOffline>("queue_when_offline"),
    Field<&VKMessageFile::iSecondsToLive>("seconds_to_live"),
    Field<&VKMessageFile::bTwoWay>("two_way", Flag{}),
    Field<&VKMessageFile::vecAttachments>("attachments"),
    Field<&VKMessageFile::bPushEnabled>("push_enabled"),
    Field<&VKMessageFile::strPushDeviceToken>("push_device_token"),
    Field<&VKMessageFile::strPushServiceName>("push_service_name"),
    Field<&VKMessageFile::strCustomParameters>("custom_parameters"),
    Field<&VKMessageFile::vecResponseChoices>("response_choices"));

inline constexpr auto kResponseChoiceFields = Fields(
    Field<&VKMessageFile::ResponseChoice::strText>("text", Required{}),
    Field<&VKMessageFile::ResponseChoice::iType>("type", Required{}, ActionType{}));

} // namespace vk
