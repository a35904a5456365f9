#include "VKsystemError.h"

#include <cerrno>
#include <cstring>

std::string VKgetLastError()
{
    const int code = errno;
    char buffer[1024] = {};
    std::string text = strerror_r(code, buffer, sizeof(buffer) - 1);
    errno = code;
    return text;
}
