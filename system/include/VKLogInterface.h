#pragma once

#include <string>

/// The logger that every class receives as a pointer, which may be null. Call sites do not use the write operations
/// themselves but the macros of VKLog.h, which test the level before a text is formatted.
/// Loggers may be called from any thread. Nobody deletes a logger through this interface.
class VKLogInterface
{
public:
    /// Levels in rising order; the numbers stand in files and cross the library's border. A logger at NONE passes
    /// everything, as it does at TRACE.
    enum LogLevel { NONE = 0, TRACE = 1, DEBUG = 2, INFO = 3, WARN = 4, ERROR = 5, CRITICAL = 6, FATAL = 7 };

    // The slot order is fixed. Each write takes the source line and file of the call and tells whether the record was
    // taken.
    virtual bool WriteTrace(const std::string& message, int line, char* file) = 0;
    virtual bool WriteDebug(const std::string& message, int line, char* file) = 0;
    virtual bool WriteInfo(const std::string& message, int line, char* file) = 0;
    virtual bool WriteWarn(const std::string& message, int line, char* file) = 0;
    virtual bool WriteError(const std::string& message, int line, char* file) = 0;
    virtual bool WriteCritical(const std::string& message, int line, char* file) = 0;
    virtual bool WriteFatal(const std::string& message, int line, char* file) = 0;
    /// Whether each message begins with the identifier of the thread that wrote it.
    virtual void EnableThreadIdPrefix(bool enable) = 0;
    virtual LogLevel GetLogLevel() = 0;
    virtual std::string GetLoggerName() = 0;

protected:
    ~VKLogInterface() = default;
};
