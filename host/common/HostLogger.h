#pragma once

#include "VKField.h"
#include "VKLogInterface.h"

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>

namespace vk {

/// The words for log levels on a command line.
inline constexpr CodeText<VKLogInterface::LogLevel> kLogLevelWords[] = {
    {VKLogInterface::TRACE, "trace"}, {VKLogInterface::DEBUG, "debug"}, {VKLogInterface::INFO, "info"},
    {VKLogInterface::WARN, "warn"},   {VKLogInterface::ERROR, "error"}, {VKLogInterface::CRITICAL, "critical"},
    {VKLogInterface::FATAL, "fatal"},
};

/// The log of a host program: one file to which lines are appended, so that several processes may share it. A host that
/// loads its driver as a plug-in brings its own logger and does not depend on the class library's. Any thread.
class HostLogger final : public VKLogInterface
{
public:
    /// Opens the file for appending; one that has grown past ten megabytes, now or later, is set aside as "FILE.1".
    /// Throws InputError when it cannot be written.
    HostLogger(const std::string& name, const std::string& file, LogLevel level);
    ~HostLogger() = default;
    HostLogger(const HostLogger&) = delete;
    HostLogger& operator=(const HostLogger&) = delete;

    bool WriteTrace(const std::string& message, int, char*) override { return Write(TRACE, message); }
    bool WriteDebug(const std::string& message, int, char*) override { return Write(DEBUG, message); }
    bool WriteInfo(const std::string& message, int, char*) override { return Write(INFO, message); }
    bool WriteWarn(const std::string& message, int, char*) override { return Write(WARN, message); }
    bool WriteError(const std::string& message, int, char*) override { return Write(ERROR, message); }
    bool WriteCritical(const std::string& message, int, char*) override { return Write(CRITICAL, message); }
    bool WriteFatal(const std::string& message, int, char*) override { return Write(FATAL, message); }
    void EnableThreadIdPrefix(bool enable) override;
    LogLevel GetLogLevel() override { return m_level; }
    std::string GetLoggerName() override { return m_name; }

    /// The messages of level ERROR and above since the last call, with "; " between them, for the terminal.
    std::string TakeErrors();

private:
    bool Write(LogLevel level, const std::string& message);

    const std::string m_name;
    const std::string m_path;
    const LogLevel m_level;
    std::mutex m_mutex;
    // Guarded by m_mutex.
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_file;
    std::string m_errors;
    bool m_threadPrefix = false;
};

} // namespace vk
