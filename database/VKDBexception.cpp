#include "VKDBexception.h"

#include <cstdio>

VKDBexception::VKDBexception(int errorCode, const std::string& message) : m_strMessage(message), m_iErrorCode(errorCode)
{
}

VKDBexception::VKDBexception(int errorCode, const std::string& file, int line, const std::string& message)
    : m_strMessage(message), m_strFile(file), m_iLine(line), m_iErrorCode(errorCode)
{
}

VKDBexception::VKDBexception(int errorCode, const std::string& file, int line, const std::string& message,
                             const std::string& sysMsg)
    : m_strMessage(message), m_strFile(file), m_iLine(line), m_iErrorCode(errorCode), m_strSysMsg(sysMsg)
{
}

VKDBexception::~VKDBexception() = default;

std::string VKDBexception::ToString() const
{
    char code[16];
    std::snprintf(code, sizeof code, "%X", static_cast<unsigned int>(m_iErrorCode));
    return std::string("Exception raised! Error code[") + code + "] File[" + m_strFile + "] Line[" +
           std::to_string(m_iLine) + "] Msg[" + m_strMessage + "] SysMsg[" + m_strSysMsg + "]";
}
