#include "VKDeviceStatus.h"

#include "VKRecordList.h"

void EmptyDeviceStatusList(VK_DEVICE_STATUS_LIST* list) { vk::FreeRecords(list->list, list->count); }

void AddDeviceStatus(VK_DEVICE_STATUS_LIST* list, const VK_DEVICE_STATUS* status)
{
    vk::AppendRecord(list->list, list->count, *status);
}

void DuplicateDeviceStatusList(VK_DEVICE_STATUS_LIST* to, const VK_DEVICE_STATUS_LIST* from)
{
    if (to == from)
        return;
    EmptyDeviceStatusList(to);
    vk::CopyRecords(to->list, to->count, from->list, from->count);
}
