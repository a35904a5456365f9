#include "VKMessageHeader.h"

#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <new>

#include "VKRecordList.h"
#include "VKprintf.h"

void EmptyMessageHeaderList(VK_MESSAGE_HEADER_LIST* list) { vk::FreeRecords(list->list, list->count); }

void AddMessageHeader(VK_MESSAGE_HEADER_LIST* list, const VK_MESSAGE_HEADER* header)
{
    vk::AppendRecord(list->list, list->count, *header);
}

void EmptyMessageContent(VK_MESSAGE_CONTENT* content)
{
    std::free(content->body);
    *content = VK_MESSAGE_CONTENT{};
}

void AddMessageContent(VK_MESSAGE_CONTENT* content, const std::string& text)
{
    void* const grown = std::realloc(content->body, content->length + text.size() + 1);
    if (grown == nullptr)
        throw std::bad_alloc();
    content->body = static_cast<char*>(grown);
    std::memcpy(content->body + content->length, text.c_str(), text.size() + 1);
    content->length += text.size();
}

void AddMessageContentFormat(VK_MESSAGE_CONTENT* content, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const std::string text = vk::FormatV(format, arguments);
    va_end(arguments);
    AddMessageContent(content, text);
}
