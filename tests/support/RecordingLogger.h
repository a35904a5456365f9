#pragma once

#include "VKLogInterface.h"

#include <mutex>
#include <string>
#include <vector>

namespace vktest {

/// A logger that keeps what it is given. Safe for threads.
class RecordingLogger final : public VKLogInterface
{
public:
    struct Record
    {
        LogLevel level;
        std::string message;
    };

    explicit RecordingLogger(LogLevel level = TRACE) : m_level(level) {}

    bool WriteTrace(const std::string& message, int, char*) override { return Keep(TRACE, message); }
    bool WriteDebug(const std::string& message, int, char*) override { return Keep(DEBUG, message); }
    bool WriteInfo(const std::string& message, int, char*) override { return Keep(INFO, message); }
    bool WriteWarn(const std::string& message, int, char*) override { return Keep(WARN, message); }
    bool WriteError(const std::string& message, int, char*) override { return Keep(ERROR, message); }
    bool WriteCritical(const std::string& message, int, char*) override { return Keep(CRITICAL, message); }
    bool WriteFatal(const std::string& message, int, char*) override { return Keep(FATAL, message); }
    void EnableThreadIdPrefix(bool) override {}
    LogLevel GetLogLevel() override { return m_level; }
    std::string GetLoggerName() override { return "recording"; }

    std::vector<Record> Records() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_records;
    }

    /// The messages of one level, in order.
    std::vector<std::string> Messages(LogLevel level) const
    {
        std::vector<std::string> messages;
        for (const Record& record : Records())
            if (record.level == level)
                messages.push_back(record.message);
        return messages;
    }

    bool Has(const std::string& text) const { return CountContaining(text) > 0; }

    /// How many messages contain this text.
    int CountContaining(const std::string& text) const
    {
        int count = 0;
        for (const Record& record : Records())
            count += record.message.find(text) != std::string::npos ? 1 : 0;
        return count;
    }

    void Clear()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_records.clear();
    }

private:
    bool Keep(LogLevel level, const std::string& message)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_records.push_back({level, message});
        return true;
    }

    mutable std::mutex m_mutex;
    std::vector<Record> m_records; // guarded by m_mutex
    LogLevel m_level;
};

/// The logger of the one core manager, which keeps its first: for all suites that run in this process.
inline RecordingLogger& CoreLogger()
{
    static RecordingLogger logger;
    return logger;
}

} // namespace vktest
