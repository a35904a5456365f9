#include "VKsysEventLogInterface.h"

#include "LogConfigFile.h"
#include "LogGuard.h"
#include "VKField.h"
#include "VKsystemError.h"
#include "VKthread.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <strings.h>
#include <vector>

namespace {

using WriterTypes = VKsysEventLogWriterInterface::WriterTypes;

constexpr auto kNoWriter = static_cast<WriterTypes>(-1);

constexpr vk::CodeText<WriterTypes> kWriterWords[] = {
    {WriterTypes::FILE_WRITER, "file"},
    {WriterTypes::FILE_WRITER, "qtdebug"}, // has no other treatment
    {WriterTypes::SQLITE_WRITER, "sqlite"},
};

constexpr std::size_t kFormatBuffer = 2048;

/// The text of an older formatted operation, cut at 2047 characters and put behind the prefix.
std::string Prefixed(const char* prefix, const char* format, va_list arguments)
{
    char buffer[kFormatBuffer] = {};
    vsnprintf(buffer, sizeof buffer, format, arguments);
    return prefix ? std::string(prefix) + " " + buffer : std::string(buffer);
}

using LogLevel = VKLogInterface::LogLevel;

/// The level behind a selector of the older operations; NONE for a number that selects none.
struct Selected
{
    int selector;
    LogLevel level;
};
constexpr Selected kSeverities[] = {{VKsysEventLogInterface::SEVERITY_WARNING, LogLevel::WARN},
                                    {VKsysEventLogInterface::SEVERITY_ERROR, LogLevel::ERROR},
                                    {VKsysEventLogInterface::SEVERITY_FATAL, LogLevel::FATAL}};
constexpr Selected kTraceLevels[] = {{VKsysEventLogInterface::TRACE_LOW, LogLevel::DEBUG},
                                     {VKsysEventLogInterface::TRACE_MEDIUM, LogLevel::DEBUG},
                                     {VKsysEventLogInterface::TRACE_HIGH, LogLevel::TRACE}};

template <std::size_t Size> LogLevel LevelOf(const Selected (&rows)[Size], int selector)
{
    for (const Selected& row : rows)
        if (row.selector == selector)
            return row.level;
    return LogLevel::NONE;
}

} // namespace

// --- Levels. NONE stops nothing: it stands below TRACE and passes all that TRACE passes.

bool VKsysEventLogInterface::WriteTrace(const std::string& message, int line, char* file)
{
    return Pass(TRACE, message, line, file);
}

bool VKsysEventLogInterface::WriteDebug(const std::string& message, int line, char* file)
{
    return Pass(DEBUG, message, line, file);
}

bool VKsysEventLogInterface::WriteInfo(const std::string& message, int line, char* file)
{
    return Pass(INFO, message, line, file);
}

bool VKsysEventLogInterface::WriteWarn(const std::string& message, int line, char* file)
{
    return Pass(WARN, message, line, file);
}

bool VKsysEventLogInterface::WriteError(const std::string& message, int line, char* file)
{
    return Pass(ERROR, message, line, file);
}

bool VKsysEventLogInterface::WriteCritical(const std::string& message, int line, char* file)
{
    return Pass(CRITICAL, message, line, file);
}

bool VKsysEventLogInterface::WriteFatal(const std::string& message, int line, char* file)
{
    return Pass(FATAL, message, line, file);
}

/// No level is above FATAL, so for it the running flag alone decides.
bool VKsysEventLogInterface::Pass(LogLevel level, const std::string& message, int line, const char* file)
{
    if (!m_bRunning || m_level > level)
        return false;
    return vk::GuardLog("VKsysEventLogInterface::Print", "Unknown error",
                        [&] { return PrePrint(level, message, line, file); });
}

bool VKsysEventLogInterface::PrePrint(LogLevel level, std::string message, int line, const char* file)
{
    if (m_bThreadPrefix)
        message.insert(0, "[TID:" + std::to_string(GetMyThreadID()) + "] ");
    return Print(level, std::move(message), line, file);
}

bool VKsysEventLogInterface::WriteRecord(LogLevel level, std::string message, int line, const char* file,
                                         long timestamp)
{
    return vk::GuardLog("VKsysEventLogInterface::WriteRecord", "Unknown error", [&] {
        return m_pobjWriter && (*m_pobjWriter)(m_strName, level, std::move(message), line, file, timestamp);
    });
}

void VKsysEventLogInterface::EnableThreadIdPrefix(bool enable) { m_bThreadPrefix = enable; }

VKLogInterface::LogLevel VKsysEventLogInterface::GetLogLevel() { return m_level.load(std::memory_order_relaxed); }

std::string VKsysEventLogInterface::GetLoggerName() { return m_strName; }

VKsysEventLogWriterInterface* VKsysEventLogInterface::GetWriter() { return m_pobjWriter.get(); }

void VKsysEventLogInterface::setLogLevel(VKsysEventLogWriterInterface::LogLevel level) { m_level = level; }

void VKsysEventLogInterface::SetLogLevel(VKLogInterface::LogLevel level) { m_level = level; }

// --- Life.

bool VKsysEventLogInterface::initialize(std::string configDir, std::string loggerName)
{
    m_strConfigFile = getConfigFileName(configDir);
    m_strName = std::move(loggerName);
    return loadWriterConfig();
}

bool VKsysEventLogInterface::loadWriterConfig()
{
    constexpr const char* kName = "VKsysEventLogInterface::loadWriterConfig";
    vk::LoggerSection section;
    if (!vk::ReadLoggerSection(m_strConfigFile, m_strName, section)) {
        VKsystemLog::WriteError(kName, __FILE__, "Unable to load/read config/vklogs.ini file.");
        return false;
    }

    m_pobjWriter.reset(VKsysEventLogWriterInterface::CreateInstance(
        vk::CodeOfText(kWriterWords, section.writer, kNoWriter, vk::Case::Ignored)));
    if (!m_pobjWriter) {
        VKsystemLog::WriteError(kName, __FILE__, "Error occurred while creating log writer.");
        return false;
    }
    m_level = VKsysEventLogWriterInterface::getLogLevel(section.level, false);

    bool taken = true;
    for (auto& [key, value] : section.parameters)
        taken = taken && m_pobjWriter->setParameter(key, value);
    if (!taken || !m_pobjWriter->isInitialized()) {
        m_pobjWriter.reset();
        VKsystemLog::WriteError(kName, __FILE__, "Log writer initialization failed. Check vklogs.ini");
        return false;
    }
    return true;
}

bool VKsysEventLogInterface::Start()
{
    m_bRunning = m_pobjWriter && m_pobjWriter->isInitialized();
    return m_bRunning;
}

bool VKsysEventLogInterface::Stop()
{
    m_bRunning = false;
    return true;
}

bool VKsysEventLogInterface::IsAlive() { return m_bRunning; }

// --- Older formatted operations: each collects its arguments, the rest is one function.

/// \param behind stands behind the text
bool VKsysEventLogInterface::PassFormatted(LogLevel level, const char* prefix, int line, const char* file,
                                           const char* format, va_list arguments, const std::string& behind)
{
    if (!m_bRunning || !format)
        return false;
    // A selector that selects no level is taken and writes nothing.
    return level == NONE || Pass(level, Prefixed(prefix, format, arguments) + behind, line, file);
}

bool VKsysEventLogInterface::Print(const char* prefix, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const bool passed = PassFormatted(INFO, prefix, 0, nullptr, format, arguments);
    va_end(arguments);
    return passed;
}

bool VKsysEventLogInterface::WriteInfo(const char* prefix, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const bool passed = PassFormatted(INFO, prefix, 0, nullptr, format, arguments);
    va_end(arguments);
    return passed;
}

bool VKsysEventLogInterface::WriteSystemError(const char* prefix, const char* format, ...)
{
    const std::string cause = VKgetLastError(); // before anything changes errno
    va_list arguments;
    va_start(arguments, format);
    const bool passed =
        PassFormatted(ERROR, prefix, 0, nullptr, format, arguments, " [System Library Error] " + cause);
    va_end(arguments);
    return passed;
}

bool VKsysEventLogInterface::WriteError(Severity severity, const char* prefix, int line, const char* file,
                                        const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const bool passed = PassFormatted(LevelOf(kSeverities, severity), prefix, line, file, format, arguments);
    va_end(arguments);
    return passed;
}

bool VKsysEventLogInterface::WriteTrace(TraceLevel level, const char* prefix, int line, const char* file,
                                        const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const bool passed = PassFormatted(LevelOf(kTraceLevels, level), prefix, line, file, format, arguments);
    va_end(arguments);
    return passed;
}

std::string VKsysEventLogInterface::format2String(const char* format, ...)
{
    if (!format)
        return {};
    va_list arguments;
    va_start(arguments, format);
    std::string text = Prefixed(nullptr, format, arguments);
    va_end(arguments);
    return text;
}
