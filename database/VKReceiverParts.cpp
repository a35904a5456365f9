#include "VKReceiverParts.h"

#include <cstring>

#include "VKRecordList.h"

namespace {

char* CopyOfText(const char* text)
{
    char* const copy = text == nullptr ? nullptr : strdup(text);
    if (text != nullptr && copy == nullptr)
        throw std::bad_alloc();
    return copy;
}

} // namespace

void AddDisableHistory(VK_DISABLE_HISTORY_LIST* list, const VK_DISABLE_HISTORY* history)
{
    vk::AppendRecord(list->list, list->count, *history);
}

void EmptyDisableHistoryList(VK_DISABLE_HISTORY_LIST* list) { vk::FreeRecords(list->list, list->count); }

void EmptyAttribute(VK_ATTRIBUTE* attribute)
{
    std::free(attribute->attr_values);
    std::free(attribute->misc);
    *attribute = VK_ATTRIBUTE{};
}

void AddAttribute(VK_ATTRIBUTE_LIST* list, const VK_ATTRIBUTE* attribute)
{
    VK_ATTRIBUTE copy = *attribute;
    copy.attr_values = copy.misc = nullptr;
    try {
        copy.attr_values = CopyOfText(attribute->attr_values);
        copy.misc = CopyOfText(attribute->misc);
        vk::AppendRecord(list->list, list->count, copy);
    } catch (...) {
        EmptyAttribute(&copy);
        throw;
    }
}

void EmptyAttributeList(VK_ATTRIBUTE_LIST* list)
{
    for (int i = 0; i < list->count; ++i)
        EmptyAttribute(&list->list[i]);
    vk::FreeRecords(list->list, list->count);
}

void AddReceiverAttribute(VK_RECEIVER_ATTRIBUTE_LIST* list, const VK_RECEIVER_ATTRIBUTE* attribute)
{
    vk::AppendRecord(list->list, list->count, *attribute);
}

void EmptyReceiverAttributeList(VK_RECEIVER_ATTRIBUTE_LIST* list) { vk::FreeRecords(list->list, list->count); }
