#include "VKReceiverView.h"

#include "VKRecordList.h"

void AddReceiverView(VK_RECEIVER_VIEW_LIST* list, const VK_RECEIVER_VIEW* view)
{
    vk::AppendRecord(list->list, list->count, *view);
}

void EmptyReceiverViewList(VK_RECEIVER_VIEW_LIST* list) { vk::FreeRecords(list->list, list->count); }
