#pragma once

#include "VKLogInterface.h"

#include <map>
#include <memory>
#include <string>

/// What turns one log record into a line of a file or a row of a database. The parameters come from the logger's
/// section of "vklogs.ini". A writer never throws: a failure is false plus a line in VKsystemLog.
class VKsysEventLogWriterInterface
{
public:
    using LogLevel = VKLogInterface::LogLevel;

    enum WriterTypes : int { FILE_WRITER = 0, SQLITE_WRITER = 5 };

    VKsysEventLogWriterInterface();
    virtual ~VKsysEventLogWriterInterface();
    VKsysEventLogWriterInterface(const VKsysEventLogWriterInterface&) = delete;
    VKsysEventLogWriterInterface& operator=(const VKsysEventLogWriterInterface&) = delete;

    /// Takes one key of the section. False for a value that cannot serve; unknown keys are passed over with true.
    virtual bool setParameter(std::string& key, std::string& value) = 0;
    /// Writes one record of the logger `name`. `line` and `file` are the place in the source, `file` may be null; the
    /// time stamp is in seconds, 0 for now. Called by one thread at a time or by many, as the logger is.
    virtual bool operator()(std::string name, LogLevel level, std::string message, int line, const char* file,
                            long timestamp) = 0;
    /// Whether all that this writer needs has been set.
    virtual bool isInitialized() = 0;

    /// A new writer, which belongs to the caller; null for a type that nobody has registered.
    static VKsysEventLogWriterInterface* CreateInstance(WriterTypes type);
    /// Makes a type known: for writers that stand on a higher floor, such as the one into a database. Replaces what the
    /// type made before; null forgets the type.
    using Factory = std::unique_ptr<VKsysEventLogWriterInterface> (*)();
    static void RegisterFactory(WriterTypes type, Factory factory);

    /// A number as a level; numbers that are none give INFO.
    static LogLevel getLogLevel(int level);
    /// A configuration word, in any case, as a level; unknown words give WARN, or NONE when unknownIsNone is set.
    static LogLevel getLogLevel(const std::string& word, bool unknownIsNone);
    static int getLogLevelInt(LogLevel level) { return level; }
    /// "TRACE" for 1, and so on.
    static std::string getLogLevelString(int level);
    /// Returns `seconds`, or the current time for 0, and fills *text, unless it is null, with "MM/DD/YYYY HH:MM:SS" in
    /// local time.
    static long getTimeStamp(long seconds, std::string* text);

protected:
    /// "[INFO]" and so on; empty for NONE and for numbers that are no level.
    std::string getLabel(LogLevel level) const;

private:
    std::map<LogLevel, std::string> m_labels;
};
