#pragma once

#include "VKField.h"

/// A status that a device can be set to, from the file "device_status_config".
struct VK_DEVICE_STATUS
{
    int status_code = 0;
    char status_name[51] = {};
    char status_desp[256] = {};
    bool status_disabled = false;
    bool allow_cover_by = false;
    bool force_cover_by = false;
};

/// Statuses in an array that the list owns (malloc).
struct VK_DEVICE_STATUS_LIST
{
    int count = 0;
    VK_DEVICE_STATUS* list = nullptr;
};

/// Frees the array and zeroes the list.
void EmptyDeviceStatusList(VK_DEVICE_STATUS_LIST* list);
/// Adds a copy at the end.
void AddDeviceStatus(VK_DEVICE_STATUS_LIST* list, const VK_DEVICE_STATUS* status);
/// Makes `to` a copy; its old elements are freed.
void DuplicateDeviceStatusList(VK_DEVICE_STATUS_LIST* to, const VK_DEVICE_STATUS_LIST* from);

namespace vk {

/// Mark: the word that makes a flag true.
struct TrueWord
{
    const char* word;
};

/// The keys of the file; the first one begins a group.
inline constexpr auto kDeviceStatusFields =
    Fields(Field<&VK_DEVICE_STATUS::status_code>("status_code:"), Field<&VK_DEVICE_STATUS::status_name>("status_name:"),
           Field<&VK_DEVICE_STATUS::status_desp>("status_desp:"),
           Field<&VK_DEVICE_STATUS::status_disabled>("status_disabled:", TrueWord{"ON"}),
           Field<&VK_DEVICE_STATUS::allow_cover_by>("allow_cover_by:", TrueWord{"1"}),
           Field<&VK_DEVICE_STATUS::force_cover_by>("force_cover_by:", TrueWord{"1"}));

} // namespace vk
