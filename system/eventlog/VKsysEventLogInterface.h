#pragma once

#include "VKLogInterface.h"
#include "VKsysEventLogWriterInterface.h"

#include <atomic>
#include <cstdarg>
#include <memory>
#include <string>
#include <utility>
#include <vector>

/// A named logger, and the registry of all named loggers of the process. A logger writes through the writer that its
/// section of "vklogs.ini" names; what goes wrong here is told in VKsystemLog and is false to the caller.
///
///     auto* log = VKsysEventLogInterface::CreateInstance("mxp core", MULTI_THREADED, configDir, "");
///     if (log) log->Start();
///
/// The write operations may be called from any thread. They pass what is at or above the logger's level, and drop
/// everything, with false, while the logger is not started. The registry owns the loggers: at the end of the process it
/// stops them, and leaves the objects in place for whoever still holds one. Deleting a logger before that takes it out.
class VKsysEventLogInterface : public VKLogInterface
{
public:
    /// Which class CreateInstance makes.
    enum LoggerType : int { SINGLE_THREADED = 0, MULTI_THREADED = 1 };
    /// Selectors of the older formatted operations.
    enum Severity : int { SEVERITY_WARNING = 17, SEVERITY_ERROR = 18, SEVERITY_FATAL = 19 };
    enum TraceLevel : int { TRACE_LOW = 1, TRACE_MEDIUM = 2, TRACE_HIGH = 3 };

    // --- The logger. The slots of VKLogInterface, then those of this class.

    bool WriteTrace(const std::string& message, int line, char* file) override;
    bool WriteDebug(const std::string& message, int line, char* file) override;
    bool WriteInfo(const std::string& message, int line, char* file) override;
    bool WriteWarn(const std::string& message, int line, char* file) override;
    bool WriteError(const std::string& message, int line, char* file) override;
    bool WriteCritical(const std::string& message, int line, char* file) override;
    /// Passes at every level.
    bool WriteFatal(const std::string& message, int line, char* file) override;
    void EnableThreadIdPrefix(bool enable) override;
    LogLevel GetLogLevel() override;
    std::string GetLoggerName() override;

    virtual ~VKsysEventLogInterface();
    /// The writer, which the logger owns; null before initialize().
    virtual VKsysEventLogWriterInterface* GetWriter();
    virtual void setLogLevel(VKsysEventLogWriterInterface::LogLevel level);
    virtual void SetLogLevel(VKLogInterface::LogLevel level);
    /// Takes the name and makes the writer that "vklogs.ini" in configDir tells.
    virtual bool initialize(std::string configDir, std::string loggerName);
    /// Lets records through; false when there is no writer that is ready.
    virtual bool Start();
    /// Drops records from now on. A stopped logger may be started again.
    virtual bool Stop();
    virtual bool IsAlive();
    /// Hands one record that has passed the level to the writer.
    virtual bool Print(LogLevel level, std::string message, int line, const char* file) = 0;

    // --- Older formatted operations: the text is cut at 2047 characters and goes behind the prefix, which may be null.
    // False for a null format and while the logger is not started.

    bool Print(const char* prefix, const char* format, ...) __attribute__((format(printf, 3, 4)));
    bool WriteInfo(const char* prefix, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// Adds the text of errno.
    bool WriteSystemError(const char* prefix, const char* format, ...) __attribute__((format(printf, 3, 4)));
    bool WriteError(Severity severity, const char* prefix, int line, const char* file, const char* format, ...)
        __attribute__((format(printf, 6, 7)));
    bool WriteTrace(TraceLevel level, const char* prefix, int line, const char* file, const char* format, ...)
        __attribute__((format(printf, 6, 7)));
    static std::string format2String(const char* format, ...) __attribute__((format(printf, 1, 2)));

    // --- The registry.

    /// The logger of that name, made, but not started, when there is none; null when it cannot be. It belongs to the
    /// registry. `logDir` is where new log files go; empty means the directory "logs" beside configDir.
    static VKsysEventLogInterface* CreateInstance(const std::string& name, LoggerType type, std::string configDir,
                                                  const std::string& logDir);
    /// The same with a ready writer, without a look at the configuration. An existing logger keeps its own writer.
    static VKsysEventLogInterface* CreateInstance(const std::string& name, LoggerType type,
                                                  std::unique_ptr<VKsysEventLogWriterInterface> writer,
                                                  LogLevel level = INFO);
    /// The first logger, or the one of that name. There must be one: otherwise throws a text, as char*, that stays
    /// valid until the thread's next such call. Line and file are the place of the call, 0 and null when unknown.
    static VKsysEventLogInterface* GetInstance(int line, const char* file);
    static VKsysEventLogInterface* GetInstance(std::string name, int line, const char* file);
    static bool IsInstanceAvailable();
    static bool IsInstanceAvailable(const std::string& name);

    /// The registered object, or null.
    static VKsysEventLogInterface* getVKsysEventLogInterfaceObject(int index);
    static VKsysEventLogInterface* getVKsysEventLogInterfaceObject(const std::string& name);
    /// Registers an object, which replaces and deletes another one of that name. False when all places are taken.
    static bool setVKsysEventLogInterfaceObject(const std::string& name, VKsysEventLogInterface* object);

    // --- "vklogs.ini" in the configuration directory `dir`. Loggers that exist do not notice changes.

    static std::string getConfigFileName(const std::string& dir);
    /// The directory "logs" beside `dir`, or a path in it for a log file of that name that is not in use.
    static std::string getLogDirPath(const std::string& dir, std::string name);
    static bool createLogger(const std::string& name, const std::string& dir);
    /// Takes a logger out of the file and deletes its log files.
    static bool deleteLogger(const std::string& name, const std::string& dir);
    static bool updateLoggerName(const std::string& oldName, const std::string& newName, const std::string& dir);
    /// The keys and values of a logger's section in the file at that path; `section` receives the section's name with
    /// its brackets.
    static bool getModuleAttributeValues(const std::string& name, std::string& section, const std::string& file,
                                         std::vector<std::pair<std::string, std::string>>& values);
    static bool generateConfigFile(const std::string& name, const std::string& dir, const std::string& logDir);
    static bool checkAndRepairConfigFile(const std::string& name, const std::string& dir, const std::string& logDir);
    /// Deletes the files of `dir` that match the pattern, and their lock files.
    static bool DeleteLoggerFiles(std::string dir, const char* pattern);

    /// The name of this process in syslog.
    static void setProcessName(const std::string& name);
    static std::string getProcessName();

protected:
    VKsysEventLogInterface() = default;

    bool loadWriterConfig();
    /// Hands a record to the writer at once. Throws nothing.
    bool WriteRecord(LogLevel level, std::string message, int line, const char* file, long timestamp);

private:
    struct Table;
    struct EndOfProcess;

    static Table& TheTable();
    static std::unique_ptr<VKsysEventLogInterface> MakeByType(LoggerType type);
    static VKsysEventLogInterface* Register(std::unique_ptr<VKsysEventLogInterface> logger);

    bool Pass(LogLevel level, const std::string& message, int line, const char* file);
    bool PassFormatted(LogLevel level, const char* prefix, int line, const char* file, const char* format,
                       va_list arguments, const std::string& behind = {});
    bool PrePrint(LogLevel level, std::string message, int line, const char* file);

    std::string m_strConfigFile;
    std::string m_strName;
    std::unique_ptr<VKsysEventLogWriterInterface> m_pobjWriter;
    std::atomic<LogLevel> m_level{NONE};
    std::atomic<bool> m_bRunning{false};
    std::atomic<bool> m_bThreadPrefix{false};
};
