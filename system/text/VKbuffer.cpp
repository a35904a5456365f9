#include "VKbuffer.h"

#include <climits>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int kSpare = 100;

/// Room for `length` characters, one zero and one more byte.
bool Grow(VDK_BUFFER* buffer, int length)
{
    if (buffer->data && length + 2 <= buffer->capacity)
        return true;
    char* const grown = static_cast<char*>(std::realloc(buffer->data, static_cast<std::size_t>(length) + kSpare));
    if (!grown)
        return false;
    grown[buffer->used] = '\0';
    buffer->data = grown;
    buffer->capacity = length + kSpare;
    return true;
}

} // namespace

int InitVdkBuffer(VDK_BUFFER* buffer, int size)
{
    if (!buffer)
        return -1;
    *buffer = VDK_BUFFER{nullptr, 0, 0};
    if (size <= 0)
        return 0;
    buffer->data = static_cast<char*>(std::calloc(static_cast<std::size_t>(size), 1));
    buffer->capacity = buffer->data ? size : 0;
    return buffer->data ? 0 : -1;
}

void ResetVdkBuffer(VDK_BUFFER* buffer)
{
    if (!buffer)
        return;
    if (buffer->data)
        std::memset(buffer->data, 0, static_cast<std::size_t>(buffer->capacity));
    buffer->used = 0;
}

void EmptyVdkBuffer(VDK_BUFFER* buffer)
{
    if (!buffer)
        return;
    std::free(buffer->data);
    *buffer = VDK_BUFFER{nullptr, 0, 0};
}

int AppendDataToVdkBuffer(VDK_BUFFER* buffer, const char* text)
{
    const std::size_t length = text ? std::strlen(text) : 0;
    return length > INT_MAX ? -1 : AppendDataToVdkBufferWithSize(buffer, text, static_cast<int>(length));
}

int AppendDataToVdkBufferWithSize(VDK_BUFFER* buffer, const char* text, int length)
{
    if (!buffer || length < 0)
        return -1;
    if (!text || length == 0)
        return 0;
    if (length > INT_MAX - kSpare - buffer->used || !Grow(buffer, buffer->used + length))
        return -1;
    const std::size_t copied = strnlen(text, static_cast<std::size_t>(length));
    std::memcpy(buffer->data + buffer->used, text, copied);
    buffer->used += static_cast<int>(copied);
    buffer->data[buffer->used] = '\0';
    return 0;
}
