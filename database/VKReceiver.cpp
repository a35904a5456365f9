#include "VKReceiver.h"

#include <cstring>

#include "VKRecordList.h"

void EmptyReceiver(VK_RECEIVER* receiver)
{
    std::free(receiver->misc_settings);
    delete receiver->adv_messaging;
    std::free(receiver->mxp);
    std::free(receiver->block);
    vk::FreeRecords(receiver->dept_rights, receiver->dept_rights_count);
    vk::FreeRecords(receiver->schedules, receiver->schedule_count);
    *receiver = VK_RECEIVER{};
}

void DuplicateReceiver(VK_RECEIVER* dst, const VK_RECEIVER* src)
{
    if (dst == src)
        return;
    EmptyReceiver(dst);
    *dst = *src;
    dst->misc_settings = nullptr; // what fails below must not leave src's own in dst
    dst->adv_messaging = nullptr;
    dst->mxp = nullptr;
    dst->block = nullptr;
    dst->dept_rights = nullptr;
    dst->schedules = nullptr;
    dst->dept_rights_count = dst->schedule_count = 0;
    if (src->misc_settings != nullptr && (dst->misc_settings = strdup(src->misc_settings)) == nullptr)
        throw std::bad_alloc();
    if (src->adv_messaging != nullptr)
        *NeedAdvMessaging(dst) = *src->adv_messaging;
    if (src->mxp != nullptr)
        *NeedMxpFields(dst) = *src->mxp;
    vk::CopyRecords(dst->dept_rights, dst->dept_rights_count, src->dept_rights, src->dept_rights_count);
    vk::CopyRecords(dst->schedules, dst->schedule_count, src->schedules, src->schedule_count);
}

void AddReceiver(VK_RECEIVER_LIST* list, const VK_RECEIVER* receiver)
{
    VK_RECEIVER copy;
    DuplicateReceiver(&copy, receiver);
    try {
        vk::AppendRecord(list->list, list->count, copy);
    } catch (...) {
        EmptyReceiver(&copy);
        throw;
    }
}

void EmptyReceiverList(VK_RECEIVER_LIST* list)
{
    for (int i = 0; i < list->count; ++i)
        EmptyReceiver(&list->list[i]);
    vk::FreeRecords(list->list, list->count);
}

void AddDeptRights(VK_RECEIVER* receiver, unsigned long departmentId)
{
    VK_DEPT_RIGHTS rights;
    rights.owner_id = receiver->id;
    rights.department_id = departmentId;
    vk::AppendRecord(receiver->dept_rights, receiver->dept_rights_count, rights);
}
