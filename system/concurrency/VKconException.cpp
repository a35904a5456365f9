#include "VKconException.h"

VKconException::VKconException(unsigned long threadId, const std::string& message)
    : VKException(message), ThreadID(threadId)
{
}

VKconException::VKconException(unsigned long threadId, const char* file, int line, const std::string& message)
    : VKException(file ? file : "", line, message), ThreadID(threadId)
{
}

VKconException::VKconException(unsigned long threadId, const char* file, int line, const std::string& message,
                               const std::string& systemMessage)
    : VKException(file ? file : "", line, message, systemMessage), ThreadID(threadId)
{
}

std::string VKconException::ToString() const
{
    // Meant: the thread shows as a signed 32-bit number.
    return "Exception raised! ThreadID[" + std::to_string(static_cast<int>(ThreadID)) + "] File[" + File + "] Line[" +
           std::to_string(Line) + "] Msg[" + Msg + "] SysMsg[" + SysMsg + "]";
}
