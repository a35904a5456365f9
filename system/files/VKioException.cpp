#include "VKioException.h"

VKioException::VKioException(const std::string& path, const std::string& message) : VKException(message), Path(path) {}

VKioException::VKioException(const std::string& path, const std::string& file, int line, const std::string& message,
                             const std::string& systemMessage)
    : VKException(file, line, message, systemMessage), Path(path)
{
}

std::string VKioException::ToString() const
{
    return "Exception raised! IO path[" + Path + "] File[" + File + "] Line[" + std::to_string(Line) + "] Msg[" + Msg +
           "] SysMsg[" + SysMsg + "]";
}
