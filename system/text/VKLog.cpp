#include "VKLog.h"

namespace vk {

bool LogWrite(VKLogInterface& logger, VKLogInterface::LogLevel level, LogPlace place, const std::string& message)
{
    char* file = const_cast<char*>(place.file); // the interface's slots take it so, and do not write to it
    switch (level) {
    case VKLogInterface::NONE:
        return false;
    case VKLogInterface::TRACE:
        return logger.WriteTrace(message, place.line, file);
    case VKLogInterface::DEBUG:
        return logger.WriteDebug(message, place.line, file);
    case VKLogInterface::INFO:
        return logger.WriteInfo(message, place.line, file);
    case VKLogInterface::WARN:
        return logger.WriteWarn(message, place.line, file);
    case VKLogInterface::ERROR:
        return logger.WriteError(message, place.line, file);
    case VKLogInterface::CRITICAL:
        return logger.WriteCritical(message, place.line, file);
    case VKLogInterface::FATAL:
        return logger.WriteFatal(message, place.line, file);
    }
    return false;
}

void LogScope::Enter(const char* opening)
{
    m_exceptionsAtEntry = std::uncaught_exceptions();
    Write(opening ? std::string(opening) : std::string("Entering ") + m_name);
}

void LogScope::Leave() noexcept
{
    try {
        std::string text = std::string("Leaving ") + m_name;
        if (std::uncaught_exceptions() > m_exceptionsAtEntry)
            text += " with an exception.";
        else if (!m_result.empty())
            text += " with " + m_result + ".";
        Write(text);
    } catch (const std::exception&) {
        // A trace line that cannot be written must not end the operation.
    }
}

int LogScope::Result(int result)
{
    if (m_logger)
        m_result = std::to_string(result);
    return result;
}

void LogScope::Write(const std::string& text) { LogWrite(*m_logger, VKLogInterface::TRACE, m_place, m_prefix + text); }

} // namespace vk
