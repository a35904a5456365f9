#include "VKException.h"

VKException::VKException(const std::string& message) : Msg(message) {}

VKException::VKException(const std::string& file, int line, const std::string& message,
                         const std::string& systemMessage)
    : Msg(message), File(file), Line(line), SysMsg(systemMessage)
{
}

const char* VKException::what() const noexcept
{
    return std::exception::what(); // meant: the message is not shown here
}

std::string VKException::ToString() const
{
    return "Exception raised! File[" + File + "] Line[" + std::to_string(Line) + "] Msg[" + Msg + "] SysMsg[" + SysMsg +
           "]";
}

std::string VKException::GetMsg() const { return Msg; }
std::string VKException::GetFile() const { return File; }
int VKException::GetLine() const { return Line; }
std::string VKException::GetSysMsg() const { return SysMsg; }
