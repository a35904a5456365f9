#include "VKprintf.h"

#include <cstdio>

namespace vk {

std::string FormatV(const char* format, va_list arguments)
{
    if (!format)
        return {};

    va_list again;
    va_copy(again, arguments);
    char buffer[4096];
    const int length = vsnprintf(buffer, sizeof(buffer), format, arguments);
    std::string text;
    if (length >= static_cast<int>(sizeof(buffer))) {
        text.resize(static_cast<std::size_t>(length) + 1);
        vsnprintf(text.data(), text.size(), format, again);
        text.pop_back();
    } else if (length > 0) {
        text.assign(buffer, static_cast<std::size_t>(length));
    }
    va_end(again);
    return text;
}

} // namespace vk

std::string printfToString(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    std::string text = vk::FormatV(format, arguments);
    va_end(arguments);
    return text;
}
