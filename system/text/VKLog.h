#pragma once

#include "VKLogInterface.h"
#include "VKprintf.h"

#include <exception>
#include <string>
#include <utility>

/// \file
/// How this system logs. The macros test for a null logger and for the level before an argument is evaluated, so a
/// line that is not wanted costs one virtual call:
///
///     VK_LOG_INFO(logger, "Job ID: [%s] >> Handed over to %s.", jobId.c_str(), name.c_str());
///
/// A scope object writes the enter and leave lines of an operation:
///
///     VK_LOG_SCOPE(scope, m_logger, "VKMXPSession::Initialize()");
///     return scope.Result(true);    // "Leaving VKMXPSession::Initialize() with TRUE."

#define VK_LOG(logger, level, ...)                                                                                     \
    do {                                                                                                               \
        VKLogInterface* const vkLogTarget = (logger);                                                                  \
        if (vk::LogWanted(vkLogTarget, level))                                                                         \
            vk::LogWrite(*vkLogTarget, level, VK_LOG_PLACE, printfToString(__VA_ARGS__));                              \
    } while (false)

#define VK_LOG_TRACE(logger, ...) VK_LOG(logger, VKLogInterface::TRACE, __VA_ARGS__)
#define VK_LOG_DEBUG(logger, ...) VK_LOG(logger, VKLogInterface::DEBUG, __VA_ARGS__)
#define VK_LOG_INFO(logger, ...) VK_LOG(logger, VKLogInterface::INFO, __VA_ARGS__)
#define VK_LOG_WARN(logger, ...) VK_LOG(logger, VKLogInterface::WARN, __VA_ARGS__)
#define VK_LOG_ERROR(logger, ...) VK_LOG(logger, VKLogInterface::ERROR, __VA_ARGS__)
#define VK_LOG_CRITICAL(logger, ...) VK_LOG(logger, VKLogInterface::CRITICAL, __VA_ARGS__)
#define VK_LOG_FATAL(logger, ...) VK_LOG(logger, VKLogInterface::FATAL, __VA_ARGS__)

/// The place of the call, for what takes a LogPlace.
#define VK_LOG_PLACE (vk::LogPlace{__LINE__, __FILE__})

/// Declares `scope`, which writes "Entering NAME" now and "Leaving NAME ..." at the end of the block.
#define VK_LOG_SCOPE(scope, logger, name) vk::LogScope scope((logger), VK_LOG_PLACE, (name))

/// The same with a formatted text in front of both lines: VK_LOG_SCOPE_PREFIX(scope, logger,
/// "VKMxpDriver::Configure()", "Job ID: [%s] >> ", id).
#define VK_LOG_SCOPE_PREFIX(scope, logger, name, ...)                                                                  \
    vk::LogScope scope((logger), VK_LOG_PLACE, (name),                                                                 \
                       vk::LogWanted((logger), VKLogInterface::TRACE) ? printfToString(__VA_ARGS__) : std::string())

namespace vk {

/// A place in the source.
struct LogPlace
{
    int line;
    const char* file;
};

/// Whether this logger would write a line of this level. The logger may be null.
inline bool LogWanted(VKLogInterface* logger, VKLogInterface::LogLevel level)
{
    return logger && logger->GetLogLevel() <= level;
}

/// Writes a ready text; false when the logger did not take it.
bool LogWrite(VKLogInterface& logger, VKLogInterface::LogLevel level, LogPlace place, const std::string& message);

/// Writes the trace lines at the begin and end of an operation. Without a logger, or with trace switched off when the
/// operation begins, it does nothing. The logger and the name must outlive it; use it on one thread.
class LogScope
{
public:
    /// `prefix` stands in front of both lines. `opening` replaces "Entering NAME" where an operation's text departs
    /// from it.
    LogScope(VKLogInterface* logger, LogPlace place, const char* name, std::string prefix = {},
             const char* opening = nullptr)
        : m_logger(LogWanted(logger, VKLogInterface::TRACE) ? logger : nullptr), m_place(place), m_name(name),
          m_prefix(std::move(prefix))
    {
        if (m_logger)
            Enter(opening);
    }
    LogScope(const LogScope&) = delete;
    LogScope& operator=(const LogScope&) = delete;

    /// Writes "Leaving NAME with RESULT.", "Leaving NAME" when no result was given, or "Leaving NAME with an
    /// exception." when the block is left by one.
    ~LogScope()
    {
        if (m_logger)
            Leave();
    }

    /// Each of these notes the result for the leave line and hands it through: "TRUE" or "FALSE", "OBJECT" or "NULL",
    /// or a number.
    bool Result(bool result)
    {
        SetResult(result ? "TRUE" : "FALSE");
        return result;
    }
    int Result(int result);
    template <class T> T* Result(T* result)
    {
        SetResult(result ? "OBJECT" : "NULL");
        return result;
    }

    /// Any other result text.
    void SetResult(const char* text)
    {
        if (m_logger)
            m_result = text;
    }

private:
    void Enter(const char* opening);
    void Leave() noexcept;
    void Write(const std::string& text);

    VKLogInterface* m_logger; ///< null when nothing is to be written
    LogPlace m_place;
    const char* m_name;
    std::string m_prefix;
    std::string m_result;
    int m_exceptionsAtEntry = 0;
};

} // namespace vk
